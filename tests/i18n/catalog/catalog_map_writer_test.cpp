// Generating the catalog maps of a resource tree, and completing from what was generated.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/catalog_map_writer.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_id_completions.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using catalog_test::catalog_xml;
using catalog_test::u;
using catalog_test::write_catalog;
using fl::filesystem::upath;
using fl::i18n::MessageCatalog;

namespace {

const std::string expected_app_map = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                     "<!-- Generated from the resource tree; regenerate rather than edit. -->\n"
                                     "<MessageCatalogMap>\n"
                                     "  <entry key=\"app:a\"/>\n"
                                     "  <entry key=\"app:ui\"/>\n"
                                     "  <entry key=\"app:ui:dialogs\"/>\n"
                                     "  <entry key=\"app:ui:only_de\"/>\n"
                                     "</MessageCatalogMap>\n";

ino_t inode_of(const std::string& path)
{
    struct stat st {};
    EXPECT_EQ(::stat(path.c_str(), &st), 0) << path;
    return st.st_ino;
}

std::vector<std::string> names_in(const std::string& directory)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

TEST(CatalogMapWriter, WritesOneSortedMapPerComponentAndOnlyWhenItChanges)
{
    qvtest::scoped_temp_dir dir;
    const std::string entry = catalog_xml({{"k", "v"}});
    write_catalog(dir, "r", "app:ui:dialogs", "en", entry);
    write_catalog(dir, "r", "app:ui", "en", entry);
    write_catalog(dir, "r", "app:a", "fr", entry);
    write_catalog(dir, "r", "app:ui:only_de", "de", entry);
    // Neither a file that isn't a catalog nor a name that can't be a segment makes an entry.
    dir.write_file("r/resources/app/en/readme.txt", "x");
    write_catalog(dir, "r", "app:2nd", "en", entry);
    write_catalog(dir, "r", "other:x", "en", entry);
    dir.make_dir("r/resources/empty/en");
    dir.make_dir("r/resources/bad-name/en");

    const std::vector<upath> written = fl::i18n::write_catalog_maps(upath(u(dir / "r")));
    ASSERT_EQ(written.size(), 2u);
    const std::string app_map = dir / "r/derived/share/resources/app/catalog_map.xml";
    EXPECT_EQ(qvtest::read_file(app_map), expected_app_map);
    EXPECT_EQ(names_in(dir / "r/derived/share/resources"), (std::vector<std::string> {"app", "other"}));

    // The same tree again: same bytes, and the file is not even replaced. Given the resource
    // directory itself, the writer finds the same maps.
    const ino_t first = inode_of(app_map);
    fl::i18n::write_catalog_maps(upath(u(dir / "r/resources")));
    EXPECT_EQ(inode_of(app_map), first);

    // A changed tree replaces the map whole, and nothing is left beside it.
    write_catalog(dir, "r", "app:b", "en", entry);
    fl::i18n::write_catalog_maps(upath(u(dir / "r")));
    EXPECT_NE(qvtest::read_file(app_map).find("<entry key=\"app:b\"/>"), std::string::npos);
    EXPECT_EQ(names_in(dir / "r/derived/share/resources/app"), std::vector<std::string> {"catalog_map.xml"});

    EXPECT_THROW(fl::i18n::write_catalog_maps(upath(u(dir / "missing"))), MessageCatalog::ResDirNotPresent);
}

TEST(CatalogMapWriter, CompletionReadsWhatWasWritten)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "r", "app:ui:dialogs", "en", catalog_xml({{"title", "t"}}));
    write_catalog(dir, "r", "app:ui", "en", catalog_xml({{"Open", "o"}}));
    fl::i18n::write_catalog_maps(upath(u(dir / "r")));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));

    const fl::i18n::MessageIdCompletions result = fl::i18n::getMessageIdCompletions(u"app:ui:");
    std::vector<std::string> got;
    for (const auto& c : result.completions) {
        got.push_back(catalog_test::utf8(c));
    }
    std::sort(got.begin(), got.end());
    EXPECT_EQ(got, (std::vector<std::string> {"Open", "dialogs:"}));
    EXPECT_EQ(result.offset, 7);
}
