#ifndef QVI18N_I18N_CONVERSION_CODECVT_FIXED_HPP
#define QVI18N_I18N_CONVERSION_CODECVT_FIXED_HPP

// Converters whose encoding is fixed by the class: ASCII, modified UTF-8 and UTF-32 in wchar_t.
// None holds an ICU converter, so any of them may be shared between threads.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include <string>

namespace fl {
namespace i18n {
namespace lcctype {

// Whole-buffer conversions on ICU's direct string functions. Each returns the size of the whole
// result in destination units, also when `destination` is too small for it; a length above
// 0x7FFFFFFF throws CvtSizeTooLarge.

/// Modified UTF-8: U+0000 as C0 80, each surrogate on its own; nothing is substituted.
QVI18N_API unsigned long conversion_to_modified_utf8(
    char* destination, unsigned long destination_size, const char16_t* source, unsigned long length);
/// Invalid bytes become U+FFFD.
QVI18N_API unsigned long conversion_from_modified_utf8(
    char16_t* destination, unsigned long destination_size, const char* source, unsigned long length);
/// An unpaired surrogate becomes the byte 0x1A (SUB), not U+FFFD.
QVI18N_API unsigned long conversion_to_utf8(
    char* destination, unsigned long destination_size, const char16_t* source, unsigned long length);
/// Invalid bytes become U+FFFD.
QVI18N_API unsigned long conversion_from_utf8(
    char16_t* destination, unsigned long destination_size, const char* source, unsigned long length);
/// A surrogate or a value beyond U+10FFFF becomes U+FFFD.
QVI18N_API unsigned long conversion_from_utf32(
    char16_t* destination, unsigned long destination_size, const char32_t* source, unsigned long length);

} // namespace lcctype

/// UTF-16 to ASCII. With `allow_invalid` a unit at 0x80 or above becomes the byte 0xFF; without
/// it, it raises CvtInvalidCharacter. Writing into a buffer returns the count written.
class QVI18N_API codecvt_ustring_to_ascii : public converter<char, char16_t> {
public:
    explicit codecvt_ustring_to_ascii(bool allow_invalid = false)
        : allow_invalid(allow_invalid)
    { }
    ~codecvt_ustring_to_ascii() override;

    unsigned long do_get_destination_size(const char16_t* source, unsigned long length) const override;
    std::string do_convert(const char16_t* source, unsigned long length) const override;
    /// Converts the smaller of `destination_size` and `length` units and returns that count.
    unsigned long do_convert(char* destination, unsigned long destination_size, const char16_t* source,
        unsigned long length) const override;

private:
    const bool allow_invalid;
};

/// ASCII to UTF-16. With `allow_invalid` a byte at 0x80 or above becomes U+FFFD; without it, it
/// raises CvtInvalidCharacter. Writing into a buffer returns the count written.
class QVI18N_API codecvt_ascii_to_ustring : public converter<char16_t, char> {
public:
    explicit codecvt_ascii_to_ustring(bool allow_invalid = false)
        : allow_invalid(allow_invalid)
    { }
    ~codecvt_ascii_to_ustring() override;

    unsigned long do_get_destination_size(const char* source, unsigned long length) const override;
    ustring do_convert(const char* source, unsigned long length) const override;
    unsigned long do_convert(char16_t* destination, unsigned long destination_size, const char* source,
        unsigned long length) const override;

private:
    const bool allow_invalid;
};

/// UTF-16 to the modified UTF-8 of the Java virtual machine.
class QVI18N_API codecvt_ustring_to_modified_utf8 : public converter<char, char16_t> {
public:
    codecvt_ustring_to_modified_utf8() { }
    ~codecvt_ustring_to_modified_utf8() override;

    unsigned long do_get_destination_size(const char16_t* source, unsigned long length) const override;
    std::string do_convert(const char16_t* source, unsigned long length) const override;
    unsigned long do_convert(char* destination, unsigned long destination_size, const char16_t* source,
        unsigned long length) const override;
};

/// Modified UTF-8 to UTF-16; invalid bytes become U+FFFD.
class QVI18N_API codecvt_modified_utf8_to_ustring : public converter<char16_t, char> {
public:
    codecvt_modified_utf8_to_ustring() { }
    ~codecvt_modified_utf8_to_ustring() override;

    unsigned long do_get_destination_size(const char* source, unsigned long length) const override;
    ustring do_convert(const char* source, unsigned long length) const override;
    unsigned long do_convert(char16_t* destination, unsigned long destination_size, const char* source,
        unsigned long length) const override;
};

/// UTF-16 to UTF-32 in wchar_t; an unpaired surrogate becomes U+FFFD.
class QVI18N_API codecvt_ustring_to_wstring : public converter<wchar_t, char16_t> {
public:
    codecvt_ustring_to_wstring() { }
    ~codecvt_ustring_to_wstring() override;

    unsigned long do_get_destination_size(const char16_t* source, unsigned long length) const override;
    std::wstring do_convert(const char16_t* source, unsigned long length) const override;
    unsigned long do_convert(wchar_t* destination, unsigned long destination_size, const char16_t* source,
        unsigned long length) const override;
};

/// UTF-32 in wchar_t to UTF-16; a surrogate or a value beyond U+10FFFF becomes U+FFFD.
class QVI18N_API codecvt_wstring_to_ustring : public converter<char16_t, wchar_t> {
public:
    codecvt_wstring_to_ustring() { }
    ~codecvt_wstring_to_ustring() override;

    unsigned long do_get_destination_size(const wchar_t* source, unsigned long length) const override;
    ustring do_convert(const wchar_t* source, unsigned long length) const override;
    unsigned long do_convert(char16_t* destination, unsigned long destination_size, const wchar_t* source,
        unsigned long length) const override;
};

} // namespace i18n
} // namespace fl

#endif
