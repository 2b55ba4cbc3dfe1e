#include <qvi18n/i18n/locale/lcdata.hpp>

#include <gtest/gtest.h>

using fl::i18n::LcData;

namespace {

TEST(LcDataKeys, FoldAsciiOnlyAndReturnTheStoredSpelling)
{
    LcData data;
    data.addLcName("de_DE", "ISO-8859-1", "de_DE.ISO8859-1");
    EXPECT_EQ("de_DE", data.getLcName("DE_de"));
    EXPECT_EQ("ISO-8859-1", data.getDefaultEncoding("dE_De"));
    EXPECT_EQ("de_DE.ISO8859-1", data.getXpgLcName("DE_DE"));

    // Bytes from 0x80 are not letters to us: neither UTF-8 nor Latin-1 capitals fold.
    data.addLcName("\xC3\x84_x", "", ""); // "Ä" in UTF-8
    data.addLcName("\xC0_y", "", ""); // "À" in Latin-1
    EXPECT_EQ("\xC3\x84_x", data.getLcName("\xC3\x84_X"));
    EXPECT_EQ("", data.getLcName("\xC3\xA4_x"));
    EXPECT_EQ("", data.getLcName("\xE0_y"));

    data.addEncodingName("X-\xC3\x84NC", "");
    EXPECT_TRUE(data.checkEncoding("x-\xC3\x84nc"));
    EXPECT_FALSE(data.checkEncoding("x-\xC3\xA4nc"));
}

TEST(LcDataKeys, FirstDefinitionWinsAcrossNamesAndAliases)
{
    LcData data;
    LcData::DefaultLcCtxPtr de = data.addLcName("de_DE", "ISO-8859-1", "de_DE.ISO8859-1");
    ASSERT_TRUE(de);

    LcData::DefaultLcCtxPtr again = data.addLcName("DE_DE", "UTF-8", "de_DE.UTF-8");
    EXPECT_EQ(de, again);
    EXPECT_EQ("de_DE", again->name);
    EXPECT_EQ("ISO-8859-1", again->encoding);

    data.addAliasLcName(de, "German");
    EXPECT_EQ("de_DE", data.getLcName("GERMAN"));

    // A later locale definition under the alias's key lands on the alias's record.
    LcData::DefaultLcCtxPtr german = data.addLcName("german", "UTF-8", "");
    EXPECT_EQ(de, german);
    EXPECT_EQ("de_DE", data.getLcName("german"));

    // An alias replaces neither a name nor an earlier alias.
    LcData::DefaultLcCtxPtr fr = data.addLcName("fr_FR", "ISO-8859-1", "");
    data.addAliasLcName(fr, "de_de");
    data.addAliasLcName(fr, "german");
    data.addAliasLcName(fr, "french");
    EXPECT_EQ("de_DE", data.getLcName("de_DE"));
    EXPECT_EQ("de_DE", data.getLcName("german"));
    EXPECT_EQ("fr_FR", data.getLcName("FRENCH"));
    EXPECT_EQ(fr, data.getLcCtx("French"));
}

TEST(LcDataKeys, MissesAreOrdinaryResults)
{
    LcData data;
    EXPECT_FALSE(data.getLcCtx("xx_XX"));
    EXPECT_EQ("", data.getLcName("xx_XX"));
    EXPECT_EQ("", data.getDefaultEncoding("xx_XX"));
    EXPECT_EQ("", data.getXpgLcName("xx_XX"));
    EXPECT_TRUE(data.getL10nFlag("xx_XX"));
    EXPECT_FALSE(data.checkEncoding("UTF-8"));

    std::string const unknown = "NoSuchCode";
    EXPECT_EQ(&unknown, &data.getEncodingFromAlias(unknown));
    EXPECT_EQ(&unknown, &data.getJvmEncoding(unknown));
    EXPECT_EQ("", data.getQvStandardEncodingName(unknown));
}

TEST(LcDataL10nFlag, OnlyThisPlatformsLetterDisablesAndTheLastListDecides)
{
    LcData data;
    EXPECT_EQ("I", data.getPlatformTag());
    LcData::DefaultLcCtxPtr ja = data.addLcName("ja_JP", "EUC-JP", "ja_JP.eucJP");
    EXPECT_TRUE(ja->l10n);

    data.addL10nFlag(ja, "i");
    EXPECT_TRUE(data.getL10nFlag("ja_jp"));
    data.addL10nFlag(ja, "MWX");
    EXPECT_TRUE(data.getL10nFlag("ja_JP"));
    data.addL10nFlag(ja, "MIW");
    EXPECT_FALSE(data.getL10nFlag("JA_JP"));
    data.addL10nFlag(ja, "W");
    EXPECT_TRUE(data.getL10nFlag("ja_JP"));

    // The flag belongs to the record, so it is seen through an alias too.
    data.addAliasLcName(ja, "japanese");
    data.addL10nFlag(ja, "I");
    EXPECT_FALSE(data.getL10nFlag("Japanese"));
}

TEST(LcDataEncodings, AliasesCanonicalNamesAndFirstDefinitionWins)
{
    LcData data;
    data.addEncodingName("UTF-8", "UTF8");
    data.addEncodingName("utf-8", "SomethingElse"); // same key: dropped
    data.addEncodingAlias("utf8", "UTF-8");
    data.addEncodingAlias("UTF8", "Other"); // same key: dropped
    data.addEncodingName("ISO-8859-1", "");
    // An alias given first keeps its target even when the name is later defined as an encoding.
    data.addEncodingAlias("latin9", "ISO-8859-15");
    data.addEncodingName("Latin9", "ISO8859_15");

    EXPECT_TRUE(data.checkEncoding("utf-8"));
    EXPECT_TRUE(data.checkEncoding("UTF8"));
    EXPECT_EQ("UTF-8", data.getEncodingFromAlias("Utf8"));
    EXPECT_EQ("UTF-8", data.getEncodingFromAlias("utf-8"));
    EXPECT_EQ("UTF-8", data.getQvStandardEncodingName("UTF8"));
    EXPECT_EQ("ISO-8859-15", data.getEncodingFromAlias("LATIN9"));

    EXPECT_EQ("UTF8", data.getJvmEncoding("UTF-8"));
    EXPECT_EQ("UTF8", data.getJvmEncoding("utf-8"));
    // An empty JVM name gives back the argument.
    EXPECT_EQ("iso-8859-1", data.getJvmEncoding("iso-8859-1"));
    EXPECT_EQ("ISO8859_15", data.getJvmEncoding("latin9"));

    data.clear();
    EXPECT_FALSE(data.checkEncoding("UTF-8"));
    EXPECT_EQ("UTF-8", data.getJvmEncoding("UTF-8"));
    EXPECT_EQ("I", data.getPlatformTag());
}

TEST(LcDataEncodings, AliasReachesTheJvmNameOnlyThroughALowerCaseCanonicalName)
{
    LcData data;
    data.addEncodingName("UTF-8", "UTF8");
    data.addEncodingAlias("utf8", "UTF-8");
    data.addEncodingName("euc-jp", "EUC_JP");
    data.addEncodingAlias("eucJP", "euc-jp");
    data.addEncodingName("shift_jis", "");
    data.addEncodingAlias("sjis", "shift_jis");
    data.addEncodingAlias("dangling", "NOWHERE");

    EXPECT_EQ("utf8", data.getJvmEncoding("utf8"));
    EXPECT_EQ("UTF8", data.getJvmEncoding("UTF-8"));
    EXPECT_EQ("EUC_JP", data.getJvmEncoding("EUCJP"));
    EXPECT_EQ("SJIS", data.getJvmEncoding("SJIS"));
    EXPECT_EQ("Dangling", data.getJvmEncoding("Dangling"));
}

TEST(LcDataClear, DropsEverythingReadSoFar)
{
    LcData data;
    LcData::DefaultLcCtxPtr de = data.addLcName("de_DE", "ISO-8859-1", "");
    data.addAliasLcName(de, "german");
    data.addEncodingName("ISO-8859-1", "ISO8859_1");
    data.clear();
    EXPECT_EQ("", data.getLcName("de_DE"));
    EXPECT_EQ("", data.getLcName("german"));
    EXPECT_FALSE(data.checkEncoding("ISO-8859-1"));

    // Filling works again afterwards, with fresh records.
    LcData::DefaultLcCtxPtr again = data.addLcName("de_DE", "UTF-8", "");
    EXPECT_NE(de, again);
    EXPECT_EQ("UTF-8", data.getDefaultEncoding("de_DE"));
}

} // namespace
