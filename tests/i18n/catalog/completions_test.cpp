// Completion of partly typed identifiers from the catalog maps and the catalogs' keys.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/catalog_map.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_id_completions.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <string>
#include <vector>

using catalog_test::catalog_xml;
using catalog_test::u;
using catalog_test::write_catalog;
using fl::i18n::getMessageIdCompletions;
using fl::i18n::MessageCatalog;

namespace {

std::string map_xml(const std::vector<std::string>& catalogs)
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<MessageCatalogMap>\n";
    for (const std::string& c : catalogs) {
        xml += "  <entry key=\"" + c + "\"/>\n";
    }
    return xml + "</MessageCatalogMap>\n";
}

void write_map(const qvtest::scoped_temp_dir& dir, const std::string& relative, const std::string& xml)
{
    dir.write_file("r/derived/share/resources/" + relative + "/catalog_map.xml", xml);
}

// The completions, sorted (their order has no meaning), and the offset behind a "@".
std::vector<std::string> complete(const std::string& partial)
{
    const fl::i18n::MessageIdCompletions result = getMessageIdCompletions(u(partial));
    std::vector<std::string> out;
    for (const auto& c : result.completions) {
        out.push_back(catalog_test::utf8(c));
    }
    std::sort(out.begin(), out.end());
    out.push_back("@" + std::to_string(result.offset));
    return out;
}

class Completions : public ::testing::Test {
protected:
    void SetUp() override
    {
        write_catalog(dir, "r", "app:ui", "en", catalog_xml({{"Open", "o"}, {"open_file", "f"}, {"Close", "c"}}));
        write_catalog(dir, "r", "app:ui:dialogs", "en", catalog_xml({{"title", "t"}}));
        write_catalog(dir, "r", "AB:x", "en", catalog_xml({{"k", "v"}}));
        write_catalog(dir, "r", "nomap:x", "en", catalog_xml({{"k", "v"}}));
        write_catalog(dir, "r", "ZORBEL:legacy_two_part", "en", catalog_xml({{"zkey", "z"}}));
        write_map(dir, "app", map_xml({"app:ui", "app:ui:dialogs", "app:other:x", "apple:y"}));
        write_map(dir, "app/ui", map_xml({"app:ui:sub:leaf"}));
        write_map(dir, "app/ui/sub/deeper", map_xml({"app:ui:sub:deep"}));
        write_map(dir, "AB", map_xml({"AB:x"}));
        write_map(dir, "ZORBEL", map_xml({"ZORBEL:legacy_two_part"}));
        ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));
    }

    qvtest::scoped_temp_dir dir;
};

typedef std::vector<std::string> texts;

} // namespace

TEST(CompletionsBeforeInit, AreEmpty)
{
    EXPECT_EQ(complete(""), texts {"@0"});
    EXPECT_EQ(complete("app:ui:"), texts {"@0"});
}

TEST_F(Completions, ComponentsWithAMapCompleteIgnoringCase)
{
    EXPECT_EQ(complete(""), (texts {"AB:", "ZORBEL:", "app:", "@0"}));
    EXPECT_EQ(complete("ab"), (texts {"AB:", "@0"}));
    EXPECT_EQ(complete("A"), (texts {"AB:", "app:", "@0"}));
    EXPECT_EQ(complete("zorbel"), (texts {"ZORBEL:", "@0"}));
    EXPECT_EQ(complete("nomap"), texts {"@0"});
    // "." is a directory entry like any other: a map at the base of the tree is its map.
    dir.write_file("r/derived/share/resources/catalog_map.xml", map_xml({"app:ui"}));
    EXPECT_EQ(complete("."), (texts {".:", "@0"}));
}

TEST_F(Completions, TheNearestMapDecidesWhichSegmentsFollow)
{
    // "a" alone isn't a catalog: segments only, and no error. "apple:y" doesn't follow "app".
    EXPECT_EQ(complete("app:"), (texts {"other:", "ui:", "@4"}));
    // A catalog with a map of its own reads its subtree's maps only (no "dialogs:" of the
    // component's map), and then its keys.
    EXPECT_EQ(complete("app:ui:"), (texts {"Close", "Open", "open_file", "sub:", "@7"}));
    EXPECT_EQ(complete("app:ui:O"), (texts {"Open", "open_file", "@7"}));
    // The catalog itself is named exactly: its files are found by name.
    EXPECT_EQ(complete("App:ui:o"), texts {"@7"});
    // Without a map of its own, only the nearest parent's map is read: "deep" is below "sub".
    EXPECT_EQ(complete("app:ui:sub:"), (texts {"leaf:", "@11"}));
    EXPECT_EQ(complete("app:ui:dialogs:t"), (texts {"title", "@15"}));
    EXPECT_EQ(complete("app:ui:dialogs:x"), texts {"@15"});
}

TEST_F(Completions, TheReservedSegmentIsHiddenAndItsKeysOffered)
{
    EXPECT_EQ(complete("ZORBEL:"), (texts {"zkey", "@7"}));
    EXPECT_EQ(complete("ZORBEL:legacy"), texts {"@7"});
}

TEST_F(Completions, BadMapsAndBadTextGiveFewerOrNoResults)
{
    // A malformed map stops the reading of the maps behind it; what was read stays.
    write_map(dir, "app/ui/sub", "<MessageCatalogMap><entry key=\"app:ui:sub:first\"/><bogus/></MessageCatalogMap>");
    const texts sub = complete("app:ui:sub:");
    EXPECT_TRUE(sub == (texts {"first:", "@11"}) || sub == (texts {"deep:", "first:", "@11"})) << sub.size();

    write_map(dir, "AB", "not xml at all");
    EXPECT_EQ(complete("AB:"), texts {"@3"});
    EXPECT_EQ(complete("AB:x:"), (texts {"k", "@5"}));

    // Text that isn't ASCII can't name anything.
    const fl::i18n::MessageIdCompletions accented = getMessageIdCompletions(u"\u00e9:x");
    EXPECT_TRUE(accented.completions.empty());
    EXPECT_EQ(accented.offset, 0);
}

TEST_F(Completions, EveryRootAddsAndOneRootsBadMapSparesTheOthers)
{
    // A second root: a component of its own, more segments of "app" and keys of a catalog that
    // starts with the same text as a segment.
    write_catalog(dir, "s", "app:kit", "en", catalog_xml({{"keep", "k"}, {"other", "o"}}));
    dir.write_file("s/derived/share/resources/app/catalog_map.xml", map_xml({"app:kit", "app:kit:kettle", "app:ui:knob"}));
    write_catalog(dir, "s", "zed:x", "en", catalog_xml({{"k", "v"}}));
    dir.write_file("s/derived/share/resources/zed/catalog_map.xml", map_xml({"zed:x"}));
    MessageCatalog::set_additional_resource_locations({u(dir / "s")});

    EXPECT_EQ(complete(""), (texts {"AB:", "ZORBEL:", "app:", "zed:", "@0"}));
    EXPECT_EQ(complete("app:"), (texts {"kit:", "other:", "ui:", "@4"}));
    // A segment and a key that start alike are both offered.
    EXPECT_EQ(complete("app:kit:k"), (texts {"keep", "kettle:", "@8"}));

    // The first root's map breaks off; the second root is read with a handler of its own.
    write_map(dir, "app", "<MessageCatalogMap><entry key=\"app:first\"/><bogus/><entry key=\"app:never\"/></MessageCatalogMap>");
    EXPECT_EQ(complete("app:"), (texts {"first:", "kit:", "ui:", "@4"}));
}

// The handler on its own: which entries count for a prefix, and how the attribute walk steps.
TEST(MetaInfoHandler, TakesTheSegmentBehindThePrefixAndColon)
{
    const auto results = boost::make_shared<boost::unordered_set<fl::i18n::ustring>>();
    fl::i18n::MetaInfoExpatEventHandler handler(u"a", results);
    const char* none[] = {nullptr};
    EXPECT_FALSE(handler.doElementStart("entry", none));
    ASSERT_TRUE(handler.doElementStart("MessageCatalogMap", none));
    EXPECT_FALSE(handler.doElementStart("MessageCatalogMap", none));
    for (const char* key : {"a:b:c", "a", "ab:c", "a:", "a:d"}) {
        const char* attributes[] = {"key", key, nullptr};
        EXPECT_TRUE(handler.doElementStart("entry", attributes)) << key;
        EXPECT_TRUE(handler.doElementEnd("entry"));
    }
    // An unknown attribute's value is looked at as a name: here it reads "key" and takes the
    // next word, the real attribute's name, as its value, so "a:e" is never seen.
    const char* shifted[] = {"note", "key", "key", "a:e", nullptr};
    EXPECT_TRUE(handler.doElementStart("entry", shifted));
    EXPECT_TRUE(handler.doElementEnd("entry"));
    const char* dangling[] = {"key", nullptr};
    EXPECT_FALSE(handler.doElementStart("entry", dangling));
    EXPECT_FALSE(handler.doElementStart("bogus", none));
    EXPECT_EQ(*results, (boost::unordered_set<fl::i18n::ustring> {u"b", u"", u"d"}));
}
