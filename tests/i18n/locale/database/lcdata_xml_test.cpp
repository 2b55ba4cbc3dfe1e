// The locale database reader: what a document puts into LcData, and how each kind of bad
// document or file is reported.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml_parser.hpp>

#include <qvtest/scoped_temp_dir.hpp>


#include <gtest/gtest.h>

#include <expat.h>

#include <string>
#include <vector>

using fl::filesystem::native_path;
using fl::i18n::LcData;

namespace {

void parseText(LcData& data, std::string const& xml)
{
    qvtest::scoped_temp_dir dir("lcdata-xml");
    fl::i18n::parseLcData(data, native_path(dir.write_file("lcdata.xml", xml)));
}

// Parses and returns the reader's failure; fails the test if the document is accepted.
fl::i18n::LcRscInvalidXmlDoc refusal(std::string const& xml, LcData& data)
{
    try {
        parseText(data, xml);
    } catch (fl::i18n::LcRscInvalidXmlDoc const& e) {
        return e;
    }
    ADD_FAILURE() << "accepted: " << xml;
    return fl::i18n::LcRscInvalidXmlDoc(0, 0, 0, "");
}

fl::i18n::LcRscInvalidXmlDoc refusal(std::string const& xml)
{
    LcData data;
    return refusal(xml, data);
}

std::string const kDocument = R"(<?xml version="1.0" encoding="UTF-8"?>
<lcdata>
  text between elements is ignored
  <locale name="de_DE" encoding="UTF-8" xpg_name="de_DE.UTF-8" colour="unknown attributes are ignored">
    <alias name="de_DE.utf8"/>
    <alias name="de"/>
    <l10n disable="MI"/>
  </locale>
  <locale name="ja_JP" encoding="EUC-JP">
    <alias name="ja"/>
    <l10n disable="M"/>
  </locale>
  <codeset>
    <encoding name="UTF-8" jvm_encoding="UTF8">
      <encoding_alias name="utf8"/>
    </encoding>
    <encoding name="euc-jp" jvm_encoding="EUC_JP">
      <encoding_alias name="eucjp"/>
    </encoding>
    <encoding name="ISO-8859-1"/>
  </codeset>
</lcdata>
)";

} // namespace

TEST(LcDataXml, DocumentFillsLocalesAndEncodings)
{
    LcData data;
    parseText(data, kDocument);

    EXPECT_EQ(data.getLcName("DE_de.UTF8"), "de_DE");
    EXPECT_EQ(data.getLcName("de"), "de_DE");
    EXPECT_EQ(data.getDefaultEncoding("de"), "UTF-8");
    EXPECT_EQ(data.getXpgLcName("de_DE"), "de_DE.UTF-8");
    EXPECT_FALSE(data.getL10nFlag("de_DE"));
    EXPECT_TRUE(data.getL10nFlag("ja"));
    EXPECT_EQ(data.getDefaultEncoding("ja_JP"), "EUC-JP");
    EXPECT_EQ(data.getXpgLcName("ja_JP"), "");

    EXPECT_TRUE(data.checkEncoding("Utf8"));
    EXPECT_TRUE(data.checkEncoding("iso-8859-1"));
    EXPECT_EQ(data.getEncodingFromAlias("EUCJP"), "euc-jp");
    EXPECT_EQ(data.getJvmEncoding("utf-8"), "UTF8");
    EXPECT_EQ(data.getJvmEncoding("eucjp"), "EUC_JP"); // canonical name spelled in lower case
    EXPECT_EQ(data.getJvmEncoding("ISO-8859-1"), "ISO-8859-1");
}

TEST(LcDataXml, DocumentStreamedAcrossBufferBoundariesKeepsEveryName)
{
    // Names with multi-byte characters, enough of them that pieces of names, tags and characters
    // straddle every read of the streaming loop.
    std::string xml = "<lcdata>\n";
    std::vector<std::string> names;
    for (int i = 0; i < 400; ++i) {
        std::string name = "x\xC3\xA9" + std::to_string(i) + "_\xE6\x97\xA5";
        names.push_back(name);
        xml += "<locale name=\"" + name + "\" xpg_name=\"" + name + ".UTF-8\"><alias name=\"a"
            + std::to_string(i) + "\"/></locale>\n";
    }
    xml += "</lcdata>";
    ASSERT_GT(xml.size(), 10u * 1024u);

    LcData data;
    parseText(data, xml);
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(data.getLcName("a" + std::to_string(i)), names[i]);
        EXPECT_EQ(data.getXpgLcName(names[i]), names[i] + ".UTF-8");
    }
}

TEST(LcDataXml, DeclarationMustNameUtf8)
{
    LcData data;
    EXPECT_NO_THROW(
        parseText(data, "<?xml version=\"1.0\" encoding=\"utf-8\"?><lcdata><locale name=\"a\"/></lcdata>"));
    EXPECT_EQ(data.getLcName("a"), "a");
    EXPECT_NO_THROW(parseText(data, "<lcdata><locale name=\"b\"/></lcdata>")); // no declaration at all

    for (std::string decl : {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>", "<?xml version=\"1.0\"?>",
             "<?xml version=\"1.0\" encoding=\"UTF-16\"?>"}) {
        LcData refused;
        auto e = refusal(decl + "<lcdata><locale name=\"c\"/></lcdata>", refused);
        EXPECT_EQ(e.get_code(), XML_ERROR_ABORTED) << decl;
        EXPECT_EQ(e.get_line(), 1u) << decl;
        EXPECT_EQ(refused.getLcCtx("c"), nullptr) << decl << ": stopped before any element";
    }
}

TEST(LcDataXml, ParseErrorTextCarriesCodeColumnAndLineOnly)
{
    auto e = refusal("<lcdata>\n  <codeset>\n  </lcdata>\n");
    EXPECT_EQ(e.get_code(), XML_ERROR_TAG_MISMATCH);
    EXPECT_STREQ(e.what(), "XML Parse error detected with 7 at column, 4, on line, 3 in resource file.");
    EXPECT_EQ(e.get_identifier(), "fl:i18n:LcRscInvalidXmlDoc");

    EXPECT_EQ(refusal("").get_code(), XML_ERROR_NO_ELEMENTS);
    EXPECT_EQ(refusal("<lcdata>").get_code(), XML_ERROR_NO_ELEMENTS);
    EXPECT_EQ(refusal("<lcdata/><lcdata/>").get_code(), XML_ERROR_JUNK_AFTER_DOC_ELEMENT);
}

TEST(LcDataXml, RequiredAttributesMissingOrEmptyStopTheParse)
{
    for (std::string body : {"<locale/>", "<locale name=\"\" encoding=\"UTF-8\"/>",
             "<locale name=\"a\"><alias/></locale>", "<locale name=\"a\"><alias name=\"\"/></locale>",
             "<locale name=\"a\"><l10n/></locale>", "<locale name=\"a\"><l10n disable=\"\"/></locale>",
             "<codeset><encoding jvm_encoding=\"X\"/></codeset>",
             "<codeset><encoding name=\"X\"><encoding_alias/></encoding></codeset>"}) {
        EXPECT_EQ(refusal("<lcdata>" + body + "</lcdata>").get_code(), XML_ERROR_ABORTED) << body;
    }
}

TEST(LcDataXml, NestingIsChecked)
{
    for (std::string body : {"<locale name=\"a\"><encoding_alias name=\"x\"/></locale>", "<unknown/>",
             "<locale name=\"a\"><unknown/></locale>",
             "<codeset><encoding name=\"u\"><b/></encoding></codeset>", "<alias name=\"x\"/>",
             "<codeset><locale name=\"a\"/></codeset>", "<encoding name=\"u\"/>"}) {
        EXPECT_EQ(refusal("<lcdata>" + body + "</lcdata>").get_code(), XML_ERROR_ABORTED) << body;
    }

    // Any known element may be the root.
    LcData data;
    parseText(data, "<locale name=\"x\" encoding=\"UTF-8\"><alias name=\"y\"/></locale>");
    EXPECT_EQ(data.getLcName("y"), "x");
    parseText(data, "<codeset><encoding name=\"Z\"/></codeset>");
    EXPECT_TRUE(data.checkEncoding("z"));
}

TEST(LcDataXml, EncodingAliasWithoutItsEncodingIsRefused)
{
    // As root there is no enclosing encoding to attach to.
    EXPECT_EQ(refusal("<encoding_alias name=\"x\"/>").get_code(), XML_ERROR_ABORTED);
}

TEST(LcDataXml, AliasAndFlagAsRootHaveNothingToAttachTo)
{
    LcData data;
    EXPECT_NO_THROW(parseText(data, "<alias name=\"lonely\"/>"));
    EXPECT_EQ(data.getLcCtx("lonely"), nullptr);
    EXPECT_NO_THROW(parseText(data, "<l10n disable=\"I\"/>"));
}

TEST(LcDataXml, LocaleDirectlyInsideLocaleIsAppliedThenFailsAtTheOuterEnd)
{
    LcData data;
    auto e
        = refusal("<lcdata>\n<locale name=\"outer\">\n<locale name=\"inner\"/>\n</locale>\n</lcdata>", data);
    EXPECT_EQ(e.get_code(), XML_ERROR_ABORTED);
    EXPECT_EQ(e.get_line(), 4u); // the outer end tag
    EXPECT_EQ(data.getLcName("outer"), "outer");
    EXPECT_EQ(data.getLcName("inner"), "inner");
}

TEST(LcDataXml, RepeatedLocaleCollectsIntoTheFirstRecord)
{
    LcData data;
    parseText(data,
        "<lcdata><locale name=\"de_DE\" encoding=\"ISO-8859-1\" xpg_name=\"de_DE\"/>"
        "<locale name=\"DE_de\" encoding=\"UTF-8\"><alias name=\"deutsch\"/><l10n disable=\"I\"/></locale>"
        "</lcdata>");
    EXPECT_EQ(data.getLcName("deutsch"), "de_DE");
    EXPECT_EQ(data.getDefaultEncoding("deutsch"), "ISO-8859-1");
    EXPECT_FALSE(data.getL10nFlag("de_de"));
}

TEST(LcDataXml, FailedParseKeepsWhatCameBeforeUntilCleared)
{
    LcData data;
    refusal("<lcdata><locale name=\"early\"/><codeset><encoding name=\"E\"/></codeset><bad/></lcdata>", data);
    EXPECT_EQ(data.getLcName("early"), "early");
    EXPECT_TRUE(data.checkEncoding("e"));
    data.clear();
    EXPECT_EQ(data.getLcCtx("early"), nullptr);
    EXPECT_FALSE(data.checkEncoding("e"));
}

TEST(LcDataXml, HandlerTakesTheFirstNonEmptyAttribute)
{
    LcData data;
    fl::i18n::LcdbEventHandler handler(data);
    char const* lcdata[] = {nullptr};
    ASSERT_EQ(handler.startEntry("lcdata", lcdata), 0);
    char const* locale[] = {"name", "", "encoding", "", "name", "de_DE", "encoding", "UTF-8", "name", "later",
        "xpg_name", "de_DE.UTF-8", nullptr};
    ASSERT_EQ(handler.startEntry("locale", locale), 0);
    EXPECT_EQ(data.getLcName("de_DE"), "de_DE");
    EXPECT_EQ(data.getDefaultEncoding("de_DE"), "UTF-8");
    EXPECT_EQ(data.getXpgLcName("de_DE"), "de_DE.UTF-8");
    EXPECT_EQ(data.getLcCtx("later"), nullptr);

    char const* aliasNull[] = {"name", nullptr, nullptr};
    EXPECT_EQ(handler.startEntry("alias", aliasNull), -2);
}

TEST(LcDataXml, HandlerDeclarationCheck)
{
    LcData data;
    fl::i18n::LcdbEventHandler handler(data);
    EXPECT_EQ(handler.getEncoding(), "UTF-8");
    EXPECT_EQ(handler.checkXMLDoc("1.0", "uTf-8", -1), 0);
    EXPECT_EQ(handler.checkXMLDoc("1.0", "UTF-8 ", -1), -2);
    EXPECT_EQ(handler.checkXMLDoc("1.0", "UTF8", -1), -2);
    EXPECT_EQ(handler.checkXMLDoc("1.0", nullptr, 1), -2);
    EXPECT_EQ(handler.entryData("ignored", 7), 0);
}

TEST(LcDataXml, ValidatorSameNameQuirkAndFirstRowWins)
{
    fl::i18n::EventValidator v;
    v.setEventDesc("root", 1, "");
    v.setEventDesc("item", 2, "root");
    v.setEventDesc("item", 9, "elsewhere"); // ignored: the first row stays

    EXPECT_EQ(v.checkEndEvent("root"), -2); // nothing open
    EXPECT_EQ(v.checkStartEvent("item"), 2); // any element may open the document
    EXPECT_EQ(v.checkEndEvent("item"), 0);

    EXPECT_EQ(v.checkStartEvent("root"), 1);
    EXPECT_EQ(v.checkStartEvent("item"), 2);
    EXPECT_EQ(v.checkStartEvent("item"), 2); // same name: taken, not stacked
    EXPECT_EQ(v.checkEndEvent("item"), 0); // the inner end closes the outer one
    EXPECT_EQ(v.checkEndEvent("item"), -2); // so the outer end meets the parent
    EXPECT_EQ(v.checkStartEvent("other"), -2);
    EXPECT_EQ(v.checkEndEvent("root"), 0);
}

TEST(LcDataXml, MissingFileNamesTheEscapedPath)
{
    qvtest::scoped_temp_dir dir("lcdata-xml");
    std::string missing = dir / "no\nsuch \xC3\xA9\x7F.xml";
    std::string escaped = dir.path() + "/noAsuch C3A97F.xml";
    LcData data;
    try {
        fl::i18n::parseLcData(data, native_path(missing));
        FAIL() << "opened a missing file";
    } catch (fl::i18n::LcRscOpenFileFailure const& e) {
        EXPECT_EQ(std::string(e.what()), "Failed to open file " + escaped + ".");
        EXPECT_EQ(e.get_identifier(), "fl:i18n:LcRscOpenFileFailure");
    }
}

// A directory opens but cannot be read: the one read failure a test can bring about.
TEST(LcDataXml, DirectoryFailsAsARead)
{
    qvtest::scoped_temp_dir dir("lcdata-xml");
    LcData data;
    try {
        fl::i18n::parseLcData(data, native_path(dir.path()));
        FAIL() << "a directory parsed";
    } catch (fl::i18n::LcRscFileReadFailure const& e) {
        EXPECT_EQ(std::string(e.what()), "Failed to read file " + dir.path() + ".");
        EXPECT_EQ(e.get_identifier(), "fl:i18n:LcRscFileReadFailure");
    }
}

