#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

#include <qvi18n/i18n/locale/ascii_text.hpp>
#include <qvi18n/i18n/locale/lcmgmt.hpp>

#include <boost/exception/exception.hpp>

#include <unicode/locid.h>
#include <unicode/ucnv.h>

#include <stdexcept>

namespace fl {
namespace i18n {

LcStatusCtx::LcStatusCtx()
    : status_(not_initialized)
    , exception_(nullptr)
{ }

LcStatusCtx::~LcStatusCtx() = default;

void LcStatusCtx::setException(QvLcMgmtExceptionBase* e)
{
    std::unique_ptr<QvLcMgmtExceptionBase> owned(e);
    if (owned) {
        owned_.push_back(std::move(owned));
    }
    exception_.store(e, std::memory_order_release);
}

QvLocaleCtx::QvLocaleCtx()
    : initialized(false)
    , classicLocale(nullptr)
    , systemLocale(nullptr)
    , currentLocale(nullptr)
    , nonL10nLocale(nullptr)
    , globalLocale(nullptr)
    , l10nEnabled(true)
    , localeLocked(false)
{ }

// The context is never destroyed; this only runs for contexts a test makes on its own.
QvLocaleCtx::~QvLocaleCtx() = default;

void QvLocaleCtx::initDefaultCtx()
{
    std::string const posix = LcData::get_posix_locale_short();
    std::string const ascii = LcData::get_default_codeset();

    std::unique_ptr<QvLocaleImpl> classic(new QvLocaleImpl(lcData));
    classic->setLcName(posix, std::string());
    classic->setEncoding(ascii);

    std::unique_ptr<QvLocaleImpl> system(new QvLocaleImpl(lcData));
    system->setLcName(posix, std::string());
    system->setLcName(LcData::get_default_locale_short(), std::string(), QvLocale::LcMessages);
    system->setEncoding(ascii);
    system->setTerminalEncoding(ascii);

    // Not a copy: copying reaches the context, which is still being made.
    std::unique_ptr<QvLocaleImpl> current(new QvLocaleImpl(lcData));
    current->setLcName(posix, std::string());
    current->setLcName(LcData::get_default_locale_short(), std::string(), QvLocale::LcMessages);
    current->setEncoding(ascii);
    current->setTerminalEncoding(ascii);

    publish(classicLocale, std::move(classic));
    publish(systemLocale, std::move(system));
    publish(currentLocale, std::move(current));
    setGlobalLocale(classicLocale.load(std::memory_order_relaxed));

    // ICU's default converter is not set here: ucnv_setDefaultName is not thread-safe, and this runs on
    // whichever thread uses the context first. Start-up sets it.
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale(posix.c_str()), status);

    initCatNameTbl();
    initOptDataTypeTbl();
}

LcData& QvLocaleCtx::getLcDataForUpdate(boost::unique_lock<boost::mutex> const& lock)
{
    if (!lock.owns_lock() || lock.mutex() != &getLcMutex()) {
        throw boost::enable_current_exception(
            std::logic_error("the locale database is only written under the global locale lock"));
    }
    return lcData;
}

void QvLocaleCtx::initCatNameTbl()
{
    lcCategoryTbl["ctype"] = QvLocale::LcCtype;
    lcCategoryTbl["collate"] = QvLocale::LcCollate;
    lcCategoryTbl["time"] = QvLocale::LcTime;
    lcCategoryTbl["numeric"] = QvLocale::LcNumeric;
    lcCategoryTbl["monetary"] = QvLocale::LcMonetary;
    lcCategoryTbl["messages"] = QvLocale::LcMessages;
    for (auto const& entry : lcCategoryTbl) {
        lcCatNameTbl[entry.second] = entry.first;
    }
}

void QvLocaleCtx::initOptDataTypeTbl()
{
    optDataTypeTbl["jvmencoding"] = QvLcOptDataCtx::LcJvmEncoding;
    optDataTypeTbl["termencoding"] = QvLcOptDataCtx::LcTermEncoding;
    optDataTypeTbl["terminputencoding"] = QvLcOptDataCtx::LcTermInputEncoding;
    optDataTypeTbl["termoutputencoding"] = QvLcOptDataCtx::LcTermOutputEncoding;
    optDataTypeTbl["papersize"] = QvLcOptDataCtx::LcPaperSize;
    optDataTypeTbl["unittype"] = QvLcOptDataCtx::LcUnitType;
}

QvLocale::LcCategory QvLocaleCtx::getLcCategory(std::string const& name) const
{
    auto found = lcCategoryTbl.find(detail::ascii_fold(name));
    if (found == lcCategoryTbl.end()) {
        throw boost::enable_current_exception(QvLcDataNotFound());
    }
    return found->second;
}

std::string QvLocaleCtx::getLcCatName(QvLocale::LcCategory category) const
{
    auto found = lcCatNameTbl.find(category);
    if (found == lcCatNameTbl.end()) {
        throw boost::enable_current_exception(QvLcDataNotFound());
    }
    return found->second;
}

QvLcOptDataCtx::LcOptDataType QvLocaleCtx::getOptDataType(std::string const& name) const
{
    auto found = optDataTypeTbl.find(detail::ascii_fold(name));
    if (found == optDataTypeTbl.end()) {
        throw boost::enable_current_exception(QvLcDataNotFound());
    }
    return found->second;
}

// A replaced locale may still be referenced by a reader of classic(), system() or global(); it costs
// little to keep it for the life of the process.
void QvLocaleCtx::publish(std::atomic<QvLocaleImpl const*>& slot, std::unique_ptr<QvLocaleImpl> locale) const
{
    QvLocaleImpl const* raw = locale.get();
    owned.push_back(std::move(locale));
    slot.store(raw, std::memory_order_release);
}

void QvLocaleCtx::setSystemLocale(std::unique_ptr<QvLocaleImpl> locale)
{
    publish(systemLocale, std::move(locale));
}

void QvLocaleCtx::setCurrentLocale(std::unique_ptr<QvLocaleImpl> locale)
{
    publish(currentLocale, std::move(locale));
}

void QvLocaleCtx::setNonL10nLocale(std::unique_ptr<QvLocaleImpl> locale)
{
    publish(nonL10nLocale, std::move(locale));
}

bool QvLocaleCtx::setGlobalLocale(QvLocaleImpl const* locale)
{
    if (locale == nullptr
        || (locale != classicLocale.load(std::memory_order_acquire)
            && locale != systemLocale.load(std::memory_order_acquire)
            && locale != currentLocale.load(std::memory_order_acquire)
            && locale != nonL10nLocale.load(std::memory_order_acquire))) {
        return false;
    }
    globalLocale.exchange(locale, std::memory_order_acq_rel);
    return true;
}

void QvLocaleCtx::initGlobalLocale(bool use_default)
{
    localeContext = lcmgmt::osx::locale_context();
    // The system locale is filled aside and published when complete.
    std::unique_ptr<QvLocaleImpl> system(new QvLocaleImpl(lcData));
    initContext.reset(new lcmgmt::locale_initialization_context(lcData, *system, lcStatus, localeContext));
    if (use_default) {
        initContext->initialize_with_default();
    } else {
        initContext->initialize();
    }
    if (localeContext.l10n_control == "on") {
        setLocaleLocked();
    }

    // The global locale never formats numbers the local way; the system locale keeps the user's.
    std::unique_ptr<QvLocaleImpl> current(new QvLocaleImpl(*system));
    current->setLcName(LcData::get_posix_locale_short(), std::string(), QvLocale::LcNumeric);
    publish(systemLocale, std::move(system));
    QvLocaleImpl const* published = current.get();
    publish(currentLocale, std::move(current));
    setGlobalLocale(published);

    if (!localeContext.messages_l10n) {
        create_non_l10n_rsc_locale_object();
        clearL10nEnabled();
    }
    initContext->set_xpg_locale(use_default);
    if (!use_default) {
        QvLocale const& global = getGlobalLocale();
        ucnv_setDefaultName(global.encoding().c_str());
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(icu::Locale(global.shortName(QvLocale::LcCtype).c_str()), status);
    }
    initContext->set_app_lang_setting();
}

void QvLocaleCtx::create_non_l10n_rsc_locale_object() const
{
    QvLocaleImpl const& current = getCurrentLocale();
    std::string const messages = current.shortName(QvLocale::LcMessages);
    if (messages == LcData::get_default_locale_short() || messages == LcData::get_posix_locale_short()) {
        return;
    }
    std::unique_ptr<QvLocaleImpl> english(new QvLocaleImpl(current));
    english->setLcName(LcData::get_default_locale_short(), std::string(), QvLocale::LcMessages);
    QvLocaleImpl const* published = english.get();
    publish(nonL10nLocale, std::move(english));
    globalLocale.exchange(published, std::memory_order_acq_rel);
    if (initContext) {
        initContext->disable_l10n_resource();
    }
}

void QvLocaleCtx::disable_l10n_rsc() const
{
    if (getL10nEnabled()) {
        create_non_l10n_rsc_locale_object();
        clearL10nEnabled();
    }
}

void QvLocaleCtx::change_current_locale(QvLocale const& locale) const
{
    if (getLocaleLocked() || !getL10nEnabled()) {
        return;
    }
    // Only a move to English is taken; whatever the argument, the first call closes the door.
    std::string const english = LcData::get_default_locale_short();
    if (locale.shortName(QvLocale::LcMessages) != english
        || getCurrentLocale().shortName(QvLocale::LcMessages) == english) {
        setLocaleLocked();
        return;
    }
    create_non_l10n_rsc_locale_object();
    clearL10nEnabled();
    setLocaleLocked();
}

void QvLocaleCtx::lock_current_locale() const
{
    setLocaleLocked();
}

std::atomic<QvLocaleCtx*> QvLcCtxSingleton::m_instance(nullptr);
boost::once_flag QvLcCtxSingleton::m_once = BOOST_ONCE_INIT;

QvLocaleCtx& QvLcCtxSingleton::getInstance()
{
    boost::call_once(m_once, &QvLcCtxSingleton::init);
    return *m_instance.load(std::memory_order_acquire);
}

// If the built-in state cannot be set up, the once region rolls back and the next caller tries again.
void QvLcCtxSingleton::init()
{
    std::unique_ptr<QvLocaleCtx> ctx(new QvLocaleCtx());
    ctx->initDefaultCtx();
    m_instance.store(ctx.release(), std::memory_order_release);
}

template class QvLcGenericSingleton<boost::mutex>;

boost::mutex& getLcMutex()
{
    return QvLcGenericSingleton<boost::mutex>::getInstance();
}

QvLocaleCtx& get_qvlocale_context()
{
    return QvLcCtxSingleton::getInstance();
}

namespace {

// ICU's own name for `name` turned into a standard one; empty if ICU cannot open it.
std::string icu_standard_name(std::string const& name)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name.c_str(), &status);
    if (U_FAILURE(status)) {
        if (converter != nullptr) {
            ucnv_close(converter);
        }
        return std::string();
    }
    status = U_ZERO_ERROR;
    char const* icu_name = ucnv_getName(converter, &status);
    std::string converter_name = (U_SUCCESS(status) && icu_name != nullptr) ? icu_name : "";
    ucnv_close(converter);
    return lcctype::get_standard_encoding_name_from_converter_name(converter_name);
}

} // namespace

std::string& getEncoding(std::string& out, std::string const& name)
{
    LcData const& data = get_qvlocale_context().getLcData();
    out = icu_standard_name(name);
    // An encoding that ICU knows but the database does not list is no encoding of ours.
    if (!out.empty() && !data.checkEncoding(out)) {
        out.clear();
    }
    std::string const& canonical = data.getEncodingFromAlias(out);
    if (!canonical.empty() && &canonical != &out) {
        out = canonical;
    }
    return out;
}

namespace lcmgmt {

bool is_supported_encoding(std::string const& name)
{
    LcData const& data = get_qvlocale_context().getLcData();
    if (data.checkEncoding(name)) {
        return true;
    }
    return data.checkEncoding(icu_standard_name(name));
}

std::string get_encoding_name_from_alias(std::string const& name)
{
    return get_qvlocale_context().getLcData().getEncodingFromAlias(name);
}

std::string get_qv_standard_encoding_name_from_alias(std::string const& name)
{
    return get_qvlocale_context().getLcData().getQvStandardEncodingName(name);
}

} // namespace lcmgmt

namespace lcctype {

std::string get_standard_encoding_name_from_converter_name(const std::string& name)
{
    if (name.empty()) {
        return std::string();
    }
    static char const* const tags[] = {"MIME", "IANA", "WINDOWS"};
    for (char const* tag : tags) {
        UErrorCode status = U_ZERO_ERROR;
        char const* standard = ucnv_getStandardName(name.c_str(), tag, &status);
        if (status <= U_ZERO_ERROR && standard != nullptr) {
            return standard;
        }
    }
    return name;
}

} // namespace lcctype

} // namespace i18n
} // namespace fl
