#ifndef QVI18N_I18N_LOCALE_STARTUP_LCMGMT_HPP
#define QVI18N_I18N_LOCALE_STARTUP_LCMGMT_HPP

// What start-up keeps of the user's settings and the standard library's view of them.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/system_locale.hpp>

namespace fl {
namespace i18n {

namespace lcmgmt {

/// Whether the standard library can make every category's locale from the environment.
QVI18N_API bool is_std_locale_valid();
/// Puts back the locale variables start-up decided if the standard library can't use the current ones.
QVI18N_API void fix_invalid_std_locale();
/// The user's settings as start-up found them. Takes the global lock.
QVI18N_API system_setting_context get_original_user_locale_setting();

} // namespace lcmgmt

} // namespace i18n
} // namespace fl

#endif
