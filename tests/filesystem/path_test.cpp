#include <qvi18n/filesystem/path.hpp>

#include <qvi18n/filesystem/converters.hpp>

#include "tests/filesystem/path_test_text.hpp"
#include <qvtest/scoped_env.hpp>

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using pathtest::u16;

namespace {

// The two instantiations must follow the same rules; tests are written once over ASCII text.
template <class Path> typename Path::string_type text(const char* ascii);
template <> ustring text<fs::upath>(const char* ascii)
{
    return u16(ascii);
}
template <> std::string text<fs::native_path>(const char* ascii)
{
    return ascii;
}

template <class Path> class BasicPath : public ::testing::Test {
protected:
    static typename Path::string_type t(const char* s) { return text<Path>(s); }
    static Path p(const char* s) { return Path(text<Path>(s)); }

    static std::vector<typename Path::string_type> forward(const Path& path)
    {
        return std::vector<typename Path::string_type>(path.begin(), path.end());
    }
    static std::vector<typename Path::string_type> backward(const Path& path)
    {
        std::vector<typename Path::string_type> out;
        for (auto it = path.end(); it != path.begin();)
            out.push_back(*--it);
        return out;
    }
    static std::vector<typename Path::string_type> list(std::initializer_list<const char*> items)
    {
        std::vector<typename Path::string_type> out;
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
        {"/", "/"},
        {"//", "/"},
        {"///", "/"},
        {"a//b///", "a/b"},
        {"//a", "/a"},
        {"a/", "a"},
        {"./a", "./a"},
        {"a/./../b", "a/./../b"},
        {"a/~", "a/~"},
        {"a\\\\b", "a\\\\b"},
        {"~", "/home/tester"},
        {"~/", "/home/tester"},
        {"~//x//", "/home/tester/x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(this->p(c.in).get_path_name(), this->t(c.stored));
    }
    EXPECT_EQ(TypeParam(this->t("~/a"), false).get_path_name(), this->t("~/a"));
    EXPECT_TRUE(TypeParam(static_cast<const typename TypeParam::value_type*>(nullptr)).empty());
}

TYPED_TEST(BasicPath, ObserversTakeTheTextApart)
{
    const struct {
        const char* path;
        const char* root;
        const char* relative;
        const char* parent;
        const char* filename;
        const char* stem;
        const char* extension;
        bool absolute;
    } cases[] = {
        {"", "", "", "", "", "", "", false},
        {"/", "/", "", "", "/", "/", "", true},
        {"a", "", "a", "", "a", "a", "", false},
        {"/a", "/", "a", "/", "a", "a", "", true},
        {"/a/b.txt", "/", "a/b.txt", "/a", "b.txt", "b", "txt", true},
        {"a/b.tar.gz", "", "a/b.tar.gz", "a", "b.tar.gz", "b.tar", "gz", false},
        {"a/.profile", "", "a/.profile", "a", ".profile", "", "profile", false},
        {"a.", "", "a.", "", "a.", "a", "", false},
        {"x/.", "", "x/.", "x", ".", ".", "", false},
        {"x/..", "", "x/..", "x", "..", "..", "", false},
        {"d.ir/name", "", "d.ir/name", "d.ir", "name", "name", "", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const TypeParam path = this->p(c.path);
        EXPECT_EQ(path.root_path(), this->t(c.root));
        EXPECT_EQ(path.root_directory(), this->t(c.root));
        EXPECT_TRUE(path.root_name().empty());
        EXPECT_EQ(path.relative_path(), this->t(c.relative));
        EXPECT_EQ(path.parent_path(), this->t(c.parent));
        EXPECT_EQ(path.filename(), this->t(c.filename));
        EXPECT_EQ(path.stem(), this->t(c.stem));
        EXPECT_EQ(path.extension(), this->t(c.extension));
        EXPECT_EQ(path.is_absolute(), c.absolute);
    }
}

TYPED_TEST(BasicPath, RemoveFilename)
{
    const struct {
        const char* in;
        const char* out;
    } cases[] = {{"", ""}, {"a", ""}, {"/", ""}, {"/a", "/"}, {"/a/b", "/a"}, {"a/b/c", "a/b"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        TypeParam path = this->p(c.in);
        path.remove_filename();
        EXPECT_EQ(path.get_path_name(), this->t(c.out));
    }
}

TYPED_TEST(BasicPath, ReplaceExtensionKeepsATrailingDot)
{
    const struct {
        const char* path;
        const char* ext;
        const char* result;
    } cases[] = {
        {"a.txt", "dat", "a.dat"},
        {"a.txt", ".dat", "a.dat"},
        {"a", "dat", "a.dat"},
        {"a", ".dat", "a.dat"},
        {".profile", "bak", ".bak"},
        {"a.", "dat", "a..dat"},
        {"a.", ".dat", "a..dat"},
        {"d.ir/name", "x", "d.ir/name.x"},
        {"/d/a.b.c", "z", "/d/a.b.z"},
        // Left alone: nothing to give an extension to, or nothing to give.
        {"", "dat", ""},
        {"a.txt", "", "a.txt"},
        {"/", "dat", "/"},
        {".", "dat", "."},
        {"x/..", "dat", "x/.."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.path) + " + " + c.ext);
        TypeParam path = this->p(c.path);
        path.replace_extension(this->t(c.ext));
        EXPECT_EQ(path.get_path_name(), this->t(c.result));
    }
}

TYPED_TEST(BasicPath, ReplaceExtensionRefusesMalformedExtensionsAndKeepsThePath)
{
    for (const char* ext : {"..dat", ".", "a/b", "..", "/x"}) {
        SCOPED_TRACE(ext);
        TypeParam path = this->p("dir/a.txt");
        EXPECT_THROW(path.replace_extension(this->t(ext)), fs::InvalidArgument);
        EXPECT_EQ(path.get_path_name(), this->t("dir/a.txt"));
    }
}

TYPED_TEST(BasicPath, IteratesElementsBothWays)
{
    EXPECT_EQ(this->forward(this->p("/a/b")), this->list({"/", "a", "b"}));
    EXPECT_EQ(this->backward(this->p("/a/b")), this->list({"b", "a", "/"}));
    EXPECT_EQ(this->forward(this->p("a/b")), this->list({"a", "b"}));
    EXPECT_EQ(this->backward(this->p("a/b")), this->list({"b", "a"}));
    EXPECT_EQ(this->forward(this->p("/")), this->list({"/"}));
    EXPECT_EQ(this->backward(this->p("/")), this->list({"/"}));
    EXPECT_EQ(this->forward(this->p("/x")), this->list({"/", "x"}));
    EXPECT_EQ(this->forward(this->p("../a/./bb")), this->list({"..", "a", ".", "bb"}));
    EXPECT_EQ(this->backward(this->p("../a/./bb")), this->list({"bb", ".", "a", ".."}));
    const TypeParam empty;
    EXPECT_TRUE(empty.begin() == empty.end());

    // Walking off the end stays at the end; stepping back from the start stays there.
    const TypeParam path = this->p("/a");
    auto it = path.end();
    ++it;
    EXPECT_TRUE(it == path.end());
    auto first = path.begin();
    --first;
    EXPECT_TRUE(first == path.begin());
    EXPECT_EQ(*first, this->t("/"));
    EXPECT_EQ(std::distance(path.begin(), path.end()), 2);
}

TYPED_TEST(BasicPath, AppendJoinsWithOneSeparatorAndRefusesAbsoluteTails)
{
    TypeParam root = this->p("/");
    root /= this->t("x");
    EXPECT_EQ(root.get_path_name(), this->t("/x"));

    TypeParam base = this->p("a");
    base.append(this->t("b//c/"));
    EXPECT_EQ(base.get_path_name(), this->t("a/b/c"));
    EXPECT_EQ((base / this->t("d")).get_path_name(), this->t("a/b/c/d"));
    EXPECT_EQ((base / this->p("e/f")).get_path_name(), this->t("a/b/c/e/f"));

    base.append(static_cast<const typename TypeParam::value_type*>(nullptr));
    base.append(this->t(""));
    EXPECT_EQ(base.get_path_name(), this->t("a/b/c"));

    EXPECT_THROW(base.append(this->t("/x")), fs::InvalidArgument);
    EXPECT_EQ(base.get_path_name(), this->t("a/b/c"));
    // A tail that tilde expansion makes absolute fails the same way.
    EXPECT_THROW(base /= this->t("~/x"), fs::InvalidArgument);
    EXPECT_EQ(base.get_path_name(), this->t("a/b/c"));

    TypeParam empty;
    empty /= this->t("/x");
    EXPECT_EQ(empty.get_path_name(), this->t("/x"));

    TypeParam literal(this->t("a"), false);
    literal /= this->t("~/x");
    EXPECT_EQ(literal.get_path_name(), this->t("a/~/x"));
}

TYPED_TEST(BasicPath, ComparesByText)
{
    EXPECT_TRUE(this->p("a//b") == this->p("a/b/"));
    EXPECT_FALSE(this->p("a/b") == this->p("a/c"));
    EXPECT_TRUE(this->p("a/b") < this->p("a/c"));
}

TEST(PathText, DetailFunctionsOnRawText)
{
    EXPECT_EQ(fs::detail::get_root_path_length(u16("/a")), 1u);
    EXPECT_EQ(fs::detail::get_root_path_length(u16("a/")), 0u);
    EXPECT_EQ(fs::detail::get_root_path_length(ustring()), 0u);
    EXPECT_FALSE(fs::detail::is_absolute(ustring()));
    EXPECT_EQ(fs::detail::extract_first_element(u16("/a/b"), 1), u16("/"));
    EXPECT_EQ(fs::detail::extract_first_element(u16("ab/c"), 0), u16("ab"));
    EXPECT_EQ(fs::detail::extract_first_element(u16("ab"), 0), u16("ab"));
    EXPECT_EQ(fs::detail::make_generic_form(u16("a\\b")), u16("a\\b"));
    EXPECT_EQ(fs::detail::make_access_form("a//b"), "a//b");

    // Text is converted unchanged, with no clean-up.
    EXPECT_EQ(fs::detail::to_filesystem(u16(u"//d\u00e9j\u00e0/")), "//d\xc3\xa9j\xc3\xa0/");
    EXPECT_EQ(fs::detail::from_filesystem("\xe6\x97\xa5/"), u16(u"\u65e5/"));

    ustring base = u16("a/");
    fs::detail::concatenate_pathname(base, u16("b"), false);
    EXPECT_EQ(base, u16("a/b"));
}

TEST(PathText, MoveDownAndMoveUpKeepPositions)
{
    const ustring p = u16("/ab/c");
    unsigned long pos = 0;
    ustring element = u16("/");
    fs::detail::move_down(p, 1, pos, element);
    EXPECT_EQ(pos, 1u);
    EXPECT_EQ(element, u16("ab"));
    fs::detail::move_down(p, 1, pos, element);
    EXPECT_EQ(pos, 4u);
    EXPECT_EQ(element, u16("c"));
    fs::detail::move_down(p, 1, pos, element);
    EXPECT_EQ(pos, 5u);
    EXPECT_TRUE(element.empty());
    fs::detail::move_down(p, 1, pos, element);
    EXPECT_EQ(pos, 5u);

    fs::detail::move_up(p, 1, pos, element);
    EXPECT_EQ(pos, 4u);
    EXPECT_EQ(element, u16("c"));
    fs::detail::move_up(p, 1, pos, element);
    EXPECT_EQ(pos, 1u);
    EXPECT_EQ(element, u16("ab"));
    fs::detail::move_up(p, 1, pos, element);
    EXPECT_EQ(pos, 0u);
    EXPECT_EQ(element, u16("/"));
    fs::detail::move_up(p, 1, pos, element);
    EXPECT_EQ(pos, 0u);
    EXPECT_EQ(element, u16("/"));
}

TEST(PathText, NonAsciiAndSupplementaryCharactersAreOrdinaryUnits)
{
    qvtest::scoped_env home("HOME", "/home/tester");
    const fs::upath path(u16(u"/\u00e9t\u00e9//\U0001F600.\u65e5\u672c/"));
    EXPECT_EQ(path.get_path_name(), u16(u"/\u00e9t\u00e9/\U0001F600.\u65e5\u672c"));
    EXPECT_EQ(path.stem(), u16(u"\U0001F600"));
    EXPECT_EQ(path.extension(), u16(u"\u65e5\u672c"));
    EXPECT_EQ(path.parent_path(), u16(u"/\u00e9t\u00e9"));
}

TEST(PathConstants, TextsAreTerminatedAndShared)
{
    EXPECT_EQ(ustring(fs::upath_constant::GENERIC_PATHNAME_SEPARATOR), u16("/"));
    EXPECT_EQ(ustring(fs::upath_constant::FILE_EXTENSION_SEPARATOR), u16("."));
    EXPECT_EQ(ustring(fs::upath_constant::WILD_CARD), u16("*"));
    EXPECT_EQ(fs::upath_constant::PATHNAME_SEPARATOR, fs::pathname_traits<char16_t>::PATHNAME_SEPARATOR);
    EXPECT_EQ(fs::upath_constant::CURRENT_DIRECTORY, fs::pathname_traits<char16_t>::CURRENT_DIRECTORY);
    EXPECT_EQ(fs::upath_constant::PARENT_DIRECTORY, fs::pathname_traits<char16_t>::PARENT_DIRECTORY);
    EXPECT_EQ(ustring(fs::upath_constant::PARENT_DIRECTORY), u16(".."));
    EXPECT_EQ(std::string(fs::pathname_traits<char>::ROOT_PATHNAME), "/");
    EXPECT_EQ(std::string(fs::pathname_traits<char>::PARENT_DIRECTORY), "..");
    EXPECT_EQ(ustring(fs::pathname_traits<char16_t>::ROOT_PATHNAME), u16("/"));
}

TEST(BoostPathBridge, BuildsAndReadsUtf8Paths)
{
    const ustring name = u16(u"d\u00e9j\u00e0//x");
    const boost::filesystem::path p = fs::make_path(name.data(), name.size());
    EXPECT_EQ(p.native(), "d\xc3\xa9j\xc3\xa0//x"); // no clean-up
    EXPECT_EQ(fs::to_ustring(p), name);
    EXPECT_EQ(fs::to_generic_ustring(p), name);
    EXPECT_EQ(fs::to_ustring(boost::filesystem::path("bad\xff")), u16(u"bad\ufffd"));

    const ustring tilde = u16("~/a");
    EXPECT_EQ(fs::make_path(tilde.data(), tilde.size()).native(), "~/a");
    EXPECT_TRUE(fs::make_path(nullptr, 0).empty());

    const fs::codecvt_filesystem_to_ustring cvt;
    EXPECT_EQ(fs::to_generic_ustring(p, cvt), name);
    EXPECT_TRUE(fs::to_generic_ustring(boost::filesystem::path(), cvt).empty());
}

TEST(BoostPathBridge, AppendAddsOneSeparator)
{
    const ustring b = u16(u"b\u00e9");
    const struct {
        const char* base;
        const char* result;
    } cases[] = {{"", "b\xc3\xa9"}, {"a", "a/b\xc3\xa9"}, {"a/", "a/b\xc3\xa9"}, {"/", "/b\xc3\xa9"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.base);
        boost::filesystem::path p(c.base);
        fs::append(p, b.data(), b.size());
        EXPECT_EQ(p.native(), c.result);
    }
    boost::filesystem::path unchanged("a");
    fs::append(unchanged, b.data(), 0);
    EXPECT_EQ(unchanged.native(), "a");

    const ustring absolute = u16("/c");
    boost::filesystem::path joined("a");
    fs::append(joined, absolute.data(), absolute.size());
    EXPECT_EQ(joined.native(), "a/c");
}
