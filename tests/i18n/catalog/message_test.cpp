// Fetching messages from catalogs written by the tests: raw texts, filled holes, missing keys, and
// how an entry's text is rebuilt from the lines of the file.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/message_catalog.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using catalog_test::catalog_xml;
using catalog_test::test_locale;
using catalog_test::write_catalog;
using fl::i18n::CatalogID;
using fl::i18n::MessageCatalog;
using fl::i18n::MessageID;
using fl::i18n::ustring;
using resource_core::BaseMsgID;
using resource_core::HoleValues;

namespace {

class CatalogMessages : public ::testing::Test {
protected:
    void SetUp() override
    {
        write_catalog(dir, "r", "app:msgs", "en",
            catalog_xml({{"plain", "Hello"}, {"value", "Value {0}"}, {"two", "{0} copied to {1}"},
                {"apostrophe", "It's {0}"}, {"count", "{0} files"}, {"only_en", "English only"},
                {"dup", "first"}, {"dup", "second"}}));
        write_catalog(dir, "r", "app:msgs", "de",
            catalog_xml({{"plain", "Hallo"}, {"value", "Wert {0}"}, {"two", "{0} nach {1} kopiert"}}));
        write_catalog(dir, "r", "app:empty", "en", catalog_xml({}));
        ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));
    }

    qvtest::scoped_temp_dir dir;
    test_locale en {"en_GB"};
    test_locale de {"de_DE"};
};

} // namespace

TEST_F(CatalogMessages, MessageIdGivesTheStoredTextUnformatted)
{
    EXPECT_USTR(MessageCatalog::get_message(MessageID("app:msgs:plain"), en), u"Hello");
    EXPECT_USTR(MessageCatalog::get_message(MessageID("app:msgs:plain"), de), u"Hallo");
    EXPECT_USTR(MessageCatalog::get_message(MessageID("app:msgs:value"), en), u"Value {0}");
    EXPECT_USTR(MessageCatalog::get_message(MessageID("app:msgs:apostrophe"), en), u"It's {0}");
    // A key present twice in the file keeps its first text.
    EXPECT_USTR(MessageCatalog::get_message(MessageID("app:msgs:dup"), en), u"first");
}

TEST_F(CatalogMessages, RecordFillsHolesWithoutCountingThem)
{
    BaseMsgID two("app:msgs", "two", HoleValues {ustring(u"a.txt"), std::string("/tmp/b")});
    EXPECT_USTR(MessageCatalog::get_message(two, en), u"a.txt copied to /tmp/b");
    EXPECT_USTR(MessageCatalog::get_message(two, de), u"a.txt nach /tmp/b kopiert");

    EXPECT_USTR(
        MessageCatalog::get_message(BaseMsgID("app:msgs", "apostrophe", HoleValues {ustring(u"late")}), en),
        u"It's late");
    EXPECT_USTR(
        MessageCatalog::get_message(BaseMsgID("app:msgs", "count", HoleValues {42LL}), en), u"42 files");

    // Too many values are ignored; too few leave the hole as the formatter leaves it.
    BaseMsgID extra("app:msgs", "value", HoleValues {1LL, 2LL, 3LL});
    EXPECT_USTR(MessageCatalog::get_message(extra, en), u"Value 1");
    EXPECT_NO_THROW(MessageCatalog::get_message(BaseMsgID("app:msgs", "two"), en));

    // The classic locale's messages name falls back to English.
    EXPECT_USTR(MessageCatalog::get_default_locale_message(BaseMsgID("app:msgs", "value", HoleValues {7LL})),
        u"Value 7");
}

TEST_F(CatalogMessages, MissingKeyIsAnErrorEvenWhenEnglishHasIt)
{
    EXPECT_USTR(MessageCatalog::get_message(MessageID("app:msgs:only_en"), en), u"English only");
    try {
        MessageCatalog::get_message(MessageID("app:msgs:only_en"), de);
        ADD_FAILURE() << "fall-back is by whole file, never by key";
    } catch (const MessageCatalog::MessageNotFound& e) {
        EXPECT_STREQ(e.what(), "Message Key only_en was not found in the catalog app:msgs");
    }
    EXPECT_THROW(
        MessageCatalog::get_message(BaseMsgID("app:msgs", "nope"), en), MessageCatalog::MessageNotFound);
}

TEST_F(CatalogMessages, RecordOfAnotherCatalogIsRefusedByTheCatalog)
{
    auto catalog = MessageCatalog::GetMessageCatalog(CatalogID("app:msgs"), en);
    EXPECT_USTR(
        catalog->get_message_for_key(BaseMsgID("app:msgs", "value", HoleValues {ustring(u"x")})), u"Value x");
    try {
        catalog->get_message_for_key(BaseMsgID("app:other", "plain"));
        ADD_FAILURE() << "expected MessageNotFound";
    } catch (const MessageCatalog::MessageNotFound& e) {
        EXPECT_STREQ(e.what(), "Message Key plain was not found in the catalog app:msgs");
    }
}

TEST_F(CatalogMessages, AllKeysListsEachKeyOnce)
{
    auto catalog = MessageCatalog::GetMessageCatalog(CatalogID("app:msgs"), en);
    std::vector<std::string> keys = catalog->get_all_keys();
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(
        keys, (std::vector<std::string> {"apostrophe", "count", "dup", "only_en", "plain", "two", "value"}));
    EXPECT_TRUE(MessageCatalog::GetMessageCatalog(CatalogID("app:empty"), de)->get_all_keys().empty());
}

TEST_F(CatalogMessages, MalformedIdentifiersRaiseTheirOwnExceptions)
{
    EXPECT_THROW(MessageCatalog::get_message(MessageID(), en), CatalogID::badCatalogIDException);
    EXPECT_THROW(
        MessageCatalog::get_message(BaseMsgID("app", "plain"), en), CatalogID::badCatalogIDException);
    EXPECT_THROW(
        MessageCatalog::get_message(BaseMsgID("app:1bad", "plain"), en), CatalogID::badCatalogIDException);
    EXPECT_THROW(MessageCatalog::openCatalog(resource_core::BaseCatalogID("app:"), en),
        CatalogID::badCatalogIDException);
    // A MessageID built from parts skips validation of the key; the key is then simply absent.
    EXPECT_THROW(MessageCatalog::get_message(MessageID(CatalogID("app:msgs"), "not valid!"), en),
        MessageCatalog::MessageNotFound);
}

TEST(CatalogText, EntryTextIsReflowedLineByLineThenUnescaped)
{
    qvtest::scoped_temp_dir dir;
    const std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<rsccat version=\"2\" locale=\"xx\">\n"
                            "  <message>\n"
                            "    <entry key=\"lines\">\n"
                            "       Hello\n"
                            "\tbig   \n"
                            "       world   </entry>\n"
                            "    <entry key=\"entity\">  a &amp; b &lt;c&gt;  </entry>\n"
                            "    <entry key=\"escape\">one\\ntwo \\u00e9</entry>\n"
                            "    <entry key=\"blank\">a\n"
                            "    \n"
                            "b\n"
                            "\n"
                            "c</entry>\n"
                            "    <entry key=\"utf8\">Gr\xc3\xb6\xc3\x9f"
                            "e \xe6\x97\xa5\xe6\x9c\xac</entry>\n"
                            "  </message>\n"
                            "</rsccat>\n";
    write_catalog(dir, "r", "app:text", "en", xml);
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));
    test_locale en("en");

    auto text = [&](const char* key) {
        return MessageCatalog::get_message(MessageID(std::string("app:text:") + key), en);
    };
    EXPECT_USTR(text("lines"), u"Hello big world");
    EXPECT_USTR(text("entity"), u"a & b <c>");
    EXPECT_USTR(text("escape"), u"one\ntwo \u00e9");
    // A line of blanks contributes an empty line (a doubled space); an empty line contributes nothing.
    EXPECT_USTR(text("blank"), u"a  b c");
    EXPECT_USTR(text("utf8"), u"Gr\u00f6\u00dfe \u65e5\u672c");
}

TEST(CatalogText, FileCutAtALineBoundaryLoadsWhatItHas)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "r", "app:cut", "en",
        "<rsccat>\n<message>\n<entry key=\"a\">kept</entry>\n<entry key=\"b\">also kept</entry>\n");
    write_catalog(dir, "r", "app:bad", "en", "<rsccat>\n<message>\n<bogus/>\n</message>\n</rsccat>\n");
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));
    test_locale en("en");
    EXPECT_USTR(MessageCatalog::get_message(MessageID("app:cut:b"), en), u"also kept");
    EXPECT_THROW(
        MessageCatalog::get_message(MessageID("app:bad:a"), en), MessageCatalog::MessageCatalogLoadFailed);
}
