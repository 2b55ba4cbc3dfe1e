#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include "i18n/conversion/cvt_throw.hpp"

#include <unicode/ustring.h>

#include <cwchar>

static_assert(sizeof(wchar_t) == sizeof(UChar32), "wchar_t is taken to hold UTF-32");

namespace fl {
namespace i18n {
namespace lcctype {

namespace {

constexpr UChar32 replacement_character = 0xFFFD;
// Towards UTF-8 an unpaired surrogate becomes SUB, which stays one byte and marks the damage.
constexpr UChar32 utf8_substitute = 0x1A;

// The common frame of the whole-buffer primitives: checked lengths, one ICU call, overflow
// tolerated, the full size returned.
template <typename SourceUnit, typename Call>
unsigned long whole_buffer(unsigned long destination_size, unsigned long length, Call call)
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t result_length = 0;
    const int32_t capacity = num_cast<int, unsigned long>(destination_size);
    const int32_t source_length = num_cast<int, unsigned long>(length);
    call(capacity, source_length, &result_length, &status);
    map_codecvt_exception<SourceUnit>(status, length);
    return num_cast<unsigned long, int>(result_length);
}

} // namespace

unsigned long conversion_to_modified_utf8(
    char* destination, unsigned long destination_size, const char16_t* source, unsigned long length)
{
    return whole_buffer<char16_t>(
        destination_size, length, [&](int32_t cap, int32_t n, int32_t* out, UErrorCode* st) {
            u_strToJavaModifiedUTF8(destination, cap, out, source, n, st);
        });
}

unsigned long conversion_from_modified_utf8(
    char16_t* destination, unsigned long destination_size, const char* source, unsigned long length)
{
    return whole_buffer<char>(
        destination_size, length, [&](int32_t cap, int32_t n, int32_t* out, UErrorCode* st) {
            u_strFromJavaModifiedUTF8WithSub(
                destination, cap, out, source, n, replacement_character, nullptr, st);
        });
}

unsigned long conversion_to_utf8(
    char* destination, unsigned long destination_size, const char16_t* source, unsigned long length)
{
    return whole_buffer<char16_t>(
        destination_size, length, [&](int32_t cap, int32_t n, int32_t* out, UErrorCode* st) {
            u_strToUTF8WithSub(destination, cap, out, source, n, utf8_substitute, nullptr, st);
        });
}

unsigned long conversion_from_utf8(
    char16_t* destination, unsigned long destination_size, const char* source, unsigned long length)
{
    return whole_buffer<char>(
        destination_size, length, [&](int32_t cap, int32_t n, int32_t* out, UErrorCode* st) {
            u_strFromUTF8WithSub(destination, cap, out, source, n, replacement_character, nullptr, st);
        });
}

unsigned long conversion_from_utf32(
    char16_t* destination, unsigned long destination_size, const char32_t* source, unsigned long length)
{
    return whole_buffer<char32_t>(
        destination_size, length, [&](int32_t cap, int32_t n, int32_t* out, UErrorCode* st) {
            u_strFromUTF32WithSub(destination, cap, out, reinterpret_cast<const UChar32*>(source), n,
                replacement_character, nullptr, st);
        });
}

} // namespace lcctype

namespace {

// UTF-16 to UTF-32 into wchar_t, for the measuring call (null destination) and the converting one.
unsigned long to_utf32(
    wchar_t* destination, unsigned long destination_size, const char16_t* source, unsigned long length)
{
    return lcctype::whole_buffer<char16_t>(
        destination_size, length, [&](int32_t cap, int32_t n, int32_t* out, UErrorCode* st) {
            u_strToUTF32WithSub(reinterpret_cast<UChar32*>(destination), cap, out, source, n,
                lcctype::replacement_character, nullptr, st);
        });
}

std::wstring to_wide(const char16_t* source, unsigned long length)
{
    const unsigned long needed = to_utf32(nullptr, 0, source, length);
    std::wstring result(needed, L'\0');
    if (needed != 0)
        to_utf32(&result[0], needed, source, length);
    return result;
}

} // namespace

std::wstring to_wstring(const ustring& source)
{
    if (source.empty())
        return std::wstring();
    return to_wide(source.data(), source.size());
}

ustring to_ustring(const std::wstring& source)
{
    if (source.empty())
        return ustring();
    return lcctype::convert_to_string_utf<char16_t, char32_t>(
        reinterpret_cast<const char32_t*>(source.data()), source.size(), &lcctype::conversion_from_utf32);
}

ustring to_ustring(const wchar_t* source)
{
    if (!source || *source == L'\0')
        return ustring();
    return lcctype::convert_to_string_utf<char16_t, char32_t>(
        reinterpret_cast<const char32_t*>(source), std::wcslen(source), &lcctype::conversion_from_utf32);
}

// ASCII

codecvt_ustring_to_ascii::~codecvt_ustring_to_ascii() { }

unsigned long codecvt_ustring_to_ascii::do_get_destination_size(
    const char16_t* source, unsigned long length) const
{
    if (!source || length == 0)
        return 0;
    if (!allow_invalid) {
        for (unsigned long i = 0; i < length; ++i) {
            if (source[i] >= 0x80)
                detail::throw_cvt<CvtInvalidCharacter>();
        }
    }
    return length;
}

std::string codecvt_ustring_to_ascii::do_convert(const char16_t* source, unsigned long length) const
{
    if (!source || length == 0)
        return std::string();
    std::string result(length, '\0');
    do_convert(&result[0], length, source, length);
    return result;
}

unsigned long codecvt_ustring_to_ascii::do_convert(
    char* destination, unsigned long destination_size, const char16_t* source, unsigned long length) const
{
    if (!destination || !source)
        return 0;
    const unsigned long count = destination_size < length ? destination_size : length;
    for (unsigned long i = 0; i < count; ++i) {
        const char16_t unit = source[i];
        if (unit < 0x80) {
            destination[i] = static_cast<char>(unit);
        } else if (allow_invalid) {
            destination[i] = static_cast<char>(0xFF);
        } else {
            detail::throw_cvt<CvtInvalidCharacter>();
        }
    }
    return count;
}

codecvt_ascii_to_ustring::~codecvt_ascii_to_ustring() { }

unsigned long codecvt_ascii_to_ustring::do_get_destination_size(
    const char* source, unsigned long length) const
{
    if (!source || length == 0)
        return 0;
    if (!allow_invalid) {
        for (unsigned long i = 0; i < length; ++i) {
            if (static_cast<unsigned char>(source[i]) >= 0x80)
                detail::throw_cvt<CvtInvalidCharacter>();
        }
    }
    return length;
}

ustring codecvt_ascii_to_ustring::do_convert(const char* source, unsigned long length) const
{
    if (!source || length == 0)
        return ustring();
    ustring result(length, u'\0');
    do_convert(&result[0], length, source, length);
    return result;
}

unsigned long codecvt_ascii_to_ustring::do_convert(
    char16_t* destination, unsigned long destination_size, const char* source, unsigned long length) const
{
    if (!destination || !source)
        return 0;
    const unsigned long count = destination_size < length ? destination_size : length;
    for (unsigned long i = 0; i < count; ++i) {
        const unsigned char byte = static_cast<unsigned char>(source[i]);
        if (byte < 0x80) {
            destination[i] = byte;
        } else if (allow_invalid) {
            destination[i] = u'\uFFFD';
        } else {
            detail::throw_cvt<CvtInvalidCharacter>();
        }
    }
    return count;
}

// Modified UTF-8

codecvt_ustring_to_modified_utf8::~codecvt_ustring_to_modified_utf8() { }

unsigned long codecvt_ustring_to_modified_utf8::do_get_destination_size(
    const char16_t* source, unsigned long length) const
{
    return lcctype::conversion_to_modified_utf8(nullptr, 0, source, length);
}

std::string codecvt_ustring_to_modified_utf8::do_convert(const char16_t* source, unsigned long length) const
{
    return lcctype::convert_to_string_utf<char, char16_t>(
        source, length, &lcctype::conversion_to_modified_utf8);
}

unsigned long codecvt_ustring_to_modified_utf8::do_convert(
    char* destination, unsigned long destination_size, const char16_t* source, unsigned long length) const
{
    return lcctype::conversion_to_modified_utf8(destination, destination_size, source, length);
}

codecvt_modified_utf8_to_ustring::~codecvt_modified_utf8_to_ustring() { }

unsigned long codecvt_modified_utf8_to_ustring::do_get_destination_size(
    const char* source, unsigned long length) const
{
    return lcctype::conversion_from_modified_utf8(nullptr, 0, source, length);
}

ustring codecvt_modified_utf8_to_ustring::do_convert(const char* source, unsigned long length) const
{
    return lcctype::convert_to_string_utf<char16_t, char>(
        source, length, &lcctype::conversion_from_modified_utf8);
}

unsigned long codecvt_modified_utf8_to_ustring::do_convert(
    char16_t* destination, unsigned long destination_size, const char* source, unsigned long length) const
{
    return lcctype::conversion_from_modified_utf8(destination, destination_size, source, length);
}

// Wide

codecvt_ustring_to_wstring::~codecvt_ustring_to_wstring() { }

unsigned long codecvt_ustring_to_wstring::do_get_destination_size(
    const char16_t* source, unsigned long length) const
{
    return to_utf32(nullptr, 0, source, length);
}

std::wstring codecvt_ustring_to_wstring::do_convert(const char16_t* source, unsigned long length) const
{
    return to_wide(source, length);
}

unsigned long codecvt_ustring_to_wstring::do_convert(
    wchar_t* destination, unsigned long destination_size, const char16_t* source, unsigned long length) const
{
    return to_utf32(destination, destination_size, source, length);
}

codecvt_wstring_to_ustring::~codecvt_wstring_to_ustring() { }

unsigned long codecvt_wstring_to_ustring::do_get_destination_size(
    const wchar_t* source, unsigned long length) const
{
    return lcctype::conversion_from_utf32(nullptr, 0, reinterpret_cast<const char32_t*>(source), length);
}

ustring codecvt_wstring_to_ustring::do_convert(const wchar_t* source, unsigned long length) const
{
    return lcctype::convert_to_string_utf<char16_t, char32_t>(
        reinterpret_cast<const char32_t*>(source), length, &lcctype::conversion_from_utf32);
}

unsigned long codecvt_wstring_to_ustring::do_convert(
    char16_t* destination, unsigned long destination_size, const wchar_t* source, unsigned long length) const
{
    return lcctype::conversion_from_utf32(
        destination, destination_size, reinterpret_cast<const char32_t*>(source), length);
}

} // namespace i18n
} // namespace fl
