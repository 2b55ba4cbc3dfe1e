#ifndef QVI18N_I18N_LOCALE_SYSTEM_LOCALE_HPP
#define QVI18N_I18N_LOCALE_SYSTEM_LOCALE_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fl {
namespace i18n {

class LcStatusCtx;

namespace lcmgmt {

/// Positions in the table of locale variables that every loop here walks: the six categories in the
/// order of QvLocale::LcCategory, then LC_ALL and LANG.
enum locale_env_index {
    env_lc_ctype = 0,
    env_lc_collate = 1,
    env_lc_time = 2,
    env_lc_numeric = 3,
    env_lc_monetary = 4,
    env_lc_messages = 5,
    env_lc_all = 6,
    env_lang = 7,
    locale_category_count = 6,
    locale_env_count = 8
};

/// "LC_CTYPE", ..., "LC_MESSAGES", "LC_ALL", "LANG".
QVI18N_API char const* locale_env_name(int index);
/// The C library's category number (LC_CTYPE, ...) of one of the first six entries.
QVI18N_API int locale_env_category(int index);

namespace osx {

/// What start-up found in the user's settings and what it decided from them. A plain record: written
/// at start-up and by a later switch-off of localised messages, both under the global lock.
struct QVI18N_API locale_context {
    // What was found.
    std::string user_locale; ///< the system's locale identifier
    std::string preferred_language; ///< first language of the user's list
    std::string app_language; ///< first language of this application's list
    std::string xpg_category[locale_category_count]; ///< what setlocale() reported per category
    std::string env_value[locale_env_count]; ///< the eight variables as found ("" if unset)
    std::string codeset; ///< nl_langinfo(CODESET)
    bool xpg_uniform = true;
    std::string xpg_base;
    std::string xpg_differs[locale_category_count];
    std::string l10n_control; ///< QVLOCALE_L10N_CONTROL, lower-cased
    bool db_l10n = false;

    // What was decided.
    std::pair<std::string, std::string> category_name[locale_category_count]; ///< name, modifier
    std::string encoding;
    std::string terminal_encoding;
    bool set_uniform = true;
    std::string set_base;
    std::string set_differs[locale_category_count];
    std::string set_value[locale_env_count]; ///< what goes into the environment; LC_ALL stays empty
    bool messages_l10n = true;

    /// Locale variables outside the six categories (LC_PAPER, ...), name and value as found; they
    /// are left alone unless the C library cannot load them.
    std::vector<std::pair<std::string, std::string>> extra_env;
};

/// The built-in decision (en_US_POSIX, "C"), with what the system says recorded all the same.
QVI18N_API void initialize_with_default(locale_context& context);
/// The three identifiers, then get_xpg_locales().
QVI18N_API void get_system_locales(locale_context& context);
/// setlocale(category, "") per category, the eight variables, the codeset.
QVI18N_API void get_xpg_locales(locale_context& context);
/// Resolves the user's settings against the database; false if a name had to be replaced.
QVI18N_API bool get_sysdep_locales(LcData const& data, locale_context& context);
/// QVLOCALE_TERMINAL_ENCODING as it stands, else the database's name of the C library's codeset, else
/// DEFAULT_ENCODING (also for US-ASCII).
QVI18N_API std::string get_terminal_encoding(LcData const& data, locale_context const& context);
/// Rewrites LANG and the LC_* variables (never LC_ALL) and the C locale to the decision.
QVI18N_API void set_xpg_locale(locale_context& context, bool use_default);
/// Puts "C" for `category` (an index of the table) unless LANG already is "C"; true if nothing needs
/// setting.
QVI18N_API bool set_default_xpg_locale(locale_context& context, unsigned long category);
/// The languages the application's list should hold, or an empty list when it holds them already.
QVI18N_API std::vector<std::string> wanted_app_languages(locale_context const& context);

} // namespace osx

/// The names the platform-free logic and its callers know the platform's services by; on this system
/// they stand on the operations of system_locale_linux.hpp.
namespace darwin {

/// The terminal encoding of last resort, "UTF-8".
QVI18N_API extern char const* const DEFAULT_ENCODING;

/// The user's locale identifier.
QVI18N_API std::string get_user_locale();
/// Stores the application's language list that `context` calls for, unless the list starts right
/// already.
QVI18N_API void change_app_lang_setting(osx::locale_context const& context);

/// Frees what create_array made.
struct QVI18N_API reference_close {
    void operator()(void const* array) const;
};
/// A language list ready to be stored: the names, in order, less those that are not printable ASCII.
/// `out` is left unset for an empty list.
QVI18N_API void create_array(std::unique_ptr<void const, reference_close>& out, std::vector<std::string> const& names);

} // namespace darwin

/// One C-library category as the user had it before start-up.
struct QVI18N_API locale_category_context {
    int category;
    std::string value;
};

/// One locale variable as the user had it before start-up.
struct QVI18N_API locale_env_var_context {
    std::string name;
    std::string value;
};

/// The user's settings before start-up changed them. Four of the strings are filled on this platform;
/// the others are for settings it does not have.
struct QVI18N_API system_setting_context {
    std::string user_locale;
    std::string reserved_1;
    std::string reserved_2;
    std::string preferred_language;
    std::string reserved_4;
    std::string app_language;
    std::string reserved_6;
    std::string reserved_7;
    std::string reserved_8;
    std::string codeset;
    std::string reserved_10;
    std::vector<locale_category_context> categories;
    /// The eight locale variables that were set, then any other LC_* variable that was set.
    std::vector<locale_env_var_context> env_vars;
};

/// Drives discovery for one start-up: fills `locale` and `status` from the database and `context`.
/// Holds references only; all of it runs under the global lock.
class QVI18N_API locale_initialization_context {
public:
    locale_initialization_context(
        LcData const& data, QvLocaleImpl& locale, LcStatusCtx& status, osx::locale_context& context);

    /// The ordinary path: decide from the user's settings; status 3 for a setting that can't be used.
    void initialize();
    /// No database: the built-in locale, the user's settings only recorded.
    void initialize_with_default();
    /// Copies the decided names and encodings into the locale.
    void set_locale_object();
    void set_xpg_locale(bool use_default);
    /// Messages no longer localised: LC_MESSAGES goes to "C" (unless LANG is) and the C locale follows.
    void disable_l10n_resource();
    /// Rewrites the application's language list if it does not start with the wanted language.
    void set_app_lang_setting();

    osx::locale_context const& get_context() const { return context_; }

private:
    LcData const& data_;
    QvLocaleImpl& locale_;
    LcStatusCtx& status_;
    osx::locale_context& context_;
};

/// The standard-library category masks for which std::locale(classic(), "", mask) throws.
QVI18N_API std::vector<int> check_std_locale_valid();
/// Puts back the variables start-up decided, without calling setlocale.
QVI18N_API void redefine_xpg_locale_env(osx::locale_context const& context);
/// The user's original settings out of `context`.
QVI18N_API system_setting_context extract_system_setting_from_locale_context(osx::locale_context const& context);

namespace osx {
QVI18N_API system_setting_context extract_system_setting_from_locale_context(locale_context const& context);
} // namespace osx

} // namespace lcmgmt
} // namespace i18n
} // namespace fl

#endif
