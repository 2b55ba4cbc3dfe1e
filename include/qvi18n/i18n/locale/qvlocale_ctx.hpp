#ifndef QVI18N_I18N_LOCALE_QVLOCALE_CTX_HPP
#define QVI18N_I18N_LOCALE_QVLOCALE_CTX_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/lcmgmt.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>
#include <qvi18n/i18n/locale/system_locale.hpp>

#include <boost/noncopyable.hpp>
#include <boost/thread/lock_types.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/once.hpp>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace fl {
namespace i18n {

/// What start-up has to say: its status and, when there is something to report, the failure.
/// Both are published atomically: start-up writes them under the global lock, readers take no lock.
class QVI18N_API LcStatusCtx {
public:
    enum {
        initialized = 0, ///< initialised
        database_failure = 1, ///< the database failed to load; default settings are in force
        not_initialized = 2, ///< start-up has not run
        initialized_warning = 3 ///< initialised, but a system setting could not be used
    };

    LcStatusCtx();
    ~LcStatusCtx();
    LcStatusCtx(LcStatusCtx const&) = delete;
    LcStatusCtx& operator=(LcStatusCtx const&) = delete;

    int getStatus() const { return status_.load(std::memory_order_acquire); }
    void setStatus(int status) { status_.store(status, std::memory_order_release); }
    /// The failure to report, or null.
    QvLcMgmtExceptionBase const* getException() const { return exception_.load(std::memory_order_acquire); }
    /// Takes ownership of `e` (may be null). The one held before stays alive: a reader may hold it.
    void setException(QvLcMgmtExceptionBase* e);

private:
    std::atomic<int> status_;
    std::atomic<QvLcMgmtExceptionBase const*> exception_;
    std::vector<std::unique_ptr<QvLcMgmtExceptionBase>> owned_;
};

/// The one process-wide object of locale management: the database, the well-known locales, the start-up
/// status and the name tables. Reached through get_qvlocale_context(); built on first use with the
/// built-in state in force (global() is the classic locale, encoding "US-ASCII"), never destroyed.
///
/// Threads: every reader here takes no lock. The four locale slots and the global pointer are published
/// atomically and no object they ever pointed to is freed; the flags are atomic; the database is only
/// written by start-up. What changes state needs the global lock (getLcMutex()) and says so below; start-up
/// (initialize()) takes it itself.
class QVI18N_API QvLocaleCtx : private boost::noncopyable {
public:
    QvLocaleCtx();
    ~QvLocaleCtx();

    /// Sets up the built-in locales, points the global locale at the classic one, sets ICU's default
    /// locale ("en_US_POSIX"), and fills the name tables. Runs once, inside the singleton's once region.
    /// ICU's default converter is left to start-up, which runs at a single-threaded moment.
    void initDefaultCtx();
    void initCatNameTbl();
    void initOptDataTypeTbl();

    /// Category / option names in any ASCII case; QvLcDataNotFound on a miss.
    QvLocale::LcCategory getLcCategory(std::string const& name) const;
    std::string getLcCatName(QvLocale::LcCategory category) const;
    QvLcOptDataCtx::LcOptDataType getOptDataType(std::string const& name) const;

    /// The database, read-only; no lock.
    LcData const& getLcData() const { return lcData; }
    /// The database for filling. Only for start-up and for tests that fill it before other threads use
    /// it: `lock` must hold the global lock (else std::logic_error).
    LcData& getLcDataForUpdate(boost::unique_lock<boost::mutex> const& lock);

    LcStatusCtx& getLcStatus() { return lcStatus; }
    LcStatusCtx const& getLcStatus() const { return lcStatus; }

    /// Atomic reads, no lock.
    QvLocaleImpl const& getClassicLocale() const { return *classicLocale.load(std::memory_order_acquire); }
    QvLocaleImpl const& getSystemLocale() const { return *systemLocale.load(std::memory_order_acquire); }
    QvLocaleImpl const& getCurrentLocale() const { return *currentLocale.load(std::memory_order_acquire); }
    /// Null until localised resources are switched off for a non-English locale.
    QvLocaleImpl const* getNonL10nLocale() const { return nonL10nLocale.load(std::memory_order_acquire); }
    /// The current global locale: one atomic read, no lock.
    QvLocaleImpl const& getGlobalLocale() const { return *globalLocale.load(std::memory_order_acquire); }

    /// Replace a slot (global lock). The replaced locale is never freed (a reader may still hold it).
    void setSystemLocale(std::unique_ptr<QvLocaleImpl> locale);
    void setCurrentLocale(std::unique_ptr<QvLocaleImpl> locale);
    void setNonL10nLocale(std::unique_ptr<QvLocaleImpl> locale);
    /// Points the global locale at one of the four slots' locales (global lock); false for anything else,
    /// so that every object the global pointer ever refers to stays alive.
    bool setGlobalLocale(QvLocaleImpl const* locale);

    bool getInitialized() const { return initialized.load(std::memory_order_acquire); }
    void setInitialized() { initialized.store(true, std::memory_order_release); }
    bool getL10nEnabled() const { return l10nEnabled.load(std::memory_order_acquire); }
    void clearL10nEnabled() const { l10nEnabled.store(false, std::memory_order_release); }
    bool getLocaleLocked() const { return localeLocked.load(std::memory_order_acquire); }
    void setLocaleLocked() const { localeLocked.store(true, std::memory_order_release); }
    std::mutex& getStdLocaleMutex() { return stdLocaleMutex; }

    // Start-up. All of these need the global lock; initialize() and the public functions of start-up
    // take it.

    /// Reads the database and decides the global locale, once per process.
    void initLocaleMgmt();
    /// Discovers the user's settings (or takes the built-in ones), publishes the system and global
    /// locales, and rewrites the process's locale variables and C locale.
    void initGlobalLocale(bool use_default);
    /// Messages no longer localised (once; nothing happens when already off).
    void disable_l10n_rsc() const;
    /// Publishes a copy of the current locale with English messages as the global locale.
    void create_non_l10n_rsc_locale_object() const;
    /// Lets the global locale go to English messages, and locks it.
    void change_current_locale(QvLocale const& locale) const;
    void lock_current_locale() const;

    /// What discovery found and decided; written by start-up under the global lock.
    lcmgmt::osx::locale_context const& getLocaleContext() const { return localeContext; }

private:
    void publish(std::atomic<QvLocaleImpl const*>& slot, std::unique_ptr<QvLocaleImpl> locale) const;

    std::atomic<bool> initialized;
    LcStatusCtx lcStatus;
    LcData lcData;
    lcmgmt::osx::locale_context localeContext;
    std::atomic<QvLocaleImpl const*> classicLocale;
    std::atomic<QvLocaleImpl const*> systemLocale;
    std::atomic<QvLocaleImpl const*> currentLocale;
    mutable std::atomic<QvLocaleImpl const*> nonL10nLocale;
    mutable std::atomic<QvLocaleImpl const*> globalLocale;
    std::unique_ptr<lcmgmt::locale_initialization_context> initContext;
    mutable std::atomic<bool> l10nEnabled;
    mutable std::atomic<bool> localeLocked;
    std::mutex stdLocaleMutex;
    std::map<std::string, QvLocale::LcCategory> lcCategoryTbl;
    std::map<QvLocale::LcCategory, std::string> lcCatNameTbl;
    std::map<std::string, QvLcOptDataCtx::LcOptDataType> optDataTypeTbl;
    // Every locale a slot ever held, kept for the life of the process.
    mutable std::vector<std::unique_ptr<QvLocaleImpl>> owned;
};

/// Holder of the context: made on the heap on first use under a once region (rolled back if an
/// exception passes), never destroyed.
class QVI18N_API QvLcCtxSingleton {
public:
    static QvLocaleCtx& getInstance();

private:
    static void init();

    // Atomic beside the once flag so that every reader visibly synchronises with the one writer.
    static std::atomic<QvLocaleCtx*> m_instance;
    static boost::once_flag m_once;
};

/// The same pattern for any default-constructible process-wide object; used for the global lock.
template <typename T> class QVI18N_API QvLcGenericSingleton {
public:
    static T& getInstance()
    {
        boost::call_once(flg_, &QvLcGenericSingleton::init);
        return *instance.load(std::memory_order_acquire);
    }

private:
    static void init() { instance.store(new T(), std::memory_order_release); }

    static std::atomic<T*> instance;
    static boost::once_flag flg_;
};

template <typename T> std::atomic<T*> QvLcGenericSingleton<T>::instance(nullptr);
template <typename T> boost::once_flag QvLcGenericSingleton<T>::flg_ = BOOST_ONCE_INIT;

// One global lock for the whole process: the instantiation lives in the library only.
extern template class QVI18N_API QvLcGenericSingleton<boost::mutex>;

/// The global locale lock: start-up and changes of localisation state. No lock.
QVI18N_API boost::mutex& getLcMutex();
/// The process's locale context, built with its built-in state on first use. No lock.
QVI18N_API QvLocaleCtx& get_qvlocale_context();
/// The database's name for encoding `name` (through ICU's canonical name and the database's aliases),
/// or empty if ICU cannot open it or the database does not list it. Returns `out`. No lock.
QVI18N_API std::string& getEncoding(std::string& out, std::string const& name);



} // namespace i18n
} // namespace fl

#endif
