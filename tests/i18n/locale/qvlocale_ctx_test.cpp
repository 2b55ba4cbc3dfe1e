#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

#include "locale_test_db.hpp"
#include <qvi18n/i18n/locale/lcmgmt.hpp>

#include <boost/thread/lock_guard.hpp>
#include <gtest/gtest.h>

#include <unicode/ucnv.h>

#include <atomic>
#include <thread>
#include <vector>

namespace lcmgmt = fl::i18n::lcmgmt;
using fl::i18n::QvLocale;

namespace {

std::string encoding_of(std::string const& name)
{
    std::string out = "garbage";
    std::string& result = fl::i18n::getEncoding(out, name);
    EXPECT_EQ(&out, &result);
    return out;
}

TEST(Encodings, GetEncodingNeedsIcuAndTheDatabase)
{
    qvtest::fill_locale_database();
    // Aliases ICU and the database both know end at the database's canonical spelling.
    EXPECT_EQ("UTF-8", encoding_of("utf8"));
    EXPECT_EQ("UTF-8", encoding_of("ibm-1208"));
    EXPECT_EQ("ISO-8859-1", encoding_of("latin1"));
    EXPECT_EQ("EUC-JP", encoding_of("eucjp"));
    EXPECT_EQ("US-ASCII", encoding_of("ascii"));
    // ICU knows it, the database does not.
    EXPECT_EQ("", encoding_of("Shift_JIS"));
    // Neither knows it.
    EXPECT_EQ("", encoding_of("NoSuchCode"));
}

TEST(Encodings, SupportedEncodingsAndAliasLookUps)
{
    qvtest::fill_locale_database();
    EXPECT_TRUE(lcmgmt::is_supported_encoding("eucjp"));
    EXPECT_TRUE(lcmgmt::is_supported_encoding("ibm-1208")); // only through ICU's standard name
    EXPECT_FALSE(lcmgmt::is_supported_encoding("Shift_JIS"));
    EXPECT_FALSE(lcmgmt::is_supported_encoding("NoSuchCode"));
    EXPECT_FALSE(lcmgmt::is_supported_encoding(""));

    EXPECT_EQ("EUC-JP", lcmgmt::get_encoding_name_from_alias("EUCJP"));
    EXPECT_EQ("EUC-JP", lcmgmt::get_qv_standard_encoding_name_from_alias("eucJP"));
    EXPECT_EQ("Shift_JIS", lcmgmt::get_encoding_name_from_alias("Shift_JIS"));
    EXPECT_EQ("", lcmgmt::get_qv_standard_encoding_name_from_alias("Shift_JIS"));
}

TEST(Encodings, StandardNameFromConverterName)
{
    using fl::i18n::lcctype::get_standard_encoding_name_from_converter_name;
    EXPECT_EQ("", get_standard_encoding_name_from_converter_name(""));
    EXPECT_EQ("UTF-8", get_standard_encoding_name_from_converter_name("UTF-8"));
    UErrorCode status = U_ZERO_ERROR;
    UConverter* sjis = ucnv_open("Shift_JIS", &status);
    ASSERT_TRUE(U_SUCCESS(status));
    std::string icuName = ucnv_getName(sjis, &status);
    ucnv_close(sjis);
    EXPECT_EQ("Shift_JIS", get_standard_encoding_name_from_converter_name(icuName));
    // No standard lists it: the name comes back as it was, where the converter context answers empty.
    EXPECT_EQ("x-no-such-converter", get_standard_encoding_name_from_converter_name("x-no-such-converter"));
    fl::i18n::CvtCtx utf8("UTF-8");
    EXPECT_EQ("", utf8.get_std_encoding_name("x-no-such-converter"));
    EXPECT_EQ("UTF-8", utf8.get_std_encoding_name("UTF-8"));
}

TEST(GlobalLock, OneMutexForTheProcess)
{
    boost::mutex& lock = fl::i18n::getLcMutex();
    EXPECT_EQ(&lock, &fl::i18n::getLcMutex());
    EXPECT_EQ(&lock, &fl::i18n::QvLcGenericSingleton<boost::mutex>::getInstance());
    boost::lock_guard<boost::mutex> guard(lock);
    // The locale functions take no lock of their own: holding the global one does not block them.
    EXPECT_EQ("US-ASCII", QvLocale::global().encoding());
    EXPECT_EQ(&fl::i18n::get_qvlocale_context(), &fl::i18n::QvLcCtxSingleton::getInstance());
}

TEST(GlobalPointer, OnlyOwnedLocalesArePublishedAndNoneIsFreed)
{
    auto& ctx = fl::i18n::get_qvlocale_context();
    qvtest::fill_locale_database();

    // A locale the context does not own is refused.
    fl::i18n::QvLocaleImpl stranger(QvLocale::classic());
    EXPECT_FALSE(ctx.setGlobalLocale(&stranger));
    EXPECT_FALSE(ctx.setGlobalLocale(nullptr));
    EXPECT_EQ(&QvLocale::classic(), &QvLocale::global());

    std::unique_ptr<fl::i18n::QvLocaleImpl> current(new fl::i18n::QvLocaleImpl(std::string("de_DE")));
    fl::i18n::QvLocaleImpl const* published = current.get();
    ctx.setCurrentLocale(std::move(current));
    ASSERT_TRUE(ctx.setGlobalLocale(published));
    QvLocale const& global = QvLocale::global();
    EXPECT_EQ(published, &global);

    // Replacing the published current locale keeps the old object alive for its readers.
    ctx.setCurrentLocale(
        std::unique_ptr<fl::i18n::QvLocaleImpl>(new fl::i18n::QvLocaleImpl(std::string("fr_FR"))));
    EXPECT_EQ("de_DE", global.shortName(QvLocale::LcCtype));
    EXPECT_EQ("ISO-8859-1", QvLocale::global().encoding());
    ASSERT_TRUE(ctx.setGlobalLocale(&ctx.getClassicLocale()));
}

// Many threads race for the context's first use, then create locales and read the database while the
// global pointer changes underneath them.
TEST(Threads, ConcurrentFirstUseCreationAndReads)
{
    constexpr int threadCount = 8;
    std::atomic<int> ready(0);
    std::atomic<bool> go(false);
    std::atomic<int> failures(0);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            ++ready;
            while (!go.load()) {
                std::this_thread::yield();
            }
            if (QvLocale::global().encoding().empty() || QvLocale::classic().encoding() != "US-ASCII") {
                ++failures;
            }
            if (t == 0) {
                qvtest::fill_locale_database();
            }
        });
    }
    while (ready.load() < threadCount) {
        std::this_thread::yield();
    }
    go = true;
    for (auto& th : threads) {
        th.join();
    }
    EXPECT_EQ(0, failures.load());

    // Readers from here on; the database is filled.
    auto& ctx = fl::i18n::get_qvlocale_context();
    std::unique_ptr<fl::i18n::QvLocaleImpl> current(new fl::i18n::QvLocaleImpl(std::string("ja_JP")));
    fl::i18n::QvLocaleImpl const* japanese = current.get();
    ctx.setCurrentLocale(std::move(current));

    std::atomic<bool> stop(false);
    threads.clear();
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            static char const* const names[] = {"de_DE", "ja_JP.UTF-8", "fr_FR@euro", "POSIX", "english"};
            for (int i = 0; i < 300; ++i) {
                auto locale = QvLocale::createLocale(names[(i + t) % 5]);
                auto copy = QvLocale::createLocale(*locale);
                auto mixed = QvLocale::createLocale(*copy, "ja_JP.eucJP", QvLocale::LcCtype);
                std::string encoding;
                QvLocale const& global = QvLocale::global();
                std::string const globalEncoding = global.encoding();
                if (!(*copy == *locale) || mixed->encoding() != "EUC-JP"
                    || (globalEncoding != "US-ASCII" && globalEncoding != "EUC-JP")
                    || QvLocale::classic().shortName(QvLocale::LcMessages) != "en_US"
                    || fl::i18n::getEncoding(encoding, "latin1") != "ISO-8859-1"
                    || ctx.getLcData().getLcName("JAPANESE") != "ja_JP"
                    || fl::i18n::get_fallback_locales(*mixed).back() != u"en") {
                    ++failures;
                }
            }
        });
    }
    // The global pointer flips between two owned locales while the readers run.
    std::thread flipper([&] {
        int n = 0;
        while (!stop.load()) {
            ctx.setGlobalLocale(n++ % 2 ? japanese : &ctx.getClassicLocale());
            std::this_thread::yield();
        }
    });
    for (auto& th : threads) {
        th.join();
    }
    stop = true;
    flipper.join();
    EXPECT_EQ(0, failures.load());
    ctx.setGlobalLocale(&ctx.getClassicLocale());
}

} // namespace
