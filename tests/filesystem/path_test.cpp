#include <qvi18n/filesystem/path.hpp>

#include <qvi18n/filesystem/converters.hpp>

#include "tests/filesystem/path_test_text.hpp"
#include <qvtest/scoped_env.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using pathtest::u16;

namespace {

// The Unicode and the byte path follow the same rules; the cases are written once, in ASCII.
template <class Path> class BasicPath : public ::testing::Test {
protected:
    typedef typename Path::string_type string_type;

    static string_type t(const char* s) { return string_type(s, s + std::char_traits<char>::length(s)); }
    static Path p(const char* s) { return Path(t(s)); }
    static std::vector<string_type> list(const std::vector<const char*>& items)
    {
        std::vector<string_type> out;
        for (const char* s : items)
            out.push_back(t(s));
        return out;
    }

    // Tilde expansion must never see the real home.
    qvtest::scoped_env home_ {"HOME", "/home/tester"};
};

typedef ::testing::Types<fs::upath, fs::native_path> path_types;
TYPED_TEST_SUITE(BasicPath, path_types);

} // namespace

TYPED_TEST(BasicPath, StoresTextInNativeForm)
{
    const struct {
        const char* in;
        const char* stored;
    } cases[] = {
        {"", ""},
        {"//", "/"},
        {"a//b///", "a/b"},
        {"//a", "/a"},
        {"./a", "./a"},
        {"a/~", "a/~"},
        {"a/./../b", "a/./../b"},
        {"~", "/home/tester"},
        {"~/", "/home/tester"},
        {"~//x//", "/home/tester/x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(this->p(c.in).get_path_name(), this->t(c.stored));
    }
    EXPECT_EQ(TypeParam(this->t("~/a"), false).get_path_name(), this->t("~/a"));
}

TYPED_TEST(BasicPath, ObserversTakeTheTextApart)
{
    const struct {
        const char *path, *root, *relative, *parent, *filename, *stem, *extension, *without_filename;
    } cases[] = {
        {"", "", "", "", "", "", "", ""},
        {"/", "/", "", "", "/", "/", "", ""},
        {"a", "", "a", "", "a", "a", "", ""},
        {"/a", "/", "a", "/", "a", "a", "", "/"},
        {"/a/b.tar.gz", "/", "a/b.tar.gz", "/a", "b.tar.gz", "b.tar", "gz", "/a"},
        {"a/.profile", "", "a/.profile", "a", ".profile", "", "profile", "a"},
        {"a.", "", "a.", "", "a.", "a", "", ""},
        {"x/..", "", "x/..", "x", "..", "..", "", "x"},
        {"d.ir/name", "", "d.ir/name", "d.ir", "name", "name", "", "d.ir"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        TypeParam path = this->p(c.path);
        EXPECT_EQ(path.root_path(), this->t(c.root));
        EXPECT_EQ(path.root_directory(), this->t(c.root));
        EXPECT_TRUE(path.root_name().empty());
        EXPECT_EQ(path.is_absolute(), *c.root != '\0');
        EXPECT_EQ(path.relative_path(), this->t(c.relative));
        EXPECT_EQ(path.parent_path(), this->t(c.parent));
        EXPECT_EQ(path.filename(), this->t(c.filename));
        EXPECT_EQ(path.stem(), this->t(c.stem));
        EXPECT_EQ(path.extension(), this->t(c.extension));
        EXPECT_EQ(path.remove_filename().get_path_name(), this->t(c.without_filename));
    }
}

TYPED_TEST(BasicPath, ReplaceExtension)
{
    const struct {
        const char *path, *ext, *result;
    } cases[] = {
        {"a.txt", "dat", "a.dat"},
        {"a.txt", ".dat", "a.dat"},
        {"a", "dat", "a.dat"},
        {"a", ".dat", "a.dat"},
        {".profile", "bak", ".bak"},
        {"a.", "dat", "a..dat"},
        {"a.", ".dat", "a..dat"},
        {"d.ir/name", "x", "d.ir/name.x"},
        // Nothing to give an extension to, or nothing to give.
        {"", "dat", ""},
        {"a.txt", "", "a.txt"},
        {"/", "dat", "/"},
        {"x/..", "dat", "x/.."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.path) + " + " + c.ext);
        EXPECT_EQ(this->p(c.path).replace_extension(this->t(c.ext)).get_path_name(), this->t(c.result));
    }
    for (const char* ext : {"..dat", ".", "a/b"}) {
        SCOPED_TRACE(ext);
        TypeParam path = this->p("dir/a.txt");
        EXPECT_THROW(path.replace_extension(this->t(ext)), fs::InvalidArgument);
        EXPECT_EQ(path.get_path_name(), this->t("dir/a.txt"));
    }
}

TYPED_TEST(BasicPath, IteratesElementsBothWays)
{
    const struct {
        const char* path;
        std::vector<const char*> elements;
    } cases[] = {
        {"/a/b", {"/", "a", "b"}},
        {"a/b", {"a", "b"}},
        {"/", {"/"}},
        {"../a/./bb", {"..", "a", ".", "bb"}},
        {"", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const TypeParam path = this->p(c.path);
        const auto expected = this->list(c.elements);
        EXPECT_EQ(std::vector<typename TypeParam::string_type>(path.begin(), path.end()), expected);
        std::vector<typename TypeParam::string_type> backward;
        for (auto it = path.end(); it != path.begin();)
            backward.push_back(*--it);
        EXPECT_EQ(backward, std::vector<typename TypeParam::string_type>(expected.rbegin(), expected.rend()));
    }
}

TYPED_TEST(BasicPath, AppendJoinsWithOneSeparatorAndRefusesAbsoluteTails)
{
    EXPECT_EQ((this->p("/") / this->t("x")).get_path_name(), this->t("/x"));
    EXPECT_EQ((TypeParam() / this->t("/x")).get_path_name(), this->t("/x"));

    TypeParam base = this->p("a");
    base /= this->t("b//c/");
    base.append(static_cast<const typename TypeParam::value_type*>(nullptr));
    EXPECT_EQ(base.get_path_name(), this->t("a/b/c"));

    EXPECT_THROW(base.append(this->t("/x")), fs::InvalidArgument);
    // Tilde expansion turns this tail absolute, so it fails the same way.
    EXPECT_THROW(base /= this->t("~/x"), fs::InvalidArgument);
    EXPECT_EQ(base.get_path_name(), this->t("a/b/c"));

    TypeParam literal(this->t("a"), false);
    literal /= this->t("~/x");
    EXPECT_EQ(literal.get_path_name(), this->t("a/~/x"));
}

TEST(PathText, NonAsciiAndSupplementaryCharactersAreOrdinaryUnits)
{
    const fs::upath path(u16(u"/\u00e9t\u00e9//\U0001F600.\u65e5\u672c/"));
    EXPECT_EQ(path.get_path_name(), u16(u"/\u00e9t\u00e9/\U0001F600.\u65e5\u672c"));
    EXPECT_EQ(path.stem(), u16(u"\U0001F600"));
    EXPECT_EQ(path.extension(), u16(u"\u65e5\u672c"));
}

TEST(BoostPathBridge, ConvertsAndAppendsUtf8)
{
    const ustring name = u16(u"d\u00e9j\u00e0//~");
    const boost::filesystem::path p = fs::make_path(name.data(), name.size());
    EXPECT_EQ(p.native(), "d\xc3\xa9j\xc3\xa0//~"); // no clean-up, no tilde step
    EXPECT_EQ(fs::to_ustring(p), name);
    EXPECT_EQ(fs::to_generic_ustring(p), name);
    EXPECT_EQ(fs::to_ustring(boost::filesystem::path("bad\xff")), u16(u"bad\ufffd"));
    const fs::codecvt_filesystem_to_ustring cvt;
    EXPECT_EQ(fs::to_generic_ustring(p, cvt), name);

    const ustring tail = u16(u"b\u00e9");
    const ustring absolute = u16("/c");
    const struct {
        const char* base;
        const ustring& tail;
        unsigned long n;
        const char* result;
    } cases[] = {
        {"", tail, tail.size(), "b\xc3\xa9"},
        {"a", tail, tail.size(), "a/b\xc3\xa9"},
        {"a/", tail, tail.size(), "a/b\xc3\xa9"},
        {"a", tail, 0, "a"},
        {"a", absolute, absolute.size(), "a/c"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.base);
        boost::filesystem::path joined(c.base);
        fs::append(joined, c.tail.data(), c.n);
        EXPECT_EQ(joined.native(), c.result);
    }
}
