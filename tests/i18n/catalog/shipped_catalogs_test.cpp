// The library's own catalogs, as the build tree ships them: every identifier the code can throw has
// a text in every shipped locale, and every translation keeps the English text's holes.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/catalog_map_writer.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_id_completions.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

using catalog_test::test_locale;
using fl::i18n::CatalogID;
using fl::i18n::MessageCatalog;
using fl::i18n::MessageID;
using fl::i18n::ustring;

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> shipped_locales {"de", "en", "fr", "ja_JP"};

// Drops // and /* */ comments, so that an identifier mentioned in a comment isn't taken for one
// the code throws. String literals are kept whole.
std::string strip_comments(const std::string& code)
{
    std::string out;
    out.reserve(code.size());
    for (std::size_t i = 0; i < code.size(); ++i) {
        const char c = code[i];
        if (c == '"' || c == '\'') {
            const std::size_t start = i;
            for (++i; i < code.size() && code[i] != c; ++i) {
                if (code[i] == '\\') {
                    ++i;
                }
            }
            out.append(code, start, i - start + 1);
        } else if (c == '/' && i + 1 < code.size() && code[i + 1] == '/') {
            i = code.find('\n', i);
            if (i == std::string::npos) {
                break;
            }
            out += '\n';
        } else if (c == '/' && i + 1 < code.size() && code[i + 1] == '*') {
            i = code.find("*/", i + 2);
            if (i == std::string::npos) {
                break;
            }
            ++i;
        } else {
            out += c;
        }
    }
    return out;
}

// Every literal "fl:i18n:..." or "fl:filesystem:..." message identifier in the library's sources.
// The time-zone identifiers, written with double colons, aren't catalog keys and don't match.
std::map<std::string, std::string> thrown_identifiers()
{
    const std::string source_root = QVI18N_TEST_SOURCE_ROOT;
    const std::regex literal("\"(fl:(i18n|filesystem)(:[A-Za-z_][A-Za-z0-9_]*)+)\"");
    std::map<std::string, std::string> found; // identifier -> first file using it
    for (const char* tree : {"i18n", "filesystem", "include/qvi18n/i18n", "include/qvi18n/filesystem"}) {
        const fs::path dir = fs::path(source_root) / tree;
        if (!fs::is_directory(dir)) {
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(dir)) {
            const std::string ext = entry.path().extension().string();
            if (!entry.is_regular_file()
                || (ext != ".cpp" && ext != ".hpp" && ext != ".h" && ext != ".ipp")) {
                continue;
            }
            const std::string code = strip_comments(qvtest::read_file(entry.path().string()));
            for (std::sregex_iterator it(code.begin(), code.end(), literal), end; it != end; ++it) {
                const std::string id = (*it)[1].str();
                // A two-segment literal names a catalog, not a message.
                if (std::count(id.begin(), id.end(), ':') >= 2) {
                    found.emplace(id, entry.path().string());
                }
            }
        }
    }
    return found;
}

// The hole numbers of a text, each once: "{1} and {0} {0}" gives {0, 1}.
std::set<std::string> holes_of(const ustring& text)
{
    const std::string narrow = catalog_test::utf8(text);
    const std::regex hole("\\{\\s*([0-9]+)\\s*[,}]");
    std::set<std::string> holes;
    for (std::sregex_iterator it(narrow.begin(), narrow.end(), hole), end; it != end; ++it) {
        holes.insert((*it)[1].str());
    }
    return holes;
}

class ShippedCatalogs : public ::testing::Test {
protected:
    void SetUp() override
    {
        const std::string build_root = QVI18N_TEST_BUILD_ROOT;
        ASSERT_TRUE(fs::is_directory(build_root + "/resources/fl/en"))
            << "the shipped catalogs are missing from the build tree";
        ASSERT_TRUE(MessageCatalog::MessageCatalogInit(build_root));
    }

    // The catalogs shipped for English, by identifier.
    static std::vector<std::string> english_catalogs()
    {
        const fs::path base = fs::path(QVI18N_TEST_BUILD_ROOT) / "resources/fl/en";
        std::vector<std::string> catalogs;
        for (const auto& entry : fs::recursive_directory_iterator(base)) {
            if (entry.is_regular_file() && entry.path().extension() == ".xml") {
                std::string rel = fs::relative(entry.path(), base).replace_extension().generic_string();
                std::replace(rel.begin(), rel.end(), '/', ':');
                catalogs.push_back("fl:" + rel);
            }
        }
        std::sort(catalogs.begin(), catalogs.end());
        return catalogs;
    }
};

} // namespace

TEST_F(ShippedCatalogs, ShipExactlyTheFourLocales)
{
    std::vector<std::string> dirs;
    for (const auto& entry : fs::directory_iterator(fs::path(QVI18N_TEST_BUILD_ROOT) / "resources/fl")) {
        dirs.push_back(entry.path().filename().string());
    }
    std::sort(dirs.begin(), dirs.end());
    EXPECT_EQ(dirs, shipped_locales);
    EXPECT_FALSE(english_catalogs().empty());
}

TEST_F(ShippedCatalogs, EveryThrownIdentifierHasATextInEveryLocale)
{
    const std::map<std::string, std::string> ids = thrown_identifiers();
    for (const auto& id : ids) {
        for (const std::string& locale_name : shipped_locales) {
            test_locale locale(locale_name);
            try {
                const MessageID message(id.first);
                const auto catalog
                    = MessageCatalog::GetMessageCatalog(CatalogID(message.getCatalogID()), locale);
                EXPECT_EQ(catalog->get_locale_name(), locale_name)
                    << id.first << " (from " << id.second << ") has no catalog of its own for "
                    << locale_name;
                EXPECT_FALSE(catalog->get_message_for_key(message.getMsgKey()).empty()) << id.first;
            } catch (const std::exception& e) {
                ADD_FAILURE() << id.first << " (from " << id.second << ") for " << locale_name << ": "
                              << e.what();
            }
        }
    }
}

TEST_F(ShippedCatalogs, TranslationsHaveTheSameKeysAndHolesAsEnglish)
{
    for (const std::string& name : english_catalogs()) {
        const CatalogID id(name);
        const auto english = MessageCatalog::GetMessageCatalog(id, test_locale("en"));
        std::vector<std::string> keys = english->get_all_keys();
        std::sort(keys.begin(), keys.end());
        for (const std::string& locale_name : shipped_locales) {
            const auto translated = MessageCatalog::GetMessageCatalog(id, test_locale(locale_name));
            ASSERT_EQ(translated->get_locale_name(), locale_name) << name;
            std::vector<std::string> translated_keys = translated->get_all_keys();
            std::sort(translated_keys.begin(), translated_keys.end());
            EXPECT_EQ(translated_keys, keys) << name << " for " << locale_name;

            for (const std::string& key : keys) {
                const ustring en_text = english->get_message_for_key(key);
                ustring text;
                try {
                    text = translated->get_message_for_key(key);
                } catch (const std::exception&) {
                    continue; // reported by the key comparison above
                }
                const std::set<std::string> holes = holes_of(en_text);
                EXPECT_EQ(holes_of(text), holes) << name << ":" << key << " for " << locale_name;

                // Each text is a valid pattern that takes exactly its holes and loses no character
                // to quoting: filled with markers, every marker shows.
                resource_core::HoleValues values;
                for (std::size_t i = 0; i < holes.size(); ++i) {
                    values.push_back(ustring(u"<") + static_cast<char16_t>(u'A' + i) + u">");
                }
                try {
                    const ustring out = MessageCatalog::GetFormattedMessage(text, values);
                    for (const auto& v : values) {
                        EXPECT_NE(out.find(boost::get<ustring>(v)), ustring::npos) << name << ":" << key;
                    }
                    EXPECT_EQ(out.find(u'{'), ustring::npos) << name << ":" << key << " for " << locale_name;
                } catch (const std::exception& e) {
                    ADD_FAILURE() << name << ":" << key << " for " << locale_name << ": " << e.what();
                }
            }
        }
    }
}

TEST_F(ShippedCatalogs, RegionalLocalesReadTheirLanguagesFiles)
{
    // "ja" alone has no directory and reads English; "de_AT" reads German.
    EXPECT_EQ(
        MessageCatalog::GetMessageCatalog(CatalogID("fl:filesystem"), test_locale("ja"))->get_locale_name(),
        "en");
    EXPECT_EQ(MessageCatalog::GetMessageCatalog(CatalogID("fl:i18n:date_time"), test_locale("de_AT"))
                  ->get_locale_name(),
        "de");
    resource_core::BaseMsgID system_error(
        "fl:filesystem", "SystemError", resource_core::HoleValues {fl::i18n::ustring(u"/tmp/x"), 13LL});
    EXPECT_USTR(MessageCatalog::get_message(system_error, test_locale("en_US")),
        u"A system error occurred on /tmp/x (error number 13).");
}

TEST_F(ShippedCatalogs, GeneratedMapsAreCurrentAndComplete)
{
    const fl::filesystem::upath resources(catalog_test::u(std::string(QVI18N_TEST_BUILD_ROOT) + "/resources"));
    const std::string map = std::string(QVI18N_TEST_BUILD_ROOT) + "/derived/share/resources/fl/catalog_map.xml";
    EXPECT_EQ(qvtest::read_file(map),
        fl::i18n::make_catalog_map(fl::i18n::list_component_catalogs(resources, "fl")));

    std::vector<std::string> got;
    for (const ustring& c : fl::i18n::getMessageIdCompletions(u"fl:").completions) {
        got.push_back(catalog_test::utf8(c));
    }
    std::sort(got.begin(), got.end());
    EXPECT_EQ(got, (std::vector<std::string> {"filesystem:", "i18n:", "tools:"}));
}
