#include <qvi18n/filesystem/path.hpp>

#include "filesystem/posix/user_database.hpp"
#include "tests/filesystem/path_test_text.hpp"
#include <qvtest/child.hpp>
#include <qvtest/scoped_env.hpp>

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using pathtest::u16;

namespace {

std::string passwd_home_of_uid(uid_t uid)
{
    char buffer[4096];
    struct passwd entry;
    struct passwd* result = nullptr;
    if (getpwuid_r(uid, &entry, buffer, sizeof buffer, &result) != 0 || !result || !result->pw_dir)
        return std::string();
    return result->pw_dir;
}

std::string passwd_home_of_name(const char* name)
{
    char buffer[4096];
    struct passwd entry;
    struct passwd* result = nullptr;
    if (getpwnam_r(name, &entry, buffer, sizeof buffer, &result) != 0 || !result || !result->pw_dir)
        return std::string();
    return result->pw_dir;
}

// A user name that the user database does not know.
const char* const unknown_user = "qvi18n-no-such-user-7f3a";

} // namespace

TEST(TildeExpansion, CurrentUserFromHome)
{
    qvtest::scoped_env home("HOME", "/h/");
    EXPECT_EQ(fs::posix::replace_home_directory("~"), "/h/");
    EXPECT_EQ(fs::posix::replace_home_directory("~/"), "/h/");
    EXPECT_EQ(fs::posix::replace_home_directory("~/x/y"), "/h//x/y");
    EXPECT_EQ(fs::posix::replace_home_directory("a/~"), "a/~");
    EXPECT_EQ(fs::posix::replace_home_directory(""), "");

    // Clean-up runs after the replacement, so the home's own trailing separator disappears.
    EXPECT_EQ(fs::upath(u16("~")).get_path_name(), u16("/h"));
    EXPECT_EQ(fs::upath(u16("~/x/y")).get_path_name(), u16("/h/x/y"));
}

TEST(TildeExpansion, NonAsciiHomeSurvivesTheRoundTrip)
{
    qvtest::scoped_env home("HOME", "/home/\xc3\xa9l\xc3\xa8ve");
    EXPECT_EQ(fs::pathname_traits<char16_t>::replace_tilde_with_home_dir(u16(u"~/\u65e5")),
        u16(u"/home/\u00e9l\u00e8ve/\u65e5"));
    EXPECT_EQ(fs::pathname_traits<char16_t>::replace_tilde_with_home_dir(u16(u"x\u00e9")), u16(u"x\u00e9"));
}

TEST(TildeExpansion, EmptyOrUnsetHomeFallsBackToTheUserDatabase)
{
    const std::string expected = passwd_home_of_uid(getuid());
    if (expected.empty())
        GTEST_SKIP() << "the current user has no entry with a home directory";
    {
        qvtest::scoped_env home("HOME", "");
        EXPECT_EQ(fs::posix::replace_home_directory("~"), expected);
        EXPECT_EQ(fs::posix::replace_home_directory("~/x"), expected + "/x");
    }
    {
        qvtest::scoped_env home("HOME");
        EXPECT_EQ(fs::posix::replace_home_directory("~"), expected);
    }
}

TEST(TildeExpansion, NamedUserKnownOrNot)
{
    qvtest::scoped_env home("HOME", "/not/used");
    const std::string root_home = passwd_home_of_name("root");
    if (!root_home.empty()) {
        EXPECT_EQ(fs::posix::replace_home_directory("~root"), root_home);
        EXPECT_EQ(fs::posix::replace_home_directory("~root/a/b"), root_home + "/a/b");
    }

    // An unknown user is no failure: the text stays as written, and relative.
    const std::string text = std::string("~") + unknown_user + "/x";
    EXPECT_EQ(fs::posix::replace_home_directory(text), text);
    const fs::upath path(pathtest::utf8_to_utf16(text));
    EXPECT_EQ(path.get_path_name(), pathtest::utf8_to_utf16(text));
    fs::upath base(u16("/base"));
    base /= pathtest::utf8_to_utf16(text);
    EXPECT_EQ(base.get_path_name(), pathtest::utf8_to_utf16("/base/" + text));
}

// With no home anywhere, "~/x" gives an empty text while an unknown "~name/x" comes back as
// written. Needs a user id with no database entry, so it runs in a child that drops to one.
TEST(TildeExpansion, NoHomeAnywhereGivesAnEmptyPath)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "switching to a user id without an entry needs root";
    uid_t orphan = 54321;
    while (!passwd_home_of_uid(orphan).empty() && orphan < 54400)
        ++orphan;

    const std::string named = std::string("~") + unknown_user + "/x";
    const int code = qvtest::run_in_child([&] { return unsetenv("HOME") == 0 && setuid(orphan) == 0; },
        {
            [] { return fs::posix::replace_home_directory("~/x").empty(); },
            [] { return fs::posix::replace_home_directory("~").empty(); },
            [] { return fs::upath(u16("~/x")).empty(); },
            [&] { return fs::posix::replace_home_directory(named) == named; },
        });
    EXPECT_EQ(code, 0) << "check " << code << " failed in the child";
}

// An entry larger than the first buffer is still found: the buffer grows on ERANGE, up to a bound
// past which the user counts as unknown rather than memory growing without end.
TEST(TildeExpansion, UserEntryLargerThanTheFirstBuffer)
{
    namespace db = fl::filesystem::posix::detail;
    static char home[] = "/home/large";
    std::size_t calls = 0;
    auto entry_needing = [&](std::size_t needed) {
        return [&calls, needed](struct passwd* entry, char*, std::size_t size, struct passwd** result) {
            ++calls;
            *result = nullptr;
            if (size < needed)
                return ERANGE;
            entry->pw_dir = home;
            *result = entry;
            return 0;
        };
    };
    EXPECT_EQ(db::home_from_user_database(entry_needing(100000)), "/home/large");
    EXPECT_GT(calls, 1u);

    calls = 0;
    EXPECT_EQ(db::home_from_user_database(entry_needing(db::user_entry_buffer_limit * 4)), "");
    EXPECT_LT(calls, 20u);
}
