// Whole start-ups from a user's settings with the shipped database: what the library decides, and what
// the process's environment, C locale and application list look like afterwards. This machine has only
// the C, C.UTF-8 and POSIX locales, so every other name is written as the C locale in its encoding.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/startup/initialize.hpp>
#include <qvi18n/i18n/locale/startup/lcmgmt.hpp>

#include "tests/i18n/locale/startup_support.hpp"

#include <gtest/gtest.h>

#include <unicode/ucnv.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

using namespace fl::i18n;
using Env = std::map<std::string, std::string>;

namespace {

class Startup : public qvtest::startup_process {
protected:
    void start() { initialize(); }

    static std::string names(QvLocale const& locale)
    {
        std::string all;
        for (int c = QvLocale::LcCtype; c <= QvLocale::LcMessages; ++c) {
            auto category = static_cast<QvLocale::LcCategory>(c);
            all += (c ? " " : "") + locale.shortName(category) + locale.modifier(category);
        }
        return all + " " + locale.encoding();
    }

    static std::string terminal(QvLocale const& locale)
    {
        return boost::get<std::string>(locale.getLcOptData(QvLcOptDataCtx::LcTermEncoding));
    }

    static int status() { return QvLcUtil::getLcStatus(); }
};

TEST_F(Startup, GermanUtf8)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    start();
    EXPECT_EQ(0, status());
    EXPECT_EQ("de_DE de_DE de_DE de_DE de_DE de_DE UTF-8", names(QvLocale::system()));
    EXPECT_EQ("de_DE de_DE de_DE en_US_POSIX de_DE de_DE UTF-8", names(QvLocale::global()));
    EXPECT_EQ("UTF-8", terminal(QvLocale::global()));
    EXPECT_EQ((Env {{"LANG", "C.UTF-8"}, {"LC_NUMERIC", "C"}}), locale_env());
    EXPECT_EQ("UTF-8", c_codeset());
    EXPECT_STREQ("UTF-8", ucnv_getDefaultName());
    EXPECT_EQ("de_DE\nen\n", qvtest::read_file(list_file()));
}

TEST_F(Startup, CUtf8StaysUtf8)
{
    ::setenv("LANG", "C.UTF-8", 1);
    start();
    EXPECT_EQ(0, status());
    EXPECT_EQ("C.UTF-8 C.UTF-8 C.UTF-8 en_US_POSIX C.UTF-8 en_US UTF-8", names(QvLocale::global()));
    EXPECT_EQ((Env {{"LANG", "C.UTF-8"}, {"LC_NUMERIC", "C"}, {"LC_MESSAGES", "C"}}), locale_env());
    EXPECT_EQ("C.UTF-8", c_locale(LC_CTYPE));
    EXPECT_EQ("UTF-8", c_codeset());
    EXPECT_EQ("UTF-8", terminal(QvLocale::global()));
    EXPECT_EQ("C\nen\n", qvtest::read_file(list_file()));
}

TEST_F(Startup, NothingSetIsTheCLocaleWithoutWarning)
{
    start();
    EXPECT_EQ(0, status());
    EXPECT_EQ("en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US US-ASCII",
        names(QvLocale::global()));
    EXPECT_EQ("UTF-8", terminal(QvLocale::global())); // an ASCII terminal is taken as unconfigured
    EXPECT_EQ((Env {{"LANG", "C"}}), locale_env());
    EXPECT_EQ("C", c_locale(LC_ALL));
}

// The usual container setting with a caller's own database that knows the C locale only by its name.
TEST_F(Startup, CUtf8WithADatabaseWithoutItStartsWithoutWarning)
{
    ::setenv("LANG", "C.UTF-8", 1);
    ::setenv("QVLOCALE_LCDATA_PATH", home_.path().c_str(), 1);
    home_.write_file("lcdata.xml",
        "<lcdata>\n<locale name=\"en_US_POSIX\" encoding=\"US-ASCII\" xpg_name=\"C\"/>\n"
        "<locale name=\"en_US\" encoding=\"UTF-8\" xpg_name=\"en_US.UTF-8\"/>\n"
        "<codeset><encoding name=\"US-ASCII\"/><encoding name=\"UTF-8\"/></codeset>\n</lcdata>\n");
    EXPECT_EQ("", get_database_path());
    start();
    EXPECT_EQ(0, status());
    EXPECT_EQ("", QvLcUtil::getInitWarningMsg());
    EXPECT_EQ(home_ / "lcdata.xml", get_database_path());
    EXPECT_EQ("en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US US-ASCII",
        names(QvLocale::global()));
}

TEST_F(Startup, LanguageListDecidesMessages)
{
    ::setenv("LANG", "fr_CA.UTF-8", 1);
    ::setenv("LANGUAGE", "ja:de", 1);
    start();
    EXPECT_EQ(0, status());
    EXPECT_EQ("fr_CA fr_CA fr_CA en_US_POSIX fr_CA ja_JP UTF-8", names(QvLocale::global()));
    // ja_JP.UTF-8 can't be loaded either: it becomes C.UTF-8, the same as LANG, and is not written.
    EXPECT_EQ((Env {{"LANG", "C.UTF-8"}, {"LANGUAGE", "ja:de"}, {"LC_NUMERIC", "C"}}), locale_env());
    EXPECT_EQ("ja\nen\n", qvtest::read_file(list_file()));
    auto report = get_qvlocale_context().getLocaleContext();
    EXPECT_EQ("fr_CA", report.user_locale);
    EXPECT_EQ("ja", report.preferred_language);
    EXPECT_EQ("fr_CA.UTF-8", report.set_base);
    EXPECT_EQ("ja_JP.UTF-8", report.set_differs[lcmgmt::env_lc_messages]);
}

TEST_F(Startup, LcAllOverridesLangAndIsUnsetAfterwards)
{
    ::setenv("LANG", "fr_FR.UTF-8", 1);
    ::setenv("LC_ALL", "de_DE.UTF-8", 1);
    start();
    EXPECT_EQ("de_DE de_DE de_DE en_US_POSIX de_DE de_DE UTF-8", names(QvLocale::global()));
    EXPECT_EQ((Env {{"LANG", "C.UTF-8"}, {"LC_NUMERIC", "C"}}), locale_env());
    auto report = lcmgmt::get_original_user_locale_setting();
    ASSERT_EQ(2u, report.env_vars.size());
    EXPECT_EQ("LC_ALL", report.env_vars[0].name);
    EXPECT_EQ("de_DE.UTF-8", report.env_vars[0].value);
    EXPECT_EQ("LANG", report.env_vars[1].name);
}

TEST_F(Startup, CtypeAndMessagesDiffer)
{
    ::setenv("LC_CTYPE", "de_DE.ISO-8859-1", 1);
    ::setenv("LC_MESSAGES", "fr_FR.UTF-8", 1);
    start();
    EXPECT_EQ(0, status());
    // The codeset is dropped from the identifier: the database's default encoding of de_DE decides.
    EXPECT_EQ("de_DE de_DE de_DE en_US_POSIX de_DE fr_FR UTF-8", names(QvLocale::global()));
    EXPECT_EQ((Env {{"LANG", "C.UTF-8"}, {"LC_NUMERIC", "C"}}), locale_env());
    EXPECT_EQ("fr_FR\nen\n", qvtest::read_file(list_file()));
}

TEST_F(Startup, UnknownLocaleWarnsAndRunsBuiltIn)
{
    ::setenv("LANG", "xx_YY.UTF-8", 1);
    start();
    EXPECT_EQ(3, status());
    EXPECT_EQ("Kestrelon locale management system initialized.", QvLcUtil::getInitStatusMsg());
    EXPECT_EQ("Invalid locale name.", QvLcUtil::getInitWarningMsg());
    EXPECT_EQ("en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US US-ASCII",
        names(QvLocale::global()));
    EXPECT_EQ((Env {{"LANG", "C"}}), locale_env());
    EXPECT_EQ("ANSI_X3.4-1968", c_codeset());
}

TEST_F(Startup, LocalisationSwitchedOffKeepsEnglishMessages)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    ::setenv("QVLOCALE_L10N_CONTROL", "OFF", 1);
    start();
    QvLocaleCtx const& ctx = get_qvlocale_context();
    EXPECT_FALSE(get_l10n_resource_status());
    EXPECT_FALSE(ctx.getLocaleLocked());
    EXPECT_EQ("de_DE de_DE de_DE de_DE de_DE de_DE UTF-8", names(QvLocale::system()));
    EXPECT_EQ("de_DE de_DE de_DE en_US_POSIX de_DE en_US UTF-8", names(QvLocale::global()));
    EXPECT_EQ((Env {{"LANG", "C.UTF-8"}, {"LC_NUMERIC", "C"}, {"LC_MESSAGES", "C"}, {"QVLOCALE_L10N_CONTROL", "OFF"}}),
        locale_env());
    EXPECT_EQ("en\n", qvtest::read_file(list_file()));
}

TEST_F(Startup, LocalisationForcedOnLocksTheGlobalLocale)
{
    ::setenv("LANG", "ja_JP.UTF-8", 1);
    ::setenv("QVLOCALE_L10N_CONTROL", "on", 1);
    start();
    QvLocaleCtx const& ctx = get_qvlocale_context();
    EXPECT_TRUE(ctx.getL10nEnabled());
    EXPECT_TRUE(ctx.getLocaleLocked());
    auto english = QvLocale::createLocale("en_US");
    change_global_locale(*english);
    EXPECT_EQ("ja_JP", QvLocale::global().shortName(QvLocale::LcMessages));
}

TEST_F(Startup, ApplicationListRewrittenOnlyWhenItStartsWrong)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    std::string const path = write_list(std::string("\x01\x02garbage\xff\n") + std::string(80, 'x') + "\nfr\n");
    start();
    EXPECT_EQ("fr", get_qvlocale_context().getLocaleContext().app_language);
    EXPECT_EQ("de_DE\nen\n", qvtest::read_file(path));
    EXPECT_EQ(0, status());
}

TEST_F(Startup, ApplicationListThatIsRightIsNotTouched)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    std::string const path = write_list("de_DE\nfr\n");
    start();
    EXPECT_EQ("de_DE\nfr\n", qvtest::read_file(path));
}

TEST_F(Startup, BeforeStartTheBuiltInStateIsNotInitialised)
{
    EXPECT_EQ(2, status());
    EXPECT_EQ("Kestrelon locale management system not initialized.", QvLcUtil::getInitStatusMsg());
    EXPECT_EQ("", QvLcUtil::getInitWarningMsg());
    EXPECT_EQ("en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US US-ASCII",
        names(QvLocale::global()));
}

TEST_F(Startup, MissingDatabaseLeavesTheBuiltInLocaleAndTheFailure)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    ::setenv("QVLOCALE_LCDATA_PATH", home_.make_dir("empty").c_str(), 1);
    start();
    EXPECT_EQ(1, status());
    EXPECT_EQ("Failed to load Kestrelon locale database. Using Kestrelon default locale setting instead.",
        QvLcUtil::getInitStatusMsg());
    EXPECT_EQ("Failed to open file " + (home_ / "empty/lcdata.xml") + ".", QvLcUtil::getInitWarningMsg());
    EXPECT_NE(nullptr, dynamic_cast<LcRscOpenFileFailure const*>(QvLcUtil::getInitException()));
    // The path it went for, though nothing was there.
    EXPECT_EQ(home_ / "empty/lcdata.xml", get_database_path());
    EXPECT_EQ("en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US_POSIX en_US US-ASCII",
        names(QvLocale::global()));
    EXPECT_EQ("UTF-8", terminal(QvLocale::system()));
    EXPECT_EQ((Env {{"LANG", "C"}, {"QVLOCALE_LCDATA_PATH", home_ / "empty"}}), locale_env());
    EXPECT_EQ("C", c_locale(LC_ALL));
    EXPECT_EQ("de_DE", lcmgmt::get_original_user_locale_setting().user_locale);
}

TEST_F(Startup, MalformedDatabaseKeepsNothingOfWhatWasRead)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    ::setenv("QVLOCALE_LCDATA_PATH", home_.path().c_str(), 1);
    ::setenv("QVLOCALE_LCDATA_FILENAME", "broken.xml", 1);
    home_.write_file("broken.xml",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<lcdata>\n"
        "<locale name=\"de_DE\" encoding=\"UTF-8\" xpg_name=\"de_DE.UTF-8\"></locale>\n<locale name=");
    start();
    EXPECT_EQ(1, status());
    EXPECT_NE(nullptr, dynamic_cast<LcRscInvalidXmlDoc const*>(QvLcUtil::getInitException()));
    EXPECT_THROW(QvLocale::createLocale("de_DE"), QvLcInvLcName);
    EXPECT_EQ("US-ASCII", QvLocale::global().encoding());
    EXPECT_EQ("C", std::string(std::getenv("LANG")));
}

TEST_F(Startup, DatabasePathThatCannotBeFormedIsReported)
{
    ::setenv("QVLOCALE_LCDATA_FILENAME", "/etc/lcdata.xml", 1);
    start();
    EXPECT_EQ(2, status());
    EXPECT_NE(nullptr, dynamic_cast<LcRscInavlidPathName const*>(QvLcUtil::getInitException()));
    EXPECT_EQ("", get_database_path());
    EXPECT_EQ("C", std::string(std::getenv("LANG")));
}

TEST_F(Startup, ConcurrentAndRepeatedCallsDoTheWorkOnce)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([] { initialize(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, status());
    QvLocale const* first = &QvLocale::global();
    // A second start-up would decide from the rewritten environment.
    initialize();
    initLcMgmtSystem();
    EXPECT_EQ(first, &QvLocale::global());
    EXPECT_EQ("de_DE", QvLocale::global().shortName(QvLocale::LcMessages));
    EXPECT_EQ("de_DE", QvLocale::createLocale("de_DE.UTF-8")->shortName(QvLocale::LcCtype));
}

TEST_F(Startup, ChangeToEnglishThenLocked)
{
    ::setenv("LANG", "ja_JP.UTF-8", 1);
    start();
    change_global_locale(*QvLocale::createLocale("en_US"));
    EXPECT_EQ("ja_JP ja_JP ja_JP en_US_POSIX ja_JP en_US UTF-8", names(QvLocale::global()));
    EXPECT_FALSE(get_l10n_resource_status());
    EXPECT_TRUE(get_qvlocale_context().getLocaleLocked());
    EXPECT_EQ("C", std::string(std::getenv("LC_MESSAGES")));
    disable_l10n_resource(); // already off: nothing more happens
    EXPECT_EQ("ja_JP ja_JP ja_JP en_US_POSIX ja_JP en_US UTF-8", names(QvLocale::global()));
}

TEST_F(Startup, ChangeToAnotherLanguageOnlyLocks)
{
    ::setenv("LANG", "ja_JP.UTF-8", 1);
    start();
    change_global_locale(*QvLocale::createLocale("de_DE"));
    change_global_locale(*QvLocale::createLocale("en_US"));
    EXPECT_EQ("ja_JP", QvLocale::global().shortName(QvLocale::LcMessages));
    EXPECT_TRUE(get_l10n_resource_status());
    disable_l10n_resource(); // works on a locked locale
    EXPECT_EQ("en_US", QvLocale::global().shortName(QvLocale::LcMessages));
    EXPECT_TRUE(lcmgmt::is_std_locale_valid());
}

// A caller that spoils the locale variables after start-up gets back what start-up wrote, and only
// when the standard library can't use them.
TEST_F(Startup, FixInvalidStdLocalePutsBackTheDecidedVariables)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    ::setenv("LC_TIME", "fr_FR.UTF-8", 1);
    start();
    Env const decided = locale_env();
    EXPECT_EQ((Env {{"LANG", "C.UTF-8"}, {"LC_NUMERIC", "C"}}), decided);

    ::setenv("LC_MONETARY", "C", 1); // usable: left alone
    lcmgmt::fix_invalid_std_locale();
    EXPECT_EQ("C", locale_env()["LC_MONETARY"]);

    ::setenv("LC_ALL", "xx_NOWHERE.UTF-8", 1);
    EXPECT_FALSE(lcmgmt::is_std_locale_valid());
    lcmgmt::fix_invalid_std_locale();
    EXPECT_EQ(decided, locale_env());
    EXPECT_TRUE(lcmgmt::is_std_locale_valid());
}

// Readers of the well-known locales and of the status take no lock while start-up publishes them.
TEST_F(Startup, ReadersRunWhileStartUpPublishes)
{
    ::setenv("LANG", "ja_JP.UTF-8", 1);
    std::atomic<bool> done(false);
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back([&done] {
            while (!done.load()) {
                std::string const messages = QvLocale::global().shortName(QvLocale::LcMessages);
                std::string const encoding = QvLocale::system().encoding();
                int const now = QvLcUtil::getLcStatus();
                ASSERT_TRUE(messages == "en_US" || messages == "ja_JP") << messages;
                ASSERT_TRUE(encoding == "US-ASCII" || encoding == "UTF-8") << encoding;
                ASSERT_TRUE(now == 2 || now == 0) << now;
                QvLcUtil::getInitWarningMsg();
            }
        });
    }
    start();
    done = true;
    for (auto& reader : readers) {
        reader.join();
    }
    EXPECT_EQ("ja_JP", QvLocale::global().shortName(QvLocale::LcMessages));
}

TEST_F(Startup, OddControlValuesAreKeptOrRefused)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    ::setenv("LANGUAGE", "\xff\xfe:@@:.:de_DE.@", 1);
    ::setenv("QVLOCALE_L10N_CONTROL", "PerHaps", 1); // no choice: the database decides
    ::setenv("QVLOCALE_TERMINAL_ENCODING", "", 1); // set but empty: refused
    start();
    EXPECT_EQ(3, status());
    EXPECT_EQ("Invalid locale name.", QvLcUtil::getInitWarningMsg());
    EXPECT_EQ("perhaps", get_qvlocale_context().getLocaleContext().l10n_control);
    EXPECT_TRUE(get_l10n_resource_status());
    EXPECT_EQ("de_DE de_DE de_DE en_US_POSIX de_DE de_DE UTF-8", names(QvLocale::global()));
    EXPECT_EQ("UTF-8", terminal(QvLocale::global()));
}

} // namespace
