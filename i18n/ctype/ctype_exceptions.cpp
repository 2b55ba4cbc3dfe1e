#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>

#include "i18n/ctype/ctype_throw.hpp"
#include <qvi18n/i18n/ctype/detail/ctype_throw.hpp>

namespace fl {
namespace i18n {

CtypeExceptionBase::CtypeExceptionBase(const std::string& message)
    : message(message)
{ }

CtypeExceptionBase::~CtypeExceptionBase() { }

const char* CtypeExceptionBase::what() const noexcept
{
    return message.c_str();
}

CtypeInvalidArgument::CtypeInvalidArgument()
    : CtypeExceptionBase("Invalid argument error.")
{ }
CtypeInvalidArgument::~CtypeInvalidArgument() { }

CtypeInvalidCharacter::CtypeInvalidCharacter()
    : CtypeExceptionBase("Invalid character error.")
{ }
CtypeInvalidCharacter::~CtypeInvalidCharacter() { }

CtypeSizeTooLarge::CtypeSizeTooLarge()
    : CtypeExceptionBase("Data size too large.")
{ }
CtypeSizeTooLarge::~CtypeSizeTooLarge() { }

CtypeTransformFailure::CtypeTransformFailure()
    : CtypeExceptionBase("Transformation failure.")
{ }
CtypeTransformFailure::~CtypeTransformFailure() { }

CtypeStrCompFailure::CtypeStrCompFailure()
    : CtypeExceptionBase("String comparison failure.")
{ }
CtypeStrCompFailure::~CtypeStrCompFailure() { }

namespace lcctype {
namespace detail {

void throw_ctype_invalid_character_exception()
{
    i18n::detail::throw_ctype<CtypeInvalidCharacter>();
}

} // namespace detail
} // namespace lcctype
} // namespace i18n
} // namespace fl
