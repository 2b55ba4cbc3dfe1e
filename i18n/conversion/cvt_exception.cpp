#include <qvi18n/i18n/conversion/converter.hpp>

namespace fl {
namespace i18n {

template class converter<char, char16_t>;
template class converter<char16_t, char>;
template class converter<wchar_t, char16_t>;
template class converter<char16_t, wchar_t>;

CvtExceptionBase::CvtExceptionBase(const std::string& message, std::int32_t code)
    : message(message)
    , code(code)
{ }

CvtExceptionBase::~CvtExceptionBase() { }

const char* CvtExceptionBase::what() const noexcept
{
    return message.c_str();
}

CvtInvalidArgument::CvtInvalidArgument()
    : CvtExceptionBase("fl:i18n:CvtInvalidArgument", 1)
{ }
CvtInvalidArgument::~CvtInvalidArgument() { }

CvtInvalidEncodingName::CvtInvalidEncodingName(const std::string& encoding_name)
    : CvtExceptionBase("Invalid encoding name specified.", 2)
    , encoding_name(encoding_name)
{ }
CvtInvalidEncodingName::~CvtInvalidEncodingName() { }

CvtCallBackSettingFailure::CvtCallBackSettingFailure()
    : CvtExceptionBase("fl:i18n:CvtCallBackSettingFailure", 3)
{ }
CvtCallBackSettingFailure::~CvtCallBackSettingFailure() { }

CvtNonSupportedMode::CvtNonSupportedMode()
    : CvtExceptionBase("fl:i18n:CvtNonSupportedMode", 4)
{ }
CvtNonSupportedMode::~CvtNonSupportedMode() { }

CvtInvalidCharacter::CvtInvalidCharacter()
    : CvtExceptionBase("Invalid character code sequence detected.", 5)
{ }
CvtInvalidCharacter::~CvtInvalidCharacter() { }

CvtSizeTooLarge::CvtSizeTooLarge()
    : CvtExceptionBase("Data size too large for character code conversion.", 6)
{ }
CvtSizeTooLarge::~CvtSizeTooLarge() { }

CvtConversionFailure::CvtConversionFailure()
    : CvtExceptionBase("Failed to convert character code.", 7)
{ }
CvtConversionFailure::~CvtConversionFailure() { }

} // namespace i18n
} // namespace fl
