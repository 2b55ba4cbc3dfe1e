#include <qvi18n/i18n/ctype/classification.hpp>
#include <qvi18n/i18n/ctype/detail/ctype_throw.hpp>

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <dlfcn.h>

#include <random>
#include <vector>

using namespace fl::i18n;

namespace {

// The classes of is_ctype as ICU answers them, one per mask bit.
bool icu_class(unsigned int bit, UChar32 c)
{
    switch (bit) {
    case 0x001: return u_isalpha(c);
    case 0x002: return u_isdigit(c);
    case 0x004: return u_iscntrl(c);
    case 0x008: return (U_MASK(u_charType(c)) & 0x37F80000U) != 0;
    case 0x010: return u_isUWhiteSpace(c);
    case 0x020: return u_digit(c, 16) >= 0;
    case 0x040: return u_islower(c);
    case 0x080: return u_isupper(c);
    case 0x100: return u_isprint(c);
    }
    return false;
}

bool icu_mask(unsigned int mask, UChar32 c)
{
    bool any = ((mask & 0x00B) == 0x00B && u_isgraph(c)) || ((mask & 0x003) == 0x003 && u_isalnum(c));
    for (unsigned int bit = 1; bit <= 0x100; bit <<= 1)
        any = any || ((mask & bit) && icu_class(bit, c));
    return any;
}

// Every BMP code point, all of plane 1 and every 7th code point of the planes above, plus a few
// values beyond Unicode.
std::vector<char32_t> code_points()
{
    std::vector<char32_t> all;
    for (char32_t c = 0; c < 0x20000; ++c)
        all.push_back(c);
    for (char32_t c = 0x20000; c <= 0x10FFFF; c += 7)
        all.push_back(c);
    for (char32_t c : {0xE0001U, 0xF0000U, 0x10FFFDU, 0x10FFFFU, 0x110000U, 0xFFFFFFFFU})
        all.push_back(c);
    return all;
}

} // namespace

TEST(CtypeClassification, IsCtypeAgreesWithIcuForEveryClassAndCodePoint)
{
    std::mt19937 random(13);
    std::uniform_int_distribution<unsigned int> any_mask(0, 0xFFFF);
    for (char32_t c : code_points()) {
        const UChar32 u = static_cast<UChar32>(c);
        for (unsigned int bit = 1; bit <= 0x100; bit <<= 1)
            ASSERT_EQ(is_ctype(bit, c), icu_class(bit, u)) << std::hex << "mask " << bit << " U+" << c;
        ASSERT_EQ(is_ctype(0x003, c), bool(u_isalnum(u))) << std::hex << c;
        ASSERT_EQ(is_ctype(0x00B, c), bool(u_isgraph(u))) << std::hex << c;
        const unsigned int mask = any_mask(random);
        ASSERT_EQ(is_ctype(mask, c), icu_mask(mask & 0x1FF, u)) << std::hex << mask << " " << c;
        ASSERT_NE(is_ctype(mask, c), do_not_ctype(mask, c));
        ASSERT_FALSE(is_ctype(0, c));
        ASSERT_FALSE(is_ctype(0xFE00, c)) << "bits above print are ignored";
    }
}

TEST(CtypeClassification, TheLibraryExportsItsOwnIsCtype)
{
    // Callers inline is_ctype, so nothing in their own build notices if the shared library stops
    // exporting it; ask the library itself.
    Dl_info info;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&do_not_ctype), &info), 0);
    void* const library = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr) << info.dli_fname;
    typedef bool (*classifier)(unsigned int, char32_t);
    const auto exported = reinterpret_cast<classifier>(dlsym(library, "_ZN2fl4i18n8is_ctypeEjDi"));
    ASSERT_NE(exported, nullptr) << dlerror();
    Dl_info where;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(exported), &where), 0);
    EXPECT_EQ(where.dli_fbase, info.dli_fbase);
    EXPECT_TRUE(exported(0x001, U'a'));
    EXPECT_TRUE(exported(0x001, 0x4E00));
    EXPECT_FALSE(exported(0x002, 0x4E00));
    dlclose(library);
}

TEST(CtypeClassification, CharacterFunctionsAgreeWithIcu)
{
    for (char32_t c : code_points()) {
        const UChar32 u = static_cast<UChar32>(c);
        ASSERT_EQ(lcctype::iscntrl(c), bool(u_iscntrl(u)));
        ASSERT_EQ(lcctype::isspace(c), bool(u_isUWhiteSpace(u)));
        ASSERT_EQ(lcctype::isbreakable_space(c), bool(u_isWhitespace(u)));
        ASSERT_EQ(lcctype::isalpha(c), bool(u_isalpha(u)));
        ASSERT_EQ(lcctype::isdigit(c), bool(u_isdigit(u)));
        ASSERT_EQ(lcctype::isalnum(c), bool(u_isalnum(u)));
        ASSERT_EQ(lcctype::ispunct(c), bool(u_ispunct(u)));
        ASSERT_EQ(lcctype::isxdigit(c), bool(u_isxdigit(u)));
        ASSERT_EQ(lcctype::isgraph(c), (U_MASK(u_charType(u)) & 0x7FF80FFEU) != 0);
        ASSERT_EQ(lcctype::isprint(c), bool(u_isprint(u)));
        ASSERT_EQ(lcctype::islower(c), bool(u_islower(u)));
        ASSERT_EQ(lcctype::isupper(c), bool(u_isupper(u)));
        ASSERT_EQ(lcctype::tolower(c), static_cast<char32_t>(u_tolower(u)));
        ASSERT_EQ(lcctype::toupper(c), static_cast<char32_t>(u_toupper(u)));
        // The ASCII functions are ICU's answer restricted to ASCII.
        const bool ascii = c < 0x80;
        ASSERT_EQ(lcctype::isascii_character(c), ascii);
        ASSERT_EQ(lcctype::isspace_ascii(c), ascii && u_isUWhiteSpace(u));
        ASSERT_EQ(lcctype::isalpha_ascii(c), ascii && u_isalpha(u));
        ASSERT_EQ(lcctype::isalnum_ascii(c), ascii && u_isalnum(u));
        ASSERT_EQ(lcctype::isdigit_ascii(c), ascii && u_isdigit(u));
        ASSERT_EQ(lcctype::islower_ascii(c), ascii && u_islower(u));
        ASSERT_EQ(lcctype::isupper_ascii(c), ascii && u_isupper(u));
        ASSERT_EQ(lcctype::is_valid_utf32(c), (c < 0xD800 || (c >= 0xE000 && c <= 0x10FFFF)));
    }
}

TEST(CtypeClassification, ClassesThatDifferFromTheirNeighbours)
{
    EXPECT_TRUE(lcctype::isspace(0xA0));
    EXPECT_FALSE(lcctype::isbreakable_space(0xA0));
    EXPECT_FALSE(is_ctype(ctype_mask::punct, 0xA9)) << "other symbols are not punctuation";
    EXPECT_TRUE(is_ctype(ctype_mask::punct, 0x24));
    EXPECT_FALSE(lcctype::ispunct(0x24));
    // ICU's graph, which is_ctype uses, leaves out format characters too, but keeps private use.
    EXPECT_FALSE(lcctype::isgraph(0xAD));
    EXPECT_FALSE(is_ctype(ctype_mask::graph, 0xAD));
    EXPECT_FALSE(lcctype::isgraph(0xE000));
    EXPECT_TRUE(is_ctype(ctype_mask::graph, 0xE000));
}

TEST(CtypeClassification, SurrogatePrimitives)
{
    EXPECT_FALSE(lcctype::is_valid_utf32(0xD800));
    EXPECT_FALSE(lcctype::is_valid_utf32(0x110000));
    EXPECT_TRUE(lcctype::is_valid_utf32(0xFFFF));
    EXPECT_TRUE(lcctype::is_valid_uchar(0xD800));
    EXPECT_FALSE(lcctype::is_valid_uchar(0x10000));

    EXPECT_EQ(lcctype::make_utf32_from_uchar(0x41, 0x42), 0xFFFDU);
    EXPECT_EQ(lcctype::make_utf32_from_uchar(0xD83D, 0x42), 0xFFFDU);
    EXPECT_EQ(lcctype::make_utf32_from_uchar(0xDE00, 0xD83D), 0xFFFDU);
    EXPECT_EQ(lcctype::make_utf32_from_uchar(0xD83D, 0xDE00), 0x1F600U);
    EXPECT_EQ(lcctype::make_utf32_from_uchar(0xDBFF, 0xDFFF), 0x10FFFFU);

    char16_t out[2] = {0, 0};
    EXPECT_EQ(lcctype::make_uchar_from_utf32(0x1F600, out), 2UL);
    EXPECT_EQ(out[0], 0xD83D);
    EXPECT_EQ(out[1], 0xDE00);
    EXPECT_EQ(lcctype::make_uchar_from_utf32(0xD800, out), 1UL) << "not validated";
    EXPECT_EQ(out[0], 0xD800);
    for (char32_t c = 0x10000; c <= 0x10FFFF; c += 0x1111) {
        ASSERT_EQ(lcctype::make_uchar_from_utf32(c, out), 2UL);
        ASSERT_EQ(lcctype::make_utf32_from_uchar(out[0], out[1]), c);
    }
}

TEST(CtypeClassification, ScanFindsTheFirstMatchInEveryRangeType)
{
    const unsigned int digit = ctype_mask::digit;
    ustring text = u"ab 12";
    const ustring& ctext = text;
    EXPECT_EQ(lcctype::scan(digit, &text[0], &text[0] + 5, is_posix()), &text[3]);
    EXPECT_EQ(lcctype::scan(ctype_mask::alpha, ctext.data(), ctext.data() + 5, is_not_posix()), ctext.data() + 2);
    EXPECT_EQ(lcctype::scan(digit, text.begin(), text.end(), is_posix()), text.begin() + 3);
    EXPECT_EQ(lcctype::scan(digit, ctext.begin(), ctext.end(), is_not_posix()), ctext.begin());
    EXPECT_EQ(lcctype::scan(ctype_mask::upper, ctext.begin(), ctext.end(), is_posix()), ctext.end());
    EXPECT_EQ(lcctype::scan(0, ctext.begin(), ctext.end(), is_not_posix()), ctext.begin());

    // Empty and reversed ranges answer `last`.
    EXPECT_EQ(lcctype::scan(digit, text.begin() + 2, text.begin() + 2, is_not_posix()), text.begin() + 2);
    EXPECT_EQ(lcctype::scan(digit, ctext.data() + 4, ctext.data() + 1, is_posix()), ctext.data() + 1);
}

TEST(CtypeClassification, ScanJoinsASurrogatePairOnlyWhenATrailFollowsIt)
{
    // U+1D400 MATHEMATICAL BOLD CAPITAL A is a letter; its two halves alone are surrogates.
    const unsigned int alpha = ctype_mask::alpha;
    const ustring pair_at_end = u"1\U0001D400";
    EXPECT_EQ(lcctype::scan(alpha, pair_at_end.begin(), pair_at_end.end(), is_posix()), pair_at_end.end());

    // A trail surrogate two places after the lead makes the lead and the unit after it one character.
    const ustring pair_then_trail = ustring(u"\U0001D400") + char16_t(0xDC00);
    EXPECT_EQ(lcctype::scan(alpha, pair_then_trail.begin(), pair_then_trail.end(), is_posix()),
        pair_then_trail.begin());
    // ...and the scan goes on after the pair: the lone trail is what is not a letter.
    EXPECT_EQ(lcctype::scan(alpha, pair_then_trail.begin(), pair_then_trail.end(), is_not_posix()),
        pair_then_trail.begin() + 2);

    // A pair followed by an ordinary letter is read as two surrogates.
    const ustring pair_then_letter = u"\U0001D400x";
    EXPECT_EQ(lcctype::scan(alpha, pair_then_letter.begin(), pair_then_letter.end(), is_posix()),
        pair_then_letter.begin() + 2);

    // A lead, a letter, then a trail: the lead and the letter combine into U+FFFD, not a letter.
    const ustring mixed = {0xD835, u'x', 0xDC00};
    EXPECT_EQ(lcctype::scan(alpha, mixed.begin(), mixed.end(), is_posix()), mixed.end());
    EXPECT_EQ(lcctype::scan(ctype_mask::punct | ctype_mask::print, mixed.begin(), mixed.end(), is_posix()),
        mixed.begin());

    // A lone lead as the last unit is not read past.
    const std::vector<char16_t> lone = {u'a', 0xD835};
    EXPECT_EQ(lcctype::scan(alpha, lone.data(), lone.data() + 2, is_not_posix()), lone.data() + 1);
}

TEST(CtypeClassification, TheThrowHelperRaisesTheExactClass)
{
    try {
        lcctype::detail::throw_ctype_invalid_character_exception();
        FAIL();
    } catch (const CtypeExceptionBase& e) {
        EXPECT_STREQ(e.what(), "Invalid character error.");
        EXPECT_NE(dynamic_cast<const CtypeInvalidCharacter*>(&e), nullptr);
    }
}
