// How the default conversions and the converter classes pick up the global locale's encoding.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

using namespace fl::i18n;

namespace {

// Makes a locale with the given encoding global, as start-up would.
void make_global(const std::string& name, const std::string& encoding)
{
    QvLocaleCtx& ctx = get_qvlocale_context();
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    ctx.getLcDataForUpdate(lock).addLcName(name, encoding, name + "." + encoding);
    ctx.getLcDataForUpdate(lock).addEncodingName(encoding, encoding);
    ctx.setCurrentLocale(std::unique_ptr<QvLocaleImpl>(new QvLocaleImpl(name)));
    ASSERT_TRUE(ctx.setGlobalLocale(&ctx.getCurrentLocale()));
    ASSERT_EQ(QvLocale::global().encoding(), encoding);
}

struct classic_restorer {
    ~classic_restorer()
    {
        QvLocaleCtx& ctx = get_qvlocale_context();
        ctx.setGlobalLocale(&ctx.getClassicLocale());
    }
};

} // namespace

TEST(GlobalLocaleEncoding, DefaultPathKeepsTheEncodingOfItsFirstUse)
{
    classic_restorer restore;
    // First use under the built-in locale (or an earlier test's, the same): US-ASCII.
    EXPECT_EQ(to_ustring(std::string("\xC3\xA9")), u"\uFFFD\uFFFD");
    make_global("zh_Hans_CN", "UTF-8");

    // The default path stays where it was...
    EXPECT_EQ(to_ustring(std::string("\xC3\xA9")), u"\uFFFD\uFFFD");
    EXPECT_EQ(to_string(u"\u00E9"), "\x1A");
    // ...while a converter built now with no encoding follows the new global locale.
    codecvt_string_to_ustring from_global("", true);
    EXPECT_EQ(from_global.convert("\xC3\xA9", 2), u"\u00E9");
    codecvt_ustring_to_string to_global("", false);
    EXPECT_EQ(to_global.convert(u"\u00E9", 1), "\xC3\xA9");
}

TEST(GlobalLocaleEncodingDeathTest, FirstUseUnderAUtf8LocaleMakesTheDefaultUtf8)
{
    // A fresh process, so that this test makes the first default conversion.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            make_global("zh_Hans_CN", "UTF-8");
            bool ok
                = to_ustring(std::string("\xE6\x97\xA5")) == u"\u65E5" && to_string(u"\u00E9") == "\xC3\xA9";
            // Back to US-ASCII: the default conversions do not follow.
            QvLocaleCtx& ctx = get_qvlocale_context();
            ctx.setGlobalLocale(&ctx.getClassicLocale());
            ok = ok && to_ustring("\xC3\xA9") == u"\u00E9";
            std::exit(ok ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
