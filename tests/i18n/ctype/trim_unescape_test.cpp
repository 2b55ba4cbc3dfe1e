#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/ctype/trim.hpp>
#include <qvi18n/i18n/ctype/unescape.hpp>

#include <qvtest/text.hpp>

#include <gtest/gtest.h>

#include <vector>

using namespace fl::i18n;
using qvtest::hex_dump;

TEST(CtypeTrim, BothEndsOneEndInPlaceAndCopied)
{
    struct trim_case {
        ustring text, set, both, left, right;
    };
    const std::vector<trim_case> cases = {
        {u"  a b  ", u" ", u"a b", u"a b  ", u"  a b"},
        {u"  a b  ", u"", u"  a b  ", u"  a b  ", u"  a b  "},
        {u" \t\n", u"\n\t ", u"", u"", u""},
        {u"", u" ", u"", u"", u""},
        {u"xyabcyx", u"yx", u"abc", u"abcyx", u"xyabc"},
        // The set holds code units: one half of a pair trims that half alone.
        {u"\U0001F600a\U0001F600", u"\xD83D", u"\xDE00" u"a\U0001F600", u"\xDE00" u"a\U0001F600", u"\U0001F600a\U0001F600"},
    };
    for (const trim_case& c : cases) {
        SCOPED_TRACE(hex_dump(c.text) + " by " + hex_dump(c.set));
        EXPECT_EQ(trim_copy(c.text, c.set), c.both);
        EXPECT_EQ(trim_copy_left(c.text, c.set), c.left);
        EXPECT_EQ(trim_copy_right(c.text, c.set), c.right);
        ustring both = c.text, left = c.text, right = c.text;
        trim(both, c.set);
        trim_left(left, c.set);
        trim_right(right, c.set);
        EXPECT_EQ(both, c.both);
        EXPECT_EQ(left, c.left);
        EXPECT_EQ(right, c.right);
    }
}

TEST(CtypeUnescape, EveryEscapeFormAsIcuReadsIt)
{
    const std::vector<std::pair<ustring, ustring>> cases = {
        {u"", u""},
        {u"plain text", u"plain text"},
        {u"a\\tb", u"a\tb"},
        {u"\\a\\b\\e\\f\\n\\r\\t\\v", u"\a\b\x1B\f\n\r\t\v"},
        {u"\\u00e9t\\u00C9", u"\u00E9t\u00C9"},
        {u"\\U0001F600", u"\U0001F600"},
        {u"\\uD83D\\uDE00", u"\U0001F600"},
        {u"\\x41\\x7", u"A\x07"},
        {u"\\x414", u"A4"},
        {u"\\x{1F600}\\x{41}", u"\U0001F600A"},
        {u"\\101\\1012\\0", ustring(u"AA2") + char16_t(0)},
        {u"\\cA\\cz", u"\x01\x1A"},
        {u"\\c", u"c"},
        {u"\\q\\\\\\\"", u"q\\\""},
        {u"\\\U0001F600", u"\U0001F600"},
        {u"caf\u00E9 \\u2603", u"caf\u00E9 \u2603"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(hex_dump(c.first));
        EXPECT_EQ(unescape_c_mode(c.first), c.second) << hex_dump(unescape_c_mode(c.first));
    }
}

TEST(CtypeUnescape, AMalformedOrCutOffEscapeEmptiesTheWholeResult)
{
    for (const ustring text : {u"abc\\", u"\\", u"ok \\u12", u"ok \\u12G4", u"\\U0001F60", u"\\x", u"\\xZ",
             u"\\x{", u"\\x{41", u"\\x{123456789}", u"\\x{}", u"fine\\n then \\U00110000"}) {
        EXPECT_EQ(unescape_c_mode(text), u"") << hex_dump(text);
    }
}
