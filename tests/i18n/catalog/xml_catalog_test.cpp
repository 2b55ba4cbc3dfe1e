// Catalog files read through the XML loader into the entry table: how texts reflow, which files
// load, and what is kept when one doesn't.
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <map>
#include <string>

namespace {

// Test paths and texts are UTF-8 here; the library takes UTF-16.
inline std::u16string w(const std::string& s)
{
    icu::UnicodeString u = icu::UnicodeString::fromUTF8(s);
    return std::u16string(u.getBuffer(), static_cast<std::size_t>(u.length()));
}

using fl::filesystem::upath;
using fl::i18n::XMLCatalogDataStore;
using fl::i18n::XMLCatalogFileLoader;

class XmlCatalog : public ::testing::Test {
protected:
    // Writes `content` as the catalog file and loads it into `store`.
    bool load(const std::string& content)
    {
        const std::string file = dir.write_file("cat.xml", content);
        XMLCatalogFileLoader loader;
        return loader.loadFile(upath(w(file)), store);
    }

    bool load_entries(const std::string& entries)
    {
        return load("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rsccat version=\"1.0\" locale=\"en\">\n"
                    "<message>\n"
            + entries + "</message>\n</rsccat>\n");
    }

    std::u16string text(const std::string& key)
    {
        std::u16string_view found;
        if (!store.find(key, found)) {
            ADD_FAILURE() << "no entry " << key;
            return std::u16string();
        }
        return std::u16string(found);
    }

    qvtest::scoped_temp_dir dir;
    XMLCatalogDataStore store;
};

TEST_F(XmlCatalog, EachLineIsTrimmedAndLinesAreJoinedByOneSpace)
{
    ASSERT_TRUE(load_entries("<entry key=\"one\">  Hello  </entry>\n"
                             "    <entry key=\"three\">Hello\n"
                             "        big   \n"
                             "\t\tworld</entry>\n"
                             "<entry key=\"inner\">keeps   inner\tspace</entry>\n"
                             "<entry key=\"open\">\n"
                             "   starts on the next line\n"
                             "</entry>\n"));
    EXPECT_EQ(std::u16string(u"Hello"), text("one"));
    EXPECT_EQ(std::u16string(u"Hello big world"), text("three"));
    EXPECT_EQ(std::u16string(u"keeps   inner\tspace"), text("inner"));
    EXPECT_EQ(std::u16string(u"starts on the next line"), text("open"));
    EXPECT_EQ(4u, store.size());
}

TEST_F(XmlCatalog, BlankLinesInsideATextDifferByWhetherTheyHoldWhiteSpace)
{
    // A line of white space is an empty line and doubles the space; a truly empty line never
    // reaches the parser and adds nothing.
    ASSERT_TRUE(load_entries("<entry key=\"ws\">a\n   \nb</entry>\n"
                             "<entry key=\"empty\">a\n\nb</entry>\n"));
    EXPECT_EQ(std::u16string(u"a  b"), text("ws"));
    EXPECT_EQ(std::u16string(u"a b"), text("empty"));
}

TEST_F(XmlCatalog, WindowsLineEndsReflowLikePlainOnes)
{
    ASSERT_TRUE(load("<rsccat>\r\n<message>\r\n<entry key=\"k\">first\r\n  second  \r\n</entry>\r\n"
                     "<entry key=\"one\">  x  </entry>\r\n</message>\r\n</rsccat>\r\n"));
    EXPECT_EQ(std::u16string(u"first second"), text("k"));
    EXPECT_EQ(std::u16string(u"x"), text("one"));
}

TEST_F(XmlCatalog, EntitiesAndCharacterReferencesStayInTheirLine)
{
    ASSERT_TRUE(load_entries("<entry key=\"amp\">a &amp; b</entry>\n"
                             "<entry key=\"refs\">&lt;tag&gt; &#233;t&#xE9;\n"
                             "  &quot;q&quot;</entry>\n"
                             "<entry key=\"cdata\"><![CDATA[x < y]]></entry>\n"));
    EXPECT_EQ(std::u16string(u"a & b"), text("amp"));
    EXPECT_EQ(std::u16string(u"<tag> \u00e9t\u00e9 \"q\""), text("refs"));
    EXPECT_EQ(std::u16string(u"x < y"), text("cdata"));
}

TEST_F(XmlCatalog, BackslashEscapesAreResolvedAfterTrimming)
{
    ASSERT_TRUE(load_entries("<entry key=\"nl\">  line\\n  </entry>\n"
                             "<entry key=\"u\">caf\\u00e9 \\t tab</entry>\n"
                             "<entry key=\"two\">one\\n\n   two</entry>\n"
                             "<entry key=\"bad\">broken \\u12</entry>\n"));
    EXPECT_EQ(std::u16string(u"line\n"), text("nl"));
    EXPECT_EQ(std::u16string(u"caf\u00e9 \t tab"), text("u"));
    EXPECT_EQ(std::u16string(u"one\n two"), text("two"));
    // A malformed escape leaves nothing of the text.
    EXPECT_EQ(std::u16string(u""), text("bad"));
}

TEST_F(XmlCatalog, TextIsUtf8WhateverTheDeclarationSays)
{
    ASSERT_TRUE(load("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<rsccat><message>\n"
                     "<entry key=\"ja\">\xe3\x83\x95\xe3\x82\xa1\xe3\x82\xa4\xe3\x83\xab {0}</entry>\n"
                     "<entry key=\"fr\">d\xc3\xa9j\xc3\xa0 \xf0\x9f\x98\x80</entry>\n"
                     "</message></rsccat>\n"));
    EXPECT_EQ(std::u16string(u"\u30d5\u30a1\u30a4\u30eb {0}"), text("ja"));
    EXPECT_EQ(std::u16string(u"d\u00e9j\u00e0 \U0001F600"), text("fr"));
}

TEST_F(XmlCatalog, DuplicateKeysKeepTheFirstText)
{
    ASSERT_TRUE(load_entries("<entry key=\"k\">first</entry>\n<entry key=\"k\">second</entry>\n"));
    EXPECT_EQ(1u, store.size());
    EXPECT_EQ(std::u16string(u"first"), text("k"));
}

TEST_F(XmlCatalog, TextOutsideEntriesAndUnknownAttributesAreIgnoredAndAttributesJoinTheirLines)
{
    ASSERT_TRUE(load("<rsccat version=\"2\" locale=\"xx\" extra=\"1\">stray\n<message note=\"n\">more stray\n"
                     "<entry id=\"7\" key=\"k\">text</entry> behind\n"
                     "<entry key=\"multi\nline\">v</entry>\n</message>\n</rsccat>\n"));
    EXPECT_EQ(2u, store.size());
    // An attribute value loses its line break, since the parser never sees it.
    EXPECT_EQ(std::u16string(u"v"), text("multiline"));
    EXPECT_EQ(std::u16string(u"text"), text("k"));
}

TEST_F(XmlCatalog, EmptyCatalogsLoadAsEmptyTables)
{
    for (const char* content : {"<rsccat><message></message></rsccat>\n", "<rsccat/>\n",
             "<rsccat>\n</rsccat>", "<rsccat><message/></rsccat>", ""}) {
        XMLCatalogDataStore fresh;
        const std::string file = dir.write_file("empty.xml", content);
        EXPECT_TRUE(XMLCatalogFileLoader().loadFile(upath(w(file)), fresh)) << content;
        EXPECT_TRUE(fresh.empty()) << content;
    }
}

TEST_F(XmlCatalog, TruncationIsToleratedOnlyAtALineBoundary)
{
    ASSERT_TRUE(load("<rsccat><message>\n<entry key=\"a\">A</entry>\n<entry key=\"b\">B\n"));
    EXPECT_EQ(std::u16string(u"A"), text("a"));
    EXPECT_EQ(1u, store.size());

    // Without a final line break the last line is parsed as the end of the document.
    EXPECT_FALSE(load("<rsccat><message>\n<entry key=\"a\">A</entry>\n<entry key=\"b\">B"));
    EXPECT_FALSE(load("<rsccat><message>\n<entry key=\"a\">A</entry>\n</message>"));
    EXPECT_TRUE(load("<rsccat><message>\n<entry key=\"a\">A</entry>\n</message></rsccat>"));
}

TEST_F(XmlCatalog, MalformedCatalogsFailAndKeepWhatWasReadBefore)
{
    const std::map<std::string, std::string> cases = {
        {"unknown element", "<entry key=\"a\">A</entry>\n<other/>\n"},
        {"second message", "<entry key=\"a\">A</entry>\n</message><message>\n"},
        {"entry without key", "<entry key=\"a\">A</entry>\n<entry>B</entry>\n"},
        {"empty key", "<entry key=\"a\">A</entry>\n<entry key=\"\">B</entry>\n"},
        {"not well formed", "<entry key=\"a\">A</entry>\n<entry key=\"b\">B</entyr>\n"},
        {"tag split over lines", "<entry key=\"a\">A</entry>\n<entry\nkey=\"b\">B</entry>\n"},
    };
    for (const auto& c : cases) {
        XMLCatalogDataStore fresh;
        const std::string file
            = dir.write_file("bad.xml", "<rsccat><message>\n" + c.second + "</message></rsccat>\n");
        EXPECT_FALSE(XMLCatalogFileLoader().loadFile(upath(w(file)), fresh)) << c.first;
        // What came before the fault is in the store; the caller decides to drop it.
        ASSERT_EQ(1u, fresh.size()) << c.first;
        EXPECT_EQ(std::u16string(u"A"), std::u16string(fresh.text_at(0))) << c.first;
    }
}

TEST_F(XmlCatalog, WrongStructureFails)
{
    EXPECT_FALSE(load("<message><entry key=\"a\">A</entry></message>\n")) << "no root";
    EXPECT_FALSE(load("<rsccat><entry key=\"a\">A</entry></rsccat>\n")) << "entry outside message";
    EXPECT_FALSE(load("<rsccat/>\n<rsccat/>\n")) << "second root";
    EXPECT_FALSE(load("<rsccat><rsccat/></rsccat>\n")) << "nested root";
    EXPECT_FALSE(load("<rsccat><message>\n<entry key=\"a\">A</entry>\n</message>\n<message/>\n</rsccat>\n"))
        << "message after message";
}

TEST_F(XmlCatalog, RootAttributeWalkTakesValuesThatReadLikeNamesForNames)
{
    // The value "version" of an unknown attribute is taken as a name with nothing behind it.
    EXPECT_FALSE(load("<rsccat other=\"version\"><message/></rsccat>\n"));
    EXPECT_FALSE(load("<rsccat other=\"locale\"><message/></rsccat>\n"));
    // Here "locale" swallows the next name as its value, and the walk still ends cleanly.
    EXPECT_TRUE(load("<rsccat a=\"locale\" b=\"x\"><message/></rsccat>\n"));
}

TEST_F(XmlCatalog, NestedEntryStoresUnderTheInnerKeyThenFails)
{
    EXPECT_FALSE(load("<rsccat><message>\n<entry key=\"outer\">before\n<entry key=\"inner\">in</entry>\n"
                      "after</entry>\n</message></rsccat>\n"));
    ASSERT_EQ(1u, store.size());
    EXPECT_EQ(std::u16string(u"before in"), text("inner"));
}

TEST_F(XmlCatalog, MissingOrUnreadableFilesFail)
{
    EXPECT_FALSE(XMLCatalogFileLoader().loadFile(upath(w(dir / "absent.xml")), store));
    EXPECT_FALSE(XMLCatalogFileLoader().loadFile(upath(w(dir.make_dir("adir"))), store));
    EXPECT_TRUE(store.empty());
}

TEST_F(XmlCatalog, StoreDecodesAndUnescapesOnItsOwn)
{
    store.addEntry("k", "tab\\there \xc3\xa9");
    store.addEntry("k", "ignored");
    store.addEntry(std::string("n"), std::string("cut\0off", 7));
    EXPECT_EQ(std::u16string(u"tab\there \u00e9"), text("k"));
    EXPECT_EQ(std::u16string(u"cut"), text("n"));
    // Malformed UTF-8 is replaced, not dropped.
    store.addEntry("bad", "a\xff");
    EXPECT_EQ(std::u16string(u"a\ufffd"), text("bad"));
}

TEST_F(XmlCatalog, TextsOfEverySizeSurviveTheirBlocksFillingUp)
{
    // Texts of varied lengths fill several of the store's blocks; one is longer than a block, one
    // is empty, and each must come back whole after the store has given back its spare room.
    std::map<std::string, std::string> written;
    std::string content;
    for (int i = 0; i < 4000; ++i) {
        const std::string key = "k" + std::to_string(i);
        std::string text(static_cast<std::size_t>(i % 97), static_cast<char>('a' + i % 26));
        if (i == 1234) {
            text.assign(70000, 'L');
        }
        if (i == 77) {
            text.clear();
        }
        if (i % 500 == 1) {
            text += "\u00e9";
        }
        written[key] = text;
        content += "<entry key=\"" + key + "\">" + text + "</entry>\n";
    }
    ASSERT_TRUE(load_entries(content));
    ASSERT_EQ(written.size(), store.size());
    for (const auto& entry : written) {
        std::string expected = entry.second;
        const std::string::size_type escape = expected.find("\\u00e9");
        if (escape != std::string::npos) {
            expected.replace(escape, 6, "\xc3\xa9");
        }
        ASSERT_EQ(w(expected), text(entry.first)) << entry.first;
    }
}

} // namespace
