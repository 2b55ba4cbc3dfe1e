#include "qvtest/text.hpp"

#include <cstdio>

namespace qvtest {

std::u16string u16(char const* ascii)
{
    std::u16string out;
    for (; *ascii; ++ascii)
        out.push_back(static_cast<char16_t>(static_cast<unsigned char>(*ascii)));
    return out;
}

std::u16string utf8_to_utf16(std::string const& utf8)
{
    std::u16string out;
    std::size_t i = 0;
    while (i < utf8.size()) {
        unsigned char c = static_cast<unsigned char>(utf8[i]);
        char32_t cp;
        std::size_t n;
        if (c < 0x80) {
            cp = c;
            n = 1;
        } else if ((c >> 5) == 0x6) {
            cp = c & 0x1F;
            n = 2;
        } else if ((c >> 4) == 0xE) {
            cp = c & 0x0F;
            n = 3;
        } else {
            cp = c & 0x07;
            n = 4;
        }
        for (std::size_t k = 1; k < n && i + k < utf8.size(); ++k)
            cp = (cp << 6) | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
        i += n;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
    }
    return out;
}

std::string utf16_to_utf8(std::u16string const& s)
{
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        char32_t cp = s[i];
        if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] < 0xE000) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (s[i + 1] - 0xDC00);
            ++i;
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

namespace {
template <typename String> std::string dump(String const& s, std::size_t max, int width, unsigned mask)
{
    std::string out;
    char buf[8];
    std::size_t n = s.size() < max ? s.size() : max;
    for (std::size_t i = 0; i < n; ++i) {
        std::snprintf(buf, sizeof buf, "%0*x", width, static_cast<unsigned>(s[i]) & mask);
        if (i)
            out.push_back(' ');
        out += buf;
    }
    if (n < s.size())
        out += " ... (" + std::to_string(s.size()) + " in all)";
    return out;
}
} // namespace

std::string hex_dump(std::u16string const& s, std::size_t max_units)
{
    return dump(s, max_units, 4, 0xFFFFu);
}
std::string hex_dump(std::string const& s, std::size_t max_bytes)
{
    return dump(s, max_bytes, 2, 0xFFu);
}

std::uint32_t random_text::next()
{
    // xorshift64*: small, fast and the same on every machine.
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return static_cast<std::uint32_t>((state_ * 0x2545F4914F6CDD1DULL) >> 32);
}

std::u16string random_text::unicode(std::size_t length)
{
    std::u16string out;
    out.reserve(length);
    while (out.size() < length) {
        std::uint32_t r = next();
        switch (r % 4) {
        case 0:
            out.push_back(static_cast<char16_t>(0x20 + (r >> 8) % 0x5F));
            break;
        case 1:
            out.push_back(static_cast<char16_t>(0xC0 + (r >> 8) % 0xC0));
            break;
        case 2:
            out.push_back(static_cast<char16_t>(0x4E00 + (r >> 8) % 0x5000));
            break;
        default:
            if (out.size() + 2 <= length) {
                char32_t cp = 0x10000 + (r >> 8) % 0x20000;
                cp -= 0x10000;
                out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
                out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
            } else {
                out.push_back(u'x');
            }
        }
    }
    return out;
}

std::string random_text::bytes(std::size_t length)
{
    std::string out(length, '\0');
    for (auto& c : out)
        c = static_cast<char>(next() & 0xFF);
    return out;
}

} // namespace qvtest
