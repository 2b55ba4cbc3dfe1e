#ifndef QVI18N_I18N_CTYPE_CLASSIFICATION_HPP
#define QVI18N_I18N_CTYPE_CLASSIFICATION_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <cstdint>

namespace fl {
namespace i18n {

/// Bits of the character-type mask taken by is_ctype and scan. A mask selects classes, and a
/// character belongs to the mask when it is in any one of them. Bits above `print` are ignored.
namespace ctype_mask {
const unsigned int alpha = 0x001;
const unsigned int digit = 0x002;
const unsigned int cntrl = 0x004;
/// Punctuation together with math, currency and modifier symbols (wider than lcctype::ispunct).
const unsigned int punct = 0x008;
const unsigned int space = 0x010;
const unsigned int xdigit = 0x020;
const unsigned int lower = 0x040;
const unsigned int upper = 0x080;
const unsigned int print = 0x100;
/// Letters and decimal digits, by u_isalnum.
const unsigned int alnum = 0x003;
/// Graphic characters, by u_isgraph.
const unsigned int graph = 0x00B;
} // namespace ctype_mask

/// Tags selecting the sense of lcctype::scan: find a character in the mask, or one outside it.
struct is_posix { };
struct is_not_posix { };

namespace detail {

// The mask of every ASCII code: for each class the same answer ICU gives, and for ASCII every
// combination of classes (graph and alnum included) is the union of these bits.
inline constexpr std::uint16_t ascii_ctype_table[128] = {
    0x004, 0x004, 0x004, 0x004, 0x004, 0x004, 0x004, 0x004, // 0x00
    0x004, 0x014, 0x014, 0x014, 0x014, 0x014, 0x004, 0x004, // 0x08
    0x004, 0x004, 0x004, 0x004, 0x004, 0x004, 0x004, 0x004, // 0x10
    0x004, 0x004, 0x004, 0x004, 0x004, 0x004, 0x004, 0x004, // 0x18
    0x110, 0x108, 0x108, 0x108, 0x108, 0x108, 0x108, 0x108, // 0x20
    0x108, 0x108, 0x108, 0x108, 0x108, 0x108, 0x108, 0x108, // 0x28
    0x122, 0x122, 0x122, 0x122, 0x122, 0x122, 0x122, 0x122, // 0x30
    0x122, 0x122, 0x108, 0x108, 0x108, 0x108, 0x108, 0x108, // 0x38
    0x108, 0x1A1, 0x1A1, 0x1A1, 0x1A1, 0x1A1, 0x1A1, 0x181, // 0x40
    0x181, 0x181, 0x181, 0x181, 0x181, 0x181, 0x181, 0x181, // 0x48
    0x181, 0x181, 0x181, 0x181, 0x181, 0x181, 0x181, 0x181, // 0x50
    0x181, 0x181, 0x181, 0x108, 0x108, 0x108, 0x108, 0x108, // 0x58
    0x108, 0x161, 0x161, 0x161, 0x161, 0x161, 0x161, 0x141, // 0x60
    0x141, 0x141, 0x141, 0x141, 0x141, 0x141, 0x141, 0x141, // 0x68
    0x141, 0x141, 0x141, 0x141, 0x141, 0x141, 0x141, 0x141, // 0x70
    0x141, 0x141, 0x141, 0x108, 0x108, 0x108, 0x108, 0x004, // 0x78
};

} // namespace detail

/// !is_ctype(mask, c).
QVI18N_API bool do_not_ctype(unsigned int mask, char32_t c);

/// Whether `c` is in any class that `mask` selects. Inline so that ASCII is answered in the
/// caller's loop; the library also exports it.
inline QVI18N_API bool is_ctype(unsigned int mask, char32_t c)
{
    if (c < 0x80)
        return (detail::ascii_ctype_table[c] & mask & 0x1FFU) != 0;
    return !do_not_ctype(mask, c);
}

namespace lcctype {

/// A Unicode scalar value: below 0xD800, or 0xE000 to 0x10FFFF. Noncharacters pass.
QVI18N_API bool is_valid_utf32(char32_t ch);
/// Fits one UTF-16 unit (below 0x10000); surrogates pass.
QVI18N_API bool is_valid_uchar(char32_t ch);
/// The code point of a surrogate pair, or U+FFFD when `lead` or `trail` is not one.
QVI18N_API char32_t make_utf32_from_uchar(char16_t lead, char16_t trail);
/// Writes `ch` as one or two UTF-16 units to `out` and returns how many; `ch` is not validated.
QVI18N_API unsigned long make_uchar_from_utf32(char32_t ch, char16_t* out);

// Unicode classification, by ICU's character properties.
QVI18N_API bool iscntrl(char32_t ch);
/// Unicode White_Space, no-break spaces included.
QVI18N_API bool isspace(char32_t ch);
/// White space where a line may break: no-break spaces excluded.
QVI18N_API bool isbreakable_space(char32_t ch);
QVI18N_API bool isalpha(char32_t ch);
QVI18N_API bool isdigit(char32_t ch);
QVI18N_API bool isalnum(char32_t ch);
QVI18N_API bool ispunct(char32_t ch);
QVI18N_API bool isxdigit(char32_t ch);
/// Letters, marks, numbers, punctuation and symbols; unlike is_ctype's graph, not format
/// characters.
QVI18N_API bool isgraph(char32_t ch);
QVI18N_API bool isprint(char32_t ch);
QVI18N_API bool islower(char32_t ch);
QVI18N_API bool isupper(char32_t ch);
QVI18N_API char32_t tolower(char32_t ch);
QVI18N_API char32_t toupper(char32_t ch);

// ASCII-only classification: false for everything above 0x7F, whatever the locale.
QVI18N_API bool isascii_character(char32_t ch);
QVI18N_API bool isspace_ascii(char32_t ch);
QVI18N_API bool isalpha_ascii(char32_t ch);
QVI18N_API bool isalnum_ascii(char32_t ch);
QVI18N_API bool isdigit_ascii(char32_t ch);
QVI18N_API bool islower_ascii(char32_t ch);
QVI18N_API bool isupper_ascii(char32_t ch);

/// The first position in [first, last) whose character is in `mask` (is_posix) or outside it
/// (is_not_posix), else `last`. A lead surrogate is read together with the unit after it only
/// when the unit after that is a trail surrogate; otherwise each unit is classified on its own.
QVI18N_API char16_t* scan(unsigned int mask, char16_t* first, char16_t* last, const is_posix&);
QVI18N_API char16_t* scan(unsigned int mask, char16_t* first, char16_t* last, const is_not_posix&);
QVI18N_API const char16_t* scan(
    unsigned int mask, const char16_t* first, const char16_t* last, const is_posix&);
QVI18N_API const char16_t* scan(
    unsigned int mask, const char16_t* first, const char16_t* last, const is_not_posix&);
QVI18N_API ustring::iterator scan(
    unsigned int mask, ustring::iterator first, ustring::iterator last, const is_posix&);
QVI18N_API ustring::iterator scan(
    unsigned int mask, ustring::iterator first, ustring::iterator last, const is_not_posix&);
QVI18N_API ustring::const_iterator scan(
    unsigned int mask, ustring::const_iterator first, ustring::const_iterator last, const is_posix&);
QVI18N_API ustring::const_iterator scan(
    unsigned int mask, ustring::const_iterator first, ustring::const_iterator last, const is_not_posix&);

} // namespace lcctype
} // namespace i18n
} // namespace fl

#endif
