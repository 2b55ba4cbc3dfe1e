#ifndef QVTEST_TEXT_HPP
#define QVTEST_TEXT_HPP

#include <cstdint>
#include <string>

namespace qvtest {

// UTF-16 literal helper: u16(u"...") or u16("ascii only").
inline std::u16string u16(char16_t const* s)
{
    return std::u16string(s);
}
std::u16string u16(char const* ascii);

// UTF-8 <-> UTF-16 for building expectations (no dependency on the code under test).
std::u16string utf8_to_utf16(std::string const& utf8);
std::string utf16_to_utf8(std::u16string const& utf16);
// The short spelling tests use for text and path names written in UTF-8.
inline std::u16string u(std::string const& utf8)
{
    return utf8_to_utf16(utf8);
}

// "0041 00e9 d83d de00" — readable failure messages for UTF-16 text.
std::string hex_dump(std::u16string const& s, std::size_t max_units = 64);
// "41 c3 a9" — the same for bytes.
std::string hex_dump(std::string const& s, std::size_t max_bytes = 64);

// A seeded, reproducible random text generator for differential tests.
class random_text {
public:
    explicit random_text(std::uint32_t seed)
        : state_(seed ? seed : 1u)
    { }
    std::uint32_t next();
    // length UTF-16 units mixing ASCII, Latin, BMP CJK and supplementary characters;
    // a surrogate pair never straddles the end.
    std::u16string unicode(std::size_t length);
    // length random bytes.
    std::string bytes(std::size_t length);

    // Well-formed text for UTF-8 conversions: ASCII runs of random length between characters
    // of two, three and four UTF-8 bytes, boundary code points among them. Exactly `length`
    // units (bytes for UTF-8); a character that would not fit is replaced by ASCII.
    std::u16string utf16_mixed(std::size_t length);
    std::string utf8_mixed(std::size_t length);
    // Overwrites `count` places with ill-formed pieces, the length unchanged: for UTF-8 overlong
    // forms, encoded surrogates, values beyond U+10FFFF, bytes that never occur, sequences cut
    // short in the middle or at the very end, stray trail bytes; for UTF-16 lone high and low
    // surrogates, reversed pairs, a high surrogate at the end.
    void inject_faults(std::string& utf8, std::size_t count);
    void inject_faults(std::u16string& utf16, std::size_t count);

private:
    std::uint64_t state_;
};

} // namespace qvtest

#endif
