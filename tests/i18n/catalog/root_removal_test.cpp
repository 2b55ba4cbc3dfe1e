// Taking an added resource root back: which roots stay and which cached catalogs go.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

using catalog_test::catalog_xml;
using catalog_test::root_texts;
using catalog_test::test_locale;
using catalog_test::u;
using catalog_test::write_catalog;
using fl::i18n::CatalogID;
using fl::i18n::MessageCatalog;
using fl::i18n::MessageCatalogImpl;
using fl::i18n::ustring;

namespace {

boost::shared_ptr<const MessageCatalog> open(const std::string& catalog, const std::string& locale)
{
    return MessageCatalog::GetMessageCatalog(CatalogID(catalog), test_locale(locale));
}

} // namespace

TEST(RootRemoval, RefusesBadRequestsAndKeepsTheRoots)
{
    qvtest::scoped_temp_dir dir;
    EXPECT_THROW(MessageCatalog::remove_additional_resource_location(ustring()),
        MessageCatalog::InvalidPathSupplied);
    EXPECT_THROW(MessageCatalog::remove_additional_resource_location(u(dir / "base")),
        MessageCatalog::MessageCatalogNotInitialized);

    dir.make_dir("base/resources");
    dir.make_dir("extra/resources");
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "base"));
    EXPECT_THROW(MessageCatalog::remove_additional_resource_location(ustring()),
        MessageCatalog::InvalidPathSupplied);
    // A base root and a root never added are both unknown to the removal.
    EXPECT_THROW(MessageCatalog::remove_additional_resource_location(u(dir / "base")),
        MessageCatalog::ResourcePathNotFound);
    EXPECT_THROW(MessageCatalog::remove_additional_resource_location(u(dir / "extra")),
        MessageCatalog::ResourcePathNotFound);

    // An added root whose directory went away can't be walked for its catalogs: it stays.
    MessageCatalog::set_additional_resource_locations({u(dir / "extra")});
    std::filesystem::remove_all(dir / "extra");
    try {
        MessageCatalog::remove_additional_resource_location(u(dir / "extra"));
        ADD_FAILURE() << "expected ResDirNotPresent";
    } catch (const MessageCatalog::ResDirNotPresent& e) {
        EXPECT_STREQ(e.what(), "Resource directory not found on the path!");
    }
    EXPECT_EQ(root_texts(), (std::vector<std::string> {dir / "base/resources", dir / "extra/resources"}));
}

TEST(RootRemoval, FlushesWhatTheEnglishTreeNamesAndRemovesEveryCopy)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "base", "app:ui", "en", catalog_xml({{"k", "base"}}));
    write_catalog(dir, "extra", "plug:ui", "en", catalog_xml({{"k", "en"}}));
    write_catalog(dir, "extra", "plug:ui:deep:er", "en", catalog_xml({{"k", "deep"}}));
    write_catalog(dir, "extra", "plug:ui", "fr", catalog_xml({{"k", "fr"}}));
    write_catalog(dir, "extra", "plug:only", "de", catalog_xml({{"k", "de only"}}));
    // Neither a component without "en" nor one with a name that isn't ASCII stops the walk.
    dir.make_dir("extra/resources/noen/de");
    write_catalog(dir, "extra", "caf\xc3\xa9:ui", "en", catalog_xml({{"k", "x"}}));
    dir.write_file("extra/resources/plug/en/notes.txt", "not a catalog");
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "base"));
    MessageCatalog::set_additional_resource_locations({u(dir / "extra"), u(dir / "extra")});

    const auto base = open("app:ui", "en");
    const auto held = open("plug:ui", "fr_CA");
    const auto deep = open("plug:ui:deep:er", "en");
    const auto only_de = open("plug:only", "de");
    EXPECT_EQ(held->get_locale_name(), "fr");

    MessageCatalog::remove_additional_resource_location(u(dir / "extra"));
    EXPECT_EQ(root_texts(), std::vector<std::string> {dir / "base/resources"});

    // Every locale of a flushed catalog is gone and its files are out of reach now; a catalog
    // held by a caller still answers.
    EXPECT_THROW(open("plug:ui", "fr_CA"), MessageCatalog::MessageCatalogLoadFailed);
    EXPECT_THROW(open("plug:ui", "fr"), MessageCatalog::MessageCatalogLoadFailed);
    EXPECT_THROW(open("plug:ui:deep:er", "en"), MessageCatalog::MessageCatalogLoadFailed);
    EXPECT_USTR(held->get_message_for_key("k"), u"fr");
    // A catalog only another locale's tree had stays cached, and so do the base root's.
    EXPECT_EQ(open("plug:only", "de"), only_de);
    EXPECT_EQ(open("app:ui", "en"), base);
}

TEST(RootRemoval, ARootThatIsAlsoABaseRootFlushesNothing)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "both", "app:ui", "en", catalog_xml({{"k", "v"}}));
    dir.make_dir("other/resources");
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "both"));
    MessageCatalog::set_additional_resource_locations({u(dir / "other"), u(dir / "both")});
    const auto cached = open("app:ui", "en");

    MessageCatalog::remove_additional_resource_location(u(dir / "both"));
    EXPECT_EQ(root_texts(), (std::vector<std::string> {dir / "both/resources", dir / "other/resources"}));
    EXPECT_EQ(open("app:ui", "en"), cached);
}

TEST(RootRemoval, AFailingWalkKeepsTheRootAndNamesTheCause)
{
    qvtest::scoped_temp_dir dir;
    dir.make_dir("base/resources");
    write_catalog(dir, "extra", "app:ui", "en", catalog_xml({{"k", "v"}}));
    // A file whose stem can't be a catalog segment makes an identifier that doesn't parse.
    dir.write_file("extra/resources/app/en/1bad.xml", catalog_xml({{"k", "v"}}));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "base"));
    MessageCatalog::set_additional_resource_locations({u(dir / "extra")});
    try {
        MessageCatalog::remove_additional_resource_location(u(dir / "extra"));
        ADD_FAILURE() << "expected ResPathRemovalUnknownError";
    } catch (const MessageCatalog::ResPathRemovalUnknownError& e) {
        EXPECT_STREQ(e.what(), "Unknown error while removal of path! Error : Bad Catalog ID");
    }
    EXPECT_EQ(root_texts(), (std::vector<std::string> {dir / "base/resources", dir / "extra/resources"}));
}
