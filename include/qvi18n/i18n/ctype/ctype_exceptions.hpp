#ifndef QVI18N_I18N_CTYPE_CTYPE_EXCEPTIONS_HPP
#define QVI18N_I18N_CTYPE_CTYPE_EXCEPTIONS_HPP

#include <qvi18n/config.hpp>

#include <exception>
#include <string>

namespace fl {
namespace i18n {

/// Base of the character-handling failures. Unlike the conversion failures they carry no code:
/// the class tells them apart.
class QVI18N_API CtypeExceptionBase : public std::exception {
public:
    virtual ~CtypeExceptionBase() = 0;
    const char* what() const noexcept override;

protected:
    explicit CtypeExceptionBase(const std::string& message);

private:
    std::string message;
};

/// "Invalid argument error.": a mode mask out of range.
class QVI18N_API CtypeInvalidArgument : public CtypeExceptionBase {
public:
    CtypeInvalidArgument();
    ~CtypeInvalidArgument() override;
};

/// "Invalid character error.".
class QVI18N_API CtypeInvalidCharacter : public CtypeExceptionBase {
public:
    CtypeInvalidCharacter();
    ~CtypeInvalidCharacter() override;
};

/// "Data size too large.": a length of 0x40000000 units or more.
class QVI18N_API CtypeSizeTooLarge : public CtypeExceptionBase {
public:
    CtypeSizeTooLarge();
    ~CtypeSizeTooLarge() override;
};

/// "Transformation failure.": ICU could not case-map or normalise a text.
class QVI18N_API CtypeTransformFailure : public CtypeExceptionBase {
public:
    CtypeTransformFailure();
    ~CtypeTransformFailure() override;
};

/// "String comparison failure.": ICU could not compare two texts.
class QVI18N_API CtypeStrCompFailure : public CtypeExceptionBase {
public:
    CtypeStrCompFailure();
    ~CtypeStrCompFailure() override;
};

} // namespace i18n
} // namespace fl

#endif
