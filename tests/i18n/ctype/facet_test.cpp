// char16_t facets and the library's global standard locale, through standard streams.
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/ctype/facet.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/startup/initialize.hpp>

#include "tests/i18n/locale/startup_support.hpp"

#include <gtest/gtest.h>

#include <iomanip>
#include <locale>
#include <sstream>
#include <string>

using namespace fl::i18n;

namespace {

typedef std::basic_ostringstream<char16_t> ustring_ostream;
typedef std::basic_istringstream<char16_t> ustring_istream;
typedef std::ctype<char16_t> uctype;

// A locale that only tells its encoding, which is all the facets read.
class encoding_locale : public QvLocale {
public:
    explicit encoding_locale(const std::string& encoding)
        : name(encoding)
    { }
    bool operator==(QvLocale const& other) const override { return &other == this; }
    std::string shortName(LcCategory) const override { return "xx_XX"; }
    std::string language(LcCategory) const override { return "xx"; }
    std::string territory(LcCategory) const override { return "XX"; }
    std::string modifier(LcCategory) const override { return std::string(); }
    std::string encoding() const override { return name; }
    LcOptData getLcOptData(QvLcOptDataCtx::LcOptDataType) const override { return LcOptData(); }

private:
    std::string name;
};

std::locale locale_with(const std::string& encoding, unsigned int categories = 0x15)
{
    const encoding_locale qv(encoding);
    return *facet::create_std_locale(categories, qv);
}

} // namespace

TEST(StdLocaleFacets, StreamWritesNumbersBooleansAndText)
{
    facet::init_global_std_locale(0x15);
    ustring_ostream out;
    out.imbue(facet::get_global_std_locale());
    // Classic punctuation whatever the locale: "." and no grouping.
    out << 1234567 << u'|' << -42 << u'|' << std::fixed << std::setprecision(1) << 1234567.5 << u'|';
    out << std::scientific << std::setprecision(2) << 0.000125 << u'|' << std::defaultfloat;
    out << std::hex << std::showbase << std::uppercase << 48879 << std::dec << std::nouppercase << u'|';
    out << true << false << u'|' << std::boolalpha << true << u' ' << false << u'|';
    out << u"\u65E5\u672C \U0001F600" << u'|' << ustring(u"caf\u00E9") << u'|' << 'c' << "har";
    EXPECT_FALSE(out.fail());
    EXPECT_EQ(out.str(), u"1234567|-42|1234567.5|1.25e-04|0XBEEF|10|true false|"
                         u"\u65E5\u672C \U0001F600|caf\u00E9|char");
}

// Start-up builds the global standard locale from the global locale it decides: its encoding for
// widening, and still the classic punctuation.
class StdLocaleStartup : public qvtest::startup_process { };

TEST_F(StdLocaleStartup, InitializeBuildsTheGlobalStandardLocale)
{
    ::setenv("LANG", "de_DE.UTF-8", 1);
    initialize();
    const std::locale& global = facet::get_global_std_locale();
    ASSERT_TRUE(std::has_facet<std::num_put<char16_t>>(global));
    const auto* ct = dynamic_cast<const facet::ctype_facet<char16_t>*>(&std::use_facet<uctype>(global));
    ASSERT_NE(ct, nullptr);
    EXPECT_EQ(ct->get_encoding(), QvLocale::global().encoding());
    EXPECT_EQ(ct->get_encoding(), "UTF-8");
    ustring_ostream out;
    out.imbue(global);
    out << std::fixed << std::setprecision(1) << 1234567.5 << u' ' << std::boolalpha << true << u' '
        << "narrow " << ustring(u"gr\u00FC\u00DF");
    EXPECT_EQ(out.str(), u"1234567.5 true narrow gr\u00FC\u00DF");
}

TEST(StdLocaleFacets, StreamPadsWithItsFillCharacter)
{
    facet::init_global_std_locale(0x15);
    ustring_ostream out;
    out.imbue(facet::get_global_std_locale());
    EXPECT_EQ(out.fill(), u' ');
    out << std::setw(6) << 42 << u'|' << std::setfill(u'\u00B7') << std::left << std::setw(6) << 42 << u'|';
    out << std::internal << std::setw(7) << -42 << u'|' << std::right << std::setw(5) << u"ab" << u'|';
    out << std::setfill(u'0') << std::setw(4) << std::boolalpha << true;
    EXPECT_EQ(out.str(), u"    42|42\u00B7\u00B7\u00B7\u00B7|-\u00B7\u00B7\u00B7\u00B742|\u00B7\u00B7\u00B7ab|true");
    // Padding counts units, so a filled field keeps a surrogate pair whole.
    ustring_ostream wide;
    wide.imbue(facet::get_global_std_locale());
    wide << std::setfill(u'-') << std::setw(4) << u"\U0001F600";
    EXPECT_EQ(wide.str(), u"--\U0001F600");
}

TEST(StdLocaleFacets, StreamReadsWordsSeparatedByUnicodeSpaces)
{
    facet::init_global_std_locale(0x15);
    ustring_istream in(u"  alpha\u3000\u00E9t\u00E9\u00A0\U0001F600\u2028end ");
    in.imbue(facet::get_global_std_locale());
    ustring word;
    std::basic_string<char16_t> words;
    while (in >> word)
        words += word + u'/';
    EXPECT_EQ(words, u"alpha/\u00E9t\u00E9/\U0001F600/end/");
}

TEST(StdLocaleFacets, GlobalLocaleIsClassicBeforeInitAndFixedByTheFirstInit)
{
    EXPECT_FALSE(std::has_facet<uctype>(facet::get_global_std_locale()));
    // A stream on it cannot even widen its fill character.
    ustring_ostream before;
    before.imbue(facet::get_global_std_locale());
    EXPECT_THROW(before.fill(), std::bad_cast);

    facet::init_global_std_locale(0x04);
    const std::locale& global = facet::get_global_std_locale();
    EXPECT_TRUE(std::has_facet<uctype>(global));
    EXPECT_TRUE(std::has_facet<std::numpunct<char16_t>>(global));
    EXPECT_FALSE(std::has_facet<std::num_put<char16_t>>(global));
    facet::init_global_std_locale(0x15);
    EXPECT_FALSE(std::has_facet<std::num_put<char16_t>>(facet::get_global_std_locale()));

    // Text goes through; a number finds no num_put and fails the stream.
    ustring_ostream out;
    out.imbue(global);
    out << u"x" << std::setw(3) << u"y";
    EXPECT_EQ(out.str(), u"x  y");
    out << 5;
    EXPECT_TRUE(out.bad());
}

TEST(StdLocaleFacets, CategoriesSelectTheFacets)
{
    for (unsigned int categories : {0x00U, 0x01U, 0x04U, 0x10U, 0x15U, 0x0BU}) {
        SCOPED_TRACE(testing::Message() << "categories " << categories);
        const std::locale loc = locale_with("UTF-8", categories);
        EXPECT_TRUE(std::has_facet<uctype>(loc));
        EXPECT_EQ(std::has_facet<std::numpunct<char16_t>>(loc), (categories & 0x14) != 0);
        EXPECT_EQ(std::has_facet<std::num_put<char16_t>>(loc), (categories & 0x10) != 0);
        EXPECT_FALSE((std::has_facet<std::num_get<char16_t>>(loc)));
    }
}

TEST(StdLocaleCtype, ClassifiesByUnicodeThroughTheStandardMask)
{
    const std::locale loc = locale_with("UTF-8");
    const uctype& ct = std::use_facet<uctype>(loc);
    EXPECT_TRUE(ct.is(uctype::alpha, u'\u00E9'));
    EXPECT_TRUE(ct.is(uctype::upper, u'\u0394'));
    EXPECT_TRUE(ct.is(uctype::lower, u'\u03C3'));
    EXPECT_TRUE(ct.is(uctype::digit, u'\u0663')); // Arabic-Indic three
    EXPECT_FALSE(ct.is(uctype::xdigit, u'g'));
    EXPECT_TRUE(ct.is(uctype::space, u'\u3000'));
    EXPECT_TRUE(ct.is(uctype::cntrl, u'\u0085'));
    EXPECT_TRUE(ct.is(uctype::punct, u'$')); // currency counts as punctuation here
    EXPECT_FALSE(ct.is(uctype::punct, u'\u00A9')); // an other-symbol does not
    EXPECT_TRUE(ct.is(uctype::print, u'\u00A0'));
    EXPECT_TRUE(ct.is(uctype::graph, u'\u20AC')); // composite masks: any one class suffices
    EXPECT_FALSE(ct.is(uctype::graph, u'\u3000'));
    EXPECT_TRUE(ct.is(uctype::alnum, u'7'));
    EXPECT_FALSE(ct.is(uctype::blank, u' ')); // no counterpart: dropped
    EXPECT_FALSE(ct.is(uctype::mask(0), u'a'));

    // The range form stores a pair's mask in both its places; lone surrogates are classified
    // alone, also a lead in the last place.
    const ustring text = u"a1 \U0001D400\xDC00\xD835";
    uctype::mask vec[7];
    EXPECT_EQ(ct.is(text.data(), text.data() + text.size(), vec), text.data() + text.size());
    EXPECT_EQ(vec[0], uctype::alpha | uctype::lower | uctype::xdigit);
    EXPECT_EQ(vec[1], uctype::digit | uctype::xdigit);
    EXPECT_EQ(vec[2], uctype::space);
    EXPECT_EQ(vec[3], uctype::alpha | uctype::upper); // MATHEMATICAL BOLD CAPITAL A
    EXPECT_EQ(vec[4], vec[3]);
    EXPECT_EQ(vec[5], 0);
    EXPECT_EQ(vec[6], 0);

    const ustring words = u"  \u00E9t\u00E9, 42";
    const char16_t* b = words.data();
    const char16_t* e = b + words.size();
    EXPECT_EQ(ct.scan_is(uctype::alpha, b, e), b + 2);
    EXPECT_EQ(ct.scan_not(uctype::space, b, e), b + 2);
    EXPECT_EQ(ct.scan_is(uctype::digit, b, e), b + 7);
    EXPECT_EQ(ct.scan_is(uctype::cntrl, b, e), e);
}

TEST(StdLocaleCtype, MapsCaseUnitsAndPairs)
{
    const std::locale loc = locale_with("UTF-8");
    const uctype& ct = std::use_facet<uctype>(loc);
    EXPECT_EQ(ct.toupper(u'\u00E9'), u'\u00C9');
    EXPECT_EQ(ct.toupper(u'\u00DF'), u'\u00DF'); // simple mapping: sharp s stays
    EXPECT_EQ(ct.tolower(u'\u03A3'), u'\u03C3');
    EXPECT_EQ(ct.toupper(u'\xD801'), u'\xD801');
    ustring text = u"stra\u00DFe \U00010428\xD801 i";
    ct.toupper(&text[0], text.data() + text.size());
    EXPECT_EQ(text, u"STRA\u00DFE \U00010400\xD801 I");
    ct.tolower(&text[0], text.data() + text.size());
    EXPECT_EQ(text, u"stra\u00DFe \U00010428\xD801 i");
}

TEST(StdLocaleCtype, WidensAndNarrowsThroughTheEncoding)
{
    const std::locale latin1 = locale_with("ISO-8859-1");
    const uctype& ct = std::use_facet<uctype>(latin1);
    EXPECT_EQ(ct.widen('\xE9'), u'\u00E9');
    EXPECT_EQ(ct.narrow(u'\u00E9', '?'), '\xE9');
    // Outside the encoding: its substitution byte, not the default given.
    EXPECT_EQ(ct.narrow(u'\u65E5', '?'), '\x1A');
    const char bytes[] = "caf\xE9";
    char16_t wide[4];
    EXPECT_EQ(ct.widen(bytes, bytes + 4, wide), bytes + 4);
    EXPECT_EQ(ustring(wide, 4), u"caf\u00E9");
    char narrow[4];
    EXPECT_EQ(ct.narrow(wide, wide + 4, '?', narrow), wide + 4);
    EXPECT_EQ(std::string(narrow, 4), "caf\xE9");

    // A result longer than the caller's buffer is cut at its end, never written past it.
    const std::locale utf8_locale = locale_with("UTF-8");
    const uctype& utf8 = std::use_facet<uctype>(utf8_locale);
    char out[3] = {'x', 'x', 'x'};
    const ustring three = u"\u00E9\u00E9\u00E9";
    utf8.narrow(three.data(), three.data() + 3, '?', out);
    EXPECT_EQ(std::string(out, 2), "\xC3\xA9");
}

TEST(StdLocaleCtype, BadEncodingFailsAtFirstConversion)
{
    std::locale loc;
    ASSERT_NO_THROW(loc = locale_with("no-such-encoding"));
    const uctype& ct = std::use_facet<uctype>(loc);
    EXPECT_TRUE(ct.is(uctype::alpha, u'a'));
    EXPECT_THROW(ct.widen('a'), CvtInvalidEncodingName);
    EXPECT_THROW(ct.narrow(u'a', '?'), CvtInvalidEncodingName);
    // A stream passes it on to its caller.
    ustring_ostream out;
    out.imbue(loc);
    EXPECT_THROW(out << 'a', CvtInvalidEncodingName);
}

TEST(StdLocaleNumpunct, ClassicPunctuationWhateverTheLocale)
{
    const encoding_locale qv("UTF-8");
    const facet::numpunct_cache<char16_t> cache(qv);
    EXPECT_EQ(cache.decimal_point, u'.');
    EXPECT_EQ(cache.grouping, "");
    EXPECT_EQ(cache.truename, u"true");
    EXPECT_EQ(cache.falsename, u"false");
    const std::locale loc = locale_with("UTF-8");
    const std::numpunct<char16_t>& np = std::use_facet<std::numpunct<char16_t>>(loc);
    EXPECT_EQ(np.decimal_point(), u'.');
    EXPECT_EQ(np.thousands_sep(), u',');
    EXPECT_EQ(np.grouping(), "");
    EXPECT_EQ(np.truename(), u"true");
    EXPECT_EQ(np.falsename(), u"false");
}
