#include <qvi18n/filesystem/fstream.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qvtest {
std::u16string utf8_to_utf16(std::string const& utf8);
} // namespace qvtest

namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::native_path;
using fs::upath;

ustring u(std::string const& utf8)
{
    return qvtest::utf8_to_utf16(utf8);
}

std::string contents(std::istream& in)
{
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST(InputFileStream, ReadsByUnicodeAndByteNames)
{
    qvtest::scoped_temp_dir dir;
    std::string const name = dir.write_file("d\xc3\xa9j\xc3\xa0 \xe4\xb8\xad.xml", "<a/>\nline 2\n");

    fs::basic_ifstream<char> by_text(upath(u(name)));
    ASSERT_TRUE(by_text.is_open());
    EXPECT_TRUE(by_text.good());
    EXPECT_EQ("<a/>\nline 2\n", contents(by_text));

    fs::ifstream by_bytes(native_path(dir.path() + "//d\xc3\xa9j\xc3\xa0 \xe4\xb8\xad.xml"));
    ASSERT_TRUE(by_bytes.is_open());
    std::string first;
    std::getline(by_bytes, first);
    EXPECT_EQ("<a/>", first);
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

TEST(InputFileStream, TildeAndSubstitutedNames)
{
    qvtest::scoped_temp_dir dir;
    dir.write_file("in-home", "home");
    dir.write_file("\x1a", "substitute");
    qvtest::scoped_env home("HOME", dir.path());

    fs::ifstream in_home(upath(u"~/in-home"));
    EXPECT_EQ("home", contents(in_home));
    // A lone surrogate reaches the system as U+001A.
    fs::ifstream lone(upath(u(dir.path() + "/") + u"\xDBFF"));
    EXPECT_EQ("substitute", contents(lone));
}

TEST(InputFileStream, AnUnreadableFileSetsFailbit)
{
    qvtest::scoped_temp_dir dir;
    ASSERT_EQ(0, ::chmod(dir.path().c_str(), 0755));
    std::string const secret = dir.write_file("secret", "x");
    ASSERT_EQ(0, ::chmod(secret.c_str(), 0600));
    std::fflush(nullptr);
    pid_t const pid = ::fork();
    if (pid == 0) {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(99);
        fs::ifstream in(upath(u(secret)));
        ::_exit(!in.is_open() && in.fail() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}

} // namespace
