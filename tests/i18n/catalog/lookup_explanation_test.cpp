// The explanation of a look-up agrees with the look-up itself, and leaves the cache as it was.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_lookup_explanation.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using catalog_test::catalog_xml;
using catalog_test::test_locale;
using catalog_test::write_catalog;
using fl::i18n::explainMessageLookup;
using fl::i18n::MessageCatalog;
using fl::i18n::MessageID;
using fl::i18n::MessageLookupExplanation;

namespace {

// Explains first, then looks up for real (which may fill the cache), and checks they agree.
template <class Id> MessageLookupExplanation explain_and_compare(const Id& id, const fl::i18n::QvLocale& locale)
{
    const MessageLookupExplanation told = explainMessageLookup(id, locale);
    try {
        const fl::i18n::ustring text = MessageCatalog::get_message(id, locale);
        EXPECT_TRUE(told.succeeded()) << told.error_text;
        EXPECT_USTR(told.text, text);
    } catch (const std::exception& e) {
        EXPECT_FALSE(told.succeeded());
        EXPECT_EQ(told.error_text, e.what());
    }
    return told;
}

std::vector<std::string> candidate_summary(const MessageLookupExplanation& told)
{
    std::vector<std::string> out;
    for (const auto& c : told.candidates) {
        const std::string path = catalog_test::utf8(c.path.get_path_name());
        out.push_back(c.locale + (c.exists ? " yes " : " no ") + path.substr(path.find("/r")));
    }
    return out;
}

class Explanation : public ::testing::Test {
protected:
    void SetUp() override
    {
        write_catalog(dir, "r1", "app:ui", "en", catalog_xml({{"k", "r1 en"}, {"only_en", "e"}, {"n", "{0} files"}}));
        write_catalog(dir, "r2", "app:ui", "de", catalog_xml({{"k", "r2 de"}, {"n", "{0} Dateien"}}));
        ASSERT_TRUE(MessageCatalog::MessageCatalogInit(std::vector<std::string> {dir / "r1", dir / "r2"}));
    }

    qvtest::scoped_temp_dir dir;
};

} // namespace

TEST(ExplanationBeforeInit, TellsTheLookUpWouldFail)
{
    const MessageLookupExplanation told = explain_and_compare(MessageID("app:ui:k"), test_locale("de"));
    EXPECT_EQ(told.source, MessageLookupExplanation::no_catalog);
    EXPECT_TRUE(told.roots.empty());
    EXPECT_THROW(std::rethrow_exception(told.error), MessageCatalog::MessageCatalogNotInitialized);
}

TEST_F(Explanation, AMissListsEveryCandidateAndLoadsNothingIntoTheCache)
{
    const MessageLookupExplanation told = explainMessageLookup(MessageID("app:ui:k"), test_locale("de_AT"));
    EXPECT_EQ(told.fallback_locales, (std::vector<std::string> {"de_AT", "de", "en"}));
    EXPECT_EQ(candidate_summary(told),
        (std::vector<std::string> {"de_AT no /r1/resources/app/de_AT/ui.xml", "de_AT no /r2/resources/app/de_AT/ui.xml",
            "de no /r1/resources/app/de/ui.xml", "de yes /r2/resources/app/de/ui.xml", "en yes /r1/resources/app/en/ui.xml",
            "en no /r2/resources/app/en/ui.xml"}));
    EXPECT_EQ(told.source, MessageLookupExplanation::loaded_from_file);
    EXPECT_EQ(told.chosen_index, 3);
    EXPECT_EQ(told.chosen_locale, "de");
    EXPECT_TRUE(told.key_found);
    EXPECT_USTR(told.text, u"r2 de");

    // Nothing was cached: the real look-up reads the file as it is now.
    write_catalog(dir, "r2", "app:ui", "de", catalog_xml({{"k", "r2 de v2"}}));
    EXPECT_EQ(catalog_test::message_text("app:ui", "k", test_locale("de_AT")), "r2 de v2");
}

TEST_F(Explanation, CacheHitsWinOverTheFilesAsTheyAreNow)
{
    EXPECT_EQ(catalog_test::message_text("app:ui", "k", test_locale("de")), "r2 de");
    write_catalog(dir, "r2", "app:ui", "de", catalog_xml({{"k", "changed"}}));

    const MessageLookupExplanation hit = explain_and_compare(MessageID("app:ui:k"), test_locale("de"));
    EXPECT_EQ(hit.source, MessageLookupExplanation::cache_hit);
    EXPECT_EQ(hit.cache_key, "app:ui:de");
    EXPECT_EQ(hit.chosen_index, 1);
    EXPECT_USTR(hit.text, u"r2 de");

    // A locale that falls back to the cached file shares the fall-back's entry.
    const MessageLookupExplanation shared = explain_and_compare(MessageID("app:ui:k"), test_locale("de_CH"));
    EXPECT_EQ(shared.source, MessageLookupExplanation::cache_hit_fallback);
    EXPECT_EQ(shared.cache_key, "app:ui:de");
    EXPECT_EQ(shared.chosen_locale, "de");
}

TEST_F(Explanation, MissingKeysAndCatalogsAreFinalAndAgreeWithTheLookUp)
{
    // The German file is chosen and lacks the key; English is not consulted.
    const MessageLookupExplanation no_key = explain_and_compare(MessageID("app:ui:only_en"), test_locale("de"));
    EXPECT_EQ(no_key.chosen_locale, "de");
    EXPECT_FALSE(no_key.key_found);
    EXPECT_THROW(std::rethrow_exception(no_key.error), MessageCatalog::MessageNotFound);

    const MessageLookupExplanation no_file = explain_and_compare(MessageID("app:none:k"), test_locale("fr"));
    EXPECT_EQ(no_file.source, MessageLookupExplanation::no_catalog);
    EXPECT_EQ(no_file.candidates.size(), 4u);
    EXPECT_EQ(no_file.chosen_index, -1);
    EXPECT_THROW(std::rethrow_exception(no_file.error), MessageCatalog::MessageCatalogLoadFailed);

    // Records are formatted with their holes, as the look-up formats them.
    const resource_core::BaseMsgID files("app:ui", "n", resource_core::HoleValues {3LL});
    EXPECT_USTR(explain_and_compare(files, test_locale("de")).text, u"3 Dateien");
    const resource_core::BaseMsgID bad("app", "n");
    EXPECT_FALSE(explain_and_compare(bad, test_locale("de")).succeeded());
}
