#include <qvi18n/filesystem/converters.hpp>

#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include "tests/filesystem/path_test_text.hpp"
#include <qvi18n/filesystem/detail/converters.hpp>
#include <qvtest/scoped_env.hpp>

#include <gtest/gtest.h>

#include <string>

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using pathtest::u16;

TEST(FixedFileNameConversion, SubstitutesAndReportsTheNeededSize)
{
    EXPECT_EQ(fs::detail::to_filesystem(ustring()), "");
    EXPECT_EQ(fs::detail::from_filesystem(std::string()), ustring());
    // Unpaired surrogates become U+001A on the way out, bad bytes U+FFFD on the way in.
    EXPECT_EQ(fs::detail::to_filesystem(ustring(u"a\xd800"
                                                u"b\xdc00")),
        "a\x1a"
        "b\x1a");
    EXPECT_EQ(fs::detail::from_filesystem("\xff/x\xc3"), u16(u"\ufffd/x\ufffd"));
    // Text goes out as it is: no clean-up at this level.
    EXPECT_EQ(fs::detail::to_filesystem(u16(u"//\u00e9\U0001F600/")), "//\xc3\xa9\xf0\x9f\x98\x80/");

    const ustring text = u16(u"\u65e5\u672c");
    char bytes[4];
    EXPECT_EQ(fs::detail::conversion_to_utf8(bytes, sizeof bytes, text.data(), text.size()), 6u);
    EXPECT_EQ(fs::detail::conversion_to_utf8(nullptr, 0, text.data(), text.size()), 6u);
    char16_t unit[1];
    EXPECT_EQ(fs::detail::conversion_from_utf8(unit, 1, "abc", 3), 3u);
}

TEST(FixedFileNameConversion, FailuresMapToFileSystemExceptions)
{
    // Lengths beyond ICU's range are refused before a unit is read.
    const char16_t unit = u'a';
    char byte = 0;
    EXPECT_THROW(fs::detail::conversion_to_utf8(&byte, 1, &unit, 0x80000000UL), fs::FileNameTooLarge);
    EXPECT_THROW(fs::detail::conversion_to_utf8(&byte, 0x80000000UL, &unit, 1), fs::FileNameTooLarge);
    EXPECT_THROW(fs::detail::conversion_from_utf8(nullptr, 0, "a", 0x80000000UL), fs::FileNameTooLarge);

    using fs::detail::map_codecvt_exception;
    EXPECT_NO_THROW(map_codecvt_exception<char>(U_BUFFER_OVERFLOW_ERROR, 0xFFFFFFFFUL));
    EXPECT_NO_THROW(map_codecvt_exception<char16_t>(U_STRING_NOT_TERMINATED_WARNING, 1));
    EXPECT_THROW(map_codecvt_exception<char>(U_INVALID_CHAR_FOUND, 1), fs::CvtInvalidCharacter);
    EXPECT_THROW(map_codecvt_exception<char16_t>(U_ILLEGAL_CHAR_FOUND, 1), fs::CvtInvalidCharacter);
    EXPECT_THROW(map_codecvt_exception<char16_t>(U_ILLEGAL_CHAR_FOUND, 0x80000000UL), fs::FileNameTooLarge);
    try {
        map_codecvt_exception<char>(U_TRUNCATED_CHAR_FOUND, 1);
        ADD_FAILURE() << "returned";
    } catch (const fs::FileNameConversionFailure& e) {
        EXPECT_EQ(e.get_cvt_code(), 7);
    }
}

namespace {

int utf8_calls = 0;

unsigned long counting_to_utf8(char* d, unsigned long cap, const char16_t* s, unsigned long n)
{
    ++utf8_calls;
    return fs::detail::conversion_to_utf8(d, cap, s, n);
}

} // namespace

// Names are converted once into the first buffer; only a result that outgrows it is converted
// again. The results must not depend on which side of a boundary a name falls.
TEST(FixedFileNameConversion, BufferStagesAtTheirBoundaries)
{
    const struct {
        ustring text;
        int calls;
    } cases[] = {
        {ustring(1024, u'a'), 1}, {ustring(1024, u'\u65e5'), 2}, // 3072 bytes do not fit the stack
        {ustring(1025, u'a'), 1}, {ustring(1025, u'\u00e9'), 2}, {ustring(32768, u'c'), 1},
        {ustring(40000, u'b'), 2}, // the first heap buffer is capped at 32768
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.size());
        utf8_calls = 0;
        const std::string bytes = fl::i18n::lcctype::convert_to_string_utf<char, char16_t>(
            c.text.data(), c.text.size(), &counting_to_utf8);
        EXPECT_EQ(utf8_calls, c.calls);
        EXPECT_EQ(bytes, pathtest::utf16_to_utf8(c.text));
        EXPECT_EQ(fs::detail::from_filesystem(bytes), c.text);
    }
}

namespace {

class recording_converter : public fl::i18n::converter<char, char16_t> {
public:
    mutable int calls = 0;
    unsigned long do_get_destination_size(const char16_t*, unsigned long n) const override { return n; }
    std::string do_convert(const char16_t* s, unsigned long n) const override
    {
        ++calls;
        return "[" + fs::detail::to_filesystem(ustring(s, n)) + "]";
    }
    unsigned long do_convert(char*, unsigned long, const char16_t*, unsigned long n) const override
    {
        return n;
    }
};

} // namespace

TEST(NativeAccessForm, CleansUpPlainTextOnly)
{
    qvtest::scoped_env home("HOME", "/home/tester");
    const ustring raw = u16(u"~//d\u00e9//f/");
    EXPECT_EQ(fs::detail::make_native_access_form(raw), "~//d\xc3\xa9//f/");
    EXPECT_EQ(fs::detail::make_native_access_form_with_cleanup(raw), "/home/tester/d\xc3\xa9/f");
    EXPECT_EQ(fs::detail::make_native_access_form(fs::upath(raw)), "/home/tester/d\xc3\xa9/f");

    recording_converter cvt;
    EXPECT_EQ(fs::detail::make_native_access_form(raw, cvt), "[~//d\xc3\xa9//f/]");
    EXPECT_EQ(fs::detail::make_native_access_form_with_cleanup(raw, cvt), "[/home/tester/d\xc3\xa9/f]");
    EXPECT_EQ(fs::detail::make_native_access_form(ustring(), cvt), "");
    EXPECT_EQ(fs::detail::make_native_access_form_with_cleanup(ustring(), cvt), "");
    EXPECT_EQ(cvt.calls, 2);
}

namespace {

template <class Converter> class ToBytesConverter : public ::testing::Test { };
template <class Converter> class FromBytesConverter : public ::testing::Test { };

typedef ::testing::Types<fs::codecvt_ustring_to_filesystem, fs::codecvt_ustring_to_narrow_string> to_bytes;
typedef ::testing::Types<fs::codecvt_filesystem_to_ustring, fs::codecvt_narrow_string_to_ustring> from_bytes;
TYPED_TEST_SUITE(ToBytesConverter, to_bytes);
TYPED_TEST_SUITE(FromBytesConverter, from_bytes);

} // namespace

TYPED_TEST(ToBytesConverter, Utf8StrictOnRequest)
{
    const TypeParam lenient;
    const TypeParam strict(false);
    const fl::i18n::converter<char, char16_t>& cvt = strict;

    const ustring text = u16(u"d\u00e9j\u00e0 \u65e5\U0001F600");
    const std::string expected = pathtest::utf16_to_utf8(text);
    EXPECT_EQ(cvt.convert(text.data(), text.size()), expected);
    EXPECT_EQ(cvt.get_destination_size(text.data(), text.size()), expected.size());
    char small[3];
    EXPECT_EQ(cvt.convert(small, sizeof small, text.data(), text.size()), expected.size());
    const ustring long_text(5000, u'\u65e5');
    EXPECT_EQ(cvt.convert(long_text.data(), long_text.size()), pathtest::utf16_to_utf8(long_text));

    const ustring bad(u"a\xd800"
                      u"b");
    EXPECT_THROW(strict.convert(bad.data(), bad.size()), fs::CvtInvalidCharacter);
    const std::string substituted = lenient.convert(bad.data(), bad.size());
    EXPECT_EQ(substituted.front(), 'a');
    EXPECT_EQ(substituted.back(), 'b');
    // A failure leaves the converter usable.
    EXPECT_EQ(strict.convert(text.data(), text.size()), expected);
}

TYPED_TEST(FromBytesConverter, Utf8StrictOnRequest)
{
    const TypeParam lenient;
    const TypeParam strict(false);
    const fl::i18n::converter<char16_t, char>& cvt = strict;

    const std::string bytes = "d\xc3\xa9j\xc3\xa0 \xe6\x97\xa5\xf0\x9f\x98\x80";
    const ustring expected = pathtest::utf8_to_utf16(bytes);
    EXPECT_EQ(cvt.convert(bytes.data(), bytes.size()), expected);
    EXPECT_EQ(cvt.get_destination_size(bytes.data(), bytes.size()), expected.size());

    EXPECT_THROW(strict.convert("a\xff"
                                "b",
                     3),
        fs::CvtInvalidCharacter);
    EXPECT_EQ(lenient.convert("a\xff"
                              "b",
                  3),
        u16(u"a\ufffdb"));
    // A sequence cut short at the end is a failed conversion, not an invalid character.
    try {
        strict.convert("a\xe6\x97", 3);
        ADD_FAILURE() << "no failure for a truncated sequence";
    } catch (const fs::FileNameConversionFailure& e) {
        EXPECT_EQ(e.get_cvt_code(), 7);
    }
}
