#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"
#include <qvi18n/filesystem/posix/operations.hpp>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <gtest/gtest.h>

#include "qvtest/text.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>


namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::file_status;
using fs::upath;
using qvtest::utf16_to_utf8;

using qvtest::u;

std::string s8(upath const& p)
{
    return utf16_to_utf8(p.get_path_name());
}

boost::posix_time::ptime at(long long seconds_since_epoch)
{
    return boost::posix_time::ptime(boost::gregorian::date(1970, 1, 1))
        + boost::posix_time::seconds(static_cast<long>(seconds_since_epoch));
}

mode_t mode_of(std::string const& path)
{
    struct stat st;
    EXPECT_EQ(0, ::lstat(path.c_str(), &st)) << path;
    return st.st_mode & 07777;
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

TEST_F(Operations, AccessChecksArgumentsThenAsksTheSystem)
{
    for (unsigned mode : {0u, 16u}) {
        EXPECT_THROW(fs::access(u(file), mode), fs::InvalidArgument) << mode;
        EXPECT_THROW(fs::access(upath(u(file)), mode), fs::InvalidArgument) << mode;
    }
    EXPECT_THROW(fs::access(ustring(), 1), fs::InvalidArgument);

    EXPECT_TRUE(fs::access(u(file), 1));
    EXPECT_TRUE(fs::access(upath(u(file)), 1 | 2 | 4));
    EXPECT_TRUE(fs::access(u(sub), 8));
    // A missing file is a failure, not a refusal.
    EXPECT_THROW(fs::access(u(dir / "missing"), 1), fs::PathNotFound);
    EXPECT_THROW(fs::access(u(dir / "dangling"), 2), fs::PathNotFound);
    EXPECT_THROW(fs::access(u(file + "/x"), 1), fs::NotDirectoryError);
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
    // Through a link without perms_symlink, the target changes; with it, a non-link is changed as usual.
    fs::permissions(u(dir / "link"), 0600);
    EXPECT_EQ(0600u, mode_of(file));
    fs::permissions(u(file), 0644 | file_status::perms_symlink);
    EXPECT_EQ(0644u, mode_of(file));
}

TEST_F(Operations, PermissionsRefusals)
{
    ASSERT_EQ(0, ::chmod(file.c_str(), 0640));
    EXPECT_THROW(fs::permissions(u(file), 0600 | file_status::perms_add | file_status::perms_remove),
        fs::InvalidArgument);
    EXPECT_THROW(fs::permissions(upath(u(file)), file_status::perms_unknown | file_status::perms_add),
        fs::InvalidArgument);
    EXPECT_EQ(0640u, mode_of(file));
    // Nothing to change, so nothing to refuse.
    EXPECT_NO_THROW(fs::permissions(upath(), 0600 | file_status::perms_add | file_status::perms_remove));
    EXPECT_THROW(fs::permissions(u(dir / "missing"), 0600), fs::PathNotFound);
    EXPECT_THROW(fs::permissions(u(dir / "dangling"), 0600), fs::PathNotFound);
}

TEST_F(Operations, ALinksOwnModeIsLeftToTheSystem)
{
    mode_t const before = mode_of(dir / "link");
    try {
        fs::permissions(u(dir / "link"), 0600 | file_status::perms_symlink);
        EXPECT_EQ(0600u, mode_of(dir / "link")); // a system that can do it changed the link
    } catch (fs::SystemError const& e) {
        EXPECT_NE(0u, e.get_error_number());
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

    // After 2038 the seconds wrap on the way in and read back wrapped.
    long long const in_2040 = 2208988800LL;
    fs::last_write_time(upath(u(dir / "link")), at(in_2040));
    struct stat raw;
    ASSERT_EQ(0, ::stat(file.c_str(), &raw));
    EXPECT_EQ(in_2040 - 4294967296LL, static_cast<long long>(raw.st_mtime));
    EXPECT_EQ(at(in_2040 - 4294967296LL), fs::status(u(file)).modification_time);
}

TEST_F(Operations, LastWriteTimeRefusals)
{
    EXPECT_THROW(fs::last_write_time(u(file), boost::posix_time::ptime()), fs::InvalidArgument);
    EXPECT_THROW(fs::last_write_time(upath(u(file)), boost::posix_time::ptime(boost::posix_time::pos_infin)),
        fs::InvalidArgument);
    EXPECT_THROW(fs::last_write_time(ustring(), at(0)), fs::InvalidArgument);
    EXPECT_THROW(fs::last_write_time(u(dir / "missing"), at(0)), fs::PathNotFound);
}

TEST(Absolute, JoinsWithoutResolvingAnything)
{
    EXPECT_EQ("/a", utf16_to_utf8(fs::absolute(u"/a", u"b")));
    EXPECT_EQ("/base/a", s8(fs::absolute(upath(u"a"), upath(u"/base"))));
    EXPECT_EQ("/base/../a/./b", utf16_to_utf8(fs::absolute(u"../a/./b", u"/base/")));
    EXPECT_EQ("/a", utf16_to_utf8(fs::absolute(u"a", u"/")));
    EXPECT_TRUE(fs::absolute(upath(), upath(u"/base")).empty());
    EXPECT_THROW(fs::absolute(u"a", u"b"), fs::InvalidArgument);
    EXPECT_THROW(fs::absolute(upath(u"a"), upath(u"b")), fs::InvalidArgument);

    qvtest::scoped_env home("HOME", "/home/someone/");
    EXPECT_EQ("/home/someone/a/b", utf16_to_utf8(fs::absolute(u"a//b/", u"~")));
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
    EXPECT_EQ(file, s8(fs::canonical(upath(u"file.txt"), upath(u(dir.path())))));
    EXPECT_EQ(file, utf16_to_utf8(fs::posix::make_canonical(u"sub//..//file.txt/", u(dir.path() + "//"))));
    std::string const cyrillic = dir.write_file("\xd0\xbf\xd1\x80\xd0\xb8\xd0\xb2\xd0\xb5\xd1\x82", "x");
    ASSERT_EQ(0, ::symlink(cyrillic.c_str(), (dir / "\xe2\x86\x92").c_str()));
    EXPECT_EQ(cyrillic, utf16_to_utf8(fs::canonical(u(dir / "\xe2\x86\x92"))));
    EXPECT_TRUE(fs::canonical(ustring()).empty());

    EXPECT_THROW(fs::canonical(u(dir / "dangling")), fs::PathNotFound);
    EXPECT_THROW(fs::canonical(u(file + "/x")), fs::PathNotFound);
    EXPECT_THROW(fs::canonical(u"file.txt", u"relative"), fs::InvalidArgument);
}

TEST_F(Operations, ReadSymlinkGivesTheStoredTarget)
{
    ASSERT_EQ(0, ::symlink("../relative//target", (dir / "rel").c_str()));
    EXPECT_EQ(dir / "nowhere", s8(fs::read_symlink(upath(u(dir / "dangling")))));
    // The text form gives the target untouched; a upath result is cleaned like any other.
    EXPECT_EQ("../relative//target", utf16_to_utf8(fs::read_symlink(u(dir / "rel"))));
    EXPECT_EQ("../relative/target", s8(fs::read_symlink(upath(u(dir / "rel")))));
    EXPECT_TRUE(fs::read_symlink(ustring()).empty());

    qvtest::scoped_env home("HOME", dir.path());
    EXPECT_EQ(file, utf16_to_utf8(fs::read_symlink(u"~/link")));

    EXPECT_THROW(fs::read_symlink(u(file)), fs::InvalidArgument);
    EXPECT_THROW(fs::read_symlink(u(dir / "missing")), fs::PathNotFound);
}

TEST_F(Operations, ReadSymlinkReadsTargetsOfAnyLength)
{
    // 1024 bytes fill the first buffer exactly, so only another try tells that it is whole.
    for (std::size_t length : {1023u, 1024u, 1025u, 2048u, 3000u}) {
        std::string target;
        while (target.size() < length)
            target += "/" + std::string(200, 'a');
        target.resize(length);
        std::string const link = dir / ("long" + std::to_string(length));
        ASSERT_EQ(0, ::symlink(target.c_str(), link.c_str()));
        EXPECT_EQ(target, fs::posix::readlink(link)) << length;
        EXPECT_EQ(target, utf16_to_utf8(fs::read_symlink(u(link)))) << length;
    }

    ASSERT_EQ(0, ::symlink("bad\xff name", (dir / "raw").c_str()));
    EXPECT_EQ("bad\xff name", fs::posix::readlink(dir / "raw"));
    EXPECT_EQ("bad\xef\xbf\xbd name", utf16_to_utf8(fs::read_symlink(u(dir / "raw"))));
}

TEST_F(Operations, EquivalentComparesFilesNotNames)
{
    EXPECT_TRUE(fs::equivalent(u(file), u(dir / "link")));
    EXPECT_TRUE(fs::equivalent(upath(u(sub + "/../file.txt")), upath(u(file))));
    EXPECT_FALSE(fs::equivalent(u(file), u(sub)));
    EXPECT_FALSE(fs::equivalent(u(file), u(dir / "missing")));
    EXPECT_THROW(fs::equivalent(u(dir / "missing"), u(dir / "dangling")), fs::PathNotFound);

    EXPECT_THROW(fs::equivalent(ustring(), ustring()), fs::InvalidArgument);
    EXPECT_THROW(fs::equivalent(upath(), upath()), fs::InvalidArgument);
    EXPECT_FALSE(fs::equivalent(ustring(), u"x"));

    // Neither side is cleaned: "~/file.txt" is a relative name that does not exist.
    qvtest::scoped_env home("HOME", dir.path());
    EXPECT_FALSE(fs::equivalent(u"~/file.txt", u(file)));
}

TEST_F(Operations, FullPathnameResolvesOrIsEmpty)
{
    EXPECT_EQ(file, fs::get_full_pathname(dir / "sub/../link"));
    EXPECT_EQ("", fs::get_full_pathname(dir / "missing"));
    EXPECT_EQ("", fs::get_full_pathname(dir / "dangling"));
}

} // namespace
