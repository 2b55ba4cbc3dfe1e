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

namespace {

// One code point for the mixed texts: a boundary value now and then, else a random one of a
// random UTF-8 length. A text keeps to one profile: everything mixed, or mostly two-, three- or
// four-byte characters, so that long stretches of one kind occur too.
char32_t mixed_code_point(random_text& random, unsigned profile)
{
    static const char32_t edges[] = {0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFEFF, 0xFFFD, 0xFFFE, 0xFFFF, 0x10000,
        0x10FFFF, 0x1F600, 0xFDD0};
    const std::uint32_t r = random.next();
    unsigned kind = r % 8;
    if (profile != 0 && r % 5 != 0)
        kind = profile == 1 ? 1 : profile == 2 ? 3 : 6;
    switch (kind) {
    case 0:
        return edges[(r >> 8) % (sizeof edges / sizeof edges[0])];
    case 1:
    case 2:
        return 0x80 + (r >> 8) % 0x780;
    case 3:
    case 4:
    case 5: {
        char32_t c = 0x800 + (r >> 8) % 0xF800;
        return c >= 0xD800 && c <= 0xDFFF ? c + 0x800 : c;
    }
    default:
        return 0x10000 + (r >> 8) % 0x100000;
    }
}

std::size_t ascii_run(random_text& random)
{
    const std::uint32_t r = random.next();
    // Mostly short runs, sometimes long ones that cover whole vector blocks.
    return r % 4 == 0 ? 1 + (r >> 8) % 200 : 1 + (r >> 8) % 12;
}

} // namespace

std::u16string random_text::utf16_mixed(std::size_t length)
{
    std::u16string out;
    out.reserve(length);
    const unsigned profile = next() % 4;
    while (out.size() < length) {
        if (next() % (profile == 0 ? 2 : 6) == 0) {
            for (std::size_t n = ascii_run(*this); n > 0 && out.size() < length; --n)
                out.push_back(static_cast<char16_t>(0x20 + next() % 0x5F));
            continue;
        }
        char32_t c = mixed_code_point(*this, profile);
        if (c >= 0x10000) {
            if (out.size() + 2 > length) {
                out.push_back(u'z');
                continue;
            }
            c -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(c));
        }
    }
    return out;
}

std::string random_text::utf8_mixed(std::size_t length)
{
    std::string out;
    out.reserve(length);
    const unsigned profile = next() % 4;
    while (out.size() < length) {
        if (next() % (profile == 0 ? 2 : 6) == 0) {
            for (std::size_t n = ascii_run(*this); n > 0 && out.size() < length; --n)
                out.push_back(static_cast<char>(0x20 + next() % 0x5F));
            continue;
        }
        char32_t c = mixed_code_point(*this, profile);
        std::u16string units;
        if (c >= 0x10000) {
            units.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            units.push_back(static_cast<char16_t>(c));
        }
        const std::string bytes = utf16_to_utf8(units);
        if (out.size() + bytes.size() > length)
            out.push_back('z');
        else
            out += bytes;
    }
    return out;
}

void random_text::inject_faults(std::string& utf8, std::size_t count)
{
    static const char* const pieces[] = {
        "\xC0\xAF", "\xC1\xBF", "\xE0\x80\xAF", "\xE0\x9F\xBF", "\xF0\x80\x80\xAF",
        "\xF0\x8F\xBF\xBF", // overlong
        "\xED\xA0\x80", "\xED\xBF\xBF", "\xED\xA0\xBD\xED\xB8\x80", // surrogates
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80", "\xFE", "\xFF", // beyond, never
        "\xC3", "\xE3\x81", "\xF0\x9F\x98", "\xF0\x9F", "\xE3", // cut short
        "\x80", "\xBF", "\x80\x80\x80", // stray trail
    };
    const std::size_t cut_short_first = 14, cut_short_last = 18;
    if (utf8.empty())
        return;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t which = next() % (sizeof pieces / sizeof pieces[0]);
        const std::string piece = pieces[which];
        const std::size_t n = piece.size() < utf8.size() ? piece.size() : utf8.size();
        // A piece cut short goes to the very end now and then, the incomplete tail.
        const bool at_end = which >= cut_short_first && which <= cut_short_last && next() % 3 == 0;
        const std::size_t at = at_end ? utf8.size() - n : next() % (utf8.size() - n + 1);
        utf8.replace(at, n, piece, 0, n);
    }
}

void random_text::inject_faults(std::u16string& utf16, std::size_t count)
{
    if (utf16.empty())
        return;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t r = next();
        const std::size_t at = (r >> 4) % utf16.size();
        switch (r % 4) {
        case 0:
            utf16[at] = static_cast<char16_t>(0xD800 + (r >> 8) % 0x400); // high, likely alone
            break;
        case 1:
            utf16[at] = static_cast<char16_t>(0xDC00 + (r >> 8) % 0x400); // low, likely alone
            break;
        case 2:
            if (at + 1 < utf16.size()) { // a reversed pair
                utf16[at] = u'\xDC00';
                utf16[at + 1] = u'\xD800';
            }
            break;
        default:
            utf16.back() = u'\xDBFF'; // the incomplete tail
        }
    }
}

} // namespace qvtest
