#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include "i18n/conversion/cvt_throw.hpp"

namespace fl {
namespace i18n {

namespace {

constexpr int escape_mask = 0x7F00;

bool failed(UErrorCode status)
{
    return status > U_ZERO_ERROR;
}

// ICU does not check for a null converter; with none, no call-back can be set.
UConverter* settable(const std::unique_ptr<UConverter, lcctype::converter_close>& converter)
{
    if (!converter)
        detail::throw_cvt<CvtCallBackSettingFailure>();
    return converter.get();
}

} // namespace

CvtCtx::CvtCtx(const std::string& encoding)
    : from_mode(call_back_default)
    , to_mode(call_back_default)
    , saved_from_action(nullptr)
    , saved_to_action(nullptr)
    , saved_from_context(nullptr)
    , saved_to_context(nullptr)
{
    open_converter(encoding);
}

CvtCtx::CvtCtx(std::unique_ptr<UConverter, lcctype::converter_close>& converter)
    : converter(std::move(converter))
    , from_mode(call_back_default)
    , to_mode(call_back_default)
    , saved_from_action(nullptr)
    , saved_to_action(nullptr)
    , saved_from_context(nullptr)
    , saved_to_context(nullptr)
{ }

// The converter goes with its call-backs; nothing is restored first.
CvtCtx::~CvtCtx() { }

void CvtCtx::open_converter(const std::string& encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    converter.reset(ucnv_open(encoding.c_str(), &status));
    if (failed(status)) {
        converter.reset();
        detail::throw_cvt<CvtInvalidEncodingName>(encoding);
    }
}

void CvtCtx::change_from_call_back(codecvt_call_back_mode mode, const std::string& substitution)
{
    // The old call-back goes first, so that a refused mode leaves the default in force.
    if (from_mode != call_back_default)
        reset_from_call_back();
    if (mode & escape_mask) {
        enable_escape_mode(mode);
        return;
    }
    switch (mode) {
    case call_back_default:
        return;
    case call_back_invalid_check:
        enable_from_invalid_check();
        return;
    case call_back_substitution:
        if (from_mode != call_back_default || substitution.empty())
            detail::throw_cvt<CvtInvalidArgument>();
        change_from_substitution(substitution);
        return;
    case call_back_unsupported:
        detail::throw_cvt<CvtNonSupportedMode>();
    default:
        detail::throw_cvt<CvtInvalidArgument>();
    }
}

void CvtCtx::enable_escape_mode(codecvt_call_back_mode mode)
{
    // The option strings of ICU's escape call-back; a combination of escape bits gets none.
    const char* option = nullptr;
    switch (mode) {
    case call_back_escape_java:
        option = UCNV_ESCAPE_JAVA;
        break;
    case call_back_escape_c:
        option = UCNV_ESCAPE_C;
        break;
    case call_back_escape_xml_dec:
        option = UCNV_ESCAPE_XML_DEC;
        break;
    case call_back_escape_xml_hex:
        option = UCNV_ESCAPE_XML_HEX;
        break;
    case call_back_escape_unicode:
        option = UCNV_ESCAPE_UNICODE;
        break;
    case call_back_escape_css2:
        option = UCNV_ESCAPE_CSS2;
        break;
    default:
        break;
    }
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(settable(converter), UCNV_FROM_U_CALLBACK_ESCAPE_WITH_INVISIBLE_CHARS, option,
        &saved_from_action, &saved_from_context, &status);
    if (failed(status))
        detail::throw_cvt<CvtCallBackSettingFailure>();
    from_mode = mode;
}

void CvtCtx::enable_from_invalid_check()
{
    if (from_mode == call_back_invalid_check)
        return;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(settable(converter), UCNV_FROM_U_CALLBACK_STOP_WITH_INVISIBLE_CHARS, nullptr,
        &saved_from_action, &saved_from_context, &status);
    if (failed(status))
        detail::throw_cvt<CvtCallBackSettingFailure>();
    from_mode = call_back_invalid_check;
}

void CvtCtx::change_from_substitution(const std::string& substitution)
{
    if (substitution.empty() || from_mode != call_back_default)
        detail::throw_cvt<CvtInvalidArgument>();
    const signed char length = lcctype::num_cast<signed char, unsigned long>(substitution.size());
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setSubstChars(settable(converter), substitution.data(), length, &status);
    if (failed(status))
        detail::throw_cvt<CvtCallBackSettingFailure>();
}

void CvtCtx::reset_from_call_back()
{
    if (from_mode == call_back_default)
        return;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(
        settable(converter), saved_from_action, saved_from_context, nullptr, nullptr, &status);
    if (failed(status))
        detail::throw_cvt<CvtCallBackSettingFailure>();
    saved_from_action = nullptr;
    saved_from_context = nullptr;
    from_mode = call_back_default;
}

void CvtCtx::change_to_call_back(codecvt_call_back_mode mode)
{
    if (to_mode != call_back_default)
        reset_to_call_back();
    if (mode == call_back_invalid_check) {
        enable_to_invalid_check();
        return;
    }
    if (mode & escape_mask)
        detail::throw_cvt<CvtNonSupportedMode>();
    if (mode == call_back_default)
        return;
    if (mode == call_back_substitution || mode == call_back_unsupported)
        detail::throw_cvt<CvtNonSupportedMode>();
    detail::throw_cvt<CvtInvalidArgument>();
}

void CvtCtx::enable_to_invalid_check()
{
    if (to_mode == call_back_invalid_check)
        return;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(
        settable(converter), UCNV_TO_U_CALLBACK_STOP, nullptr, &saved_to_action, &saved_to_context, &status);
    if (failed(status))
        detail::throw_cvt<CvtCallBackSettingFailure>();
    to_mode = call_back_invalid_check;
}

void CvtCtx::reset_to_call_back()
{
    if (to_mode == call_back_default)
        return;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(settable(converter), saved_to_action, saved_to_context, nullptr, nullptr, &status);
    if (failed(status))
        detail::throw_cvt<CvtCallBackSettingFailure>();
    saved_to_action = nullptr;
    saved_to_context = nullptr;
    to_mode = call_back_default;
}

std::string& CvtCtx::get_cvt_name(std::string& name) const
{
    if (!converter)
        return name;
    UErrorCode status = U_ZERO_ERROR;
    const char* icu_name = ucnv_getName(converter.get(), &status);
    if (!failed(status) && icu_name)
        name = icu_name;
    return name;
}

std::string CvtCtx::get_std_encoding_name(const std::string& name) const
{
    if (name.empty())
        return std::string();
    static const char* const standards[] = {"MIME", "IANA", "WINDOWS"};
    for (const char* standard : standards) {
        UErrorCode status = U_ZERO_ERROR;
        if (const char* found = ucnv_getStandardName(name.c_str(), standard, &status))
            return found;
    }
    return std::string();
}

const std::string& CvtCtx::get_encoding() const
{
    if (!std_encoding_name.empty())
        return std_encoding_name;
    if (!converter)
        return empty_name;
    if (cvt_name.empty())
        get_cvt_name(cvt_name);
    std_encoding_name = get_std_encoding_name(cvt_name);
    if (std_encoding_name.empty())
        std_encoding_name = cvt_name;
    return std_encoding_name;
}

long CvtCtx::get_max_byte_size() const
{
    if (!converter)
        return 0;
    // ICU counts one UTF-16 unit at a time and says 3 for UTF-8; a supplementary character takes 4.
    if (get_encoding() == "UTF-8")
        return 4;
    return static_cast<signed char>(ucnv_getMaxCharSize(converter.get()));
}

} // namespace i18n
} // namespace fl
