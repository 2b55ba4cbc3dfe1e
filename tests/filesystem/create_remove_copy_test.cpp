#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>

#include "qvtest/scoped_temp_dir.hpp"
#include "qvtest/text.hpp"
#include <qvi18n/filesystem/posix/operations.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::file_status;
using fs::upath;

using qvtest::u;

bool on_disk(std::string const& path)
{
    struct stat st;
    return ::lstat(path.c_str(), &st) == 0;
}

mode_t mode_of(std::string const& path)
{
    struct stat st;
    EXPECT_EQ(0, ::lstat(path.c_str(), &st)) << path;
    return st.st_mode;
}

class Modify : public ::testing::Test {
protected:
    void SetUp() override { old_umask = ::umask(0); }
    void TearDown() override { ::umask(old_umask); }

    mode_t old_umask = 0;
    qvtest::scoped_temp_dir dir;
};

TEST_F(Modify, CreateDirectory)
{
    fs::create_directory(u(dir / "new"));
    EXPECT_EQ(S_IFDIR | 0775u, mode_of(dir / "new"));
    fs::create_directory(upath(u(dir / "日本語")));
    EXPECT_TRUE(on_disk(dir / "日本語"));

    EXPECT_THROW(fs::create_directory(u(dir / "new")), fs::FileExistsError);
    EXPECT_THROW(fs::create_directory(u("/")), fs::FileExistsError);
    EXPECT_THROW(fs::create_directory(u(dir / "no/parent")), fs::PathNotFound);
    EXPECT_NO_THROW(fs::create_directory(ustring()));

    fs::create_directory(u(dir / std::string(255, 'n')));
    EXPECT_TRUE(on_disk(dir / std::string(255, 'n')));
    EXPECT_THROW(fs::create_directory(u(dir / std::string(256, 'n'))), fs::FileNameTooLarge);
    // Past PATH_MAX in all, though each element is short.
    std::string too_long = dir.path();
    while (too_long.size() <= PATH_MAX)
        too_long += "/" + std::string(200, 'p');
    EXPECT_THROW(fs::create_directory(u(too_long)), fs::FileNameTooLarge);
    EXPECT_THROW(fs::create_directories(u(too_long)), fs::FileNameTooLarge);
    EXPECT_THROW(fs::copy_file(u(dir.write_file("f", "x")), u(too_long)), fs::FileNameTooLarge);
    EXPECT_THROW(fs::remove(u(too_long)), fs::FileNameTooLarge);
}

TEST_F(Modify, CreateDirectoriesMakesParentsButTheLastMustBeNew)
{
    fs::create_directories(u(dir / "a//b/c/"));
    EXPECT_TRUE(on_disk(dir / "a/b/c"));
    fs::create_directories(upath(u(dir / "a/b/d")));
    EXPECT_TRUE(on_disk(dir / "a/b/d"));
    EXPECT_THROW(fs::create_directories(u(dir / "a/b")), fs::FileExistsError);
    EXPECT_THROW(fs::create_directories(u("/")), fs::FileExistsError);

    // A climbing element is refused before anything is made; dots inside a name are a name.
    EXPECT_THROW(fs::create_directories(u(dir / "x/../y")), fs::InvalidArgument);
    EXPECT_THROW(fs::create_directories(upath(u(dir / "x/.."))), fs::InvalidArgument);
    EXPECT_FALSE(on_disk(dir / "x"));
    fs::create_directories(u(dir / "x..y/..z/w.."));
    EXPECT_TRUE(on_disk(dir / "x..y/..z/w.."));

    qvtest::scoped_temp_dir const other;
    std::string const file = other.write_file("file", "x");
    EXPECT_THROW(fs::create_directories(u(file + "/sub")), fs::NotDirectoryError);
    ASSERT_EQ(0, ::symlink("loop", (dir / "loop").c_str()));
    try {
        fs::create_directories(u(dir / "loop/sub"));
        ADD_FAILURE() << "no exception through a symlink loop";
    } catch (fs::SystemError const& e) {
        EXPECT_EQ(static_cast<unsigned>(ELOOP), e.get_error_number());
    }
}

TEST_F(Modify, Symlinks)
{
    std::string const target = dir.write_file("target", "x");
    fs::create_symlink(u(target), u(dir / "link"), file_status::file_type_auto);
    EXPECT_TRUE(S_ISLNK(mode_of(dir / "link")));
    fs::create_symlink(upath(u("relative/target")), upath(u(dir / "dir-link")), file_status::directory_file);
    EXPECT_EQ(u("relative/target"), fs::read_symlink(u(dir / "dir-link")));

    EXPECT_THROW(fs::create_symlink(u(target), u(dir / "l2"), file_status::symlink_file), fs::InvalidArgument);
    EXPECT_THROW(fs::create_symlink(ustring(), u(dir / "l2"), file_status::regular_file), fs::InvalidArgument);
    EXPECT_FALSE(on_disk(dir / "l2"));
    EXPECT_THROW(fs::create_symlink(u(target), u(dir / "link"), file_status::file_type_auto), fs::FileExistsError);
    EXPECT_THROW(fs::create_symlink(u(dir / "x"), u(target), file_status::file_type_auto), fs::FileExistsError);
    // A dangling link passes the stat and is caught by symlink itself.
    EXPECT_THROW(fs::create_symlink(u(target), u(dir / "dir-link"), file_status::file_type_auto), fs::FileExistsError);
    EXPECT_EQ("x", qvtest::read_file(target));
}

TEST_F(Modify, Rename)
{
    std::string const from = dir.write_file("from", "content");
    fs::rename(u(from), u(dir / "to"));
    EXPECT_FALSE(on_disk(from));
    EXPECT_EQ("content", qvtest::read_file(dir / "to"));

    fs::rename(ustring(), u(dir / "to"));
    fs::rename(upath(u(dir / "to")), upath());
    EXPECT_TRUE(on_disk(dir / "to"));

    EXPECT_THROW(fs::rename(u(dir / "missing"), u(dir / "x")), fs::PathNotFound);
    dir.write_file("full/inside", "x");
    dir.make_dir("empty");
    EXPECT_THROW(fs::rename(u(dir / "empty"), u(dir / "full")), fs::DirectoryNotEmpty);
    EXPECT_THROW(fs::rename(u(dir / "to"), u(dir / "full")), fs::FileIsDirectory);
    EXPECT_THROW(fs::rename(u(dir / "full"), u(dir / "to")), fs::NotDirectoryError);
    EXPECT_EQ("content", qvtest::read_file(dir / "to"));
}

TEST_F(Modify, RenameAcrossFileSystemsIsRefusedAndKeepsTheSource)
{
    struct stat here, shm;
    if (::stat(dir.path().c_str(), &here) != 0 || ::stat("/dev/shm", &shm) != 0 || here.st_dev == shm.st_dev)
        GTEST_SKIP() << "no second file system at /dev/shm beside " << dir.path();
    std::string const from = dir.write_file("from", "content");
    std::string const to = "/dev/shm/qvi18n-rename-" + std::to_string(::getpid());
    try {
        fs::rename(u(from), u(to));
        ::unlink(to.c_str());
        ADD_FAILURE() << "rename across file systems succeeded";
    } catch (fs::SystemError const& e) {
        EXPECT_EQ(static_cast<unsigned>(EXDEV), e.get_error_number());
        EXPECT_EQ(u(from), e.get_path());
    }
    EXPECT_EQ("content", qvtest::read_file(from));
    EXPECT_FALSE(on_disk(to));
}

TEST_F(Modify, RemoveTakesFilesLinksAndEmptyDirectoriesOnly)
{
    std::string const file = dir.write_file("file", "x");
    std::string const target = dir.write_file("target", "x");
    ASSERT_EQ(0, ::symlink(target.c_str(), (dir / "link").c_str()));
    dir.write_file("full/inside", "x");
    dir.make_dir("empty");
    ASSERT_EQ(0, ::mkfifo((dir / "fifo").c_str(), 0600));

    fs::remove(u(file));
    fs::remove(upath(u(dir / "link")));
    fs::remove(u(dir / "empty/"));
    EXPECT_FALSE(on_disk(file) || on_disk(dir / "link") || on_disk(dir / "empty"));
    EXPECT_TRUE(on_disk(target));

    EXPECT_THROW(fs::remove(u(dir / "full")), fs::DirectoryNotEmpty);
    EXPECT_THROW(fs::remove(u(dir / "fifo")), fs::InvalidArgument);
    EXPECT_THROW(fs::remove(u(dir / "missing")), fs::PathNotFound);
    EXPECT_NO_THROW(fs::remove(ustring()));
    EXPECT_TRUE(on_disk(dir / "full/inside") && on_disk(dir / "fifo"));
}

TEST_F(Modify, RemoveAllRemovesLinksNotWhatTheyPointTo)
{
    qvtest::scoped_temp_dir const outside;
    std::string const kept = outside.write_file("kept/file", "x");
    dir.write_file("tree/a/b/c", "x");
    dir.write_file("tree/名前/\xff\xfe", "x"); // a name that is not UTF-8 goes like any other
    ASSERT_EQ(0, ::symlink((outside / "kept").c_str(), (dir / "tree/a/out").c_str()));
    ASSERT_EQ(0, ::symlink("loop", (dir / "tree/loop").c_str()));
    fs::remove_all(u(dir / "tree"));
    EXPECT_FALSE(on_disk(dir / "tree"));
    EXPECT_EQ("x", qvtest::read_file(kept));

    std::string const file = dir.write_file("file", "x");
    fs::remove_all(upath(u(file)));
    EXPECT_FALSE(on_disk(file));
    EXPECT_THROW(fs::remove_all(u(dir / "missing")), fs::PathNotFound);

    // A pipe inside stops the removal, and what it did not reach stays.
    dir.write_file("mixed/z", "x");
    ASSERT_EQ(0, ::mkfifo((dir / "mixed/fifo").c_str(), 0600));
    EXPECT_THROW(fs::remove_all(u(dir / "mixed")), fs::InvalidArgument);
    EXPECT_TRUE(on_disk(dir / "mixed/fifo"));
}

TEST_F(Modify, RemoveAllOfATreeNearThePathLimit)
{
    // 19 levels of 200-byte names: the deepest path is a little under PATH_MAX.
    std::string deepest = dir.path();
    std::string const name(200, 'd');
    while (deepest.size() + 1 + name.size() < PATH_MAX - 1 - 200) {
        deepest += "/" + name;
        ASSERT_EQ(0, ::mkdir(deepest.c_str(), 0700)) << deepest.size();
    }
    int const fd = ::open((deepest + "/f").c_str(), O_CREAT | O_WRONLY, 0600);
    ASSERT_LE(0, fd);
    ::close(fd);
    fs::remove_all(u(dir / name));
    EXPECT_FALSE(on_disk(dir / name));
}

class Copy : public Modify {
protected:
    void SetUp() override
    {
        Modify::SetUp();
        source = dir.write_file("source", "new content");
        ASSERT_EQ(0, ::chmod(source.c_str(), 0640));
        existing = dir.write_file("existing", "old content");
    }

    std::string source;
    std::string existing;
};

TEST_F(Copy, CopyFileKeepsContentAndMode)
{
    fs::copy_file(u(source), u(dir / "copy"));
    EXPECT_EQ("new content", qvtest::read_file(dir / "copy"));
    EXPECT_EQ(S_IFREG | 0640u, mode_of(dir / "copy"));

    EXPECT_THROW(fs::copy_file(u(source), u(existing)), fs::FileExistsError);
    // Values that are neither option mean "fail if it exists".
    EXPECT_THROW(fs::copy_file(u(source), u(existing), static_cast<fs::copy_option>(2)), fs::FileExistsError);
    EXPECT_THROW(fs::copy_file(u(source), u(existing), 7), fs::FileExistsError);
    EXPECT_THROW(fs::copy_file(u(source), u(existing), -1), fs::FileExistsError);
    EXPECT_EQ("old content", qvtest::read_file(existing));
    fs::copy_file(u(source), u(dir / "numbered"), 0);
    fs::copy_file(u(existing), u(dir / "numbered"), 1);
    EXPECT_EQ("old content", qvtest::read_file(dir / "numbered"));

    fs::copy_file(upath(u(source)), upath(u(existing)), fs::overwrite_if_exists);
    EXPECT_EQ("new content", qvtest::read_file(existing));
    EXPECT_EQ(S_IFREG | 0640u, mode_of(existing));

    // Overwriting through a link replaces the file it points to and keeps the link.
    std::string const target = dir.write_file("target", "old");
    ASSERT_EQ(0, ::symlink(target.c_str(), (dir / "link").c_str()));
    fs::copy_file(u(source), u(dir / "link"), fs::overwrite_if_exists);
    EXPECT_TRUE(S_ISLNK(mode_of(dir / "link")));
    EXPECT_EQ("new content", qvtest::read_file(target));
}

TEST_F(Copy, CopyFileOntoItselfLeavesItIntact)
{
    ASSERT_EQ(0, ::link(source.c_str(), (dir / "hard").c_str()));
    ASSERT_EQ(0, ::symlink(source.c_str(), (dir / "soft").c_str()));
    for (std::string const& to : std::vector<std::string>{source, dir / "hard", dir / "soft", dir.path() + "/./source"}) {
        for (fs::copy_option option : {fs::fail_if_exists, fs::overwrite_if_exists}) {
            EXPECT_THROW(fs::copy_file(u(source), u(to), option), fs::FileExistsError) << to;
            EXPECT_THROW(fs::copy(u(to), u(source)), fs::FileExistsError) << to;
        }
    }
    EXPECT_EQ("new content", qvtest::read_file(source));
}

TEST_F(Copy, CopyFileFailuresLeaveNoDestination)
{
    EXPECT_THROW(fs::copy_file(u(dir / "missing"), u(dir / "copy")), fs::PathNotFound);
    EXPECT_THROW(fs::copy_file(u(source), u(dir / "no/dir/copy")), fs::PathNotFound);
    dir.make_dir("sub");
    EXPECT_THROW(fs::copy_file(u(dir / "sub"), u(dir / "copy")), fs::FsysExceptionBase);
    EXPECT_THROW(fs::copy_file(u(source), u(dir / "sub"), fs::overwrite_if_exists), fs::FsysExceptionBase);
    EXPECT_THROW(fs::copy_file(u(source), ustring()), fs::InvalidArgument);
    EXPECT_THROW(fs::copy_file(upath(), upath(u(dir / "copy"))), fs::InvalidArgument);
    EXPECT_FALSE(on_disk(dir / "copy"));
    EXPECT_THROW(fs::copy_file(u(source), u(dir / std::string(256, 'c'))), fs::FileNameTooLarge);
    fs::copy_file(u(source), u(dir / std::string(255, 'c')));
    EXPECT_EQ("new content", qvtest::read_file(dir / std::string(255, 'c')));
}

TEST_F(Copy, CopyDirectoryAndSymlink)
{
    std::string const from = dir.make_dir("from");
    dir.write_file("from/inside", "x");
    ASSERT_EQ(0, ::chmod(from.c_str(), 0750));
    fs::copy_directory(u(from), u(dir / "to"));
    EXPECT_EQ(S_IFDIR | 0750u, mode_of(dir / "to"));
    EXPECT_FALSE(on_disk(dir / "to/inside"));
    EXPECT_THROW(fs::copy_directory(u(from), u(dir / "to")), fs::FileExistsError);
    EXPECT_THROW(fs::copy_directory(u(from), ustring()), fs::InvalidArgument);

    ASSERT_EQ(0, ::symlink("~/somewhere", (dir / "link").c_str()));
    fs::copy_symlink(u(dir / "link"), u(dir / "link2"));
    EXPECT_EQ("~/somewhere", fs::posix::readlink(dir / "link2"));
    EXPECT_THROW(fs::copy_symlink(u(dir / "link"), u(dir / "link2")), fs::FileExistsError);
    EXPECT_THROW(fs::copy_symlink(u(source), u(dir / "link3")), fs::InvalidArgument);

    fs::copy(u(source), u(dir / "copied"));
    EXPECT_EQ("new content", qvtest::read_file(dir / "copied"));
    fs::copy(u(from), u(dir / "copied-dir"));
    EXPECT_TRUE(S_ISDIR(mode_of(dir / "copied-dir")));
    EXPECT_THROW(fs::copy(u(source), u(existing)), fs::FileExistsError);
    EXPECT_THROW(fs::copy(u(source), ustring()), fs::InvalidArgument);
    EXPECT_EQ("old content", qvtest::read_file(existing));
}

} // namespace
