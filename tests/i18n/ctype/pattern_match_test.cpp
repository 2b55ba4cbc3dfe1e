// Whole-string regular-expression matching with case and normalisation modes.
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ctype/pattern_match.hpp>

#include <gtest/gtest.h>


#include <string>

using namespace fl::i18n;

namespace {

const unsigned int case_insensitive_mode = 0x1;
const unsigned int nfc_mode = 0x2;
const unsigned int nfd_mode = 0x6;

bool throwing_match(const ustring& pattern, unsigned int mode, const ustring& text)
{
    return pattern_match(pattern, character_handling_mode_context(mode)).match(text);
}

// The non-throwing form must agree with the throwing one; it reports through the id.
bool simple_match(const ustring& pattern, unsigned int mode, const ustring& text)
{
    simple_pattern_match m;
    EXPECT_EQ(m.open(pattern, character_handling_mode_context(mode)), regex_success);
    regex_excp_id id = regex_not_opened;
    const bool matched = m.match(text, id);
    EXPECT_EQ(id, regex_success);
    return matched;
}

struct match_case {
    const char16_t* pattern;
    unsigned int mode;
    const char16_t* text;
    bool expected;
};

void expect_table(const match_case* cases, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        const match_case& c = cases[i];
        SCOPED_TRACE(testing::Message() << "case " << i << " mode " << c.mode);
        EXPECT_EQ(throwing_match(c.pattern, c.mode, c.text), c.expected);
        EXPECT_EQ(simple_match(c.pattern, c.mode, c.text), c.expected);
    }
}

} // namespace

TEST(PatternMatch, MetacharactersLiteralAndActive)
{
    const match_case cases[] = {
        // Each metacharacter escaped stands for itself, and only for itself.
        {u"a\\.b", 0, u"a.b", true},
        {u"a\\.b", 0, u"axb", false},
        {u"\\^\\$\\|\\?\\*\\+", 0, u"^$|?*+", true},
        {u"\\(\\)\\[\\]\\{\\}\\\\", 0, u"()[]{}\\", true},
        {u"\\Q.*+?^$|()[]{}\\E", 0, u".*+?^$|()[]{}", true},
        {u"\\Q.*\\E", 0, u"abc", false},
        {u"[.*+?^$|(){}]+", 0, u"{*}.(?)", true},
        {u"[\\[\\]\\\\-]+", 0, u"[]\\-", true},
        // Unescaped, they act: wildcard directory patterns are built from these.
        {u".*\\.txt", 0, u"notes.txt", true},
        {u".*\\.txt", 0, u"notes_txt", false},
        {u"a.c", 0, u"a\U0001F600c", true},
        {u"(ab|cd){2}", 0, u"abcd", true},
        {u"x?y+z*", 0, u"yyy", true},
        {u"^abc$", 0, u"abc", true},
        // The whole subject must match; a prefix, suffix or inner match is not enough.
        {u"abc", 0, u"abcd", false},
        {u"bcd", 0, u"abcd", false},
        {u"b", 0, u"abc", false},
        {u".*", 0, u"", true},
        {u"a*", 0, u"", true},
        {u"a+", 0, u"", false},
    };
    expect_table(cases, sizeof cases / sizeof cases[0]);
}

TEST(PatternMatch, CaseModes)
{
    const match_case cases[] = {
        {u"abc", 0, u"ABC", false},
        {u"abc", case_insensitive_mode, u"ABC", true},
        {u"[a-c]+\\.TXT", case_insensitive_mode, u"CAB.txt", true},
        {u"\u00E4\u00F6\u00FC", case_insensitive_mode, u"\u00C4\u00D6\u00DC", true},
        {u"\u03C3\u03BF\u03C6\u03CC\u03C2", case_insensitive_mode, u"\u03A3\u039F\u03A6\u038C\u03A3", true},
        {u"\U00010428", case_insensitive_mode, u"\U00010400", true}, // Deseret, a surrogate pair
        {u"\U00010428", 0, u"\U00010400", false},
        // Case-insensitive does not mean normalising.
        {u"\u00E9", case_insensitive_mode, u"E\u0301", false},
    };
    expect_table(cases, sizeof cases / sizeof cases[0]);
}

TEST(PatternMatch, NormalisationModes)
{
    const ustring composed = u"caf\u00E9";
    const ustring decomposed = u"cafe\u0301";
    const match_case cases[] = {
        {composed.c_str(), 0, decomposed.c_str(), false},
        {composed.c_str(), nfc_mode, decomposed.c_str(), true},
        {composed.c_str(), nfd_mode, decomposed.c_str(), true},
        {decomposed.c_str(), nfc_mode, composed.c_str(), true},
        {decomposed.c_str(), nfd_mode, composed.c_str(), true},
        // Hangul syllable against its conjoining jamo.
        {u"\uD55C", nfc_mode, u"\u1112\u1161\u11AB", true},
        {u"\uD55C", nfd_mode, u"\u1112\u1161\u11AB", true},
        {u"\uD55C", 0, u"\u1112\u1161\u11AB", false},
        // Combining marks in another order are canonically the same text.
        {u"q\u0323\u0307", nfc_mode, u"q\u0307\u0323", true},
        {u"q\u0323\u0307", 0, u"q\u0307\u0323", false},
        // Both treatments together: case and form both differ.
        {u"CAF\u00C9", case_insensitive_mode | nfc_mode, decomposed.c_str(), true},
        {u"CAF\u00C9", case_insensitive_mode | nfd_mode, decomposed.c_str(), true},
        {u"CAF\u00C9", nfc_mode, decomposed.c_str(), false},
        // Lone surrogates pass through normalisation untouched and match themselves only.
        {u"a\xD800" u"b", nfc_mode, u"a\xD800" u"b", true},
        {u"a\xDC00", nfd_mode, u"a\xDC00", true},
        {u"a\xD800" u"b", 0, u"ab", false},
        {u"a.b", 0, u"a\xDFFF" u"b", true},
        // The locale bit changes nothing here.
        {composed.c_str(), nfc_mode | 0x8, decomposed.c_str(), true},
    };
    expect_table(cases, sizeof cases / sizeof cases[0]);
}

TEST(PatternMatch, NormalisesTextsLongerThanTheStackBuffer)
{
    // 700 composed characters grow to 1400 units in NFD, 2000 decomposed ones shrink in NFC.
    ustring composed;
    ustring decomposed;
    for (int i = 0; i < 700; ++i) {
        composed += u'\u00E9';
        decomposed += u"e\u0301";
    }
    ustring long_decomposed;
    for (int i = 0; i < 2000; ++i)
        long_decomposed += u"e\u0301";
    EXPECT_TRUE(throwing_match(u"(\u00E9){700}", nfd_mode, composed));
    EXPECT_TRUE(simple_match(u"(\u00E9){700}", nfd_mode, decomposed));
    EXPECT_TRUE(simple_match(u"\u00E9{2000}", nfc_mode, long_decomposed));
    EXPECT_FALSE(simple_match(u"\u00E9{1999}", nfc_mode, long_decomposed));
    EXPECT_TRUE(throwing_match(long_decomposed, nfc_mode, ustring(2000, u'\u00E9')));
}

TEST(PatternMatchErrors, ThrowingFormRaisesTypedExceptions)
{
    const character_handling_mode_context mode(0);
    try {
        pattern_match(ustring(), mode);
        FAIL() << "an empty pattern was accepted";
    } catch (const RegexInvalidArgument& e) {
        EXPECT_STREQ(e.what(), "fl:i18n:RegexInvalidArgument");
        EXPECT_EQ(e.get_code(), 2);
    }
    const char16_t* const malformed[] = {u"[abc", u"(a", u"a{2,1}", u"*a", u"\\", u"a)"};
    for (std::size_t i = 0; i < sizeof malformed / sizeof malformed[0]; ++i) {
        const char16_t* bad = malformed[i];
        SCOPED_TRACE(testing::Message() << "malformed pattern " << i);
        try {
            pattern_match(bad, mode);
            FAIL() << "a malformed pattern was accepted";
        } catch (const RegexFailedObjectCreation& e) {
            EXPECT_STREQ(e.what(), "fl:i18n:RegexFailedObjectCreation");
            EXPECT_EQ(e.get_code(), 4);
        }
    }
    EXPECT_THROW(pattern_match(u"", character_handling_mode_context(nfc_mode)), std::exception);
}

TEST(PatternMatchErrors, SimpleFormReportsByIdAndStaysInItsFirstState)
{
    const character_handling_mode_context mode(0);
    regex_excp_id id = regex_success;

    simple_pattern_match unopened;
    EXPECT_FALSE(unopened.match(u"x", id));
    EXPECT_EQ(id, regex_invalid_object);

    simple_pattern_match empty;
    EXPECT_EQ(empty.open(ustring(), mode), regex_invalid_argument);
    EXPECT_EQ(empty.open(u"x", mode), regex_invalid_argument);
    id = regex_success;
    EXPECT_FALSE(empty.match(u"x", id));
    EXPECT_EQ(id, regex_invalid_object);

    simple_pattern_match bad;
    EXPECT_EQ(bad.open(u"[abc", mode), regex_failed_object_creation);
    EXPECT_EQ(bad.open(u"abc", mode), regex_failed_object_creation);
    id = regex_success;
    EXPECT_FALSE(bad.match(u"abc", id));
    EXPECT_EQ(id, regex_invalid_object);

    simple_pattern_match good;
    EXPECT_EQ(good.open(u"a.c", character_handling_mode_context(case_insensitive_mode)), regex_success);
    EXPECT_EQ(good.open(u"zzz", mode), regex_success); // the first pattern stays
    EXPECT_TRUE(good.match(u"AbC", id));
    EXPECT_EQ(id, regex_success);
    EXPECT_FALSE(good.match(u"zzz", id));
    EXPECT_EQ(id, regex_success);
}

TEST(PatternMatchErrors, FailedMatchOperation)
{
    // Backtracking over a long subject runs out of ICU's match stack: the match fails rather
    // than answering false.
    const ustring pattern = u"(a|b)*c";
    const ustring subject(4000000, u'a');
    try {
        throwing_match(pattern, 0, subject);
        FAIL() << "the match did not fail";
    } catch (const RegexFailedMatchOperation& e) {
        EXPECT_STREQ(e.what(), "fl:i18n:RegexFailedMatchOperation");
        EXPECT_EQ(e.get_code(), 5);
    }
    simple_pattern_match m;
    ASSERT_EQ(m.open(pattern, character_handling_mode_context(0)), regex_success);
    regex_excp_id id = regex_success;
    EXPECT_FALSE(m.match(subject, id));
    EXPECT_EQ(id, regex_failed_match_operation);
    // The object stays usable after a failed match.
    EXPECT_TRUE(m.match(u"abac", id));
    EXPECT_EQ(id, regex_success);
}
