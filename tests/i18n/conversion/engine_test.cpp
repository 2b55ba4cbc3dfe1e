// The whole-string engine through the named-encoding converters: buffer boundaries, the dropped
// incomplete tail, writing into a caller's buffer, and the state left after each call.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace fl::i18n;

namespace {

// n repetitions of a three-byte UTF-8 character, "日".
std::string japanese_utf8(std::size_t n)
{
    std::string s;
    for (std::size_t i = 0; i < n; ++i)
        s += "\xE6\x97\xA5";
    return s;
}

ustring mixed_text(std::size_t units)
{
    static const char16_t pattern[] = u"ab\u00E9\u65E5\U0001F600z";
    ustring s;
    const std::size_t period = sizeof(pattern) / sizeof(pattern[0]) - 1;
    for (std::size_t i = 0; s.size() < units; ++i) {
        const char16_t unit = pattern[i % period];
        // Never leave half a pair at the end.
        if (s.size() + 1 == units && unit >= 0xD800 && unit <= 0xDBFF)
            s += u'x';
        else
            s += unit;
    }
    return s;
}

} // namespace

TEST(ConversionEngine, OutputLongerThanTheFirstBufferTakesASecondRun)
{
    codecvt_ustring_to_string to_utf8("UTF-8", true);
    codecvt_string_to_ustring from_utf8("UTF-8", true);
    // 1024 units that grow to 3072 bytes, and texts around the first-buffer bound.
    for (std::size_t n : {1024u, 1025u, 11000u, 32768u, 40000u}) {
        const ustring text(n, u'\u65E5');
        const std::string bytes = to_utf8.convert(text.data(), text.size());
        ASSERT_TRUE(bytes == japanese_utf8(n)) << n;
        EXPECT_EQ(to_utf8.get_destination_size(text.data(), text.size()), bytes.size());
        EXPECT_TRUE(from_utf8.convert(bytes.data(), bytes.size()) == text) << n;
    }
}

TEST(ConversionEngine, EqualTextGivesEqualResultOnEitherSideOfTheStackBound)
{
    codecvt_ustring_to_string to_sjis("Shift_JIS", true);
    const ustring text = mixed_text(1025);
    const std::string whole = to_sjis.convert(text.data(), text.size());
    const std::string head = to_sjis.convert(text.data(), 1024);
    const std::string tail = to_sjis.convert(text.data() + 1024, 1);
    EXPECT_TRUE(whole == head + tail);
}

TEST(ConversionEngine, LongTextEqualsItsPiecesJoined)
{
    codecvt_ustring_to_string to_gb("GB18030", true);
    codecvt_string_to_ustring from_gb("GB18030", true);
    const ustring text = mixed_text(100000);
    std::string pieces;
    // Pieces of whole periods of the pattern, so that no piece splits a surrogate pair.
    for (std::size_t at = 0; at < text.size(); at += 490)
        pieces += to_gb.convert(text.data() + at, std::min<std::size_t>(490, text.size() - at));
    const std::string whole = to_gb.convert(text.data(), text.size());
    ASSERT_TRUE(whole == pieces);
    EXPECT_TRUE(from_gb.convert(whole.data(), whole.size()) == text);
}

TEST(ConversionEngine, IncompleteTailIsDroppedSilentlyEvenWhenChecking)
{
    for (bool allow_invalid : {true, false}) {
        codecvt_string_to_ustring from_utf8("UTF-8", allow_invalid);
        const std::string cut = "ok\xE6\x97"; // the last character lacks its third byte
        EXPECT_EQ(from_utf8.convert(cut.data(), cut.size()), u"ok");
        EXPECT_EQ(from_utf8.get_destination_size(cut.data(), cut.size()), 2u);
        // Nothing of the dropped bytes is left behind for the next call: the missing byte alone
        // is not taken as the end of the character.
        if (allow_invalid)
            EXPECT_EQ(from_utf8.convert("\xA5", 1), u"\uFFFD");
        else
            EXPECT_THROW(from_utf8.convert("\xA5", 1), CvtInvalidCharacter);

        codecvt_ustring_to_string to_utf8("UTF-8", allow_invalid);
        const ustring high_at_end = u"ok\xD83D";
        EXPECT_EQ(to_utf8.convert(high_at_end.data(), high_at_end.size()), "ok");
    }
    // The long path drops a tail the same way.
    codecvt_string_to_ustring strict("UTF-8", false);
    const std::string long_cut = std::string(50000, 'a') + "\xF0\x9F\x98";
    EXPECT_TRUE(strict.convert(long_cut.data(), long_cut.size()) == ustring(50000, u'a'));
}

TEST(ConversionEngine, StrictConverterFailsCleanlyAndRecovers)
{
    codecvt_string_to_ustring from_utf8("UTF-8", false);
    const std::string bad = "abc\xFF"
                            "def";
    EXPECT_THROW(from_utf8.convert(bad.data(), bad.size()), CvtInvalidCharacter);
    EXPECT_THROW(from_utf8.get_destination_size(bad.data(), bad.size()), CvtInvalidCharacter);
    char16_t buffer[16];
    EXPECT_THROW(from_utf8.convert(buffer, 16, bad.data(), bad.size()), CvtInvalidCharacter);
    // A failure deep in a long text, after the first buffer has filled.
    const std::string long_bad = japanese_utf8(20000) + "\xC3";
    const std::string long_bad_mid = long_bad + "x";
    EXPECT_THROW(from_utf8.convert(long_bad_mid.data(), long_bad_mid.size()), CvtInvalidCharacter);
    // Each failure left the converter reset: a valid text converts whole.
    EXPECT_EQ(from_utf8.convert("\xC3\xA9!", 3), u"\u00E9!");

    codecvt_ustring_to_string to_latin1("ISO-8859-1", false);
    const ustring unmappable = u"a\u65E5b";
    EXPECT_THROW(to_latin1.convert(unmappable.data(), unmappable.size()), CvtInvalidCharacter);
    const ustring fine = u"\u00E9t\u00E9";
    EXPECT_EQ(to_latin1.convert(fine.data(), fine.size()), "\xE9t\xE9");

    codecvt_ustring_to_string lenient("ISO-8859-1", true);
    EXPECT_EQ(lenient.convert(unmappable.data(), unmappable.size()),
        "a\x1A"
        "b");
}

TEST(ConversionEngine, SmallDestinationIsFilledAndTheFullSizeReturned)
{
    codecvt_ustring_to_string to_latin1("ISO-8859-1", true);
    const ustring text = u"0123456789";
    char buffer[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(to_latin1.convert(buffer, 4, text.data(), text.size()), 10u);
    EXPECT_EQ(std::string(buffer, 8), "0123####");

    // Towards UTF-16, with the destination far smaller than the result and the counting buffer
    // filling several times over.
    codecvt_string_to_ustring from_utf8("UTF-8", true);
    const std::string bytes = japanese_utf8(5000);
    std::vector<char16_t> small(100, u'#');
    EXPECT_EQ(from_utf8.convert(small.data(), 10, bytes.data(), bytes.size()), 5000u);
    EXPECT_EQ(ustring(small.data(), 11), ustring(10, u'\u65E5') + u"#");

    // No buffer at all only measures; an exact fit writes everything.
    EXPECT_EQ(from_utf8.convert(nullptr, 0, bytes.data(), bytes.size()), 5000u);
    std::vector<char16_t> exact(5000);
    EXPECT_EQ(from_utf8.convert(exact.data(), exact.size(), bytes.data(), bytes.size()), 5000u);
    EXPECT_TRUE(ustring(exact.begin(), exact.end()) == ustring(5000, u'\u65E5'));
}

TEST(ConversionEngine, DestinationSizeAgreesWithConversion)
{
    const ustring text = mixed_text(70001);
    for (const char* encoding : {"UTF-8", "Shift_JIS", "GB18030", "ISO-8859-1", "windows-1252", "UTF-16BE"}) {
        codecvt_ustring_to_string to_bytes(encoding, true);
        const std::string bytes = to_bytes.convert(text.data(), text.size());
        EXPECT_EQ(to_bytes.get_destination_size(text.data(), text.size()), bytes.size()) << encoding;
        codecvt_string_to_ustring to_units(encoding, true);
        const ustring back = to_units.convert(bytes.data(), bytes.size());
        EXPECT_EQ(to_units.get_destination_size(bytes.data(), bytes.size()), back.size()) << encoding;
    }
}

TEST(ConversionEngine, StatefulEncodingNeverWritesItsClosingShift)
{
    // ISO-2022-JP shifts into JIS X 0208 for the kanji; with no flush the return to ASCII is
    // never written, and the next call starts again in ASCII.
    codecvt_ustring_to_string to_jis("ISO-2022-JP", true);
    const ustring text = u"a\u65E5";
    const std::string out = to_jis.convert(text.data(), text.size());
    EXPECT_EQ(out, "a\x1B$BF|");
    EXPECT_EQ(to_jis.convert(text.data(), text.size()), out);
}

TEST(ConversionEngine, WholeBufferTemplatesRetryOnlyWhenTheFirstBufferIsShort)
{
    // Writes two bytes per source unit and reports the full size, as the whole-buffer functions do.
    int calls = 0;
    auto doubling = [&calls](char* destination, unsigned long size, const char16_t*, unsigned long length) {
        ++calls;
        const unsigned long needed = 2 * length;
        for (unsigned long i = 0; i < needed && i < size; ++i)
            destination[i] = 'x';
        return needed;
    };
    auto doubling_with_converter
        = [&](UConverter*, char* destination, unsigned long size, const char16_t* source,
              unsigned long length) { return doubling(destination, size, source, length); };
    for (std::size_t n : {10u, 512u, 513u, 1024u, 1025u, 16384u, 16385u, 40000u}) {
        const ustring text(n, u'a');
        // The first buffer holds min(n, 32768) units beyond the stack's 1024.
        const std::size_t first = n <= 1024 ? 1024 : std::min<std::size_t>(n, 32768);
        calls = 0;
        const std::string out = lcctype::convert_to_string_utf<char, char16_t>(text.data(), n, doubling);
        EXPECT_TRUE(out == std::string(2 * n, 'x'));
        EXPECT_EQ(calls, 2 * n <= first ? 1 : 2) << n;

        calls = 0;
        const std::string generic = lcctype::convert_to_string_generic<char, char16_t>(
            nullptr, text.data(), n, doubling_with_converter);
        EXPECT_TRUE(generic == out);
        EXPECT_EQ(calls, 2 * n <= first ? 1 : 2) << n;
    }
}

TEST(ConversionEngine, ResultGrowsRightWhenTheTextChangesDensity)
{
    // The first buffer fills on text of one density and the rest is of another: the prediction
    // made from the first part is too small (ASCII, then Japanese) or too large (the reverse).
    codecvt_ustring_to_string to_utf8("UTF-8", true);
    codecvt_string_to_ustring from_utf8("UTF-8", true);
    const ustring ascii(40000, u'a');
    const ustring kanji(40000, u'\u65E5');
    for (const ustring& text : {ascii + kanji, kanji + ascii, ascii + kanji + ascii + kanji}) {
        const std::string bytes = to_utf8.convert(text.data(), text.size());
        std::string expected;
        for (char16_t unit : text)
            expected += unit == u'a' ? std::string("a") : japanese_utf8(1);
        ASSERT_TRUE(bytes == expected);
        // What is held beyond the result stays within the first-buffer bound.
        EXPECT_LE(bytes.capacity() - bytes.size(), 32768u);

        const ustring back = from_utf8.convert(bytes.data(), bytes.size());
        ASSERT_TRUE(back == text);
        EXPECT_LE(back.capacity() - back.size(), 32768u);
    }
    // A short input that overflows the stack buffer carries on in the heap.
    const ustring short_kanji(1000, u'\u65E5');
    EXPECT_TRUE(to_utf8.convert(short_kanji.data(), short_kanji.size()) == japanese_utf8(1000));
}
