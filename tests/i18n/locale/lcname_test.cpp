#include <qvi18n/i18n/locale/lcdata.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using fl::i18n::LcData;

namespace {

struct Pieces {
    std::string shortName, language, territory, encoding, modifier;
};

Pieces split(std::string const& name)
{
    LcData::typeLcElement e;
    LcData::breakLcName(e, name);
    return {e.shortName, e.language, e.territory, e.encoding, e.modifier};
}

void expect_pieces(std::string const& name, Pieces const& expected)
{
    SCOPED_TRACE("name '" + name + "'");
    Pieces got = split(name);
    EXPECT_EQ(expected.shortName, got.shortName);
    EXPECT_EQ(expected.language, got.language);
    EXPECT_EQ(expected.territory, got.territory);
    EXPECT_EQ(expected.encoding, got.encoding);
    EXPECT_EQ(expected.modifier, got.modifier);
}

TEST(BreakLcName, ModifierAtFirstAtEncodingAtLastDotTerritoryAtLastUnderscore)
{
    expect_pieces("de_DE.UTF-8@euro", {"de_DE", "de", "DE", "UTF-8", "euro"});
    expect_pieces("zh_Hans_CN", {"zh_Hans_CN", "zh_Hans", "CN", "", ""});
    expect_pieces("a@b.c_d", {"a", "a", "", "", "b.c_d"});
    expect_pieces("x@m1@m2", {"x", "x", "", "", "m1@m2"});
    expect_pieces(
        "ja_JP.x.y", {"ja_JP.x", "ja", "JP.x", "y", ""}); // "_" searched after the cut at the last "."
    expect_pieces("sr_RS.UTF-8@latin", {"sr_RS", "sr", "RS", "UTF-8", "latin"});
    expect_pieces("fr", {"fr", "fr", "", "", ""});
    expect_pieces(".UTF-8", {"", "", "", "UTF-8", ""});
    expect_pieces("de_", {"de_", "de", "", "", ""});
}

TEST(BreakLcName, BuiltInNames)
{
    Pieces const builtin {"en_US_POSIX", "en", "US", "US-ASCII", ""};
    for (char const* name : {"C", "c", "POSIX", "posix", "PoSiX", "en_US_POSIX", "en_US_POSIX.US-ASCII"}) {
        expect_pieces(name, builtin);
    }
    // The POSIX name itself is matched with its case; other spellings are ordinary names.
    expect_pieces("EN_US_POSIX", {"EN_US_POSIX", "EN_US", "POSIX", "", ""});
    expect_pieces("en_US_POSIX.UTF-8", {"en_US_POSIX", "en_US", "POSIX", "UTF-8", ""});
    expect_pieces("en_US_POSIX.us-ascii", {"en_US_POSIX", "en_US", "POSIX", "us-ascii", ""});
    expect_pieces("C.UTF-8", {"C", "C", "", "UTF-8", ""});
}

TEST(BreakLcName, PiecesTheNameLacksKeepTheirValue)
{
    LcData::typeLcElement e;
    e.shortName = e.language = e.territory = e.encoding = e.modifier = "old";
    LcData::breakLcName(e, "");
    EXPECT_EQ("old", e.shortName);
    EXPECT_EQ("old", e.language);

    LcData::breakLcName(e, "fr");
    EXPECT_EQ("fr", e.shortName);
    EXPECT_EQ("fr", e.language);
    EXPECT_EQ("old", e.territory);
    EXPECT_EQ("old", e.encoding);
    EXPECT_EQ("old", e.modifier);

    // The built-in locale sets four pieces and leaves the modifier.
    LcData::breakLcName(e, "C");
    EXPECT_EQ("en_US_POSIX", e.shortName);
    EXPECT_EQ("US-ASCII", e.encoding);
    EXPECT_EQ("old", e.modifier);
}

TEST(BuildLcName, JoinsTheNonEmptyPiecesAndNeedsALanguage)
{
    EXPECT_EQ("de_DE.UTF-8@euro", LcData::buildLcName("de", "DE", "UTF-8", "euro"));
    EXPECT_EQ("de@euro", LcData::buildLcName("de", "", "", "euro"));
    EXPECT_EQ("de.UTF-8", LcData::buildLcName("de", "", "UTF-8", ""));
    EXPECT_EQ("de", LcData::buildLcName("de", "", "", ""));
    EXPECT_EQ("", LcData::buildLcName("", "US", "UTF-8", "x"));

    // Round trip through the grammar.
    LcData::typeLcElement e;
    LcData::breakLcName(e, "zh_Hans_CN.GB18030@stroke");
    EXPECT_EQ(
        "zh_Hans_CN.GB18030@stroke", LcData::buildLcName(e.language, e.territory, e.encoding, e.modifier));
}

TEST(FallbackList, StripsOneLevelAndComparesOnlyTheLastEntry)
{
    using List = std::vector<std::string>;
    List list;
    fl::i18n::make_locale_fallback_list(list, "en_US", "en_US");
    EXPECT_EQ((List {"en_US", "en", "en_US"}), list);

    list.clear();
    fl::i18n::make_locale_fallback_list(list, "en_US", "en");
    EXPECT_EQ((List {"en_US", "en"}), list);

    list.clear();
    fl::i18n::make_locale_fallback_list(list, "zh_Hans_CN", "en");
    EXPECT_EQ((List {"zh_Hans_CN", "zh_Hans", "en"}), list);

    list.clear();
    fl::i18n::make_locale_fallback_list(list, "en", "en");
    EXPECT_EQ((List {"en"}), list);

    // The list is appended to, not replaced.
    list = {"keep"};
    fl::i18n::make_locale_fallback_list(list, "fr", "");
    EXPECT_EQ((List {"keep", "fr", ""}), list);
}

TEST(FallbackList, WideFormBehavesAlike)
{
    using List = std::vector<fl::i18n::ustring>;
    List list;
    fl::i18n::make_locale_fallback_list(list, u"ja_JP", u"ja");
    EXPECT_EQ((List {u"ja_JP", u"ja"}), list);
    fl::i18n::make_locale_fallback_list(list, u"en_US", u"en_US");
    EXPECT_EQ((List {u"ja_JP", u"ja", u"en_US", u"en", u"en_US"}), list);
}

} // namespace
