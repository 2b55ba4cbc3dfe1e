// The database shipped with the library: consistent, complete enough for the locales and
// encodings users have, and usable by the locale objects built on it.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml_parser.hpp>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

using fl::i18n::LcData;

namespace {

std::string folded(std::string s)
{
    for (char& c : s) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return s;
}

// Everything the file spells, record by record, as the reader's events deliver it.
class Collector : public fl::i18n::EventHandler {
public:
    struct Locale {
        std::string name, encoding, xpg_name;
        std::vector<std::string> aliases;
    };
    struct Encoding {
        std::string name, jvm_encoding;
        std::vector<std::string> aliases;
    };

    std::vector<Locale> locales;
    std::vector<Encoding> encodings;
    mutable std::string declaredEncoding; // the declaration check is const

    int checkXMLDoc(char const*, char const* encoding, int) const override
    {
        declaredEncoding = encoding ? encoding : "";
        return 0;
    }
    int startEntry(char const* name, char const** attributes) override
    {
        std::map<std::string, std::string> a;
        for (char const** p = attributes; *p; p += 2)
            a[p[0]] = p[1];
        if (!std::strcmp(name, "locale"))
            locales.push_back(Locale {a["name"], a["encoding"], a["xpg_name"], {}});
        else if (!std::strcmp(name, "alias"))
            locales.back().aliases.push_back(a["name"]);
        else if (!std::strcmp(name, "encoding"))
            encodings.push_back(Encoding {a["name"], a["jvm_encoding"], {}});
        else if (!std::strcmp(name, "encoding_alias"))
            encodings.back().aliases.push_back(a["name"]);
        return 0;
    }
    int entryData(char const*, int) override { return 0; }
    int endEntry(char const*) override { return 0; }
    std::string getEncoding() const override { return "UTF-8"; }
};

class ShippedDatabase : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        collected_ = new Collector;
        fl::i18n::parseXmlDocument(*collected_, fl::filesystem::native_path(QVI18N_TEST_LCDATA));
        data_ = new LcData;
        fl::i18n::parseLcData(*data_, fl::filesystem::native_path(QVI18N_TEST_LCDATA));
    }
    static void TearDownTestSuite()
    {
        delete collected_;
        delete data_;
    }

    static Collector::Locale const* locale(std::string const& name)
    {
        for (auto const& l : collected_->locales) {
            if (l.name == name)
                return &l;
        }
        return nullptr;
    }

    static Collector* collected_;
    static LcData* data_;
};

Collector* ShippedDatabase::collected_ = nullptr;
LcData* ShippedDatabase::data_ = nullptr;

} // namespace

TEST_F(ShippedDatabase, NoTwoRecordsShareAKey)
{
    EXPECT_EQ(collected_->declaredEncoding, "UTF-8");
    std::set<std::string> localeKeys;
    for (auto const& l : collected_->locales) {
        EXPECT_TRUE(localeKeys.insert(folded(l.name)).second) << "locale " << l.name;
        for (auto const& a : l.aliases)
            EXPECT_TRUE(localeKeys.insert(folded(a)).second) << "alias " << a << " of " << l.name;
    }
    std::set<std::string> encodingKeys;
    for (auto const& e : collected_->encodings) {
        EXPECT_TRUE(encodingKeys.insert(folded(e.name)).second) << "encoding " << e.name;
        for (auto const& a : e.aliases)
            EXPECT_TRUE(encodingKeys.insert(folded(a)).second) << "alias " << a << " of " << e.name;
    }
    EXPECT_GT(collected_->locales.size(), 100u);
    EXPECT_GT(collected_->encodings.size(), 50u);
}

TEST_F(ShippedDatabase, BuiltInLocaleAndItsNames)
{
    auto const* posix = locale("en_US_POSIX");
    ASSERT_NE(posix, nullptr);
    EXPECT_EQ(posix->encoding, "US-ASCII");
    EXPECT_EQ(posix->xpg_name, "C");
    for (char const* name : {"C", "POSIX", "c", "posix", "en_US_POSIX.US-ASCII"})
        EXPECT_EQ(data_->getLcName(name), "en_US_POSIX") << name;
    // C in UTF-8 keeps its own encoding and XPG name, so that a process started in it stays UTF-8.
    for (char const* name : {"C.UTF-8", "c.utf8", "POSIX.UTF-8"})
        EXPECT_EQ(data_->getLcName(name), "C.UTF-8") << name;
    EXPECT_EQ(data_->getDefaultEncoding("C.UTF-8"), "UTF-8");
    EXPECT_EQ(data_->getXpgLcName("C.utf8"), "C.UTF-8");
}

TEST_F(ShippedDatabase, SystemLocalesUnderCanonicalNamesWithTheirSpellings)
{
    struct Expect {
        char const* name;
        char const* xpg;
        std::vector<char const*> aliases;
    };
    for (Expect const& e : std::vector<Expect> {
             {"de_DE", "de_DE.UTF-8",
                 {"de_DE.UTF-8", "de_DE.utf8", "de_DE.ISO-8859-1", "de_DE.iso88591", "de"}},
             {"ja_JP", "ja_JP.UTF-8", {"ja_JP.eucJP", "ja_JP.utf8", "ja"}},
             {"zh_CN", "zh_CN.UTF-8", {"zh_CN.GB2312", "zh_CN.gb18030", "zh"}},
             {"sr_RS@latin", "sr_RS@latin", {"sr_RS.UTF-8@latin"}},
             {"sr_RS", "sr_RS", {"sr"}},
             {"en_US", "en_US.UTF-8", {"en_US.UTF-8", "en_US.ISO-8859-1", "en"}},
             {"de_DE@euro", "de_DE.UTF-8", {"de_DE.ISO-8859-15@euro"}},
         }) {
        auto const* rec = locale(e.name);
        ASSERT_NE(rec, nullptr) << e.name;
        EXPECT_EQ(rec->encoding, "UTF-8") << e.name;
        EXPECT_EQ(rec->xpg_name, e.xpg) << e.name;
        for (char const* alias : e.aliases)
            EXPECT_EQ(data_->getLcName(alias), e.name) << alias;
    }
    for (auto const& l : collected_->locales) {
        if (l.name == "en_US_POSIX" || l.name == "C.UTF-8")
            continue;
        EXPECT_EQ(l.encoding, "UTF-8") << l.name;
        EXPECT_FALSE(l.xpg_name.empty()) << l.name;
        EXPECT_EQ(l.name.find('.'), std::string::npos) << l.name << ": a canonical name has no charset";
    }
}

TEST_F(ShippedDatabase, EncodingsUnderTheirStandardNames)
{
    std::map<std::string, std::string> jvm;
    for (auto const& e : collected_->encodings)
        jvm[e.name] = e.jvm_encoding;
    for (char const* name : {"UTF-8", "US-ASCII", "ISO-8859-1", "ISO-8859-15", "Shift_JIS", "EUC-JP",
             "GB18030", "Big5", "EUC-KR", "KOI8-R", "windows-1252", "UTF-16LE"}) {
        ASSERT_EQ(jvm.count(name), 1u) << name;
        EXPECT_FALSE(jvm[name].empty()) << name << " has a JVM name";
    }
    EXPECT_EQ(jvm["macintosh"], "x-MacRoman");

    for (auto const& [alias, canonical] :
        std::map<std::string, std::string> {{"utf8", "UTF-8"}, {"latin1", "ISO-8859-1"},
            {"ANSI_X3.4-1968", "US-ASCII"}, {"ascii", "US-ASCII"}, {"cp1252", "windows-1252"},
            {"sjis", "Shift_JIS"}, {"eucjp", "EUC-JP"}, {"iso885915", "ISO-8859-15"}}) {
        EXPECT_EQ(data_->getEncodingFromAlias(alias), canonical) << alias;
    }
}

// The locale objects are built on the process's own database; this process fills it from the
// shipped file, as start-up would.
TEST_F(ShippedDatabase, EveryLocaleResolvesAndEveryDefaultEncodingIsAccepted)
{
    {
        boost::unique_lock<boost::mutex> lock(fl::i18n::getLcMutex());
        LcData& live = fl::i18n::get_qvlocale_context().getLcDataForUpdate(lock);
        live.clear();
        fl::i18n::parseLcData(live, fl::filesystem::native_path(QVI18N_TEST_LCDATA));
    }
    std::set<std::string> checked;
    std::vector<std::string> refused;
    for (auto const& l : collected_->locales) {
        std::vector<std::string> names {l.name};
        names.insert(names.end(), l.aliases.begin(), l.aliases.end());
        for (std::string const& name : names) {
            boost::shared_ptr<fl::i18n::QvLocale const> created;
            try {
                created = fl::i18n::QvLocale::createLocale(name);
            } catch (std::exception const&) {
                refused.push_back(name);
                continue;
            }
            ASSERT_TRUE(created) << name;
            // A name that spells a charset brings its own encoding.
            if (name.find('.') == std::string::npos) {
                EXPECT_EQ(created->encoding(), l.encoding) << name;
            }
        }
        if (checked.insert(l.encoding).second) {
            std::string out;
            EXPECT_FALSE(fl::i18n::getEncoding(out, l.encoding).empty()) << l.encoding;
        }
    }
    EXPECT_TRUE(refused.empty()) << refused.size() << " names refused, the first: " << refused.front();
    EXPECT_EQ(checked.size(), 2u); // UTF-8 and US-ASCII
}
