#ifndef QVI18N_I18N_LOCALE_STARTUP_INITIALIZE_HPP
#define QVI18N_I18N_LOCALE_STARTUP_INITIALIZE_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <string>

namespace fl {
namespace i18n {

/// Starts the library: reads the locale database (QVLOCALE_LCDATA_PATH / QVLOCALE_LCDATA_FILENAME, else
/// bin/lcdata.xml under the installation), decides the global locale from the user's settings, and
/// rewrites the process's LANG, LC_* variables and C locale to agree. Does its work once; later and
/// concurrent calls wait for it and return. A missing or bad database does not throw: QvLcUtil tells.
/// Call it before other threads rely on the environment or the C locale.
QVI18N_API void initialize();
/// The locale part of initialize() alone; takes the global lock.
QVI18N_API void initLcMgmtSystem();

/// The locale database file start-up went to read (file-system form), whether or not it could:
/// QvLcUtil tells how that went. Empty before start-up, and when no path could be formed (a
/// refused QVLOCALE_LCDATA_PATH, no installation). Takes the global lock.
QVI18N_API std::string get_database_path();

/// Stops localised messages: the global locale gets English messages. Takes the global lock.
QVI18N_API void disable_l10n_resource();
/// Whether localised messages are in use. Takes the global lock.
QVI18N_API bool get_l10n_resource_status();
/// Moves the global locale to English messages if `locale`'s messages are "en_US"; any first call locks
/// the global locale, and a locked one does not change. Takes the global lock.
QVI18N_API void change_global_locale(QvLocale const& locale);
/// Pins the global locale for the rest of the process. Takes the global lock.
QVI18N_API void lock_global_locale_setting();

/// What start-up has to say. Reads without a lock; meant for use after initialize().
class QVI18N_API QvLcUtil {
public:
    /// 0 initialised, 1 database not loaded, 2 not initialised, 3 initialised with a warning.
    static int getLcStatus();
    static std::string getInitStatusMsg();
    /// The stored failure's message, or empty.
    static std::string getInitWarningMsg();
    /// The stored failure itself (of its own class), or null.
    static QvLcMgmtExceptionBase const* getInitException();
};

} // namespace i18n
} // namespace fl

#endif
