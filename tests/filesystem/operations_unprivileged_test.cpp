// Refusals by the system. CI runs as root, which passes every permission check, so each case
// runs in a forked child that first becomes the unprivileged user 65534.
#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/fstream.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/filesystem/stdio.hpp>

#include "qvtest/child.hpp"
#include "qvtest/scoped_temp_dir.hpp"
#include "qvtest/text.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>

#include <dirent.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::upath;

using qvtest::u;

using qvtest::become_ordinary_user;
using qvtest::check;
using qvtest::run_in_child;

template <class E, class F> bool throws(F f)
{
    try {
        f();
    } catch (E const&) {
        return true;
    } catch (...) { }
    return false;
}

class OrdinaryUser : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(0, ::chmod(dir.path().c_str(), 0755));
        secret = dir.write_file("secret", "x");
        ASSERT_EQ(0, ::chmod(secret.c_str(), 0600));
        locked = dir.make_dir("locked");
        dir.write_file("locked/inner", "x");
        ASSERT_EQ(0, ::chmod(locked.c_str(), 0700));
    }

    void expect_all_hold(std::vector<check> const& checks)
    {
        int const code = run_in_child(&become_ordinary_user, checks);
        EXPECT_EQ(0, code) << "check " << code << " failed in the unprivileged child";
    }

    qvtest::scoped_temp_dir dir;
    std::string secret;
    std::string locked;
};

TEST_F(OrdinaryUser, ALockedDirectoryOnTheWayIsAccessDeniedNotMissing)
{
    ustring const inner = u(locked + "/inner");
    expect_all_hold({
        [&] { return throws<fs::AccessDenied>([&] { fs::exists(inner); }); },
        [&] { return throws<fs::AccessDenied>([&] { fs::status(upath(inner)); }); },
        [&] { return throws<fs::AccessDenied>([&] { fs::status_express_light(inner); }); },
        [&] { return throws<fs::AccessDenied>([&] { fs::canonical(inner); }); },
        [&] { return throws<fs::AccessDenied>([&] { fs::change_current_path(u(locked)); }); },
        [&] { return fs::exists(u(locked)); }, // the directory itself is visible
    });
}

TEST_F(OrdinaryUser, AccessTellsRefusalsFromUnknowableExistence)
{
    ustring const inner = u(locked + "/inner");
    expect_all_hold({
        [&] { return !fs::access(u(secret), 2); },
        [&] { return !fs::access(u(secret), 1 | 2); }, // there, visible, refused
        [&] { return fs::access(u(secret), 1); },
        [&] { return !fs::access(inner, 2); }, // existence not asked: a plain no
        [&] { return throws<fs::AccessDenied>([&] { fs::access(inner, 1 | 2); }); },
    });
}

TEST_F(OrdinaryUser, StdioAndStreamsReportRefusalsTheirOwnWay)
{
    expect_all_hold({
        [&] {
            errno = 0;
            return fs::fopen(u(secret), "r") == nullptr && errno == EACCES;
        },
        [&] {
            errno = 0;
            return fs::fopen(upath(u(locked + "/new")), "w") == nullptr && errno == EACCES;
        },
        [&] {
            fs::ifstream in(upath(u(secret)));
            return !in.is_open() && in.fail();
        },
    });
}

bool missing(std::string const& path)
{
    struct stat st;
    return ::lstat(path.c_str(), &st) != 0 && errno == ENOENT;
}

TEST_F(OrdinaryUser, ChangesRefusedByPermissionsLoseNothing)
{
    std::string const open_dir = dir.make_dir("open");
    ASSERT_EQ(0, ::chmod(open_dir.c_str(), 0777));
    std::string const mine = dir.write_file("open/mine", "mine");
    ASSERT_EQ(0, ::chown(mine.c_str(), 65534, 65534));
    std::string const inner = locked + "/inner";
    expect_all_hold({
        [&] { return throws<fs::AccessDenied>([&] { fs::create_directory(u(dir / "new")); }); },
        [&] { return throws<fs::AccessDenied>([&] { fs::create_directories(u(locked + "/a/b")); }); },
        [&] { return throws<fs::AccessDenied>([&] { fs::remove(u(secret)); }) && !missing(secret); },
        [&] { return throws<fs::AccessDenied>([&] { fs::remove_all(u(locked)); }) && !missing(inner); },
        [&] { return throws<fs::AccessDenied>([&] { fs::rename(u(secret), u(open_dir + "/moved")); }); },
        [&] {
            return throws<fs::AccessDenied>([&] { fs::copy_file(u(secret), u(open_dir + "/copy")); })
                && missing(open_dir + "/copy");
        },
        [&] {
            return throws<fs::AccessDenied>(
                       [&] { fs::copy_file(u(secret), u(mine), fs::overwrite_if_exists); })
                && qvtest::read_file(mine) == "mine";
        },
        [&] { return throws<fs::AccessDenied>([&] { fs::copy_file(u(mine), u(dir / "copy")); }); },
        [&] { return throws<fs::AccessDenied>([&] { fs::create_symlink(u(mine), u(dir / "l"), 1); }); },
        [&] { return !missing(secret) && missing(dir / "new") && missing(dir / "copy"); },
        [&] { return throws<fs::AccessDenied>([&] { fs::upath_directory_iterator it(u(locked)); }); },
        [&] {
            return throws<fs::AccessDenied>(
                [&] { fs::upath_directory_iterator it(u(locked), fs::filename_pattern_context(u"*")); });
        },
    });
}

// A copy that the system stops halfway (here: the file-size limit) leaves no half-written
// destination, and an overwrite that fails keeps the old content.
TEST(InterruptedCopy, LeavesNothingHalfWritten)
{
    qvtest::scoped_temp_dir dir;
    std::string const big = dir.write_file("big", std::string(1 << 20, 'b'));
    std::string const old = dir.write_file("old", "old content");
    auto const limit_file_size = [] {
        ::signal(SIGXFSZ, SIG_IGN);
        struct rlimit const limit = {64 * 1024, 64 * 1024};
        return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
    };
    int const code = run_in_child(limit_file_size,
        {
            [&] {
                return throws<fs::FsysExceptionBase>([&] { fs::copy_file(u(big), u(dir / "new")); })
                    && missing(dir / "new");
            },
            [&] {
                return throws<fs::FsysExceptionBase>([&] { fs::copy(u(big), u(dir / "new")); })
                    && missing(dir / "new");
            },
            [&] {
                return throws<fs::FsysExceptionBase>(
                           [&] { fs::copy_file(u(big), u(old), fs::overwrite_if_exists); })
                    && qvtest::read_file(old) == "old content";
            },
        });
    EXPECT_EQ(0, code) << "check " << code << " failed in the child";
    // Nothing written aside is left behind either.
    std::vector<std::string> names;
    DIR* const handle = ::opendir(dir.path().c_str());
    ASSERT_NE(nullptr, handle);
    while (struct dirent const* entry = ::readdir(handle))
        names.push_back(entry->d_name);
    ::closedir(handle);
    std::sort(names.begin(), names.end());
    EXPECT_EQ((std::vector<std::string>{".", "..", "big", "old"}), names);
}

TEST(ReadOnlyFileSystem, WritingIsARefusal)
{
    qvtest::scoped_temp_dir dir;
    std::string const mount_point = dir.make_dir("ro");
    auto const mount_read_only = [&] {
        // A private mount namespace keeps the read-only mount to the child.
        return ::unshare(CLONE_NEWNS) == 0
            && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
            && ::mount("tmpfs", mount_point.c_str(), "tmpfs", MS_RDONLY, nullptr) == 0;
    };
    int const code = run_in_child(mount_read_only,
        {
            [&] { return !fs::access(u(mount_point), 2 | 4); },
            [&] { return !fs::access(u(mount_point), 1 | 4); },
            [&] { return fs::access(u(mount_point), 1 | 2 | 8); },
        });
    if (code == qvtest::child_not_prepared)
        GTEST_SKIP() << "cannot mount a read-only file system here (needs CAP_SYS_ADMIN)";
    EXPECT_EQ(0, code) << "check " << code << " failed in the child";
}

} // namespace
