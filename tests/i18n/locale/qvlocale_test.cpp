#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include "locale_test_db.hpp"

#include <gtest/gtest.h>

#include <unicode/locid.h>
#include <unicode/ucnv.h>

using fl::i18n::LcOptData;
using fl::i18n::QvLcOptDataCtx;
using fl::i18n::QvLocale;
using fl::i18n::QvLocaleImpl;

namespace {

constexpr QvLocale::LcCategory allCategories[] = {QvLocale::LcCtype, QvLocale::LcCollate, QvLocale::LcTime,
    QvLocale::LcNumeric, QvLocale::LcMonetary, QvLocale::LcMessages};

std::string opt_string(QvLocale const& locale, QvLcOptDataCtx::LcOptDataType type)
{
    return boost::get<std::string>(locale.getLcOptData(type));
}

template <typename Exception>
void expect_throw_with(std::function<void()> const& action, char const* identifier, char const* text)
{
    try {
        action();
        ADD_FAILURE() << "no exception, expected " << identifier;
    } catch (Exception const& e) {
        EXPECT_EQ(identifier, e.get_identifier());
        EXPECT_STREQ(text, e.what());
    }
}

TEST(BuiltInState, GlobalIsTheClassicLocaleBeforeAnyStartUp)
{
    QvLocale const& global = QvLocale::global();
    EXPECT_EQ(&QvLocale::classic(), &global);
    EXPECT_EQ("US-ASCII", global.encoding());
    for (QvLocale::LcCategory c : allCategories) {
        EXPECT_EQ(c == QvLocale::LcMessages ? "en_US" : "en_US_POSIX", global.shortName(c)) << c;
        EXPECT_EQ("", global.modifier(c));
        EXPECT_EQ("en", global.language(c));
        EXPECT_EQ("US", global.territory(c));
    }
    // The classic locale has no terminal encoding of its own; the system locale has one.
    EXPECT_EQ("", static_cast<QvLocaleImpl const&>(QvLocale::classic()).getTerminalEncoding());
    EXPECT_EQ("US-ASCII", opt_string(QvLocale::classic(), QvLcOptDataCtx::LcTermEncoding));
    EXPECT_EQ("US-ASCII", static_cast<QvLocaleImpl const&>(QvLocale::system()).getTerminalEncoding());
    EXPECT_TRUE(QvLocale::system() == QvLocale::classic());
    EXPECT_NE(&QvLocale::system(), &QvLocale::classic());

    auto& ctx = fl::i18n::get_qvlocale_context();
    EXPECT_EQ(2, ctx.getLcStatus().getStatus());
    EXPECT_EQ(nullptr, ctx.getLcStatus().getException());
    EXPECT_FALSE(ctx.getInitialized());
    EXPECT_TRUE(ctx.getL10nEnabled());
    EXPECT_FALSE(ctx.getLocaleLocked());

    EXPECT_STREQ("en_US_POSIX", icu::Locale::getDefault().getName());
}

TEST(BuiltInState, AnEmptyDatabaseKnowsNoName)
{
    expect_throw_with<fl::i18n::QvLcInvLcName>(
        [] { QvLocale::createLocale("C"); }, "fl:i18n:QvLcInvLcName", "Invalid locale name.");
    expect_throw_with<fl::i18n::QvLcMgmtExceptionBase>(
        [] { QvLocale::createLocale("en_US_POSIX"); }, "fl:i18n:QvLcInvLcName", "Invalid locale name.");
}

class LocaleTest : public ::testing::Test {
protected:
    void SetUp() override { qvtest::fill_locale_database(); }
};

TEST_F(LocaleTest, ByNameTakesTheCanonicalNameAndDefaultEncoding)
{
    auto de = QvLocale::createLocale("DE_de");
    for (QvLocale::LcCategory c : allCategories) {
        EXPECT_EQ("de_DE", de->shortName(c));
    }
    EXPECT_EQ("de", de->language(QvLocale::LcTime));
    EXPECT_EQ("DE", de->territory(QvLocale::LcTime));
    EXPECT_EQ("ISO-8859-1", de->encoding());
    EXPECT_EQ("", static_cast<QvLocaleImpl const&>(*de).getTerminalEncoding());
    EXPECT_EQ("ISO-8859-1", opt_string(*de, QvLcOptDataCtx::LcTermEncoding));
    EXPECT_EQ("ISO-8859-1", opt_string(*de, QvLcOptDataCtx::LcTermInputEncoding));
    EXPECT_EQ("ISO-8859-1", opt_string(*de, QvLcOptDataCtx::LcTermOutputEncoding));
    EXPECT_EQ("ISO8859_1", opt_string(*de, QvLcOptDataCtx::LcJvmEncoding));

    // Through an alias, with an encoding alias and a modifier.
    // A trailing "." names no encoding: the default one stays.
    EXPECT_EQ("ISO-8859-1", QvLocale::createLocale("de_DE.")->encoding());

    auto ja = QvLocale::createLocale("Japanese.utf8@x");
    EXPECT_EQ("ja_JP", ja->shortName(QvLocale::LcCollate));
    EXPECT_EQ("x", ja->modifier(QvLocale::LcMessages));
    EXPECT_EQ("UTF-8", ja->encoding());
}

TEST_F(LocaleTest, RefusesUnknownNamesAndEncodings)
{
    for (char const* name : {"", "xx_XX", "fr", "ja", "de_DE.NOSUCHCODE", "de_DE.Shift_JIS", "@euro"}) {
        SCOPED_TRACE(name);
        EXPECT_THROW(QvLocale::createLocale(name), fl::i18n::QvLcInvLcName);
    }
}

TEST_F(LocaleTest, PosixNamesGiveEnglishMessages)
{
    for (char const* name : {"POSIX", "C", "en_US_POSIX"}) {
        SCOPED_TRACE(name);
        auto posix = QvLocale::createLocale(name);
        for (QvLocale::LcCategory c : allCategories) {
            EXPECT_EQ(c == QvLocale::LcMessages ? "en_US" : "en_US_POSIX", posix->shortName(c));
        }
        EXPECT_EQ("US-ASCII", posix->encoding());
        EXPECT_TRUE(*posix == QvLocale::classic());
    }

    auto de = QvLocale::createLocale("de_DE");
    auto messages = QvLocale::createLocale(*de, "en_US_POSIX", QvLocale::LcMessages);
    EXPECT_EQ("en_US", messages->shortName(QvLocale::LcMessages));
    auto time = QvLocale::createLocale(*de, "en_US_POSIX", QvLocale::LcTime);
    EXPECT_EQ("en_US_POSIX", time->shortName(QvLocale::LcTime));
}

TEST_F(LocaleTest, ReplacingOneCategoryByName)
{
    auto de = QvLocale::createLocale("de_DE");

    auto msg = QvLocale::createLocale(*de, "FR_fr@m", QvLocale::LcMessages);
    EXPECT_EQ("fr_FR", msg->shortName(QvLocale::LcMessages));
    EXPECT_EQ("m", msg->modifier(QvLocale::LcMessages));
    EXPECT_EQ("de_DE", msg->shortName(QvLocale::LcCtype));
    EXPECT_EQ("ISO-8859-1", msg->encoding());

    // An encoding in the name counts for the character type only.
    auto time = QvLocale::createLocale(*de, "ja_JP.UTF-8", QvLocale::LcTime);
    EXPECT_EQ("ja_JP", time->shortName(QvLocale::LcTime));
    EXPECT_EQ("ISO-8859-1", time->encoding());

    auto ctype = QvLocale::createLocale(*de, "ja_JP.eucjp", QvLocale::LcCtype);
    EXPECT_EQ("ja_JP", ctype->shortName(QvLocale::LcCtype));
    EXPECT_EQ("EUC-JP", ctype->encoding());

    EXPECT_THROW(QvLocale::createLocale(*de, "ja_JP.Shift_JIS", QvLocale::LcCtype), fl::i18n::QvLcInvLcName);
    // No fall-back on the locale's default encoding for the character type.
    EXPECT_THROW(QvLocale::createLocale(*de, "ja_JP", QvLocale::LcCtype), fl::i18n::QvLcInvLcName);
    EXPECT_THROW(QvLocale::createLocale(*de, "xx_XX", QvLocale::LcTime), fl::i18n::QvLcInvLcName);
    EXPECT_THROW(QvLocale::createLocale(*de, "", QvLocale::LcTime), fl::i18n::QvLcInvLcName);
}

TEST_F(LocaleTest, ReplacingOneCategoryFromAnotherLocale)
{
    auto de = QvLocale::createLocale("de_DE");
    auto ja = QvLocale::createLocale("ja_JP@mod");

    auto numeric = QvLocale::createLocale(*de, *ja, QvLocale::LcNumeric);
    EXPECT_EQ("ja_JP", numeric->shortName(QvLocale::LcNumeric));
    EXPECT_EQ("mod", numeric->modifier(QvLocale::LcNumeric));
    EXPECT_EQ("de_DE", numeric->shortName(QvLocale::LcMessages));
    EXPECT_EQ("ISO-8859-1", numeric->encoding());

    auto ctype = QvLocale::createLocale(*de, *ja, QvLocale::LcCtype);
    EXPECT_EQ("EUC-JP", ctype->encoding());

    auto messages = QvLocale::createLocale(*de, QvLocale::classic(), QvLocale::LcMessages);
    EXPECT_EQ("en_US", messages->shortName(QvLocale::LcMessages));
}

TEST_F(LocaleTest, EqualityIgnoresTheTerminalEncodingAndCopiesTakeIt)
{
    auto de = QvLocale::createLocale("de_DE");
    auto de2 = QvLocale::createLocale("de_de");
    EXPECT_TRUE(*de == *de2);
    EXPECT_FALSE(*de != *de2);

    QvLocaleImpl withTerminal(*de);
    withTerminal.setTerminalEncoding("UTF-8");
    EXPECT_TRUE(withTerminal == *de);
    EXPECT_TRUE(*de == withTerminal);

    // A copy of a locale without a terminal encoding gets the encoding as its terminal encoding.
    auto copy = QvLocale::createLocale(*de);
    EXPECT_TRUE(*copy == *de);
    EXPECT_EQ("ISO-8859-1", static_cast<QvLocaleImpl const&>(*copy).getTerminalEncoding());
    auto copy2 = QvLocale::createLocale(withTerminal);
    EXPECT_EQ("UTF-8", opt_string(*copy2, QvLcOptDataCtx::LcTermEncoding));

    // Each field counts, byte-exact.
    QvLocaleImpl other(*de);
    other.setLcName("de_DE", "euro", QvLocale::LcMonetary);
    EXPECT_TRUE(other != *de);
    QvLocaleImpl encoding(*de);
    encoding.setEncoding("iso-8859-1");
    EXPECT_FALSE(encoding == *de);
    QvLocaleImpl name(*de);
    name.setLcName("de_de", "", QvLocale::LcCollate);
    EXPECT_FALSE(name == *de);

    // A copy keeps names as its source reports them, without the messages rule.
    QvLocaleImpl posixMessages(*de);
    posixMessages.setLcName("en_US_POSIX", "", QvLocale::LcCollate);
    QvLocaleImpl copied(posixMessages);
    EXPECT_TRUE(copied == posixMessages);
}

TEST_F(LocaleTest, OptionalData)
{
    auto de = QvLocale::createLocale("de_DE");
    auto en = QvLocale::createLocale("en_US");

    LcOptData paper = de->getLcOptData(QvLcOptDataCtx::LcPaperSize);
    EXPECT_EQ(1, paper.which());
    EXPECT_EQ(1, boost::get<QvLcOptDataCtx::PaperSizeType>(paper));
    EXPECT_EQ(0, boost::get<QvLcOptDataCtx::PaperSizeType>(en->getLcOptData(QvLcOptDataCtx::LcPaperSize)));

    LcOptData unit = de->getLcOptData(QvLcOptDataCtx::LcUnitType);
    EXPECT_EQ(2, unit.which());
    EXPECT_EQ(1, boost::get<QvLcOptDataCtx::UnitType>(unit));
    EXPECT_EQ(0, boost::get<QvLcOptDataCtx::UnitType>(en->getLcOptData(QvLcOptDataCtx::LcUnitType)));

    // The time category decides.
    auto mixed = QvLocale::createLocale(*en, "de_DE", QvLocale::LcTime);
    EXPECT_EQ(1, static_cast<QvLocaleImpl const&>(*mixed).getPaperSizeType());
    auto mixed2 = QvLocale::createLocale(*de, "en_US", QvLocale::LcMessages);
    EXPECT_EQ(1, static_cast<QvLocaleImpl const&>(*mixed2).getUnitType());

    expect_throw_with<fl::i18n::QvLcInvLcArgument>(
        [&] { de->getLcOptData(static_cast<QvLcOptDataCtx::LcOptDataType>(6)); }, "fl:i18n:QvLcInvLcArgument",
        "Invalid argument.");
}

TEST(LocaleNames, CategoryAndOptionNamesInAnyAsciiCase)
{
    EXPECT_EQ(QvLocale::LcMessages, QvLocale::getLcCategory("MESSAGES"));
    EXPECT_EQ(QvLocale::LcCtype, QvLocale::getLcCategory("ctype"));
    EXPECT_EQ(QvLocale::LcMonetary, QvLocale::getLcCategory("Monetary"));
    for (QvLocale::LcCategory c : allCategories) {
        EXPECT_EQ(c, QvLocale::getLcCategory(QvLocale::getLcCategoryName(c)));
    }
    EXPECT_EQ("numeric", QvLocale::getLcCategoryName(QvLocale::LcNumeric));
    EXPECT_EQ(QvLcOptDataCtx::LcPaperSize, QvLcOptDataCtx::getOptDataType("PaperSize"));
    EXPECT_EQ(QvLcOptDataCtx::LcTermInputEncoding, QvLcOptDataCtx::getOptDataType("terminputencoding"));

    for (char const* bad : {"", "lc_ctype", "messages ", "all"}) {
        SCOPED_TRACE(bad);
        expect_throw_with<fl::i18n::QvLcDataNotFound>(
            [&] { QvLocale::getLcCategory(bad); }, "fl:i18n:QvLcDataNotFound", "Locale data not found.");
    }
    EXPECT_THROW(QvLcOptDataCtx::getOptDataType("paper"), fl::i18n::QvLcDataNotFound);
    EXPECT_THROW(
        QvLocale::getLcCategoryName(static_cast<QvLocale::LcCategory>(6)), fl::i18n::QvLcDataNotFound);
}

TEST_F(LocaleTest, FallbackListsFollowTheMessagesName)
{
    using List = std::vector<fl::i18n::ustring>;
    auto ja = QvLocale::createLocale("ja_JP");
    EXPECT_EQ((List {u"ja_JP", u"ja", u"en"}), fl::i18n::get_fallback_locales(*ja));
    EXPECT_EQ((List {u"ja_JP", u"ja", u""}), fl::i18n::get_fallback_locales_with_empty_default(*ja));

    EXPECT_EQ((List {u"en_US", u"en"}), fl::i18n::get_fallback_locales(QvLocale::classic()));
    EXPECT_EQ((List {u"en_US", u"en", u""}),
        fl::i18n::get_fallback_locales_with_empty_default(QvLocale::classic()));

    auto zh = QvLocale::createLocale(*ja, "zh_Hans_CN", QvLocale::LcMessages);
    EXPECT_EQ((List {u"zh_Hans_CN", u"zh_Hans", u"en"}), fl::i18n::get_fallback_locales(*zh));

    std::vector<std::string> narrow;
    fl::i18n::make_locale_fallback_list(narrow, *ja, "ja");
    EXPECT_EQ((std::vector<std::string> {"ja_JP", "ja"}), narrow);
}

} // namespace
