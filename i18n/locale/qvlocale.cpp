#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>
#include <qvi18n/i18n/locale/lcmgmt.hpp>

#include <boost/exception/exception.hpp>

#include <unicode/ulocdata.h>

namespace fl {
namespace i18n {

QvLcMgmtExceptionBase::QvLcMgmtExceptionBase(char const* identifier, char const* message)
    : identifier_(identifier ? identifier : "")
    , message_(message ? message : "")
{ }

QvLcMgmtExceptionBase::~QvLcMgmtExceptionBase() = default;

char const* QvLcMgmtExceptionBase::what() const noexcept
{
    return message_.c_str();
}

QvLcInvLcName::QvLcInvLcName()
    : QvLcMgmtExceptionBase("fl:i18n:QvLcInvLcName", "Invalid locale name.")
{ }

QvLcInvLcName::~QvLcInvLcName() = default;

QvLcDataNotFound::QvLcDataNotFound()
    : QvLcMgmtExceptionBase("fl:i18n:QvLcDataNotFound", "Locale data not found.")
{ }

QvLcDataNotFound::~QvLcDataNotFound() = default;

QvLcInvLcArgument::QvLcInvLcArgument()
    : QvLcMgmtExceptionBase("fl:i18n:QvLcInvLcArgument", "Invalid argument.")
{ }

QvLcInvLcArgument::~QvLcInvLcArgument() = default;

QvLcOptDataCtx::~QvLcOptDataCtx() = default;

QvLcOptDataCtx::LcOptDataType QvLcOptDataCtx::getOptDataType(std::string const& name)
{
    return get_qvlocale_context().getOptDataType(name);
}

namespace lcmgmt {

// The terminal reads and writes in one encoding on this platform.
bool is_term_encoding_consistent()
{
    return true;
}

} // namespace lcmgmt

QvLocale::QvLocale() = default;

QvLocale::~QvLocale() = default;

bool QvLocale::operator!=(QvLocale const& other) const
{
    return !(*this == other);
}

QvLocale const& QvLocale::classic()
{
    return get_qvlocale_context().getClassicLocale();
}

QvLocale const& QvLocale::system()
{
    return get_qvlocale_context().getSystemLocale();
}

QvLocale const& QvLocale::global()
{
    return get_qvlocale_context().getGlobalLocale();
}

boost::shared_ptr<QvLocale const> QvLocale::createLocale(std::string const& name)
{
    if (name.empty()) {
        throw boost::enable_current_exception(QvLcInvLcName());
    }
    return boost::shared_ptr<QvLocale const>(new QvLocaleImpl(name));
}

boost::shared_ptr<QvLocale const> QvLocale::createLocale(QvLocale const& source)
{
    return boost::shared_ptr<QvLocale const>(new QvLocaleImpl(source));
}

boost::shared_ptr<QvLocale const> QvLocale::createLocale(
    QvLocale const& base, std::string const& name, LcCategory category)
{
    LcData const& data = get_qvlocale_context().getLcData();
    LcData::typeLcElement element;
    LcData::breakLcName(element, name);
    std::string const& canonical = data.getLcName(element.shortName);
    if (canonical.empty()) {
        throw boost::enable_current_exception(QvLcInvLcName());
    }
    std::unique_ptr<QvLocaleImpl> locale(new QvLocaleImpl(base));
    locale->setLcName(canonical, element.modifier, category);
    // The character type decides the encoding, so it must name one ICU and the database both know; the
    // locale's default encoding is no substitute here.
    if (category == LcCtype) {
        std::string encoding;
        if (getEncoding(encoding, element.encoding).empty()) {
            throw boost::enable_current_exception(QvLcInvLcName());
        }
        locale->setEncoding(encoding);
    }
    return boost::shared_ptr<QvLocale const>(locale.release());
}

boost::shared_ptr<QvLocale const> QvLocale::createLocale(
    QvLocale const& base, QvLocale const& source, LcCategory category)
{
    std::unique_ptr<QvLocaleImpl> locale(new QvLocaleImpl(base));
    locale->setLcName(source.shortName(category), source.modifier(category), category);
    if (category == LcCtype) {
        locale->setEncoding(source.encoding());
    }
    return boost::shared_ptr<QvLocale const>(locale.release());
}

QvLocale::LcCategory QvLocale::getLcCategory(std::string const& name)
{
    return get_qvlocale_context().getLcCategory(name);
}

std::string QvLocale::getLcCategoryName(LcCategory category)
{
    return get_qvlocale_context().getLcCatName(category);
}

namespace {

int category_index(QvLocale::LcCategory category)
{
    int index = static_cast<int>(category);
    if (index < 0 || index > QvLocale::LcMessages) {
        throw boost::enable_current_exception(QvLcInvLcArgument());
    }
    return index;
}

} // namespace

QvLocaleImpl::QvLocaleImpl(LcData const& data)
    : lcData_(&data)
{ }

QvLocaleImpl::QvLocaleImpl(std::string const& name)
    : lcData_(&get_qvlocale_context().getLcData())
{
    LcData::typeLcElement element;
    LcData::breakLcName(element, name);
    std::string const& canonical = lcData_->getLcName(element.shortName);
    if (canonical.empty()) {
        throw boost::enable_current_exception(QvLcInvLcName());
    }
    for (int c = LcCtype; c < LcMessages; ++c) {
        names_[c].shortName = canonical;
        names_[c].modifier = element.modifier;
    }
    setLcName(canonical, element.modifier, LcMessages);
    if (!element.encoding.empty()) {
        if (getEncoding(encoding_, element.encoding).empty()) {
            throw boost::enable_current_exception(QvLcInvLcName());
        }
    } else {
        encoding_ = lcData_->getDefaultEncoding(canonical);
    }
}

QvLocaleImpl::QvLocaleImpl(QvLocale const& source)
    : lcData_(&get_qvlocale_context().getLcData())
{
    copyFrom(source);
}

QvLocaleImpl::QvLocaleImpl(QvLocaleImpl const& source)
    : QvLocale()
    , lcData_(&get_qvlocale_context().getLcData())
{
    copyFrom(source);
}

QvLocaleImpl::~QvLocaleImpl() = default;

// Through the virtual interface, and without the messages rule: a copy keeps what its source reports.
void QvLocaleImpl::copyFrom(QvLocale const& source)
{
    for (int c = LcCtype; c <= LcMessages; ++c) {
        LcCategory category = static_cast<LcCategory>(c);
        names_[c].shortName = source.shortName(category);
        names_[c].modifier = source.modifier(category);
    }
    encoding_ = source.encoding();
    termEncoding_ = boost::get<std::string>(source.getLcOptData(QvLcOptDataCtx::LcTermEncoding));
}

bool QvLocaleImpl::operator==(QvLocale const& other) const
{
    for (int c = LcCtype; c <= LcMessages; ++c) {
        LcCategory category = static_cast<LcCategory>(c);
        if (names_[c].shortName != other.shortName(category)
            || names_[c].modifier != other.modifier(category)) {
            return false;
        }
    }
    return encoding_ == other.encoding();
}

std::string QvLocaleImpl::shortName(LcCategory category) const
{
    return names_[category_index(category)].shortName;
}

std::string QvLocaleImpl::language(LcCategory category) const
{
    LcData::typeLcElement element;
    LcData::breakLcName(element, names_[category_index(category)].shortName);
    return element.language;
}

std::string QvLocaleImpl::territory(LcCategory category) const
{
    LcData::typeLcElement element;
    LcData::breakLcName(element, names_[category_index(category)].shortName);
    return element.territory;
}

std::string QvLocaleImpl::modifier(LcCategory category) const
{
    return names_[category_index(category)].modifier;
}

std::string QvLocaleImpl::encoding() const
{
    return encoding_;
}

LcOptData QvLocaleImpl::getLcOptData(QvLcOptDataCtx::LcOptDataType type) const
{
    switch (type) {
    case QvLcOptDataCtx::LcJvmEncoding:
        return LcOptData(std::string(lcData_->getJvmEncoding(encoding_)));
    case QvLcOptDataCtx::LcTermEncoding:
    case QvLcOptDataCtx::LcTermOutputEncoding:
        return LcOptData(termEncoding_.empty() ? encoding_ : termEncoding_);
    case QvLcOptDataCtx::LcTermInputEncoding:
        if (lcmgmt::is_term_encoding_consistent() && !termEncoding_.empty()) {
            return LcOptData(termEncoding_);
        }
        return LcOptData(encoding_);
    case QvLcOptDataCtx::LcPaperSize:
        return LcOptData(getPaperSizeType());
    case QvLcOptDataCtx::LcUnitType:
        return LcOptData(getUnitType());
    }
    throw boost::enable_current_exception(QvLcInvLcArgument());
}

void QvLocaleImpl::setLcName(std::string const& name, std::string const& modifier)
{
    for (int c = LcCtype; c <= LcMessages; ++c) {
        setLcName(name, modifier, static_cast<LcCategory>(c));
    }
}

void QvLocaleImpl::setLcName(std::string const& name, std::string const& modifier, LcCategory category)
{
    CategoryName& slot = names_[category_index(category)];
    // Messages are never looked up under the POSIX name: catalogs exist for "en_US".
    if (category == LcMessages && name == LcData::get_posix_locale_short()) {
        slot.shortName = LcData::get_default_locale_short();
    } else {
        slot.shortName = name;
    }
    slot.modifier = modifier;
}

void QvLocaleImpl::setEncoding(std::string const& encoding)
{
    encoding_ = encoding;
}

void QvLocaleImpl::setTerminalEncoding(std::string const& encoding)
{
    termEncoding_ = encoding;
}

QvLcOptDataCtx::PaperSizeType QvLocaleImpl::getPaperSizeType() const
{
    int32_t height = 0;
    int32_t width = 0;
    UErrorCode status = U_ZERO_ERROR;
    // Neither a paper nor a measurement category exists; the time category stands for the region.
    ulocdata_getPaperSize(names_[LcTime].shortName.c_str(), &height, &width, &status);
    if (U_FAILURE(status)) {
        status = U_ZERO_ERROR;
        ulocdata_getPaperSize(LcData::get_posix_locale_short().c_str(), &height, &width, &status);
        if (U_FAILURE(status)) {
            return 0;
        }
    }
    return width == 210 && height == 297 ? 1 : 0;
}

QvLcOptDataCtx::UnitType QvLocaleImpl::getUnitType() const
{
    UErrorCode status = U_ZERO_ERROR;
    UMeasurementSystem system = ulocdata_getMeasurementSystem(names_[LcTime].shortName.c_str(), &status);
    if (U_FAILURE(status)) {
        status = U_ZERO_ERROR;
        system = ulocdata_getMeasurementSystem(LcData::get_posix_locale_short().c_str(), &status);
        if (U_FAILURE(status)) {
            return 0;
        }
    }
    return system == UMS_SI ? 1 : 0;
}

} // namespace i18n
} // namespace fl
