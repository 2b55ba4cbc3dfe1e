// The conversion frame: exceptions, checked casts, status mapping and the default conversions.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

using namespace fl::i18n;

namespace {

ustring u16(const char* ascii)
{
    return ustring(ascii, ascii + std::strlen(ascii));
}

// A converter that records how often it is called, to see which entry points reach it.
class counting_converter : public converter<char16_t, char> {
public:
    mutable int calls = 0;
    unsigned long do_get_destination_size(const char*, unsigned long length) const override { return length; }
    ustring do_convert(const char* source, unsigned long length) const override
    {
        ++calls;
        return ustring(source, source + length);
    }
    unsigned long do_convert(char16_t*, unsigned long, const char*, unsigned long length) const override
    {
        return length;
    }
};

} // namespace

TEST(NumCast, BoundsOfEachInstantiation)
{
    using lcctype::num_cast;
    EXPECT_EQ((num_cast<int, unsigned long>(0x7FFFFFFFUL)), 0x7FFFFFFF);
    EXPECT_THROW((num_cast<int, unsigned long>(0x80000000UL)), CvtSizeTooLarge);
    EXPECT_EQ((num_cast<unsigned long, int>(0)), 0UL);
    EXPECT_THROW((num_cast<unsigned long, int>(-1)), CvtSizeTooLarge);
    EXPECT_THROW((num_cast<unsigned long, signed char>(-1)), CvtSizeTooLarge);
    EXPECT_EQ((num_cast<signed char, unsigned long>(127)), 127);
    EXPECT_THROW((num_cast<signed char, unsigned long>(128)), CvtSizeTooLarge);
}

TEST(MapCodecvtException, StatusAndSizeDecideTheException)
{
    using lcctype::map_codecvt_exception;
    // Success, warnings and the overflow of a measuring call pass, whatever the length.
    EXPECT_NO_THROW(map_codecvt_exception<char16_t>(U_ZERO_ERROR, 0xFFFFFFFFUL));
    EXPECT_NO_THROW(map_codecvt_exception<char>(U_STRING_NOT_TERMINATED_WARNING, 1));
    EXPECT_NO_THROW(map_codecvt_exception<char32_t>(U_BUFFER_OVERFLOW_ERROR, 0xFFFFFFFFUL));

    EXPECT_THROW(map_codecvt_exception<char16_t>(U_INVALID_CHAR_FOUND, 1), CvtInvalidCharacter);
    EXPECT_THROW(map_codecvt_exception<char16_t>(U_ILLEGAL_CHAR_FOUND, 1), CvtInvalidCharacter);
    // A truncated character is a failure, not an invalid character.
    EXPECT_THROW(map_codecvt_exception<char16_t>(U_TRUNCATED_CHAR_FOUND, 1), CvtConversionFailure);

    // At the size bound of the unit type the size is blamed, whatever ICU said.
    EXPECT_THROW(map_codecvt_exception<char>(U_INVALID_CHAR_FOUND, 0x80000000UL), CvtSizeTooLarge);
    EXPECT_THROW(map_codecvt_exception<char>(U_INVALID_CHAR_FOUND, 0x7FFFFFFFUL), CvtInvalidCharacter);
    EXPECT_THROW(map_codecvt_exception<char16_t>(U_TRUNCATED_CHAR_FOUND, 0x40000000UL), CvtSizeTooLarge);
    EXPECT_THROW(map_codecvt_exception<char16_t>(U_TRUNCATED_CHAR_FOUND, 0x3FFFFFFFUL), CvtConversionFailure);
    EXPECT_THROW(map_codecvt_exception<char32_t>(U_INTERNAL_PROGRAM_ERROR, 0x20000000UL), CvtSizeTooLarge);
    EXPECT_THROW(
        map_codecvt_exception<char32_t>(U_INTERNAL_PROGRAM_ERROR, 0x1FFFFFFFUL), CvtConversionFailure);

    EXPECT_THROW(lcctype::invalid_char_exception_throwing(U_ILLEGAL_CHAR_FOUND), CvtInvalidCharacter);
    EXPECT_THROW(lcctype::invalid_char_exception_throwing(U_TRUNCATED_CHAR_FOUND), CvtConversionFailure);
}

// The built-in global locale's encoding is US-ASCII, so that is what the default path uses here.
TEST(DefaultConversion, AsciiRoundTripAndSubstitution)
{
    EXPECT_EQ(to_ustring(std::string("plain text 123")), u16("plain text 123"));
    EXPECT_EQ(to_ustring("plain"), u16("plain"));
    EXPECT_EQ(to_string(u16("plain text 123")), "plain text 123");

    // Bytes that are not ASCII become U+FFFD, and no exception is raised.
    EXPECT_EQ(to_ustring(std::string("a\xC3\xA9z")), u"a\uFFFD\uFFFDz");
    // A character that US-ASCII lacks becomes its substitution byte.
    EXPECT_EQ(to_string(u"a\u00E9z"), "a\x1Az");

    // An embedded NUL is text like any other in the string forms.
    EXPECT_EQ(to_ustring(std::string("a\0b", 3)), ustring(u"a\0b", 3));
}

TEST(DefaultConversion, EmptyAndNullSources)
{
    EXPECT_EQ(to_ustring(std::string()), ustring());
    EXPECT_EQ(to_ustring(static_cast<const char*>(nullptr)), ustring());
    EXPECT_EQ(to_ustring(""), ustring());
    EXPECT_EQ(to_string(ustring()), std::string());
}

TEST(DefaultConversion, LongTextsCrossEveryBuffer)
{
    for (std::size_t length : {1023u, 1024u, 1025u, 32768u, 32769u, 100000u}) {
        std::string bytes(length, 'q');
        bytes[length / 2] = 'Z';
        const ustring text = to_ustring(bytes);
        ASSERT_EQ(text.size(), length);
        EXPECT_EQ(text[length / 2], u'Z');
        EXPECT_EQ(to_string(text), bytes);
    }
}

TEST(DefaultConversion, GivenConverterIsNotCalledForEmptySources)
{
    counting_converter cvt;
    EXPECT_EQ(to_ustring(std::string(), cvt), ustring());
    EXPECT_EQ(to_ustring(static_cast<const char*>(nullptr), cvt), ustring());
    EXPECT_EQ(to_ustring("", cvt), ustring());
    EXPECT_EQ(cvt.calls, 0);
    EXPECT_EQ(to_ustring("abc", cvt), u16("abc"));
    EXPECT_EQ(to_ustring(std::string("de"), cvt), u16("de"));
    EXPECT_EQ(cvt.calls, 2);
}

TEST(DefaultConversion, GivenConverterDecidesTheEncoding)
{
    codecvt_string_to_ustring from_utf8("UTF-8", true);
    codecvt_ustring_to_string to_utf8("UTF-8", true);
    EXPECT_EQ(to_ustring(std::string("\xE6\x97\xA5\xE6\x9C\xAC"), from_utf8), u"\u65E5\u672C");
    EXPECT_EQ(to_ustring("\xC3\xA9", from_utf8), u"\u00E9");
    EXPECT_EQ(to_string(u"\U0001F600", to_utf8), "\xF0\x9F\x98\x80");
}

TEST(DefaultConverters, MasterIsFixedAndThreadsHaveTheirOwn)
{
    UConverter* master = lcctype::get_global_codecvt();
    ASSERT_NE(master, nullptr);
    EXPECT_EQ(lcctype::get_global_codecvt(), master);

    UErrorCode status = U_ZERO_ERROR;
    EXPECT_STREQ(ucnv_getName(master, &status), "US-ASCII");

    // A clone is a converter of its own each time.
    auto first = lcctype::clone_codecvt();
    auto second = lcctype::clone_codecvt();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first.get(), second.get());
    EXPECT_NE(first.get(), master);

    UConverter* mine = lcctype::get_cached_codecvt();
    ASSERT_NE(mine, nullptr);
    EXPECT_EQ(lcctype::get_cached_codecvt(), mine);
    UConverter* theirs = nullptr;
    std::thread([&] { theirs = lcctype::get_cached_codecvt(); }).join();
    EXPECT_NE(theirs, nullptr);
    EXPECT_NE(theirs, mine);
    EXPECT_NE(mine, master);
}
