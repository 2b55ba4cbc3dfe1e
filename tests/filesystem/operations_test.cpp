#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <functional>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// qvtest/text.hpp's u16string printer clashes with the one of this GoogleTest version, so only
// its two conversions are declared here; texts are compared as UTF-8.
namespace qvtest {
std::u16string utf8_to_utf16(std::string const& utf8);
std::string utf16_to_utf8(std::u16string const& utf16);
} // namespace qvtest

namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::file_status;
using fs::upath;
using qvtest::utf16_to_utf8;

ustring u(std::string const& utf8)
{
    return qvtest::utf8_to_utf16(utf8);
}

std::string s8(upath const& p)
{
    return utf16_to_utf8(p.get_path_name());
}

boost::posix_time::ptime const epoch(boost::gregorian::date(1970, 1, 1));

boost::posix_time::ptime at(long long seconds_since_epoch)
{
    return epoch + boost::posix_time::seconds(static_cast<long>(seconds_since_epoch));
}

mode_t mode_of(std::string const& path)
{
    struct stat st;
    EXPECT_EQ(0, ::lstat(path.c_str(), &st)) << path;
    return st.st_mode & 07777;
}

// Runs body in a forked child and returns its exit code; 128 + signal if it died.
int run_in_child(std::function<int()> const& body)
{
    std::fflush(nullptr);
    pid_t const pid = ::fork();
    if (pid == 0)
        ::_exit(body());
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// In the child: become an ordinary user, since root passes every permission check.
bool drop_privileges()
{
    if (::geteuid() != 0)
        return true;
    return ::setgid(65534) == 0 && ::setuid(65534) == 0;
}

template <class E, class F> bool throws(F f)
{
    try {
        f();
    } catch (E const&) {
        return true;
    } catch (...) { }
    return false;
}

class Operations : public ::testing::Test {
protected:
    void SetUp() override
    {
        file = dir.write_file("file.txt", "content");
        sub = dir.make_dir("sub");
        ASSERT_EQ(0, ::symlink(file.c_str(), (dir / "link").c_str()));
        ASSERT_EQ(0, ::symlink((dir / "nowhere").c_str(), (dir / "dangling").c_str()));
    }

    qvtest::scoped_temp_dir dir;
    std::string file;
    std::string sub;
};

TEST_F(Operations, AccessRejectsBadArgumentsBeforeAskingTheSystem)
{
    for (unsigned mode : {0u, 16u, 0xFFFFFFFFu}) {
        EXPECT_THROW(fs::access(u(file), mode), fs::InvalidArgument) << mode;
        EXPECT_THROW(fs::access(upath(u(file)), mode), fs::InvalidArgument) << mode;
    }
    EXPECT_THROW(fs::access(ustring(), 1), fs::InvalidArgument);
    EXPECT_THROW(fs::access(upath(), 1), fs::InvalidArgument);
}

TEST_F(Operations, AccessAnswersForFilesThatExist)
{
    ASSERT_EQ(0, ::chmod(file.c_str(), 0644));
    EXPECT_TRUE(fs::access(u(file), 1));
    EXPECT_TRUE(fs::access(upath(u(file)), 1 | 2 | 4));
    EXPECT_TRUE(fs::access(u(sub), 8));
    if (::geteuid() != 0) { // root may execute anything that has an x bit, and this has none
        EXPECT_FALSE(fs::access(u(file), 8));
    }
    // A missing file is a failure, not a refusal.
    EXPECT_THROW(fs::access(u(dir / "missing"), 1), fs::PathNotFound);
    EXPECT_THROW(fs::access(u(dir / "missing"), 2), fs::PathNotFound);
    EXPECT_THROW(fs::access(u(dir / "dangling"), 1), fs::PathNotFound);
    EXPECT_THROW(fs::access(u(file + "/x"), 1), fs::NotDirectoryError);
}

TEST_F(Operations, AccessRefusalsAndUnknowableExistenceForAnOrdinaryUser)
{
    ASSERT_EQ(0, ::chmod(dir.path().c_str(), 0755));
    ASSERT_EQ(0, ::chmod(file.c_str(), 0600));
    std::string const locked = dir.make_dir("locked");
    dir.write_file("locked/inner", "x");
    ASSERT_EQ(0, ::chmod(locked.c_str(), 0700));

    int const code = run_in_child([&] {
        if (!drop_privileges())
            return 99;
        if (fs::access(u(file), 2)) // readable by its owner only
            return 1;
        if (fs::access(u(file), 1 | 2)) // there, visible, and refused
            return 2;
        if (!fs::access(u(file), 1))
            return 3;
        // Behind a locked directory: a refusal when existence was not asked about ...
        if (fs::access(u(locked + "/inner"), 2))
            return 4;
        // ... but asked about it, nobody can tell.
        if (!throws<fs::AccessDenied>([&] { fs::access(u(locked + "/inner"), 1 | 2); }))
            return 5;
        return 0;
    });
    EXPECT_EQ(0, code) << "check " << code << " failed in the unprivileged child";
}

TEST_F(Operations, WritingOnAReadOnlyFileSystemIsARefusal)
{
    std::string const mount_point = dir.make_dir("ro");
    int const code = run_in_child([&] {
        // A private mount namespace keeps the read-only mount to this child.
        if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
            || ::mount("tmpfs", mount_point.c_str(), "tmpfs", MS_RDONLY, nullptr) != 0)
            return 77;
        if (fs::access(u(mount_point), 2 | 4))
            return 1;
        if (fs::access(u(mount_point), 1 | 4))
            return 2;
        if (!fs::access(u(mount_point), 1 | 2 | 8))
            return 3;
        return 0;
    });
    if (code == 77)
        GTEST_SKIP() << "cannot mount a read-only file system here (needs CAP_SYS_ADMIN)";
    EXPECT_EQ(0, code) << "check " << code << " failed in the child";
}

TEST_F(Operations, PermissionsSetAddAndRemoveModeBits)
{
    fs::permissions(u(file), file_status::owner_all | file_status::group_read);
    EXPECT_EQ(0740u, mode_of(file));
    fs::permissions(upath(u(file)), file_status::others_read | file_status::perms_add);
    EXPECT_EQ(0744u, mode_of(file));
    fs::permissions(u(file), file_status::owner_exec | file_status::group_read | file_status::perms_remove);
    EXPECT_EQ(0604u, mode_of(file));
    fs::permissions(u(file), file_status::set_gid_on_exec | file_status::owner_read);
    EXPECT_EQ(02400u, mode_of(file));

    // Type and foreign attribute bits never reach the mode.
    fs::permissions(u(file), file_status::regular_file | file_status::hidden_file | 0640);
    EXPECT_EQ(0640u, mode_of(file));

    // Through a link without perms_symlink, the target changes.
    fs::permissions(u(dir / "link"), 0600);
    EXPECT_EQ(0600u, mode_of(file));
    // perms_symlink on something that is not a link is an ordinary change.
    fs::permissions(u(file), 0644 | file_status::perms_symlink);
    EXPECT_EQ(0644u, mode_of(file));
}

TEST_F(Operations, PermissionsRefuseContradictoryRequests)
{
    ASSERT_EQ(0, ::chmod(file.c_str(), 0640));
    EXPECT_THROW(fs::permissions(u(file), 0600 | file_status::perms_add | file_status::perms_remove),
        fs::InvalidArgument);
    EXPECT_THROW(fs::permissions(upath(u(file)), file_status::perms_unknown), fs::InvalidArgument);
    EXPECT_THROW(
        fs::permissions(u(file), file_status::perms_unknown | file_status::perms_add), fs::InvalidArgument);
    EXPECT_EQ(0640u, mode_of(file));

    // Nothing to change: no failure at all.
    EXPECT_NO_THROW(fs::permissions(ustring(), 0600));
    EXPECT_NO_THROW(fs::permissions(upath(), 0600 | file_status::perms_add | file_status::perms_remove));

    EXPECT_THROW(fs::permissions(u(dir / "missing"), 0600), fs::PathNotFound);
    EXPECT_THROW(fs::permissions(u(dir / "dangling"), 0600), fs::PathNotFound);
}

TEST_F(Operations, ALinksOwnModeIsRefusedByTheSystem)
{
    mode_t const before = mode_of(dir / "link");
    try {
        fs::permissions(u(dir / "link"), 0600 | file_status::perms_symlink);
        // A platform that can change it must have changed the link and not the target.
        EXPECT_EQ(0600u, mode_of(dir / "link"));
    } catch (fs::SystemError const& e) {
        EXPECT_NE(0u, e.get_error_number());
        EXPECT_TRUE(e.get_path().empty());
        EXPECT_EQ(before, mode_of(dir / "link"));
    }
    EXPECT_NE(0600u, mode_of(file));
}

TEST_F(Operations, LastWriteTimeSetsTheModificationTimeOnly)
{
    struct timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(0, ::utimensat(AT_FDCWD, file.c_str(), times, 0));

    fs::last_write_time(u(file), at(1234567890) + boost::posix_time::milliseconds(700));
    file_status const st = fs::status(u(file));
    EXPECT_EQ(at(1234567890), st.modification_time);
    EXPECT_EQ(at(1000000000), st.access_time);

    fs::last_write_time(upath(u(dir / "link")), at(-3600));
    EXPECT_EQ(at(-3600), fs::status(upath(u(file))).modification_time);
}

TEST_F(Operations, LastWriteTimeAfter2038WrapsAndReadsBackWrapped)
{
    long long const in_2040 = 2208988800LL;
    fs::last_write_time(u(file), at(in_2040));
    struct stat st;
    ASSERT_EQ(0, ::stat(file.c_str(), &st));
    EXPECT_EQ(in_2040 - 4294967296LL, static_cast<long long>(st.st_mtime));
    EXPECT_EQ(at(in_2040 - 4294967296LL), fs::status(u(file)).modification_time);
}

TEST_F(Operations, LastWriteTimeRefusals)
{
    EXPECT_THROW(fs::last_write_time(u(file), boost::posix_time::ptime()), fs::InvalidArgument);
    EXPECT_THROW(fs::last_write_time(upath(u(file)), boost::posix_time::ptime(boost::posix_time::pos_infin)),
        fs::InvalidArgument);
    EXPECT_THROW(fs::last_write_time(ustring(), at(0)), fs::InvalidArgument);
    EXPECT_THROW(fs::last_write_time(upath(), at(0)), fs::InvalidArgument);
    EXPECT_THROW(fs::last_write_time(u(dir / "missing"), at(0)), fs::PathNotFound);
}

TEST(Absolute, JoinsWithoutResolvingAnything)
{
    EXPECT_EQ("/a", utf16_to_utf8(fs::absolute(u"/a", u"b")));
    EXPECT_EQ("/base/a", utf16_to_utf8(fs::absolute(u"a", u"/base")));
    EXPECT_EQ("/base/../a/./b", utf16_to_utf8(fs::absolute(u"../a/./b", u"/base/")));
    EXPECT_EQ("/a", utf16_to_utf8(fs::absolute(u"a", u"/")));
    EXPECT_EQ("/base/a", s8(fs::absolute(upath(u"a"), upath(u"/base"))));
    EXPECT_TRUE(fs::absolute(ustring(), u"/base").empty());
    EXPECT_TRUE(fs::absolute(upath(), upath(u"/base")).empty());

    EXPECT_THROW(fs::absolute(u"a", u"b"), fs::InvalidArgument);
    EXPECT_THROW(fs::absolute(upath(u"a"), upath(u"b")), fs::InvalidArgument);
}

TEST(Absolute, TextFormsAreCleanedFirst)
{
    qvtest::scoped_env home("HOME", "/home/someone/");
    EXPECT_EQ("/home/someone/a/b", utf16_to_utf8(fs::absolute(u"a//b/", u"~")));
    EXPECT_EQ("/home/someone/x", utf16_to_utf8(fs::absolute(u"~/x", u"/elsewhere")));
}

TEST(Absolute, TheWorkingDirectoryStandsInForAnEmptyBase)
{
    std::string const cwd = fs::get_cwd();
    std::string const expected = cwd == "/" ? "/a" : cwd + "/a";
    EXPECT_EQ(expected, utf16_to_utf8(fs::absolute(u"a")));
    EXPECT_EQ(expected, s8(fs::absolute(upath(u"a"))));
    EXPECT_EQ(expected, fs::posix::make_absolute<char>("a", ""));
}

TEST_F(Operations, CanonicalResolvesLinksAndDots)
{
    EXPECT_EQ(file, utf16_to_utf8(fs::canonical(u(dir / "sub/../link"))));
    EXPECT_EQ(file, s8(fs::canonical(upath(u(sub + "/./../file.txt")))));
    EXPECT_EQ(file, utf16_to_utf8(fs::canonical(u"../file.txt", u(sub))));
    EXPECT_EQ(file, s8(fs::canonical(upath(u"file.txt"), upath(u(dir.path())))));
    EXPECT_EQ(file, utf16_to_utf8(fs::posix::make_canonical(u"sub//..//file.txt/", u(dir.path() + "//"))));
    EXPECT_TRUE(fs::canonical(ustring()).empty());

    EXPECT_THROW(fs::canonical(u(dir / "missing")), fs::PathNotFound);
    EXPECT_THROW(fs::canonical(u(dir / "dangling")), fs::PathNotFound);
    EXPECT_THROW(fs::canonical(u(file + "/x")), fs::PathNotFound);
    EXPECT_THROW(fs::canonical(u"file.txt", u"relative"), fs::InvalidArgument);
}

TEST_F(Operations, CanonicalOfNonAsciiNames)
{
    std::string const name = dir.write_file("\xd0\xbf\xd1\x80\xd0\xb8\xd0\xb2\xd0\xb5\xd1\x82.txt", "x");
    ASSERT_EQ(0, ::symlink(name.c_str(), (dir / "\xe2\x86\x92").c_str()));
    EXPECT_EQ(name, utf16_to_utf8(fs::canonical(u(dir / "\xe2\x86\x92"))));
}

TEST_F(Operations, ReadSymlinkGivesTheStoredTarget)
{
    ASSERT_EQ(0, ::symlink("../relative//target", (dir / "rel").c_str()));
    EXPECT_EQ(file, utf16_to_utf8(fs::read_symlink(u(dir / "link"))));
    EXPECT_EQ(dir / "nowhere", s8(fs::read_symlink(upath(u(dir / "dangling")))));
    // The text form gives the target untouched; a upath result is cleaned like any other.
    EXPECT_EQ("../relative//target", utf16_to_utf8(fs::read_symlink(u(dir / "rel"))));
    EXPECT_EQ("../relative/target", s8(fs::read_symlink(upath(u(dir / "rel")))));
    EXPECT_TRUE(fs::read_symlink(ustring()).empty());
    EXPECT_TRUE(fs::read_symlink(upath()).empty());

    EXPECT_THROW(fs::read_symlink(u(file)), fs::InvalidArgument);
    EXPECT_THROW(fs::read_symlink(u(dir / "missing")), fs::PathNotFound);
}

TEST_F(Operations, ReadSymlinkExpandsTheTildeInBothForms)
{
    qvtest::scoped_env home("HOME", dir.path());
    EXPECT_EQ(file, utf16_to_utf8(fs::read_symlink(u"~/link")));
    upath const tilde_path(ustring(u"~/link")); // stored expanded already
    EXPECT_EQ(file, s8(fs::read_symlink(tilde_path)));
}

TEST_F(Operations, ReadSymlinkReadsTargetsOfAnyLength)
{
    // 1024 bytes fill the first buffer exactly, so the call must try again to know it is whole.
    for (std::size_t length : {1023u, 1024u, 1025u, 2048u, 3000u}) {
        std::string target = "/";
        while (target.size() < length)
            target += std::string(std::min<std::size_t>(200, length - target.size() - 1), 'a') + "/";
        target.resize(length, 'b');
        std::string const link = dir / ("long" + std::to_string(length));
        ASSERT_EQ(0, ::symlink(target.c_str(), link.c_str()));
        EXPECT_EQ(target, fs::posix::readlink(link)) << length;
        EXPECT_EQ(target, utf16_to_utf8(fs::read_symlink(u(link)))) << length;
    }
}

TEST_F(Operations, ReadSymlinkOfATargetThatIsNotUtf8)
{
    ASSERT_EQ(0, ::symlink("bad\xff name", (dir / "raw").c_str()));
    EXPECT_EQ("bad\xff name", fs::posix::readlink(dir / "raw"));
    EXPECT_EQ("bad\xef\xbf\xbd name", utf16_to_utf8(fs::read_symlink(u(dir / "raw"))));
}

TEST_F(Operations, EquivalentComparesFilesNotNames)
{
    EXPECT_TRUE(fs::equivalent(u(file), u(dir / "link")));
    EXPECT_TRUE(fs::equivalent(upath(u(sub + "/../file.txt")), upath(u(file))));
    EXPECT_FALSE(fs::equivalent(u(file), u(sub)));
    // One side missing is a plain no.
    EXPECT_FALSE(fs::equivalent(u(file), u(dir / "missing")));
    EXPECT_THROW(fs::equivalent(u(dir / "missing"), u(dir / "dangling")), fs::PathNotFound);

    EXPECT_THROW(fs::equivalent(ustring(), ustring()), fs::InvalidArgument);
    EXPECT_THROW(fs::equivalent(upath(), upath()), fs::InvalidArgument);
    EXPECT_FALSE(fs::equivalent(ustring(), u"x"));
    EXPECT_FALSE(fs::equivalent(upath(u(file)), upath()));
}

TEST_F(Operations, EquivalentDoesNotExpandTheTilde)
{
    qvtest::scoped_env home("HOME", dir.path());
    // "~/file.txt" is taken literally: a relative name that does not exist.
    EXPECT_FALSE(fs::equivalent(u"~/file.txt", u(file)));
}

TEST_F(Operations, FullPathnameResolvesOrIsEmpty)
{
    EXPECT_EQ(file, fs::get_full_pathname(dir / "sub/../link"));
    EXPECT_EQ("", fs::get_full_pathname(dir / "missing"));
    EXPECT_EQ("", fs::get_full_pathname(dir / "dangling"));
    EXPECT_EQ("", fs::get_full_pathname(""));
}

} // namespace
