// Standard encoding names, and converters for the terminal on the global locale's encodings.
#include <qvi18n/i18n/conversion/terminal_codecvt.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include <boost/thread/locks.hpp>
#include <boost/thread/mutex.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace fl::i18n;

namespace {

// Makes global a UTF-8 locale whose terminal encoding is `terminal` (empty: none of its own).
void make_global(const std::string& terminal)
{
    QvLocaleCtx& ctx = get_qvlocale_context();
    boost::unique_lock<boost::mutex> lock(getLcMutex());
    ctx.getLcDataForUpdate(lock).addLcName("de_DE", "UTF-8", "de_DE.UTF-8");
    ctx.getLcDataForUpdate(lock).addEncodingName("UTF-8", "UTF8");
    std::unique_ptr<QvLocaleImpl> locale(new QvLocaleImpl(std::string("de_DE")));
    locale->setTerminalEncoding(terminal);
    ctx.setCurrentLocale(std::move(locale));
    ASSERT_TRUE(ctx.setGlobalLocale(&ctx.getCurrentLocale()));
    ASSERT_EQ(QvLocale::global().encoding(), "UTF-8");
}

struct classic_restorer {
    ~classic_restorer()
    {
        QvLocaleCtx& ctx = get_qvlocale_context();
        ctx.setGlobalLocale(&ctx.getClassicLocale());
    }
};

} // namespace

TEST(StandardEncodingName, DatabaseFirstThenIcuThenTheDatabaseSpelling)
{
    const auto update = [](void (*change)(LcData&)) {
        boost::unique_lock<boost::mutex> lock(getLcMutex());
        change(get_qvlocale_context().getLcDataForUpdate(lock));
    };
    // An alias only the database knows.
    update([](LcData& data) {
        data.addEncodingName("Shift_JIS", "SJIS");
        data.addEncodingAlias("our-sjis", "Shift_JIS");
    });
    EXPECT_EQ(get_standard_encoding_name("our-sjis"), "Shift_JIS");
    EXPECT_EQ(get_standard_encoding_name("OUR-SJIS"), "Shift_JIS");

    // A name the database lacks: ICU's standard name for it, as it stands...
    EXPECT_EQ(get_standard_encoding_name("latin2"), "ISO-8859-2");
    EXPECT_EQ(get_standard_encoding_name("ibm-943_P15A-2003"), "Shift_JIS");
    // ...unless the database spells that name its own way.
    update([](LcData& data) {
        data.addEncodingName("ISO8859-5", "ISO8859_5");
        data.addEncodingAlias("ISO-8859-5", "ISO8859-5");
    });
    EXPECT_EQ(get_standard_encoding_name("cyrillic"), "ISO8859-5");

    // Neither knows it.
    EXPECT_EQ(get_standard_encoding_name("no-such-encoding"), "");
}

TEST(TerminalConverters, UseTheTerminalEncodingAndSubstitute)
{
    classic_restorer restore;
    make_global("ISO-8859-1");
    const auto to_terminal = create_codecvt_ustring_to_terminal();
    const auto from_terminal = create_codecvt_terminal_to_ustring();
    const auto to_output = create_codecvt_ustring_to_terminal_output();
    EXPECT_EQ(to_string(u"\u00E9", *to_terminal), "\xE9");
    EXPECT_EQ(to_ustring(std::string("\xE9"), *from_terminal), u"\u00E9");
    EXPECT_EQ(to_string(u"\u00E9", *to_output), "\xE9");
    // Never refused: what the encoding lacks is substituted.
    EXPECT_EQ(to_string(u"a\u65E5", *to_terminal), "a\x1A");
    // The input encoding is the terminal's or the locale's, both of which read ASCII.
    const auto from_input = create_codecvt_terminal_input_to_ustring();
    EXPECT_EQ(to_ustring(std::string("abc"), *from_input), u"abc");
}

TEST(TerminalConverters, WithoutATerminalEncodingTheLocaleEncodingServes)
{
    classic_restorer restore;
    make_global("");
    EXPECT_EQ(to_string(u"\u00E9", *create_codecvt_ustring_to_terminal()), "\xC3\xA9");
    EXPECT_EQ(
        to_ustring(std::string("\xC3\xA9\xFF"), *create_codecvt_terminal_to_ustring()), u"\u00E9\uFFFD");
    EXPECT_EQ(to_ustring(std::string("\xC3\xA9"), *create_codecvt_terminal_input_to_ustring()), u"\u00E9");
    EXPECT_EQ(to_string(u"\u00E9", *create_codecvt_ustring_to_terminal_output()), "\xC3\xA9");
}

TEST(TerminalConverters, AnEncodingIcuCannotOpenIsRefused)
{
    classic_restorer restore;
    make_global("no-such-terminal-encoding");
    try {
        create_codecvt_ustring_to_terminal();
        FAIL() << "no exception";
    } catch (const CvtInvalidEncodingName& e) {
        EXPECT_EQ(e.get_encoding_name(), "no-such-terminal-encoding");
    }
    EXPECT_THROW(create_codecvt_terminal_to_ustring(), CvtInvalidEncodingName);
    EXPECT_THROW(create_codecvt_ustring_to_terminal_output(), CvtInvalidEncodingName);
}
