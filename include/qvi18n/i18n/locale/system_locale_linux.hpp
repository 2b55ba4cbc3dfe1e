#ifndef QVI18N_I18N_LOCALE_SYSTEM_LOCALE_LINUX_HPP
#define QVI18N_I18N_LOCALE_SYSTEM_LOCALE_LINUX_HPP

// What discovery needs of Linux: the user's locale and languages come from the POSIX locale variables
// and LANGUAGE, the application's language list from a file under the XDG configuration directory.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/system_locale.hpp>

#include <string>
#include <vector>

namespace fl {
namespace i18n {
namespace lcmgmt {
namespace linux_os {

/// The terminal encoding of last resort, "UTF-8".
QVI18N_API extern char const* const DEFAULT_ENCODING;

/// The first non-empty of LC_ALL, LC_CTYPE, LANG with the codeset removed and an "@modifier" kept
/// ("de_DE.UTF-8@euro" gives "de_DE@euro"); "C" when none is set. C or POSIX in UTF-8 gives "C.UTF-8",
/// the database's name of that locale.
QVI18N_API std::string get_user_locale();
/// get_user_locale(), with the C locale that `data` does not list under that spelling given as
/// "en_US_POSIX": a process in the C locale starts without a warning whatever the database calls it.
QVI18N_API std::string get_user_locale(LcData const& data);

/// The first language of the user's list. "en_US" when the messages locale (LC_ALL, LC_MESSAGES, LANG)
/// is unset, "C" or "POSIX"; otherwise the first entry of LANGUAGE that `data` resolves, else the
/// messages locale itself, codeset removed (and a modifier the database does not know; the C locale the
/// database does not list gives "en_US").
QVI18N_API std::string get_preferred_language(LcData const& data);

/// ${XDG_CONFIG_HOME:-$HOME/.config}/qvi18n/<program>/languages; empty when neither is set or the
/// program's name is unknown.
QVI18N_API std::string get_app_language_file();
/// The application's list: one name a line; empty, overlong (over 64 bytes) and non-printable-ASCII
/// lines are skipped. A missing or unreadable file is an empty list.
QVI18N_API std::vector<std::string> read_app_languages();
/// The first entry of read_app_languages(), or empty.
QVI18N_API std::string get_app_language();
/// Replaces the list atomically (temporary file, fsync, rename; folders made with mode 0700). Never
/// throws; false on failure, with the old file intact.
QVI18N_API bool write_app_languages(std::vector<std::string> const& names);
/// Writes the list discovery decided for the application, if it differs from what is there.
QVI18N_API void change_app_lang_setting(osx::locale_context const& context);

/// Whether the C library can load `name` for the category mask (LC_CTYPE_MASK, ...).
QVI18N_API bool can_load_locale(int category_mask, std::string const& name);
/// `name` if the C library can load it for all categories, else "C.UTF-8" for a UTF-8 `encoding` and
/// "C" otherwise. An empty name stays empty.
QVI18N_API std::string loadable_xpg_name(std::string const& name, std::string const& encoding);
/// Unsets any of LC_PAPER, LC_NAME, LC_ADDRESS, LC_TELEPHONE, LC_MEASUREMENT, LC_IDENTIFICATION that
/// names a locale the C library refuses, since one such makes setlocale(LC_ALL, "") fail as a whole.
QVI18N_API void unset_unloadable_extra_categories();
/// Those six variables that are set, with their values.
QVI18N_API std::vector<std::pair<std::string, std::string>> get_extra_category_env();

} // namespace linux_os
} // namespace lcmgmt
} // namespace i18n
} // namespace fl

#endif
