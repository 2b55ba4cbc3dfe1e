#ifndef QVI18N_I18N_LOCALE_QVLOCALE_CTX_HPP
#define QVI18N_I18N_LOCALE_QVLOCALE_CTX_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include <boost/noncopyable.hpp>
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
struct QVI18N_API LcStatusCtx {
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

    /// Takes ownership of `e` (may be null), destroying the one held before.
    void setException(QvLcMgmtExceptionBase* e) { exception.reset(e); }

    int status;
    std::unique_ptr<QvLcMgmtExceptionBase> exception;
};

/// The one process-wide object of locale management: the database, the well-known locales, the start-up
/// status and the name tables. Reached through get_qvlocale_context(); built on first use with the
/// built-in state in force (global() is the classic locale, encoding "US-ASCII"), never destroyed.
///
/// Filling the database: getLcData() gives the context's LcData for writing. Start-up fills it once under
/// the global lock (getLcMutex()) by handing it to the database reader (parseLcData); a test may fill it
/// directly, e.g.
///     fl::i18n::get_qvlocale_context().getLcData().addLcName("de_AT", "ISO-8859-1", "de_AT.ISO8859-1");
/// before it creates locales from other threads. Readers take no lock, so fill it before sharing.
///
/// Start-up (the global locale's life after initialize()) builds on the setters below: it replaces the
/// system and current locales, moves the global pointer with setGlobalLocale(), and keeps its status in
/// getLcStatus(). No object the global pointer ever referred to is freed.
class QVI18N_API QvLocaleCtx : private boost::noncopyable {
public:
    QvLocaleCtx();
    ~QvLocaleCtx();

    /// Sets up the built-in locales, points the global locale at the classic one, sets ICU's default
    /// converter ("US-ASCII") and locale ("en_US_POSIX"), and fills the name tables.
    void initDefaultCtx();
    void initCatNameTbl();
    void initOptDataTypeTbl();

    /// Category / option names in any ASCII case; QvLcDataNotFound on a miss.
    QvLocale::LcCategory getLcCategory(std::string const& name) const;
    std::string getLcCatName(QvLocale::LcCategory category) const;
    QvLcOptDataCtx::LcOptDataType getOptDataType(std::string const& name) const;

    /// The database, for filling (start-up, tests) and for reading.
    LcData& getLcData() { return lcData; }
    LcData const& getLcData() const { return lcData; }

    LcStatusCtx& getLcStatus() { return lcStatus; }
    LcStatusCtx const& getLcStatus() const { return lcStatus; }

    QvLocaleImpl const& getClassicLocale() const { return *classicLocale; }
    QvLocaleImpl const& getSystemLocale() const { return *systemLocale; }
    QvLocaleImpl const& getCurrentLocale() const { return *currentLocale; }
    /// Null until localised resources are switched off for a non-English locale.
    QvLocaleImpl const* getNonL10nLocale() const { return nonL10nLocale.get(); }
    /// The current global locale: one atomic read, no lock.
    QvLocaleImpl const& getGlobalLocale() const { return *globalLocale.load(std::memory_order_acquire); }

    /// Start-up's seams, to be used under the global lock. A replaced locale is never freed (a reader may
    /// still hold it). setGlobalLocale() only accepts one of the four owned locales (or returns false), so
    /// every object the global pointer ever refers to stays alive.
    void setSystemLocale(std::unique_ptr<QvLocaleImpl> locale);
    void setCurrentLocale(std::unique_ptr<QvLocaleImpl> locale);
    void setNonL10nLocale(std::unique_ptr<QvLocaleImpl> locale);
    bool setGlobalLocale(QvLocaleImpl const* locale);

    bool getInitialized() const { return initialized; }
    void setInitialized() { initialized = true; }
    bool getL10nEnabled() const { return l10nEnabled; }
    void clearL10nEnabled() { l10nEnabled = false; }
    bool getLocaleLocked() const { return localeLocked; }
    void setLocaleLocked() { localeLocked = true; }
    std::mutex& getStdLocaleMutex() { return stdLocaleMutex; }

private:
    void replace(std::unique_ptr<QvLocaleImpl>& slot, std::unique_ptr<QvLocaleImpl> locale);

    bool initialized;
    LcStatusCtx lcStatus;
    LcData lcData;
    // Start-up adds the system-settings record (localeContext) here.
    std::unique_ptr<QvLocaleImpl> classicLocale;
    std::unique_ptr<QvLocaleImpl> systemLocale;
    std::unique_ptr<QvLocaleImpl> currentLocale;
    std::unique_ptr<QvLocaleImpl> nonL10nLocale;
    std::atomic<QvLocaleImpl const*> globalLocale;
    // Start-up adds its initialisation context (initContext) here.
    bool l10nEnabled;
    bool localeLocked;
    std::mutex stdLocaleMutex;
    std::map<std::string, QvLocale::LcCategory> lcCategoryTbl;
    std::map<QvLocale::LcCategory, std::string> lcCatNameTbl;
    std::map<std::string, QvLcOptDataCtx::LcOptDataType> optDataTypeTbl;
    // Replaced locales, kept alive for readers that may still hold them.
    std::vector<std::unique_ptr<QvLocaleImpl>> retired;
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

/// The global locale lock: start-up and changes of localisation state.
QVI18N_API boost::mutex& getLcMutex();
/// The process's locale context, built with its built-in state on first use.
QVI18N_API QvLocaleCtx& get_qvlocale_context();
/// The database's name for encoding `name` (through ICU's canonical name and the database's aliases),
/// or empty if ICU cannot open it or the database does not list it. Returns `out`.
QVI18N_API std::string& getEncoding(std::string& out, std::string const& name);

namespace lcmgmt {

/// Whether the database lists `name`, directly or through ICU's standard name for it.
QVI18N_API bool is_supported_encoding(std::string const& name);
/// The database's canonical name for an alias, or `name` itself.
QVI18N_API std::string get_encoding_name_from_alias(std::string const& name);
/// The database's canonical name for an alias, or an empty string.
QVI18N_API std::string get_qv_standard_encoding_name_from_alias(std::string const& name);

} // namespace lcmgmt

namespace lcctype {

/// The MIME, else IANA, else WINDOWS standard name of an ICU converter name; `name` itself when no
/// standard lists it, and empty for an empty name.
QVI18N_API std::string get_standard_encoding_name_from_converter_name(const std::string& name);

} // namespace lcctype

} // namespace i18n
} // namespace fl

#endif
