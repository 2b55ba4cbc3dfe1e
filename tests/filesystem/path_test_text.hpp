#ifndef QVI18N_TESTS_FILESYSTEM_PATH_TEST_TEXT_HPP
#define QVI18N_TESTS_FILESYSTEM_PATH_TEST_TEXT_HPP

// Text helpers for the path and converter tests. Expectations are built with ICU called directly,
// not through the code under test, and substitute as ICU does (U+FFFD for bad UTF-8, 0x1A for a
// lone surrogate), which the hand-written ones of qvtest/text.hpp do not.

#include <unicode/ustring.h>

#include <string>

namespace pathtest {

inline std::u16string u16(const char16_t* s)
{
    return std::u16string(s);
}

inline std::u16string u16(const char* ascii)
{
    return std::u16string(ascii, ascii + std::char_traits<char>::length(ascii));
}

inline std::u16string utf8_to_utf16(const std::string& utf8)
{
    std::u16string out(utf8.size(), u'\0');
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8WithSub(&out[0], static_cast<int32_t>(out.size()), &length, utf8.data(),
        static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr, &status);
    out.resize(static_cast<std::size_t>(length));
    return out;
}

inline std::string utf16_to_utf8(const std::u16string& utf16)
{
    std::string out(utf16.size() * 3, '\0');
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8WithSub(&out[0], static_cast<int32_t>(out.size()), &length, utf16.data(),
        static_cast<int32_t>(utf16.size()), 0x1A, nullptr, &status);
    out.resize(static_cast<std::size_t>(length));
    return out;
}

} // namespace pathtest

#endif
