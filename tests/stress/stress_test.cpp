// Eight threads for a few seconds mixing what applications do at once: messages in four locales,
// catalog flushes, the default conversion, global-locale reads and locale creation. Every answer
// is compared with the one the same call gave before any thread started.
// QVI18N_STRESS_SECONDS overrides the duration.
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/startup/initialize.hpp>

#include "tests/i18n/locale/locale_test_db.hpp"
#include "tests/i18n/locale/startup_support.hpp"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using namespace fl::i18n;

namespace {

const std::array<const char*, 4> locale_names {{"de_DE", "fr_FR", "ja_JP", "en_US"}};
const std::array<const char*, 4> message_ids {
    {"fl:i18n:QvLcInvLcName", "fl:i18n:CvtInvalidArgument", "fl:filesystem:InvalidArgument",
     "fl:filesystem:FileNameTooLarge"}};

enum operation { op_message, op_flush, op_to_string, op_to_ustring, op_global, op_create, op_count };

struct expected_answers {
    std::vector<boost::shared_ptr<const QvLocale>> locales;
    ustring messages[4][4];       // [locale][message]
    std::string global_encoding;
    std::string encodings[4];     // what createLocale(name)->encoding() says
    std::string narrow;           // to_string(wide) and back
    ustring wide;
    std::string mixed_narrow;     // to_string of non-ASCII text: lossy under an ASCII default
};

double stress_seconds()
{
    const char* text = std::getenv("QVI18N_STRESS_SECONDS");
    const double seconds = text ? std::atof(text) : 0.0;
    return seconds > 0 ? seconds : 3.0;
}

// The mix itself; the locale database must be filled and the catalog roots set.
void run_mix()
{
    expected_answers want;
    for (std::size_t l = 0; l < locale_names.size(); ++l) {
        want.locales.push_back(QvLocale::createLocale(locale_names[l]));
        want.encodings[l] = want.locales[l]->encoding();
        for (std::size_t m = 0; m < message_ids.size(); ++m) {
            want.messages[l][m] = MessageCatalog::get_message(MessageID(message_ids[m]), *want.locales[l]);
            ASSERT_FALSE(want.messages[l][m].empty()) << locale_names[l] << " " << message_ids[m];
        }
    }
    // Four different translations, or the test would not see a wrong locale's text.
    ASSERT_NE(want.messages[0][0], want.messages[1][0]);
    ASSERT_NE(want.messages[0][0], want.messages[2][0]);
    ASSERT_NE(want.messages[0][0], want.messages[3][0]);
    want.global_encoding = QvLocale::global().encoding();
    want.narrow = "plain text for the default conversion, 0123456789";
    want.wide = to_ustring(want.narrow);
    ASSERT_EQ(to_string(want.wide), want.narrow);
    want.mixed_narrow = to_string(u"caf\u00e9 \u65e5\u672c");

    const int thread_count = 8;
    const auto deadline = std::chrono::steady_clock::now()
        + std::chrono::milliseconds(static_cast<long>(stress_seconds() * 1000));
    std::atomic<int> ready {0};
    std::atomic<long> failures {0};
    std::array<std::atomic<long>, op_count> done {};
    std::vector<std::thread> threads;
    for (int t = 0; t < thread_count; ++t) {
        threads.emplace_back([&, t] {
            ++ready;
            while (ready.load() < thread_count)
                std::this_thread::yield();
            std::uint32_t random = 2654435761u * static_cast<std::uint32_t>(t + 1);
            std::array<long, op_count> mine {};
            long wrong = 0;
            while (std::chrono::steady_clock::now() < deadline) {
                for (int burst = 0; burst < 64; ++burst) {
                    random = random * 1664525u + 1013904223u;
                    const unsigned pick = random >> 8;
                    const std::size_t l = pick % 4, m = (pick >> 2) % 4;
                    // Flushes are rare, as they are in applications; everything else is even.
                    const unsigned draw = (pick >> 4) % 64;
                    static const operation others[] = {op_message, op_to_string, op_to_ustring,
                                                       op_global, op_create};
                    const operation op = draw == 0 ? op_flush : others[draw % 5];
                    try {
                        switch (op) {
                        case op_message:
                            wrong += MessageCatalog::get_message(MessageID(message_ids[m]), *want.locales[l])
                                != want.messages[l][m];
                            break;
                        case op_flush:
                            MessageCatalog::FlushCatalogFromCache(
                                CatalogID(m % 2 ? "fl:filesystem" : "fl:i18n"));
                            break;
                        case op_to_string:
                            wrong += to_string(want.wide) != want.narrow;
                            wrong += to_string(u"caf\u00e9 \u65e5\u672c") != want.mixed_narrow;
                            break;
                        case op_to_ustring:
                            wrong += to_ustring(want.narrow) != want.wide;
                            break;
                        case op_global:
                            wrong += QvLocale::global().encoding() != want.global_encoding;
                            break;
                        case op_create: {
                            const auto made = QvLocale::createLocale(locale_names[l]);
                            wrong += made->encoding() != want.encodings[l];
                            wrong += !(*made == *want.locales[l]);
                            break;
                        }
                        case op_count:
                            break;
                        }
                    } catch (...) {
                        ++wrong;
                    }
                    ++mine[op];
                }
            }
            failures += wrong;
            for (int op = 0; op < op_count; ++op)
                done[op] += mine[op];
        });
    }
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(failures.load(), 0);
    for (int op = 0; op < op_count; ++op)
        EXPECT_GT(done[op].load(), 0) << "operation " << op << " never ran";
}

} // namespace

TEST(Stress, EightThreadsMixingMessagesFlushesConversionAndLocales)
{
    qvtest::fill_locale_database(); // takes the global lock itself
    ASSERT_TRUE(MessageCatalog::MessageCatalogInit(std::string(QVI18N_TEST_BUILD_ROOT)));
    run_mix();
}

// The same after a real start-up under a UTF-8 locale: the shipped database, a global locale
// decided from the environment, and a default conversion that is not ASCII.
class StressAfterStartUp : public qvtest::startup_process { };

TEST_F(StressAfterStartUp, EightThreadsMixingUnderAGermanUtf8GlobalLocale)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    initialize();
    ASSERT_EQ(QvLocale::global().encoding(), "UTF-8");
    // Start-up may have set the same roots already; only the catalogs' being found matters.
    MessageCatalog::MessageCatalogInit(std::string(QVI18N_TEST_BUILD_ROOT));
    ASSERT_EQ(to_string(u"caf\u00e9"), "caf\xc3\xa9");
    run_mix();
}
