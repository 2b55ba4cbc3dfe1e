#include <qvi18n/i18n/ctype/classification.hpp>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <cstdint>

namespace fl {
namespace i18n {
namespace {

const unsigned int mask_bits = 0x1FF;

// General categories that is_ctype counts as punctuation: all punctuation, and math, currency and
// modifier symbols, but not other symbols.
const std::uint32_t punctuation_categories = 0x37F80000U;
// General categories of lcctype::isgraph: letters, marks, numbers, punctuation and symbols.
const std::uint32_t graph_categories = 0x7FF80FFEU;

inline bool ascii_has(char32_t c, unsigned int bits)
{
    return c < 0x80 && (detail::ascii_ctype_table[c] & bits) != 0;
}

inline bool in_categories(char32_t c, std::uint32_t categories)
{
    return (U_MASK(u_charType(static_cast<UChar32>(c))) & categories) != 0;
}

// Outside ASCII each selected class asks ICU, in a fixed order; any one that holds decides.
bool is_ctype_unicode(unsigned int mask, UChar32 c)
{
    if ((mask & ctype_mask::cntrl) && u_iscntrl(c))
        return true;
    if ((mask & ctype_mask::print) && u_isprint(c))
        return true;
    if ((mask & ctype_mask::graph) == ctype_mask::graph && u_isgraph(c))
        return true;
    if ((mask & ctype_mask::punct) && in_categories(static_cast<char32_t>(c), punctuation_categories))
        return true;
    if ((mask & ctype_mask::space) && u_isUWhiteSpace(c))
        return true;
    if ((mask & ctype_mask::alnum) == ctype_mask::alnum && u_isalnum(c))
        return true;
    if ((mask & ctype_mask::alpha) && u_isalpha(c))
        return true;
    if ((mask & ctype_mask::xdigit) && u_digit(c, 16) >= 0)
        return true;
    if ((mask & ctype_mask::digit) && u_isdigit(c))
        return true;
    if ((mask & ctype_mask::lower) && u_islower(c))
        return true;
    if ((mask & ctype_mask::upper) && u_isupper(c))
        return true;
    return false;
}

inline bool classify(unsigned int mask, char32_t c)
{
    mask &= mask_bits;
    // In ASCII every combination of classes is the union of the table's bits (graph and alnum
    // included), so the table answers alone.
    if (c < 0x80)
        return (detail::ascii_ctype_table[c] & mask) != 0;
    return mask != 0 && is_ctype_unicode(mask, static_cast<UChar32>(c));
}

template <typename Iterator, bool Wanted> Iterator scan_range(unsigned int mask, Iterator first, Iterator last)
{
    if (!(first < last))
        return last;
    Iterator cursor = first;
    while (cursor != last) {
        const Iterator start = cursor;
        char32_t c = *cursor;
        ++cursor;
        // A lead surrogate joins the unit after it only when the unit after that one is a trail
        // surrogate (and lies inside the range).
        if (U16_IS_LEAD(c) && last - start > 2 && U16_IS_TRAIL(start[2])) {
            c = lcctype::make_utf32_from_uchar(static_cast<char16_t>(c), start[1]);
            ++cursor;
        }
        if (classify(mask, c) == Wanted)
            return start;
    }
    return last;
}

} // namespace

// Callers inline is_ctype; taking its address keeps the library's exported copy.
__attribute__((used)) bool (*const exported_is_ctype)(unsigned int, char32_t) = &is_ctype;

bool do_not_ctype(unsigned int mask, char32_t c)
{
    return !classify(mask, c);
}

namespace lcctype {

bool is_valid_utf32(char32_t ch)
{
    return ch < 0xD800 || (ch >= 0xE000 && ch <= 0x10FFFF);
}

bool is_valid_uchar(char32_t ch)
{
    return ch < 0x10000;
}

char32_t make_utf32_from_uchar(char16_t lead, char16_t trail)
{
    if (!U16_IS_LEAD(lead) || !U16_IS_TRAIL(trail))
        return 0xFFFD;
    return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(lead, trail));
}

unsigned long make_uchar_from_utf32(char32_t ch, char16_t* out)
{
    if (ch <= 0xFFFF) {
        out[0] = static_cast<char16_t>(ch);
        return 1;
    }
    out[0] = static_cast<char16_t>((ch >> 10) + 0xD7C0);
    out[1] = static_cast<char16_t>((ch & 0x3FF) | 0xDC00);
    return 2;
}

bool iscntrl(char32_t ch)
{
    return u_iscntrl(static_cast<UChar32>(ch));
}

bool isspace(char32_t ch)
{
    return u_isUWhiteSpace(static_cast<UChar32>(ch));
}

bool isbreakable_space(char32_t ch)
{
    return u_isWhitespace(static_cast<UChar32>(ch));
}

bool isalpha(char32_t ch)
{
    return u_isalpha(static_cast<UChar32>(ch));
}

bool isdigit(char32_t ch)
{
    return u_isdigit(static_cast<UChar32>(ch));
}

bool isalnum(char32_t ch)
{
    return u_isalnum(static_cast<UChar32>(ch));
}

bool ispunct(char32_t ch)
{
    return u_ispunct(static_cast<UChar32>(ch));
}

bool isxdigit(char32_t ch)
{
    return u_isxdigit(static_cast<UChar32>(ch));
}

bool isgraph(char32_t ch)
{
    return in_categories(ch, graph_categories);
}

bool isprint(char32_t ch)
{
    return u_isprint(static_cast<UChar32>(ch));
}

bool islower(char32_t ch)
{
    return u_islower(static_cast<UChar32>(ch));
}

bool isupper(char32_t ch)
{
    return u_isupper(static_cast<UChar32>(ch));
}

char32_t tolower(char32_t ch)
{
    return static_cast<char32_t>(u_tolower(static_cast<UChar32>(ch)));
}

char32_t toupper(char32_t ch)
{
    return static_cast<char32_t>(u_toupper(static_cast<UChar32>(ch)));
}

bool isascii_character(char32_t ch)
{
    return ch < 0x80;
}

bool isspace_ascii(char32_t ch)
{
    return ascii_has(ch, ctype_mask::space);
}

bool isalpha_ascii(char32_t ch)
{
    return ascii_has(ch, ctype_mask::alpha);
}

bool isalnum_ascii(char32_t ch)
{
    return ascii_has(ch, ctype_mask::alnum);
}

bool isdigit_ascii(char32_t ch)
{
    return ch >= 0x30 && ch <= 0x39;
}

bool islower_ascii(char32_t ch)
{
    return ch >= 0x61 && ch <= 0x7A;
}

bool isupper_ascii(char32_t ch)
{
    return ch >= 0x41 && ch <= 0x5A;
}

char16_t* scan(unsigned int mask, char16_t* first, char16_t* last, const is_posix&)
{
    return scan_range<char16_t*, true>(mask, first, last);
}

char16_t* scan(unsigned int mask, char16_t* first, char16_t* last, const is_not_posix&)
{
    return scan_range<char16_t*, false>(mask, first, last);
}

const char16_t* scan(unsigned int mask, const char16_t* first, const char16_t* last, const is_posix&)
{
    return scan_range<const char16_t*, true>(mask, first, last);
}

const char16_t* scan(unsigned int mask, const char16_t* first, const char16_t* last, const is_not_posix&)
{
    return scan_range<const char16_t*, false>(mask, first, last);
}

ustring::iterator scan(unsigned int mask, ustring::iterator first, ustring::iterator last, const is_posix&)
{
    return scan_range<ustring::iterator, true>(mask, first, last);
}

ustring::iterator scan(unsigned int mask, ustring::iterator first, ustring::iterator last, const is_not_posix&)
{
    return scan_range<ustring::iterator, false>(mask, first, last);
}

ustring::const_iterator scan(
    unsigned int mask, ustring::const_iterator first, ustring::const_iterator last, const is_posix&)
{
    return scan_range<ustring::const_iterator, true>(mask, first, last);
}

ustring::const_iterator scan(
    unsigned int mask, ustring::const_iterator first, ustring::const_iterator last, const is_not_posix&)
{
    return scan_range<ustring::const_iterator, false>(mask, first, last);
}

} // namespace lcctype
} // namespace i18n
} // namespace fl
