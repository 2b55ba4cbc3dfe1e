// Whole start-ups from a user's settings with the shipped database: what the library decides, and what
// the process's environment, C locale and application list look like afterwards. This machine has only
// the C, C.UTF-8 and POSIX locales, so every other name is written as the C locale in its encoding.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

#include "startup_support.hpp"

#include <gtest/gtest.h>

#include <unicode/ucnv.h>

#include <map>
#include <string>

using namespace fl::i18n;
using Env = std::map<std::string, std::string>;

namespace {

class Startup : public qvtest::startup_process {
protected:
    void start()
    {
        boost::unique_lock<boost::mutex> lock(getLcMutex());
        QvLocaleCtx& ctx = get_qvlocale_context();
        parseLcData(ctx.getLcDataForUpdate(lock), fl::filesystem::native_path(QVI18N_TEST_LCDATA));
        ctx.getLcStatus().setStatus(LcStatusCtx::initialized);
        ctx.initGlobalLocale(false);
    }

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

    static int status() { return get_qvlocale_context().getLcStatus().getStatus(); }
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
    auto report = lcmgmt::extract_system_setting_from_locale_context(get_qvlocale_context().getLocaleContext());
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
    ASSERT_NE(nullptr, get_qvlocale_context().getLcStatus().getException());
    EXPECT_STREQ("Invalid locale name.", get_qvlocale_context().getLcStatus().getException()->what());
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
    EXPECT_FALSE(ctx.getL10nEnabled());
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
    ctx.change_current_locale(*english);
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

} // namespace
