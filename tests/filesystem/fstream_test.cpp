#include <qvi18n/filesystem/fstream.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"
#include "qvtest/text.hpp"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::native_path;
using fs::upath;

using qvtest::u;

std::string contents(std::istream& in)
{
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST(InputFileStream, ReadsByUnicodeAndByteNames)
{
    qvtest::scoped_temp_dir dir;
    std::string const name = dir.write_file("d\xc3\xa9j\xc3\xa0 \xe4\xb8\xad.xml", "<a/>\n");
    dir.write_file("\x1a", "substitute");
    qvtest::scoped_env home("HOME", dir.path());

    fs::basic_ifstream<char> by_text(upath(u(name)));
    EXPECT_TRUE(by_text.good());
    EXPECT_EQ("<a/>\n", contents(by_text));
    fs::ifstream by_bytes(native_path(dir.path() + "//d\xc3\xa9j\xc3\xa0 \xe4\xb8\xad.xml"));
    EXPECT_EQ("<a/>\n", contents(by_bytes));
    fs::ifstream in_home(upath(u"~/d\xE9j\xE0 \x4E2D.xml"));
    EXPECT_EQ("<a/>\n", contents(in_home));
    // A lone surrogate reaches the system as U+001A.
    fs::ifstream lone(upath(u(dir.path() + "/") + u"\xDBFF"));
    EXPECT_EQ("substitute", contents(lone));
}

TEST(InputFileStream, AFileThatCannotBeOpenedSetsFailbitOnly)
{
    qvtest::scoped_temp_dir dir;
    for (upath const& p : {upath(u(dir / "missing")), upath(), upath(u(dir / "a/b/c"))}) {
        fs::basic_ifstream<char> in(p);
        EXPECT_FALSE(in.is_open());
        EXPECT_TRUE(in.fail());
        EXPECT_FALSE(in.bad());
    }
    fs::ifstream narrow(native_path(dir / "missing"));
    EXPECT_FALSE(narrow.is_open());
    EXPECT_TRUE(narrow.fail());
}

} // namespace
