// The resource finder on real directory trees: the order of locales and base paths, the
// placeholder rules and what each form reports as the matching locale.
#include <qvi18n/i18n/catalog/resource_finder.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

#include <qvtest/child.hpp>
#include <qvtest/scoped_temp_dir.hpp>

#include <qvi18n/filesystem/exceptions.hpp>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unicode/unistr.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace {

// Test paths and texts are UTF-8 here; the library takes UTF-16.
inline std::u16string w(const std::string& s)
{
    icu::UnicodeString u = icu::UnicodeString::fromUTF8(s);
    return std::u16string(u.getBuffer(), static_cast<std::size_t>(u.length()));
}

inline std::string n(const std::u16string& s)
{
    std::string out;
    icu::UnicodeString(s.data(), static_cast<int32_t>(s.size())).toUTF8String(out);
    return out;
}

using fl::filesystem::upath;
using fl::i18n::QvLocale;
using fl::i18n::resource_finder;
using fl::i18n::ustring;

boost::shared_ptr<QvLocale const> locale_named(const std::string& name)
{
    {
        boost::unique_lock<boost::mutex> lock(fl::i18n::getLcMutex());
        fl::i18n::LcData& db = fl::i18n::get_qvlocale_context().getLcDataForUpdate(lock);
        db.addEncodingName("UTF-8", "UTF8");
        db.addEncodingAlias("UTF-8", "UTF-8");
        db.addLcName(name, "UTF-8", name + ".UTF-8");
    }
    return QvLocale::createLocale(name);
}

upath up(const std::string& s)
{
    return upath(w(s));
}

std::string text(const upath& p)
{
    return n(p.get_path_name());
}

class ResourceFinder : public ::testing::Test {
protected:
    ResourceFinder()
        : de_AT(locale_named("de_AT"))
        , first(dir.make_dir("first"))
        , second(dir.make_dir("second"))
    { }

    qvtest::scoped_temp_dir dir;
    boost::shared_ptr<QvLocale const> de_AT;
    std::string first;
    std::string second;
};

TEST_F(ResourceFinder, LocalesAreTheOuterLoopAndBasePathsTheInner)
{
    dir.write_file("first/help_de.txt", "");
    dir.write_file("first/help_en.txt", "");
    dir.write_file("second/help_de_AT.txt", "");
    dir.write_file("second/help_de.txt", "");
    resource_finder finder({up(first), up(second)}, *de_AT);
    EXPECT_EQ((std::vector<ustring> {u"de_AT", u"de", u"en"}), finder.get_locale_chain());
    EXPECT_EQ("de_AT", finder.get_current_locale());

    // The specific locale in the last base path beats the general one in the first.
    EXPECT_EQ(second + "/help_de_AT.txt", text(finder.find(u"help_%S.txt")));
    EXPECT_EQ("de_AT", finder.get_locale());

    // With the same locale in both, the earlier base path wins.
    dir.write_file("first/help_de_AT.txt", "");
    EXPECT_EQ(first + "/help_de_AT.txt", text(finder.find(u"help_%S.txt")));

    // Nothing for any of the names is no error.
    EXPECT_TRUE(finder.find(u"only_en_%S.txt").empty());
    EXPECT_EQ("", finder.get_locale());
}

TEST_F(ResourceFinder, FallsBackToTheLanguageThenTheDefaultThenNothing)
{
    dir.write_file("second/a/de/x.xml", "");
    dir.write_file("first/b/en/x.xml", "");
    resource_finder finder({up(first), up(second)}, *de_AT);

    EXPECT_EQ(second + "/a/de/x.xml", text(finder.find(u"a/%S/x.xml")));
    EXPECT_EQ("de", finder.get_locale());
    EXPECT_EQ(1, finder.get_found_index());

    EXPECT_EQ(first + "/b/en/x.xml", text(finder.find(u"b/%S/x.xml")));
    EXPECT_EQ("en", finder.get_locale());

    EXPECT_TRUE(finder.find(u"c/%S/x.xml").empty());
    EXPECT_EQ(-1, finder.get_found_index());
    EXPECT_EQ("", finder.get_locale());

    // A later success reports its own match again.
    EXPECT_FALSE(finder.find(u"a/%S/x.xml").empty());
    EXPECT_EQ("de", finder.get_locale());
}

TEST_F(ResourceFinder, WithoutTheDefaultTheLastResortIsTheBareNameLessItsUnderscore)
{
    dir.write_file("first/help.txt", "");
    dir.write_file("first/plain.txt", "");
    resource_finder finder({up(first)}, *de_AT, false);
    EXPECT_EQ((std::vector<ustring> {u"de_AT", u"de", u""}), finder.get_locale_chain());

    EXPECT_EQ(first + "/help.txt", text(finder.find(u"help_%S.txt")));
    // A real path, and yet no locale to report.
    EXPECT_EQ("", finder.get_locale());
    EXPECT_EQ(first + "/plain.txt", text(finder.find(u"plain%S.txt")));
}

TEST_F(ResourceFinder, PlaceholderRules)
{
    dir.write_file("first/de_AT/x.xml", "");
    dir.write_file("first/a_de_%S.txt", "");
    dir.write_file("first/nolocale.txt", "");
    dir.write_file("first/res_LOCALE_de.txt", "");
    dir.write_file("first/de_ATtail.txt", "");
    resource_finder finder({up(first)}, *de_AT);

    EXPECT_EQ(first + "/de_AT/x.xml", text(finder.find(u"%S/x.xml")));
    // Only the first placeholder is replaced.
    EXPECT_EQ(first + "/a_de_%S.txt", text(finder.find(u"a_%S_%S.txt")));
    // No placeholder, no search, even though the file is there.
    EXPECT_TRUE(finder.find(u"nolocale.txt").empty());
    EXPECT_TRUE(finder.find(u"").empty());
    // A placeholder given to find is taken as it stands, and the default no longer applies.
    EXPECT_EQ(first + "/res_LOCALE_de.txt", text(finder.find(u"res_LOCALE_XX.txt", u"XX")));
    EXPECT_TRUE(finder.find(u"res_%S.txt", u"XX").empty());
    // The empty placeholder matches at the start: the name goes in front of the whole pattern.
    EXPECT_EQ(first + "/de_ATtail.txt", text(finder.find(u"tail.txt", u"")));

    resource_finder custom({up(first)}, *de_AT, true, u"LOCALE");
    EXPECT_EQ(std::u16string(u"LOCALE"), custom.get_placeholder());
    EXPECT_EQ(first + "/de_AT/x.xml", text(custom.find(u"LOCALE/x.xml")));
    EXPECT_TRUE(custom.find(u"%S/x.xml").empty());

    resource_finder defaulted({up(first)}, *de_AT, true, u"");
    EXPECT_EQ(ustring(resource_finder::default_formatter), defaulted.get_placeholder());
    EXPECT_EQ(std::u16string(u"%S"), ustring(resource_finder::default_formatter));
}

TEST_F(ResourceFinder, ExistenceAloneCounts)
{
    dir.make_dir("first/data_de_AT");
    resource_finder finder({up(first)}, *de_AT);
    EXPECT_EQ(first + "/data_de_AT", text(finder.find(u"data_%S")));

    resource_finder nowhere(std::vector<upath>(), *de_AT);
    EXPECT_TRUE(nowhere.find(u"data_%S").empty());
    EXPECT_EQ(-1, nowhere.get_found_index());
}

TEST_F(ResourceFinder, LocaleFormsReportTheirOwnWayAndTheFourArgumentFormKeepsItsOddities)
{
    dir.write_file("first/m_de.txt", "");
    dir.write_file("first/m_fr.txt", "");
    boost::shared_ptr<QvLocale const> fr_CA = locale_named("fr_CA");
    resource_finder finder({up(first)}, *fr_CA);

    std::string found = "stale";
    EXPECT_EQ(first + "/m_de.txt", text(finder.find(u"m_%S.txt", *de_AT, found)));
    EXPECT_EQ("de", found);
    EXPECT_TRUE(finder.find(u"none_%S.txt", *de_AT, found).empty());
    EXPECT_EQ("", found);

    // Establish a match over the object's own names: "fr" at index 1.
    EXPECT_FALSE(finder.find(u"m_%S.txt").empty());
    EXPECT_EQ("fr", finder.get_locale());

    // The four-argument form names the requested locale, not the fall-back that matched, and
    // counts on from the index it found.
    found.clear();
    EXPECT_EQ(first + "/m_de.txt", text(finder.find(u"m_LL.txt", *de_AT, u"LL", found)));
    EXPECT_EQ("de_AT", found);
    EXPECT_EQ(2, finder.get_found_index());
    EXPECT_EQ("en", finder.get_locale()) << "the index now points past the name that matched";
}

TEST_F(ResourceFinder, StaticForms)
{
    dir.write_file("second/s_de.txt", "");
    dir.write_file("first/s.txt", "");
    const std::vector<upath> bases = {up(first), up(second)};

    std::string found = "stale";
    EXPECT_EQ(second + "/s_de.txt", text(resource_finder::find_resource(bases, u"s_%S.txt", found, *de_AT)));
    EXPECT_EQ("de", found);
    EXPECT_EQ(second + "/s_de.txt", text(resource_finder::find_resource(bases, u"s_%S.txt", *de_AT)));
    EXPECT_EQ(
        second + "/s_de.txt", text(resource_finder::find_resource(bases, u"s_@.txt", *de_AT, true, u"@")));

    // Without the default, the bare name in the first base path is the last resort.
    boost::shared_ptr<QvLocale const> ja_JP = locale_named("ja_JP");
    EXPECT_EQ(
        first + "/s.txt", text(resource_finder::find_resource(bases, u"s_%S.txt", found, *ja_JP, false)));
    EXPECT_EQ("", found);
    found = "stale";
    EXPECT_TRUE(resource_finder::find_resource(bases, u"s_%S.txt", found, *ja_JP, true).empty());
    EXPECT_EQ("", found);

    // Whole-path forms: the pattern itself is the path.
    const ustring whole = w(second + "/s_%S.txt");
    EXPECT_EQ(second + "/s_de.txt", text(resource_finder::find_resource(whole, found, *de_AT)));
    EXPECT_EQ("de", found);
    EXPECT_EQ(second + "/s_de.txt", text(resource_finder::find_resource(whole, *de_AT)));
    EXPECT_TRUE(resource_finder::find_resource(whole, *ja_JP).empty());
}

TEST_F(ResourceFinder, BasePathsAreComparedByExactText)
{
    resource_finder finder({up(first)}, *de_AT);
    EXPECT_FALSE(finder.add_base_path(up(first)));
    EXPECT_TRUE(finder.add_base_path(up(second)));
    EXPECT_FALSE(finder.add_base_path(up(second)));
    EXPECT_TRUE(finder.add_base_path(up(dir / "third")));
    ASSERT_EQ(3u, finder.get_base_path_list().size());

    EXPECT_TRUE(finder.remove_base_path(up(second)));
    EXPECT_FALSE(finder.remove_base_path(up(second)));
    const std::vector<upath> left = finder.get_base_path_list();
    ASSERT_EQ(2u, left.size());
    EXPECT_EQ(first, text(left[0]));
    EXPECT_EQ(dir / "third", text(left[1]));

    // A base path added later takes part in the next search.
    dir.write_file("third/t_de.txt", "");
    EXPECT_EQ(dir / "third/t_de.txt", text(finder.find(u"t_%S.txt")));
}

TEST_F(ResourceFinder, APermissionProblemOnTheWayEndsTheSearch)
{
    // A closed first base path must not read as "not there": the caller hears of it.
    dir.write_file("second/p_de_AT.txt", "");
    ASSERT_EQ(0, ::chmod(dir.path().c_str(), 0755));
    ASSERT_EQ(0, ::chmod(second.c_str(), 0755));
    const std::string closed = dir.make_dir("closed");
    ASSERT_EQ(0, ::chmod(closed.c_str(), 0));
    const std::vector<upath> bases = {up(closed + "/inner"), up(second)};

    const int code = qvtest::run_in_child(qvtest::become_ordinary_user, {[&] {
        try {
            resource_finder::find_resource(bases, u"p_%S.txt", *de_AT);
        } catch (const fl::filesystem::AccessDenied&) {
            return true;
        } catch (...) {
        }
        return false;
    }});
    ::chmod(closed.c_str(), 0755);
    if (code == qvtest::child_not_prepared) {
        GTEST_SKIP() << "cannot drop privileges to test a closed directory";
    }
    EXPECT_EQ(0, code) << "found nothing, the file, or another failure than AccessDenied";
}

} // namespace
