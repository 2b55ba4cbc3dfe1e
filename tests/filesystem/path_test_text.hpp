#ifndef QVI18N_TESTS_FILESYSTEM_PATH_TEST_TEXT_HPP
#define QVI18N_TESTS_FILESYSTEM_PATH_TEST_TEXT_HPP

// Text helpers for the path and converter tests. GoogleTest prints std::u16string by itself, so
// these tests do without the shared printer (which clashes with it).

#include <unicode/ustring.h>

#include <cstdint>
#include <string>

namespace pathtest {

inline std::u16string u16(const char16_t* s)
{
    return std::u16string(s);
}

inline std::u16string u16(const char* ascii)
{
    std::u16string out;
    for (; *ascii; ++ascii)
        out += static_cast<char16_t>(static_cast<unsigned char>(*ascii));
    return out;
}

// Expectations are built with ICU called directly, not through the code under test.
inline std::u16string utf8_to_utf16(const std::string& utf8)
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8WithSub(
        nullptr, 0, &length, utf8.data(), static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr, &status);
    std::u16string out(static_cast<std::size_t>(length), u'\0');
    status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(
        &out[0], length, nullptr, utf8.data(), static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr, &status);
    return out;
}

inline std::string utf16_to_utf8(const std::u16string& utf16)
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8WithSub(
        nullptr, 0, &length, utf16.data(), static_cast<int32_t>(utf16.size()), 0x1A, nullptr, &status);
    std::string out(static_cast<std::size_t>(length), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8WithSub(
        &out[0], length, nullptr, utf16.data(), static_cast<int32_t>(utf16.size()), 0x1A, nullptr, &status);
    return out;
}

// Reproducible text of `length` units mixing ASCII, Latin, CJK and supplementary characters.
inline std::u16string random_unicode(std::uint32_t seed, std::size_t length)
{
    std::uint64_t state = seed ? seed : 1;
    auto next = [&state]() {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<std::uint32_t>(state >> 33);
    };
    std::u16string out;
    out.reserve(length);
    while (out.size() < length) {
        const std::uint32_t pick = next() % 4;
        if (pick == 0)
            out += static_cast<char16_t>(0x21 + next() % 0x5E);
        else if (pick == 1)
            out += static_cast<char16_t>(0xC0 + next() % 0x100);
        else if (pick == 2)
            out += static_cast<char16_t>(0x4E00 + next() % 0x5000);
        else if (out.size() + 2 <= length) {
            const std::uint32_t cp = 0x1F300 + next() % 0x300;
            out += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
        }
    }
    return out;
}

} // namespace pathtest

#endif
