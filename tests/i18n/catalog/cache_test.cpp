// The process-wide roots and catalog cache. ctest runs every case in its own process, so each case
// starts uninitialised and may fix the roots as it likes.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>


#include <atomic>
#include <string>
#include <thread>
#include <vector>

using catalog_test::catalog_xml;
using catalog_test::message_text;
using catalog_test::root_texts;
using catalog_test::test_locale;
using catalog_test::write_catalog;
using fl::i18n::CatalogID;
using fl::i18n::MessageCatalog;
using fl::i18n::MessageCatalogImpl;
using fl::i18n::MessageCatalogUtility;
using fl::i18n::MessageID;
using fl::i18n::ustring;

using catalog_test::u;

TEST(CatalogRoots, NothingWorksBeforeASuccessfulInit)
{
    qvtest::scoped_temp_dir dir;
    test_locale de("de");
    EXPECT_THROW(MessageCatalog::GetMessageCatalog(CatalogID("a:b"), de),
        MessageCatalog::MessageCatalogNotInitialized);
    EXPECT_THROW(
        MessageCatalogImpl::getTopLevelResourceLocations(), MessageCatalog::MessageCatalogNotInitialized);
    EXPECT_THROW(MessageCatalog::set_additional_resource_locations({u(dir.path())}),
        MessageCatalog::MessageCatalogNotInitialized);
    EXPECT_THROW(MessageCatalog::MessageCatalogInit(std::vector<ustring>()),
        MessageCatalog::MessageCatalogIncorrectRoot);

    // A first call that finds no "resources" directory fixes nothing, and a later one still may.
    dir.make_dir("plain");
    EXPECT_THROW(
        MessageCatalog::MessageCatalogInit(dir / "plain"), MessageCatalog::MessageCatalogIncorrectRoot);
    dir.make_dir("good/resources");
    EXPECT_TRUE(MessageCatalog::MessageCatalogInit(dir / "good"));
    EXPECT_EQ(root_texts(), std::vector<std::string> {dir / "good/resources"});

    // After a success an empty list is only a different request.
    EXPECT_FALSE(MessageCatalog::MessageCatalogInit(std::vector<ustring>()));
}

TEST(CatalogRoots, FirstSuccessFixesTheRootsAndLaterCallsOnlyCompare)
{
    qvtest::scoped_temp_dir dir;
    dir.make_dir("a"); // no resources directory: dropped
    dir.make_dir("b/resources");
    dir.write_file("c/resources", "a file, not a directory");
    dir.make_dir("d/resources");

    const std::vector<std::string> roots {dir / "a", dir / "b", dir / "c", dir / "d"};
    EXPECT_TRUE(MessageCatalog::MessageCatalogInit(roots));
    const std::vector<std::string> kept {dir / "b/resources", dir / "d/resources"};
    EXPECT_EQ(root_texts(), kept);

    EXPECT_TRUE(MessageCatalog::MessageCatalogInit(roots));
    EXPECT_TRUE(MessageCatalog::MessageCatalogInit(std::vector<std::string> {dir / "b", dir / "d"}));
    EXPECT_FALSE(MessageCatalog::MessageCatalogInit(std::vector<std::string> {dir / "d", dir / "b"}));
    EXPECT_FALSE(MessageCatalog::MessageCatalogInit(dir / "b"));
    EXPECT_FALSE(MessageCatalog::MessageCatalogInit(std::vector<ustring>()));
    EXPECT_EQ(root_texts(), kept);
}

TEST(CatalogRoots, AdditionalRootsAreAllOrNothing)
{
    qvtest::scoped_temp_dir dir;
    dir.make_dir("base/resources");
    dir.make_dir("extra1/resources");
    dir.make_dir("extra2/resources");
    dir.make_dir("broken");
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "base"));

    EXPECT_THROW(
        MessageCatalog::set_additional_resource_locations({}), MessageCatalog::MessageCatalogIncorrectRoot);
    EXPECT_THROW(MessageCatalog::set_additional_resource_locations({u(dir / "extra1"), u(dir / "broken")}),
        MessageCatalog::MessageCatalogIncorrectRoot);
    EXPECT_EQ(root_texts(), std::vector<std::string> {dir / "base/resources"});

    MessageCatalog::set_additional_resource_locations({u(dir / "extra1"), u(dir / "extra2")});
    const std::vector<std::string> all {
        dir / "base/resources", dir / "extra1/resources", dir / "extra2/resources"};
    EXPECT_EQ(root_texts(), all);
    // The base roots alone no longer equal the roots in force.
    EXPECT_FALSE(MessageCatalog::MessageCatalogInit(dir / "base"));
}

TEST(CatalogLookup, FallsBackByLocaleFirstAndRootSecond)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "r1", "app:ui", "en", catalog_xml({{"k", "r1 en"}}));
    write_catalog(dir, "r1", "app:ui", "de", catalog_xml({{"k", "r1 de"}}));
    write_catalog(dir, "r2", "app:ui", "de", catalog_xml({{"k", "r2 de"}}));
    write_catalog(dir, "r2", "app:ui", "de_AT", catalog_xml({{"k", "r2 de_AT"}}));
    write_catalog(dir, "r2", "app:ui", "fr", catalog_xml({{"k", "r2 fr"}}));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(std::vector<std::string> {dir / "r1", dir / "r2"}));

    // A specific locale in a late root beats a general one in the first root ...
    EXPECT_EQ(message_text("app:ui", "k", test_locale("de_AT")), "r2 de_AT");
    // ... and among roots with the same locale the first wins.
    EXPECT_EQ(message_text("app:ui", "k", test_locale("de_CH")), "r1 de");
    EXPECT_EQ(message_text("app:ui", "k", test_locale("fr_CA")), "r2 fr");
    EXPECT_EQ(message_text("app:ui", "k", test_locale("ja_JP")), "r1 en");

    auto at = MessageCatalog::GetMessageCatalog(CatalogID("app:ui"), test_locale("de_AT"));
    auto ch = MessageCatalog::GetMessageCatalog(CatalogID("app:ui"), test_locale("de_CH"));
    EXPECT_EQ(at->get_locale_name(), "de_AT");
    EXPECT_EQ(ch->get_locale_name(), "de");
    EXPECT_EQ(ch->get_catalog_name(), "app:ui");
}

TEST(CatalogLookup, FallBackFileIsSharedUnderBothKeys)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "r", "app:ui:dialogs", "en", catalog_xml({{"k", "english"}}));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));

    const CatalogID id("app:ui:dialogs");
    auto ja = MessageCatalog::GetMessageCatalog(id, test_locale("ja_JP"));
    EXPECT_EQ(ja->get_locale_name(), "en");
    EXPECT_EQ(MessageCatalog::GetMessageCatalog(id, test_locale("en")), ja);
    EXPECT_EQ(MessageCatalog::GetMessageCatalog(id, test_locale("ja_JP")), ja);
    // Another locale falling back to the same file finds the fall-back's entry and shares it.
    EXPECT_EQ(MessageCatalog::GetMessageCatalog(id, test_locale("ko_KR")), ja);
    EXPECT_EQ(
        MessageCatalog::openCatalog(resource_core::BaseCatalogID("app:ui:dialogs"), test_locale("sv")), ja);
}

TEST(CatalogLookup, FailedLoadsAreNotCachedAndNoOtherFileIsTried)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "r", "app:ui", "en", catalog_xml({{"k", "english"}}));
    // The German file's last line has no line break, so the parser is told the document ended.
    write_catalog(dir, "r", "app:ui", "de", "<rsccat><message><entry key=\"k\">x</entry>");
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));

    test_locale de("de");
    const CatalogID id("app:ui");
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            MessageCatalog::GetMessageCatalog(id, de);
            ADD_FAILURE() << "a malformed German file must not fall back to English";
        } catch (const MessageCatalog::MessageCatalogLoadFailed& e) {
            EXPECT_STREQ(e.what(),
                "Message Catalog app:ui was not loaded from the file. "
                "Please check file location, format or contents");
        }
    }
    // Nothing negative was remembered: a repaired file loads on the next request.
    dir.write_file("r/resources/app/de/ui.xml", catalog_xml({{"k", "deutsch"}}));
    EXPECT_EQ(message_text("app:ui", "k", de), "deutsch");

    // A catalog with no file anywhere, and the empty catalog of a default-made identifier.
    EXPECT_THROW(MessageCatalog::GetMessageCatalog(CatalogID("app:none"), de),
        MessageCatalog::MessageCatalogLoadFailed);
    try {
        MessageCatalog::GetMessageCatalog(CatalogID(), de);
        ADD_FAILURE() << "expected MessageCatalogLoadFailed";
    } catch (const MessageCatalog::MessageCatalogLoadFailed& e) {
        EXPECT_STREQ(e.what(),
            "Message Catalog  was not loaded from the file. "
            "Please check file location, format or contents");
    }
}

TEST(CatalogLookup, AddedRootDoesNotChangeWhatIsCached)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "base", "app:ui", "de", catalog_xml({{"k", "base de"}}));
    write_catalog(dir, "more", "app:ui", "de_AT", catalog_xml({{"k", "more de_AT"}}));
    write_catalog(dir, "more", "app:other", "de", catalog_xml({{"k", "more other"}}));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "base"));

    test_locale at("de_AT");
    EXPECT_EQ(message_text("app:ui", "k", at), "base de");
    EXPECT_THROW(message_text("app:other", "k", at), MessageCatalog::MessageCatalogLoadFailed);

    MessageCatalog::set_additional_resource_locations({u(dir / "more")});
    EXPECT_EQ(message_text("app:ui", "k", at), "base de");
    EXPECT_EQ(message_text("app:other", "k", at), "more other");

    MessageCatalog::FlushCatalogFromCache(CatalogID("app:ui"));
    EXPECT_EQ(message_text("app:ui", "k", at), "more de_AT");
}

TEST(CatalogFlush, HeldCatalogsStayUsableAndTheNextRequestRereads)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "r", "app:ui", "en", catalog_xml({{"k", "first"}}));
    write_catalog(dir, "r", "app:ui:sub", "en", catalog_xml({{"k", "sub"}}));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));

    test_locale ja("ja_JP"), en("en");
    auto held = MessageCatalog::GetMessageCatalog(CatalogID("app:ui"), ja);
    auto sub = MessageCatalog::GetMessageCatalog(CatalogID("app:ui:sub"), en);
    write_catalog(dir, "r", "app:ui", "en", catalog_xml({{"k", "second"}}));
    // Asked again just before the flush: the very same request must not outlive it.
    ASSERT_EQ(MessageCatalog::GetMessageCatalog(CatalogID("app:ui"), ja), held);
    EXPECT_EQ(message_text("app:ui", "k", ja), "first");

    MessageCatalog::FlushCatalogFromCache(CatalogID("app:ui"));
    EXPECT_USTR(held->get_message_for_key("k"), u"first");
    EXPECT_EQ(message_text("app:ui", "k", ja), "second");

    // Both keys of the fall-back went, so either locale reads the file anew and they share again.
    auto fresh = MessageCatalog::GetMessageCatalog(CatalogID("app:ui"), ja);
    EXPECT_NE(fresh, held);
    EXPECT_USTR(fresh->get_message_for_key("k"), u"second");
    EXPECT_EQ(MessageCatalog::GetMessageCatalog(CatalogID("app:ui"), en), fresh);

    // Flushing "app:ui" compares the whole text in front of the locale: "app:ui:sub" stays.
    EXPECT_EQ(MessageCatalog::GetMessageCatalog(CatalogID("app:ui:sub"), en), sub);
    // Flushing something never cached is harmless.
    MessageCatalog::FlushCatalogFromCache(CatalogID("no:such"));
    MessageCatalog::FlushCatalogFromCache(CatalogID());
    EXPECT_EQ(MessageCatalog::GetMessageCatalog(CatalogID("app:ui:sub"), en), sub);
}

TEST(CatalogPattern, SegmentsBecomeDirectoriesAroundTheLocale)
{
    EXPECT_USTR(MessageCatalogUtility::obtainXMLFilePathPattern("fl:i18n"), u"fl/%S/i18n.xml");
    EXPECT_USTR(MessageCatalogUtility::obtainXMLFilePathPattern("a:b:c:d"), u"a/%S/b/c/d.xml");
    EXPECT_USTR(MessageCatalogUtility::obtainXMLFilePathPattern("a:b:"), u"");
    EXPECT_USTR(MessageCatalogUtility::obtainXMLFilePathPattern("ab"), u"");
    EXPECT_USTR(MessageCatalogUtility::obtainXMLFilePathPattern(""), u"");
}

TEST(CatalogConcurrency, ThreadsAskingForOneUncachedCatalogShareOneObject)
{
    qvtest::scoped_temp_dir dir;
    catalog_test::entries many;
    for (int i = 0; i < 2000; ++i) {
        many.emplace_back("key" + std::to_string(i), "text " + std::to_string(i));
    }
    write_catalog(dir, "r", "app:big", "en", catalog_xml(many));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));

    const int threads = 8;
    std::vector<fl::i18n::MessageCatalogPtr> got(threads);
    std::atomic<int> ready {0};
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t) {
        pool.emplace_back([&, t] {
            // Half ask for the fall-back's own name, half for locales that fall back to it.
            test_locale locale(t % 2 ? "en" : "pt_BR");
            ++ready;
            while (ready.load() < threads) { }
            got[t] = MessageCatalog::GetMessageCatalog(CatalogID("app:big"), locale);
        });
    }
    for (auto& th : pool) {
        th.join();
    }
    for (int t = 0; t < threads; ++t) {
        ASSERT_TRUE(got[t]);
        EXPECT_EQ(got[t], got[0]) << "thread " << t;
    }
    EXPECT_EQ(got[0]->get_all_keys().size(), 2000u);
}

TEST(CatalogConcurrency, ReadersSeeRightTextsWhileAnotherThreadFlushesAndReloads)
{
    qvtest::scoped_temp_dir dir;
    catalog_test::entries en, de;
    for (int i = 0; i < 50; ++i) {
        en.emplace_back("k" + std::to_string(i), "en " + std::to_string(i));
        de.emplace_back("k" + std::to_string(i), "de " + std::to_string(i));
    }
    write_catalog(dir, "r", "app:ui", "en", catalog_xml(en));
    write_catalog(dir, "r", "app:ui", "de", catalog_xml(de));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));

    std::atomic<bool> stop {false};
    std::atomic<int> wrong {0}, reads {0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 4; ++t) {
        readers.emplace_back([&, t] {
            test_locale locale(t % 2 ? "de_AT" : "it");
            const std::string prefix = t % 2 ? "de " : "en ";
            for (int n = 0; !stop.load(); ++n) {
                const int i = (n * 7 + t) % 50;
                const std::string got = message_text("app:ui", "k" + std::to_string(i), locale);
                if (got != prefix + std::to_string(i)) {
                    ++wrong;
                }
                ++reads;
            }
        });
    }
    std::thread flusher([&] {
        test_locale en_locale("en");
        for (int n = 0; n < 300; ++n) {
            MessageCatalog::FlushCatalogFromCache(CatalogID("app:ui"));
            MessageCatalog::GetMessageCatalog(CatalogID("app:ui"), en_locale);
        }
        stop = true;
    });
    flusher.join();
    for (auto& th : readers) {
        th.join();
    }
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_GT(reads.load(), 0);
}

namespace {

std::string late_text;

struct late_reader {
    ~late_reader() { late_text = message_text("app:ui", "k", test_locale("de")); }
};

} // namespace

TEST(CatalogLifetime, UsableFromDestructorsThatRunAtThreadExit)
{
    qvtest::scoped_temp_dir dir;
    write_catalog(dir, "r", "app:ui", "de", catalog_xml({{"k", "still here"}}));
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(dir / "r"));

    std::thread([] {
        // Made before the thread's first request, so destroyed after the library's own state.
        thread_local late_reader reader;
        static_cast<void>(&reader);
        EXPECT_EQ(message_text("app:ui", "k", test_locale("de")), "still here");
    }).join();
    EXPECT_EQ(late_text, "still here");
}
