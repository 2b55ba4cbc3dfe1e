#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>
#include <qvi18n/i18n/locale/startup/jvm_context.hpp>

#include "qvtest/scoped_env.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <utility>

namespace {

namespace i18n = fl::i18n;

// Puts a global locale of the given name and encoding in place, as start-up would.
void use_global_locale(std::string const& name, std::string const& encoding)
{
    i18n::QvLocaleCtx& ctx = i18n::get_qvlocale_context();
    std::unique_ptr<i18n::QvLocaleImpl> locale(new i18n::QvLocaleImpl(ctx.getLcData()));
    locale->setLcName(name, "");
    locale->setEncoding(encoding);
    ctx.setCurrentLocale(std::move(locale));
    ASSERT_TRUE(ctx.setGlobalLocale(&ctx.getCurrentLocale()));
}

void add_encoding_name(std::string const& name, std::string const& jvm_name)
{
    boost::unique_lock<boost::mutex> lock(i18n::getLcMutex());
    i18n::get_qvlocale_context().getLcDataForUpdate(lock).addEncodingName(name, jvm_name);
}

// Field by field, so that a failure names the field.
void expect_context(i18n::qvlc_java_context const& expected, i18n::qvlc_java_context const& actual)
{
    EXPECT_EQ(expected.system_language, actual.system_language);
    EXPECT_EQ(expected.system_territory, actual.system_territory);
    EXPECT_EQ(expected.classic_language, actual.classic_language);
    EXPECT_EQ(expected.classic_territory, actual.classic_territory);
    EXPECT_EQ(expected.global_language, actual.global_language);
    EXPECT_EQ(expected.global_territory, actual.global_territory);
    EXPECT_EQ(expected.jvm_encoding, actual.jvm_encoding);
}

TEST(JvmContext, GlobalPairOnlyWhenItDiffersFromTheSystem)
{
    add_encoding_name("US-ASCII", "ASCII");
    // Built-in state: localised, and the system's messages locale is the global one.
    expect_context({"en", "US", "", "", "", "", "ASCII"}, i18n::get_javavm_init_context());

    add_encoding_name("UTF-8", "UTF8");
    use_global_locale("de_AT", "UTF-8");
    expect_context({"en", "US", "", "", "de", "AT", "UTF8"}, i18n::get_javavm_init_context());
}

TEST(JvmContext, LocalisationOffNamesTheClassicAndGlobalLocales)
{
    i18n::get_qvlocale_context().clearL10nEnabled();
    i18n::qvlc_java_context off = i18n::get_javavm_init_context();
    EXPECT_EQ(off.classic_language, "en");
    EXPECT_EQ(off.classic_territory, "US");
    // Not localised: the global pair is given even though it matches the system's.
    EXPECT_EQ(off.global_language, "en");
    EXPECT_EQ(off.global_territory, "US");
}

TEST(UstringEnvironment, ValuesAreUtf8AndBadArgumentsAreRefused)
{
    qvtest::scoped_env guard("QVI18N_TEST_VALUE");
    const i18n::ustring text = u"Gr\u00FC\u00DFe \u65E5\u672C \U0001F600";
    ASSERT_EQ(i18n::setenv("QVI18N_TEST_VALUE", text, 1, false), 0);
    EXPECT_STREQ(std::getenv("QVI18N_TEST_VALUE"), "Gr\xC3\xBC\xC3\x9F" "e \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80");
    EXPECT_EQ(i18n::getenv("QVI18N_TEST_VALUE"), text);

    // overwrite 0 keeps the value and still succeeds.
    EXPECT_EQ(i18n::setenv("QVI18N_TEST_VALUE", u"other", 0, false), 0);
    EXPECT_EQ(i18n::getenv("QVI18N_TEST_VALUE"), text);

    // Empty values only when allowed; the variable stays as it was when refused.
    errno = 0;
    EXPECT_EQ(i18n::setenv("QVI18N_TEST_VALUE", i18n::ustring(), 1, false), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(i18n::getenv("QVI18N_TEST_VALUE"), text);
    EXPECT_EQ(i18n::setenv("QVI18N_TEST_VALUE", i18n::ustring(), 1, true), 0);
    ASSERT_NE(std::getenv("QVI18N_TEST_VALUE"), nullptr);
    EXPECT_STREQ(std::getenv("QVI18N_TEST_VALUE"), "");
    EXPECT_EQ(i18n::getenv("QVI18N_TEST_VALUE"), u"");

    // Invalid bytes in the environment read as U+FFFD.
    ASSERT_EQ(::setenv("QVI18N_TEST_VALUE", "a\xFF" "b", 1), 0);
    EXPECT_EQ(i18n::getenv("QVI18N_TEST_VALUE"), u"a\uFFFDb");

    EXPECT_EQ(i18n::unsetenv("QVI18N_TEST_VALUE"), 0);
    EXPECT_EQ(std::getenv("QVI18N_TEST_VALUE"), nullptr);
    EXPECT_EQ(i18n::getenv("QVI18N_TEST_VALUE"), u"");

    errno = 0;
    EXPECT_EQ(i18n::getenv(""), u"");
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(i18n::setenv("", u"x", 1, true), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(i18n::unsetenv(""), -1);
    EXPECT_EQ(errno, EINVAL);
    // A name with "=" is the C library's to refuse.
    errno = 0;
    EXPECT_EQ(i18n::setenv("A=B", u"x", 1, false), -1);
    EXPECT_EQ(errno, EINVAL);
}

} // namespace
