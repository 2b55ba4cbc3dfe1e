// Conversion in pieces: state across calls, flush, a full target, failures and reset.
#include <qvi18n/i18n/conversion/stream_codecvt.hpp>

#include <qvtest/text.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace fl::i18n;

namespace {

// Feeds `pieces` one after another, flushing with the last, through a target of `room` units at
// a time; returns everything written.
template <typename To, typename From>
std::basic_string<To> feed(const stream_converter<To, From>& cvt,
    const std::vector<std::basic_string<From>>& pieces, std::size_t room = 64)
{
    std::basic_string<To> out;
    std::vector<To> buffer(room);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const From* source = pieces[i].data();
        const From* const source_end = source + pieces[i].size();
        int more = 0;
        do {
            To* target = buffer.data();
            more = cvt.convert(&target, buffer.data() + room, &source, source_end, i + 1 == pieces.size());
            out.append(buffer.data(), target);
        } while (more == 1);
        EXPECT_EQ(source, source_end);
    }
    return out;
}

// UTF-8 with characters of two, three and four bytes.
const std::string utf8_text = "a\xC3\xA9"
                              "b\xE6\x97\xA5"
                              "c\xF0\x9F\x98\x80"
                              "d";
const ustring utf16_text = u"a\u00E9b\u65E5c\U0001F600d";

} // namespace

TEST(StreamConversion, ToUnicodeSplitAtEveryByteAndPairOfBytes)
{
    const stream_codecvt_string_to_ustring cvt("UTF-8", false);
    for (std::size_t i = 0; i <= utf8_text.size(); ++i) {
        EXPECT_EQ(feed(cvt, {utf8_text.substr(0, i), utf8_text.substr(i)}), utf16_text) << "split at " << i;
        for (std::size_t j = i; j <= utf8_text.size(); ++j)
            ASSERT_EQ(feed(cvt, {utf8_text.substr(0, i), utf8_text.substr(i, j - i), utf8_text.substr(j)}),
                utf16_text)
                << "split at " << i << " and " << j;
    }
}

TEST(StreamConversion, FromUnicodeSplitInsideAPairAndIntoAStatefulEncoding)
{
    const stream_codecvt_ustring_to_string utf8("UTF-8", false);
    for (std::size_t i = 0; i <= utf16_text.size(); ++i)
        EXPECT_EQ(feed(utf8, {utf16_text.substr(0, i), utf16_text.substr(i)}), utf8_text) << "split at " << i;

    // A stateful encoding writes its closing shift sequence only when flushed.
    const stream_codecvt_ustring_to_string jis("ISO-2022-JP", false);
    const ustring japanese = u"x\u65E5\u672Cy";
    const std::string whole = feed(jis, {japanese});
    EXPECT_EQ(whole, "x\x1B$BF|K\\\x1B(By");
    for (std::size_t i = 0; i <= japanese.size(); ++i)
        EXPECT_EQ(feed(jis, {japanese.substr(0, i), japanese.substr(i)}), whole) << "split at " << i;
    const ustring ends_shifted = u"\u65E5";
    EXPECT_EQ(feed(jis, {ends_shifted}), "\x1B$BF|\x1B(B");
}

TEST(StreamConversion, FullTargetReturnsOneAndPointersShowProgress)
{
    const stream_codecvt_string_to_ustring cvt("UTF-8", true);
    const char* source = utf8_text.data();
    const char* const end = source + utf8_text.size();
    ustring out;
    int calls = 0;
    for (;;) {
        char16_t unit = 0;
        char16_t* target = &unit;
        const char* const before = source;
        const int more = cvt.convert(&target, &unit + 1, &source, end, true);
        ++calls;
        EXPECT_GE(source, before);
        out.append(&unit, target);
        if (more == 0)
            break;
        ASSERT_EQ(more, 1);
        ASSERT_EQ(target, &unit + 1) << "a full target was reported for a target with room";
        ASSERT_LT(calls, 100);
    }
    EXPECT_EQ(out, utf16_text);
    EXPECT_GE(calls, static_cast<int>(utf16_text.size()));
    // One-byte targets towards UTF-8 split the characters' bytes and lose none.
    const stream_codecvt_ustring_to_string back("UTF-8", true);
    EXPECT_EQ(feed(back, {utf16_text}, 1), utf8_text);
}

TEST(StreamConversion, FlushOnAPartialCharacterFailsAndTheNextTextStartsClean)
{
    // A strict stream reports the cut character as a failed conversion, not an invalid one.
    const stream_codecvt_string_to_ustring cvt("UTF-8", false);
    std::string piece = "x\xE6\x97";
    ustring out(8, u'\0');
    char16_t* target = &out[0];
    const char* source = piece.data();
    try {
        cvt.convert(&target, &out[0] + out.size(), &source, source + piece.size(), true);
        FAIL() << "no exception";
    } catch (const CvtConversionFailure& e) {
        EXPECT_EQ(e.get_code(), 7);
    }
    // The lead bytes are gone: the next text starts with a character of its own.
    EXPECT_EQ(feed(cvt, {std::string("\xE6\x97\xA5y")}), u"\u65E5y");
    // A lenient stream substitutes the cut character instead.
    EXPECT_EQ(feed(stream_codecvt_string_to_ustring("UTF-8", true), {std::string("x\xE6\x97")}), u"x\uFFFD");

    // reset_state forgets a partial character kept between calls.
    piece = "\xE6\x97";
    target = &out[0];
    source = piece.data();
    EXPECT_EQ(cvt.convert(&target, &out[0] + out.size(), &source, source + piece.size(), false), 0);
    EXPECT_EQ(target, &out[0]);
    cvt.reset_state();
    EXPECT_EQ(feed(cvt, {std::string("z")}), u"z");

    const stream_codecvt_ustring_to_string back("UTF-8", false);
    const ustring high = u"a\xD83D";
    std::string bytes(8, '\0');
    char* to = &bytes[0];
    const char16_t* from = high.data();
    EXPECT_THROW(back.convert(&to, &bytes[0] + bytes.size(), &from, from + high.size(), true), CvtConversionFailure);
    EXPECT_EQ(feed(back, {ustring(u"\U0001F600")}), "\xF0\x9F\x98\x80");
    // Without a reset, a kept high surrogate would pair with what follows.
    to = &bytes[0];
    from = high.data();
    EXPECT_EQ(back.convert(&to, &bytes[0] + bytes.size(), &from, from + high.size(), false), 0);
    back.reset_state();
    EXPECT_THROW(feed(back, {ustring(u"\xDE00")}), CvtExceptionBase);
}

TEST(StreamConversion, StrictStreamsRefuseInvalidTextAndGoOnClean)
{
    const stream_codecvt_string_to_ustring strict("UTF-8", false);
    EXPECT_THROW(feed(strict, {std::string("a\xFF"), std::string("b")}), CvtInvalidCharacter);
    EXPECT_EQ(feed(strict, {std::string("\xE6\x97\xA5")}), u"\u65E5");

    const stream_codecvt_ustring_to_string to_latin1("ISO-8859-1", false);
    EXPECT_THROW(feed(to_latin1, {ustring(u"a\u65E5")}), CvtInvalidCharacter);
    EXPECT_EQ(feed(to_latin1, {ustring(u"\u00E9")}), "\xE9");
    const stream_codecvt_ustring_to_string lenient("ISO-8859-1", true);
    EXPECT_EQ(feed(lenient, {ustring(u"a\u65E5")}), "a\x1A");
}

TEST(StreamConversion, EscapesSurviveATinyTargetAndAPairSplitAcrossCalls)
{
    // A BMP character, a zero-width space (unassigned and default-ignorable in Latin-1, so
    // ICU's own escape would drop it) and one above the BMP.
    const ustring text = u"a\u65E5\u200Bb\U0001F600c";
    const struct {
        codecvt_call_back_mode mode;
        const char* expected;
    } modes[] = {
        {call_back_escape_icu, "a%U65E5%U200Bb%UD83D%UDE00c"},
        {call_back_escape_java, "a\\u65E5\\u200Bb\\uD83D\\uDE00c"},
        {call_back_escape_c, "a\\u65E5\\u200Bb\\U0001F600c"},
        {call_back_escape_xml_dec, "a&#26085;&#8203;b&#128512;c"},
        {call_back_escape_xml_hex, "a&#x65E5;&#x200B;b&#x1F600;c"},
        {call_back_escape_unicode, "a{U+65E5}{U+200B}b{U+1F600}c"},
        {call_back_escape_css2, "a\\65E5 \\200B b\\1F600 c"},
    };
    const std::size_t pair = text.find(u'\xD83D') + 1;
    for (const auto& m : modes) {
        const stream_codecvt_ustring_to_string cvt("ISO-8859-1", m.mode);
        EXPECT_EQ(feed(cvt, {text}), m.expected) << m.mode;
        // One byte of room at a time, the pair cut between its halves: the escape is written
        // in pieces and nothing of it is lost or doubled.
        EXPECT_EQ(feed(cvt, {text.substr(0, pair), text.substr(pair)}, 1), m.expected) << m.mode;
    }
    // The default mode is ICU's substitution, which still lets the zero-width space go.
    EXPECT_EQ(feed(stream_codecvt_ustring_to_string("ISO-8859-1", call_back_default), {text}), "a\x1A" "b\x1A" "c");
    EXPECT_THROW(
        feed(stream_codecvt_ustring_to_string("ISO-8859-1", call_back_invalid_check), {text}), CvtInvalidCharacter);
    EXPECT_THROW(stream_codecvt_ustring_to_string("UTF-8", call_back_substitution), CvtInvalidArgument);
    EXPECT_THROW(stream_codecvt_ustring_to_string("UTF-8", call_back_unsupported), CvtNonSupportedMode);
}

TEST(StreamConversion, MaxCharSizeAndEncodings)
{
    EXPECT_EQ(stream_codecvt_ustring_to_string("UTF-8", true).max_char_size(), 4);
    EXPECT_EQ(stream_codecvt_string_to_ustring("UTF-8", true).max_char_size(), 2);
    EXPECT_EQ(stream_codecvt_ustring_to_string("Shift_JIS", true).max_char_size(), 2);
    // No encoding: the global locale's, the built-in US-ASCII here.
    EXPECT_EQ(stream_codecvt_ustring_to_string("", true).max_char_size(), 1);
    EXPECT_THROW(stream_codecvt_string_to_ustring("no-such-encoding", true), CvtInvalidEncodingName);
    EXPECT_THROW(stream_codecvt_ustring_to_string("no-such-encoding", false), CvtInvalidEncodingName);
}
