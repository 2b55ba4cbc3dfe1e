// Converters with a fixed encoding: ASCII, modified UTF-8, wide text, and the UTF primitives.
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>

#include <gtest/gtest.h>

#include <string>

using namespace fl::i18n;

TEST(AsciiConverters, StrictRefusesAndLenientMarks)
{
    const ustring text = u"caf\u00E9";
    codecvt_ustring_to_ascii strict(false);
    codecvt_ustring_to_ascii lenient(true);
    EXPECT_THROW(strict.convert(text.data(), text.size()), CvtInvalidCharacter);
    EXPECT_THROW(strict.get_destination_size(text.data(), text.size()), CvtInvalidCharacter);
    EXPECT_EQ(lenient.convert(text.data(), text.size()), "caf\xFF");
    EXPECT_EQ(lenient.get_destination_size(text.data(), text.size()), 4u);

    codecvt_ascii_to_ustring strict_in(false);
    codecvt_ascii_to_ustring lenient_in(true);
    EXPECT_THROW(strict_in.convert("caf\xE9", 4), CvtInvalidCharacter);
    EXPECT_EQ(lenient_in.convert("caf\xE9", 4), u"caf\uFFFD");
    EXPECT_EQ(strict_in.convert("plain", 5), u"plain");
}

TEST(AsciiConverters, BufferFormReturnsTheCountWritten)
{
    // Only the first three units are looked at: the invalid fifth one raises nothing.
    const ustring text = u"abcd\u00E9";
    codecvt_ustring_to_ascii strict(false);
    char out[8] = "#######";
    EXPECT_EQ(strict.convert(out, 3, text.data(), text.size()), 3u);
    EXPECT_EQ(std::string(out, 4), "abc#");
    EXPECT_EQ(strict.convert(nullptr, 3, text.data(), text.size()), 0u);

    codecvt_ascii_to_ustring in(false);
    char16_t wide[8] = {};
    EXPECT_EQ(in.convert(wide, 8, "xyz", 3), 3u);
    EXPECT_EQ(ustring(wide, 3), u"xyz");
    EXPECT_EQ(in.convert(wide, 8, nullptr, 3), 0u);
}

TEST(ModifiedUtf8, NulAndSupplementaryAndLoneSurrogates)
{
    codecvt_ustring_to_modified_utf8 out;
    codecvt_modified_utf8_to_ustring in;
    const ustring text(u"a\0\U0001F600\xD800z", 6);
    const std::string bytes = out.convert(text.data(), text.size());
    EXPECT_EQ(bytes, std::string("a\xC0\x80\xED\xA0\xBD\xED\xB8\x80\xED\xA0\x80z", 13));
    EXPECT_EQ(out.get_destination_size(text.data(), text.size()), 13u);
    EXPECT_EQ(in.convert(bytes.data(), bytes.size()), text);
    EXPECT_EQ(in.get_destination_size(bytes.data(), bytes.size()), 6u);
    EXPECT_EQ(in.convert("a\xFF", 2), u"a\uFFFD");

    // Into a short buffer: the full size is returned.
    char small[4];
    EXPECT_EQ(out.convert(small, 4, text.data(), text.size()), 13u);
}

TEST(UtfPrimitives, SubstitutesDifferByDirection)
{
    char bytes[8];
    const char16_t lone[] = u"a\xD800";
    ASSERT_EQ(lcctype::conversion_to_utf8(bytes, 8, lone, 2), 2u);
    EXPECT_EQ(std::string(bytes, 2), "a\x1A");

    char16_t units[8];
    ASSERT_EQ(lcctype::conversion_from_utf8(units, 8, "\xFFz", 2), 2u);
    EXPECT_EQ(ustring(units, 2), u"\uFFFDz");

    const char32_t beyond[] = {U'a', char32_t(0x110000), char32_t(0xD800)};
    ASSERT_EQ(lcctype::conversion_from_utf32(units, 8, beyond, 3), 3u);
    EXPECT_EQ(ustring(units, 3), u"a\uFFFD\uFFFD");

    // A measure with no destination and a short destination both report the full size.
    EXPECT_EQ(lcctype::conversion_to_utf8(nullptr, 0, u"\u65E5\u65E5", 2), 6u);
    EXPECT_EQ(lcctype::conversion_to_utf8(bytes, 2, u"\u65E5\u65E5", 2), 6u);
}

TEST(UtfPrimitives, LengthsBeyond32BitsAreRefusedBeforeAnyAccess)
{
    char16_t units[4];
    char bytes[4];
    EXPECT_THROW(lcctype::conversion_from_utf8(units, 4, "x", 0x80000000UL), CvtSizeTooLarge);
    EXPECT_THROW(lcctype::conversion_to_utf8(bytes, 0x80000000UL, u"x", 1), CvtSizeTooLarge);
    EXPECT_THROW(lcctype::conversion_to_modified_utf8(bytes, 4, u"x", 0x80000000UL), CvtSizeTooLarge);
    EXPECT_THROW(lcctype::conversion_from_modified_utf8(units, 4, "x", 0x80000000UL), CvtSizeTooLarge);
    EXPECT_THROW(lcctype::conversion_from_utf32(units, 4, U"x", 0x80000000UL), CvtSizeTooLarge);
}

TEST(WideText, SupplementaryStaysOneWideCharacter)
{
    EXPECT_EQ(to_wstring(u"a\U0001F600b"), L"a\U0001F600b");
    EXPECT_EQ(to_wstring(u"a\xDC00"), L"a\uFFFD");
    EXPECT_EQ(to_wstring(ustring()), L"");
    EXPECT_EQ(to_ustring(std::wstring(L"x\U0001F600")), u"x\U0001F600");
    EXPECT_EQ(to_ustring(L"x\U0010FFFF"), u"x\U0010FFFF");
    EXPECT_EQ(to_ustring(static_cast<const wchar_t*>(nullptr)), ustring());

    // Long enough to leave the stack buffer and the first heap buffer.
    const std::wstring long_wide(40000, L'\U0001F600');
    const ustring long_text = to_ustring(long_wide);
    ASSERT_EQ(long_text.size(), 80000u);
    EXPECT_TRUE(to_wstring(long_text) == long_wide);

    codecvt_ustring_to_wstring out;
    codecvt_wstring_to_ustring in;
    const ustring text = u"\U0001F600\u00E9";
    EXPECT_EQ(out.get_destination_size(text.data(), text.size()), 2u);
    EXPECT_EQ(out.convert(text.data(), text.size()), L"\U0001F600\u00E9");
    wchar_t one[1];
    EXPECT_EQ(out.convert(one, 1, text.data(), text.size()), 2u);
    EXPECT_EQ(one[0], L'\U0001F600');
    const std::wstring wide = L"\U0001F600\u00E9";
    EXPECT_EQ(in.get_destination_size(wide.data(), wide.size()), 3u);
    EXPECT_EQ(in.convert(wide.data(), wide.size()), text);
}
