// The user's settings as Linux gives them, and the platform-free decisions taken on them.
#include <qvi18n/i18n/locale/system_locale.hpp>
#include <qvi18n/i18n/locale/system_locale_linux.hpp>

#include "startup_support.hpp"

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace lm = fl::i18n::lcmgmt;
namespace lx = fl::i18n::lcmgmt::linux_os;
using fl::i18n::LcData;

namespace {

class SystemLocale : public qvtest::startup_process {
protected:
    SystemLocale()
    {
        data_.addLcName("en_US_POSIX", "US-ASCII", "C");
        auto de = data_.addLcName("de_DE", "UTF-8", "de_DE.UTF-8");
        data_.addAliasLcName(de, "de");
        auto ja = data_.addLcName("ja_JP", "UTF-8", "ja_JP.UTF-8");
        data_.addAliasLcName(ja, "ja");
        data_.addLcName("fr_CA", "UTF-8", "fr_CA.UTF-8");
        data_.addEncodingName("UTF-8", "UTF8");
        data_.addEncodingName("ISO-8859-1", "ISO8859_1");
    }

    std::vector<std::string> leftovers() const
    {
        std::vector<std::string> names;
        if (DIR* dir = ::opendir(list_dir().c_str())) {
            while (dirent* entry = ::readdir(dir)) {
                std::string name = entry->d_name;
                if (name != "." && name != ".." && name != "languages") {
                    names.push_back(name);
                }
            }
            ::closedir(dir);
        }
        return names;
    }

    LcData data_;
};

TEST_F(SystemLocale, UserLocaleComesFromTheFirstSetVariableWithoutItsCodeset)
{
    EXPECT_EQ("C", lx::get_user_locale()); // nothing set is the C locale, not a failure
    struct Case {
        char const* lc_all;
        char const* lc_ctype;
        char const* lang;
        char const* expected;
    };
    for (Case const& c : std::vector<Case> {
             {nullptr, nullptr, "de_DE.UTF-8@euro", "de_DE@euro"},
             {nullptr, "fr_CA.ISO-8859-1", "de_DE.UTF-8", "fr_CA"},
             {"ja_JP.eucJP", "fr_CA", "de_DE", "ja_JP"},
             {"", "", "de_DE", "de_DE"}, // empty counts as unset
             {nullptr, nullptr, "C.utf8", "C.UTF-8"}, // a locale of its own
             {nullptr, nullptr, "POSIX.UTF-8", "C.UTF-8"},
             {nullptr, nullptr, "C.ISO-8859-1", "C"},
             {nullptr, nullptr, ".@", "@"},
         }) {
        for (auto [name, value] : {std::pair<char const*, char const*> {"LC_ALL", c.lc_all},
                 {"LC_CTYPE", c.lc_ctype}, {"LANG", c.lang}}) {
            value ? ::setenv(name, value, 1) : ::unsetenv(name);
        }
        EXPECT_EQ(c.expected, lx::get_user_locale()) << (c.lang ? c.lang : "");
    }
}

TEST_F(SystemLocale, PreferredLanguageFollowsLanguageOutsideTheCLocale)
{
    ::setenv("LANGUAGE", "ja:de", 1);
    EXPECT_EQ("en_US", lx::get_preferred_language(data_)); // nothing set: LANGUAGE ignored
    ::setenv("LANG", "C", 1);
    EXPECT_EQ("en_US", lx::get_preferred_language(data_));
    ::setenv("LANG", "C.UTF-8", 1); // not "C": LANGUAGE counts
    EXPECT_EQ("ja", lx::get_preferred_language(data_));

    ::setenv("LANG", "fr_CA.UTF-8", 1);
    ::setenv("LANGUAGE", "::xx_YY:de.UTF-8:ja", 1); // unknown and empty entries are passed over
    EXPECT_EQ("de", lx::get_preferred_language(data_));
    ::setenv("LANGUAGE", "xx:yy", 1);
    EXPECT_EQ("fr_CA", lx::get_preferred_language(data_));
    ::setenv("LC_MESSAGES", "POSIX", 1);
    EXPECT_EQ("en_US", lx::get_preferred_language(data_));
    ::setenv("LC_ALL", "de_DE.UTF-8", 1); // LC_ALL beats LC_MESSAGES
    EXPECT_EQ("de_DE", lx::get_preferred_language(data_));
}

TEST_F(SystemLocale, GarbageSettingsGiveNamesTheDatabaseRefuses)
{
    std::string junk(100000, '\xff');
    junk += "@.@\x01";
    ::setenv("LANG", junk.c_str(), 1);
    ::setenv("LANGUAGE", (junk + ":" + junk + "::").c_str(), 1);
    EXPECT_TRUE(data_.getLcName(lx::get_user_locale()).empty());
    EXPECT_TRUE(data_.getLcName(lx::get_preferred_language(data_)).empty());

    lm::osx::locale_context context;
    EXPECT_FALSE(lm::osx::get_sysdep_locales(data_, context));
    EXPECT_EQ("en_US_POSIX", context.category_name[lm::env_lc_ctype].first);
    EXPECT_EQ("", context.category_name[lm::env_lc_ctype].second);
    EXPECT_EQ("en_US", context.category_name[lm::env_lc_messages].first);
}

// A small database may list the C locale only as "en_US_POSIX", and have no C.UTF-8.
TEST_F(SystemLocale, TheCLocaleIsNoFailureWhateverTheDatabaseCallsIt)
{
    data_.addLcName("en_US", "UTF-8", "en_US.UTF-8");
    for (char const* lang : {"", "C", "POSIX", "C.UTF-8", "POSIX.utf8"}) {
        ::setenv("LANG", lang, 1);
        lm::osx::locale_context context;
        EXPECT_TRUE(lm::osx::get_sysdep_locales(data_, context)) << lang;
        EXPECT_EQ("en_US_POSIX", context.category_name[lm::env_lc_ctype].first) << lang;
        EXPECT_EQ("en_US", context.category_name[lm::env_lc_messages].first) << lang;
    }
}

TEST_F(SystemLocale, ModifierThatOnlyResolvesWithoutItIsKeptWithItsAt)
{
    ::setenv("LANG", "de_DE.UTF-8@foo", 1);
    lm::osx::locale_context context;
    EXPECT_TRUE(lm::osx::get_sysdep_locales(data_, context));
    EXPECT_EQ("de_DE", context.category_name[lm::env_lc_time].first);
    EXPECT_EQ("@foo", context.category_name[lm::env_lc_time].second);
    EXPECT_EQ("de_DE", context.category_name[lm::env_lc_messages].first);
    EXPECT_EQ("de_DE.UTF-8", context.set_base);
    EXPECT_TRUE(context.set_uniform);
}

TEST_F(SystemLocale, TerminalEncodingFromTheCodesetWithAsciiTakenAsUnconfigured)
{
    lm::osx::locale_context context;
    context.codeset = "ANSI_X3.4-1968";
    EXPECT_EQ("UTF-8", lm::osx::get_terminal_encoding(data_, context));
    context.codeset = "ISO-8859-1";
    EXPECT_EQ("ISO-8859-1", lm::osx::get_terminal_encoding(data_, context));
    context.codeset = "NO-SUCH-CODESET";
    EXPECT_EQ("UTF-8", lm::osx::get_terminal_encoding(data_, context));
    ::setenv("QVLOCALE_TERMINAL_ENCODING", "", 1); // taken as it stands, even empty
    EXPECT_EQ("", lm::osx::get_terminal_encoding(data_, context));
}

TEST_F(SystemLocale, NamesTheCLibraryCannotLoadAreWrittenAsTheCLocaleInTheirEncoding)
{
    EXPECT_EQ("C.UTF-8", lx::loadable_xpg_name("C.UTF-8", "UTF-8"));
    EXPECT_EQ("C", lx::loadable_xpg_name("C", "UTF-8"));
    EXPECT_EQ("C.UTF-8", lx::loadable_xpg_name("xx_YY.UTF-8", "UTF-8"));
    EXPECT_EQ("C", lx::loadable_xpg_name("xx_YY.ISO-8859-1", "ISO-8859-1"));
    EXPECT_EQ("", lx::loadable_xpg_name("", "UTF-8"));
}

TEST_F(SystemLocale, ApplicationListEndsInEnglishAndIsLeftAloneWhenRight)
{
    lm::osx::locale_context context;
    context.preferred_language = "ja";
    EXPECT_EQ((std::vector<std::string> {"ja", "en"}), lm::osx::wanted_app_languages(context));
    context.messages_l10n = false;
    EXPECT_EQ((std::vector<std::string> {"en"}), lm::osx::wanted_app_languages(context));
    context.app_language = "en";
    EXPECT_TRUE(lm::osx::wanted_app_languages(context).empty());
    context.messages_l10n = true;
    context.preferred_language = "en";
    EXPECT_TRUE(lm::osx::wanted_app_languages(context).empty());
}

TEST_F(SystemLocale, PlatformNamesStandOnTheLinuxOperations)
{
    EXPECT_STREQ("UTF-8", lm::darwin::DEFAULT_ENCODING);
    ::setenv("LANG", "de_DE.UTF-8@euro", 1);
    EXPECT_EQ("de_DE@euro", lm::darwin::get_user_locale());

    std::unique_ptr<void const, lm::darwin::reference_close> array;
    lm::darwin::create_array(array, {});
    EXPECT_EQ(nullptr, array);
    lm::darwin::create_array(array, {"d\xc3\xa9", "fr"});
    EXPECT_NE(nullptr, array);

    lm::osx::locale_context context;
    context.preferred_language = "ja";
    lm::darwin::change_app_lang_setting(context);
    EXPECT_EQ("ja\nen\n", qvtest::read_file(list_file()));
}

TEST_F(SystemLocale, ApplicationListFileIsReadLeniently)
{
    EXPECT_EQ(list_file(), lx::get_app_language_file());
    EXPECT_TRUE(lx::read_app_languages().empty()); // absent

    std::string overlong(65, 'a');
    write_list(
        "\n" + overlong + "\nd\xc3\xa9\nta\tb\n" + std::string(64, 'b') + "\nfr_FR\nen");
    EXPECT_EQ((std::vector<std::string> {std::string(64, 'b'), "fr_FR", "en"}), lx::read_app_languages());

    ::setenv("XDG_CONFIG_HOME", "", 1); // empty counts as unset
    EXPECT_EQ(home_ / "home/.config/qvi18n/test_i18n_locale/languages", lx::get_app_language_file());
    ::unsetenv("HOME");
    EXPECT_EQ("", lx::get_app_language_file());
    EXPECT_TRUE(lx::read_app_languages().empty());
    EXPECT_FALSE(lx::write_app_languages({"de"}));
}

TEST_F(SystemLocale, ApplicationListIsReplacedWhole)
{
    ASSERT_TRUE(lx::write_app_languages({"de_DE", "bad\nname", "en"}));
    EXPECT_EQ("de_DE\nen\n", qvtest::read_file(list_file()));
    struct stat st;
    ASSERT_EQ(0, ::stat((home_ / "config/qvi18n").c_str(), &st));
    EXPECT_EQ(0700u, st.st_mode & 07777u);
    ASSERT_EQ(0, ::stat(list_dir().c_str(), &st));
    EXPECT_EQ(0700u, st.st_mode & 07777u);

    ASSERT_TRUE(lx::write_app_languages({"ja"}));
    EXPECT_EQ("ja\n", qvtest::read_file(list_file()));
    EXPECT_TRUE(leftovers().empty());

    // A rename that can't happen leaves the old list and no temporary file.
    std::string const blocked = home_.make_dir("other/qvi18n/test_i18n_locale/languages");
    home_.write_file("other/qvi18n/test_i18n_locale/languages/keep", "x");
    ::setenv("XDG_CONFIG_HOME", (home_ / "other").c_str(), 1);
    EXPECT_FALSE(lx::write_app_languages({"fr"}));
    EXPECT_EQ("x", qvtest::read_file(blocked + "/keep"));
    ::setenv("XDG_CONFIG_HOME", (home_ / "config").c_str(), 1);
    EXPECT_EQ("ja\n", qvtest::read_file(list_file()));
    EXPECT_TRUE(leftovers().empty());
}

TEST_F(SystemLocale, UnloadableExtraCategoriesAreUnsetAndReported)
{
    ::setenv("LC_PAPER", "xx_YY.UTF-8", 1);
    ::setenv("LC_MEASUREMENT", "C.UTF-8", 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    lm::osx::locale_context context;
    lm::osx::get_xpg_locales(context);
    lm::osx::set_xpg_locale(context, true);
    EXPECT_EQ(nullptr, std::getenv("LC_PAPER"));
    ASSERT_NE(nullptr, std::getenv("LC_MEASUREMENT"));
    EXPECT_STREQ("C.UTF-8", std::getenv("LC_MEASUREMENT"));
    EXPECT_EQ(nullptr, std::getenv("LC_ALL"));
    EXPECT_STREQ("C", std::getenv("LANG"));

    auto report = lm::extract_system_setting_from_locale_context(context);
    std::vector<std::string> vars;
    for (auto const& var : report.env_vars) {
        vars.push_back(var.name + "=" + var.value);
    }
    EXPECT_EQ((std::vector<std::string> {"LC_ALL=C.UTF-8", "LC_PAPER=xx_YY.UTF-8", "LC_MEASUREMENT=C.UTF-8"}), vars);
    EXPECT_EQ("UTF-8", report.codeset);
}

} // namespace
