#ifndef QVI18N_I18N_CONVERSION_CONVERTER_HPP
#define QVI18N_I18N_CONVERSION_CONVERTER_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/noncopyable.hpp>

#include <cstdint>
#include <exception>
#include <string>

namespace fl {
namespace i18n {

/// The conversion interface that every conversion class implements. Sizes are in units of the
/// character types, never bytes. The operations are const but an implementation may drive an
/// ICU converter, so one object serves one thread at a time.
template <typename To, typename From> class QVI18N_API converter : private boost::noncopyable {
public:
    typedef To to_char_type;
    typedef From from_char_type;

    virtual ~converter() { }

    /// Units of To that converting `length` units of `source` yields, no terminator counted.
    unsigned long get_destination_size(const From* source, unsigned long length) const
    {
        return do_get_destination_size(source, length);
    }

    std::basic_string<To> convert(const From* source, unsigned long length) const
    {
        return do_convert(source, length);
    }

    /// Converts into the caller's buffer and returns the size the whole result needs (the ASCII
    /// converters return the count written instead); a result above `destination_size` means that
    /// the buffer was too small.
    unsigned long convert(
        To* destination, unsigned long destination_size, const From* source, unsigned long length) const
    {
        return do_convert(destination, destination_size, source, length);
    }

    // The operations to override. They are public as well, so that a caller holding a concrete
    // converter may call them directly.
    virtual unsigned long do_get_destination_size(const From* source, unsigned long length) const = 0;
    virtual std::basic_string<To> do_convert(const From* source, unsigned long length) const = 0;
    virtual unsigned long do_convert(
        To* destination, unsigned long destination_size, const From* source, unsigned long length) const = 0;

protected:
    converter() { }
};

extern template class converter<char, char16_t>;
extern template class converter<char16_t, char>;
extern template class converter<wchar_t, char16_t>;
extern template class converter<char16_t, wchar_t>;

/// Base of the conversion failures; `get_code()` tells them apart.
class QVI18N_API CvtExceptionBase : public std::exception {
public:
    virtual ~CvtExceptionBase() = 0;
    const char* what() const noexcept override;
    std::int32_t get_code() const noexcept { return code; }

protected:
    CvtExceptionBase(const std::string& message, std::int32_t code);

private:
    std::string message;
    std::int32_t code;
};

/// Code 1, "fl:i18n:CvtInvalidArgument": an unknown call-back mode or an empty substitution.
class QVI18N_API CvtInvalidArgument : public CvtExceptionBase {
public:
    CvtInvalidArgument();
    ~CvtInvalidArgument() override;
};

/// Code 2, "Invalid encoding name specified.": ICU could not open the encoding.
class QVI18N_API CvtInvalidEncodingName : public CvtExceptionBase {
public:
    explicit CvtInvalidEncodingName(const std::string& encoding_name = std::string());
    ~CvtInvalidEncodingName() override;
    const std::string& get_encoding_name() const noexcept { return encoding_name; }

private:
    std::string encoding_name;
};

/// Code 3, "fl:i18n:CvtCallBackSettingFailure".
class QVI18N_API CvtCallBackSettingFailure : public CvtExceptionBase {
public:
    CvtCallBackSettingFailure();
    ~CvtCallBackSettingFailure() override;
};

/// Code 4, "fl:i18n:CvtNonSupportedMode".
class QVI18N_API CvtNonSupportedMode : public CvtExceptionBase {
public:
    CvtNonSupportedMode();
    ~CvtNonSupportedMode() override;
};

/// Code 5, "Invalid character code sequence detected.": only converters set to check raise it.
class QVI18N_API CvtInvalidCharacter : public CvtExceptionBase {
public:
    CvtInvalidCharacter();
    ~CvtInvalidCharacter() override;
};

/// Code 6, "Data size too large for character code conversion.".
class QVI18N_API CvtSizeTooLarge : public CvtExceptionBase {
public:
    CvtSizeTooLarge();
    ~CvtSizeTooLarge() override;
};

/// Code 7, "Failed to convert character code.".
class QVI18N_API CvtConversionFailure : public CvtExceptionBase {
public:
    CvtConversionFailure();
    ~CvtConversionFailure() override;
};

/// Default conversions: the encoding of the global locale at the first such call in the process,
/// on a private clone of one master converter per call. Invalid input is substituted.
QVI18N_API std::string to_string(const ustring& source);
QVI18N_API ustring to_ustring(const std::string& source);
/// A null pointer gives an empty result.
QVI18N_API ustring to_ustring(const char* source);

/// Conversions through a given converter; an empty source never reaches it.
QVI18N_API std::string to_string(const ustring& source, const converter<char, char16_t>& cvt);
QVI18N_API ustring to_ustring(const std::string& source, const converter<char16_t, char>& cvt);
QVI18N_API ustring to_ustring(const char* source, const converter<char16_t, char>& cvt);

/// Wide text is UTF-32 here; an unpaired surrogate or a value beyond U+10FFFF becomes U+FFFD.
QVI18N_API std::wstring to_wstring(const ustring& source);
QVI18N_API ustring to_ustring(const std::wstring& source);
QVI18N_API ustring to_ustring(const wchar_t* source);

} // namespace i18n
} // namespace fl

#endif
