#include <qvi18n/filesystem/converters.hpp>

#include <qvi18n/i18n/conversion/converter.hpp>

#include "filesystem/conversion_buffer.hpp"

#include <unicode/ustring.h>

namespace fl {
namespace filesystem {
namespace detail {

namespace {

const unsigned long max_icu_length = 0x7FFFFFFFUL;

// ICU takes 32-bit signed lengths; anything larger is a name no system would take.
inline int checked_length(unsigned long value)
{
    if (value > max_icu_length)
        throw fl::i18n::MakeException(FileNameTooLarge());
    return static_cast<int>(value);
}

inline unsigned long checked_result(int value)
{
    if (value < 0)
        throw fl::i18n::MakeException(FileNameTooLarge());
    return static_cast<unsigned long>(value);
}

} // namespace

template <class T> void map_codecvt_exception(UErrorCode e, unsigned long n)
{
    if (e <= U_ZERO_ERROR || e == U_BUFFER_OVERFLOW_ERROR)
        return;
    // A huge input is blamed on its size, whatever ICU made of it.
    if (n >= 0x80000000UL)
        throw fl::i18n::MakeException(FileNameTooLarge());
    if (e == U_INVALID_CHAR_FOUND || e == U_ILLEGAL_CHAR_FOUND)
        throw fl::i18n::MakeException(CvtInvalidCharacter());
    throw fl::i18n::MakeException(FileNameConversionFailure(7));
}

template QVI18N_API void map_codecvt_exception<char>(UErrorCode, unsigned long);
template QVI18N_API void map_codecvt_exception<char16_t>(UErrorCode, unsigned long);

unsigned long conversion_to_utf8(char* d, unsigned long cap, const char16_t* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8WithSub(d, icu_cap, &length, s, icu_n, 0x1A, nullptr, &status);
    map_codecvt_exception<char16_t>(status, n);
    return checked_result(length);
}

unsigned long conversion_from_utf8(char16_t* d, unsigned long cap, const char* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8WithSub(d, icu_cap, &length, s, icu_n, 0xFFFD, nullptr, &status);
    map_codecvt_exception<char>(status, n);
    return checked_result(length);
}

unsigned long conversion_from_uchar(
    UConverter* c, char* d, unsigned long cap, const char16_t* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(c, d, icu_cap, s, icu_n, &status);
    map_codecvt_exception<char16_t>(status, n);
    return checked_result(length);
}

unsigned long conversion_to_utf16(
    UConverter* c, char16_t* d, unsigned long cap, const char* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(c, d, icu_cap, s, icu_n, &status);
    map_codecvt_exception<char>(status, n);
    return checked_result(length);
}

std::string to_filesystem(const fl::i18n::ustring& p)
{
    if (p.empty())
        return std::string();
    return convert_whole<char>(p.data(), p.size(), &conversion_to_utf8);
}

fl::i18n::ustring from_filesystem(const std::string& p)
{
    if (p.empty())
        return fl::i18n::ustring();
    return convert_whole<char16_t>(p.data(), p.size(), &conversion_from_utf8);
}

std::string make_native_access_form(const fl::i18n::ustring& p)
{
    return to_filesystem(p);
}

std::string make_native_access_form(
    const fl::i18n::ustring& p, const fl::i18n::converter<char, char16_t>& cvt)
{
    if (p.empty())
        return std::string();
    return cvt.convert(p.data(), p.size());
}

std::string make_native_access_form_with_cleanup(const fl::i18n::ustring& p)
{
    return to_filesystem(make_native_form(p, true));
}

std::string make_native_access_form_with_cleanup(
    const fl::i18n::ustring& p, const fl::i18n::converter<char, char16_t>& cvt)
{
    const fl::i18n::ustring native = make_native_form(p, true);
    if (native.empty())
        return std::string();
    return cvt.convert(native.data(), native.size());
}

} // namespace detail
} // namespace filesystem
} // namespace fl
