#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"
#include <qvi18n/filesystem/posix/operations.hpp>

#include <gtest/gtest.h>

#include "qvtest/text.hpp"

#include <sys/stat.h>
#include <unistd.h>


namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::upath;
using qvtest::utf16_to_utf8;

using qvtest::u;

std::string current_directory()
{
    char buffer[8192];
    return ::getcwd(buffer, sizeof buffer) ? std::string(buffer) : std::string();
}

// Every test here moves the process; put it back for the next one.
class WorkingDirectory : public ::testing::Test {
protected:
    void TearDown() override { ASSERT_EQ(0, ::chdir(saved.c_str())); }

    std::string const saved = current_directory();
    qvtest::scoped_temp_dir dir;
};

TEST_F(WorkingDirectory, MovesAndReportsIt)
{
    std::string const sub = dir.make_dir("sub");
    EXPECT_TRUE(fs::set_cwd(sub));
    EXPECT_EQ(sub, current_directory());
    EXPECT_EQ(sub, fs::get_cwd());
    EXPECT_EQ(sub, fs::posix::get_cwd());
    EXPECT_EQ(sub, utf16_to_utf8(fs::get_current_path().get_path_name()));
    EXPECT_EQ(sub, fs::operations_traits<char>::get_current_working_directory_core());

    EXPECT_TRUE(fs::change_current_path(upath(u(dir.path()))));
    EXPECT_EQ(dir.path(), fs::get_cwd());
    EXPECT_TRUE(fs::change_current_path(u"sub//"));
    EXPECT_EQ(sub, fs::get_cwd());
    // A relative name resolves against the new directory.
    dir.write_file("sub/f", "x");
    EXPECT_EQ(sub + "/f", fs::get_full_pathname("f"));
}

TEST_F(WorkingDirectory, TextFormExpandsTheTilde)
{
    std::string const home = dir.make_dir("home");
    qvtest::scoped_env env("HOME", home);
    EXPECT_TRUE(fs::change_current_path(u"~"));
    EXPECT_EQ(home, fs::get_cwd());
}

TEST_F(WorkingDirectory, RefusalsLeaveTheDirectoryWhereItWas)
{
    std::string const file = dir.write_file("file", "x");
    ASSERT_EQ(0, ::chdir(dir.path().c_str()));

    EXPECT_FALSE(fs::change_current_path(ustring()));
    EXPECT_FALSE(fs::change_current_path(upath()));
    EXPECT_THROW(fs::change_current_path(u(dir / "missing")), fs::PathNotFound);
    EXPECT_THROW(fs::change_current_path(upath(u(file))), fs::NotDirectoryError);
    EXPECT_THROW(fs::set_cwd(""), fs::PathNotFound);
    EXPECT_EQ(dir.path(), current_directory());
}

TEST_F(WorkingDirectory, NonAsciiAndNonUtf8Directories)
{
    std::string const japanese = dir.make_dir("\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e");
    ASSERT_TRUE(fs::change_current_path(u(japanese)));
    EXPECT_EQ(japanese, utf16_to_utf8(fs::get_current_path().get_path_name()));

    std::string const raw = dir.make_dir("raw\xfe");
    ASSERT_TRUE(fs::set_cwd(raw));
    EXPECT_EQ(raw, fs::get_cwd());
    // As text the stray byte reads as U+FFFD.
    EXPECT_EQ(dir / "raw\xef\xbf\xbd", utf16_to_utf8(fs::get_current_path().get_path_name()));
}

TEST_F(WorkingDirectory, DirectoriesDeeperThanTheFirstBuffer)
{
    std::string expected = dir.path();
    ASSERT_EQ(0, ::chdir(dir.path().c_str()));
    std::string const segment(200, 'd');
    while (expected.size() <= 3000) {
        ASSERT_EQ(0, ::mkdir(segment.c_str(), 0700));
        ASSERT_EQ(0, ::chdir(segment.c_str()));
        expected += "/" + segment;
    }
    EXPECT_EQ(expected, fs::get_cwd());
    EXPECT_EQ(expected, utf16_to_utf8(fs::get_current_path().get_path_name()));
    EXPECT_EQ(expected + "/x", utf16_to_utf8(fs::absolute(u"x")));
}

} // namespace
