#include <qvi18n/filesystem/detail/pattern.hpp>
#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/filesystem/exceptions.hpp>

#include "qvtest/child.hpp"
#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"
#include "qvtest/text.hpp"

#include <gtest/gtest.h>

#include <unicode/ustring.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::file_status;
using fs::upath;
using fs::upath_directory_iterator;

using qvtest::u;

// What a name from the disk should read as, by ICU directly: malformed bytes become U+FFFD.
ustring expected_text(std::string const& bytes)
{
    std::vector<UChar> buffer(bytes.size() * 2 + 1);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(buffer.data(), static_cast<int32_t>(buffer.size()), &length, bytes.data(),
        static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr, &status);
    EXPECT_FALSE(U_FAILURE(status));
    return ustring(buffer.begin(), buffer.begin() + length);
}

std::vector<ustring> names_of(upath_directory_iterator it)
{
    std::vector<ustring> names;
    for (; it != upath_directory_iterator(); ++it)
        names.push_back(it->filename());
    std::sort(names.begin(), names.end());
    return names;
}

void touch(std::string const& path)
{
    int const fd = ::open(path.c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_LE(0, fd) << path;
    ::close(fd);
}

TEST(DirectoryIterator, ListsWhatReaddirListsInMixedScriptsAndBrokenUtf8)
{
    qvtest::scoped_temp_dir const dir;
    qvtest::random_text random(20261123);
    std::set<std::string> made;
    while (made.size() < 3000) {
        std::string name;
        if (made.size() % 5 == 0) {
            name = random.bytes(1 + random.next() % 40); // mostly not UTF-8
        } else {
            name = qvtest::utf16_to_utf8(random.unicode(1 + random.next() % 30));
        }
        name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '/' || c == '\0'; }),
            name.end());
        if (name.empty() || name == "." || name == ".." || name.size() > 255 || !made.insert(name).second)
            continue;
        switch (made.size() % 7) {
        case 0:
            ASSERT_EQ(0, ::mkdir((dir / name).c_str(), 0755));
            break;
        case 1:
            ASSERT_EQ(0, ::symlink(dir.path().c_str(), (dir / name).c_str()));
            break;
        default:
            touch(dir / name);
        }
    }

    // readdir itself, as the reference; each name once, with its type.
    std::vector<std::pair<ustring, std::uint32_t>> expected;
    DIR* const handle = ::opendir(dir.path().c_str());
    ASSERT_NE(nullptr, handle);
    while (struct dirent const* entry = ::readdir(handle)) {
        struct stat st;
        ASSERT_EQ(0, ::lstat((dir / entry->d_name).c_str(), &st));
        expected.emplace_back(expected_text(entry->d_name), st.st_mode & S_IFMT);
    }
    ::closedir(handle);

    std::vector<std::pair<ustring, std::uint32_t>> listed;
    std::size_t broken = 0;
    for (upath_directory_iterator it(upath(u(dir.path()))), end; it != end; ++it) {
        listed.emplace_back(it->filename(), it->type());
        // Status comes from the name's own bytes, also where its text has lost them.
        if (it->filename().find(u'\xfffd') != ustring::npos) {
            ++broken;
            EXPECT_EQ(it->type(), it->symlink_status().type);
            // Through the text, U+FFFD would name a file that is not there.
            EXPECT_NE(file_status::file_not_found, it->status().type) << qvtest::hex_dump(it->filename());
        }
    }
    EXPECT_GT(broken, 100u);
    std::sort(expected.begin(), expected.end());
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(3002u, listed.size());
    EXPECT_TRUE(expected == listed);
}

TEST(DirectoryIterator, EmptyDirectoryEndAndSharedCopies)
{
    qvtest::scoped_temp_dir const dir;
    EXPECT_EQ((std::vector<ustring>{u".", u".."}), names_of(upath_directory_iterator(u(dir.path() + "//"))));

    upath_directory_iterator const end;
    EXPECT_THROW(*end, fs::InvalidOperation);
    EXPECT_THROW(end->filename(), fs::InvalidOperation);
    EXPECT_TRUE(upath_directory_iterator(upath()) == end);
    EXPECT_TRUE(upath_directory_iterator(ustring()) == end);

    upath_directory_iterator a(upath(u(dir.path())));
    upath_directory_iterator b = a;
    ++b;
    EXPECT_TRUE(a == b);
    ++a;
    EXPECT_TRUE(a == end);
    EXPECT_FALSE(b == end); // b learns of the end at its own increment
    ++b;
    ++a; // the end stays the end
    EXPECT_TRUE(a == end && b == end);
}

TEST(DirectoryIterator, PostIncrementHandsBackTheNameItLeaves)
{
    qvtest::scoped_temp_dir const dir;
    std::vector<ustring> names;
    for (upath_directory_iterator it(u(dir.path())); it != upath_directory_iterator();)
        names.push_back((*it++).filename());
    std::sort(names.begin(), names.end());
    EXPECT_EQ((std::vector<ustring>{u".", u".."}), names);
}

TEST(DirectoryIterator, EntryAnswersFromTheRecordAndTheDisk)
{
    qvtest::scoped_temp_dir const dir;
    std::string const sub = dir.make_dir("sub");
    std::string const file = dir.write_file("sub/ファイル", "12345");
    ASSERT_EQ(0, ::symlink(sub.c_str(), (sub + "/to-dir").c_str()));
    ASSERT_EQ(0, ::symlink("nowhere", (sub + "/dangling").c_str()));

    std::size_t seen = 0;
    for (upath_directory_iterator it(u(sub)), end; it != end; ++it) {
        fs::upath_directory_entry const& e = *it;
        EXPECT_EQ(u(sub), e.pathname());
        EXPECT_EQ(u(sub) + u"/" + e.filename(), e.full_pathname());
        EXPECT_EQ(ustring(), e.alternative_filename());
        if (e.filename() == u"to-dir") {
            EXPECT_EQ(file_status::symlink_file, e.type());
            EXPECT_EQ(file_status::directory_file, e.target_type());
            EXPECT_EQ(file_status::directory_file, e.target_type_without_validation());
            ++seen;
        } else if (e.filename() == u"dangling") {
            EXPECT_EQ(file_status::symlink_file, e.type());
            EXPECT_EQ(file_status::file_not_found, e.target_type());
            EXPECT_EQ(file_status::file_not_found, e.status().type);
            EXPECT_EQ(file_status::symlink_file, e.symlink_status().type);
            ++seen;
        } else if (e.filename() == u"ファイル") {
            EXPECT_EQ(file_status::regular_file, e.type());
            EXPECT_EQ(5u, e.status().size);
            // Removed after it was read: a missing file, not a failure.
            ASSERT_EQ(0, ::unlink(file.c_str()));
            EXPECT_EQ(file_status::file_not_found, e.status().type);
            ++seen;
        }
    }
    EXPECT_EQ(3u, seen);

    // At the root the separator is not doubled.
    for (upath_directory_iterator it(u"/"), end; it != end; ++it) {
        EXPECT_EQ(u"/" + it->filename(), it->full_pathname());
        break;
    }
}

TEST(DirectoryIterator, FailuresAreTyped)
{
    qvtest::scoped_temp_dir const dir;
    std::string const file = dir.write_file("file", "x");
    EXPECT_THROW(upath_directory_iterator(u(dir / "missing")), fs::PathNotFound);
    EXPECT_THROW(upath_directory_iterator(upath(u(file))), fs::NotDirectoryError);
    EXPECT_THROW(upath_directory_iterator(u(dir / std::string(256, 'n'))), fs::FileNameTooLarge);
    ASSERT_EQ(0, ::symlink("loop", (dir / "loop").c_str()));
    try {
        upath_directory_iterator it(u(dir / "loop"));
        ADD_FAILURE() << "a symlink loop was listed";
    } catch (fs::SystemError const& e) {
        EXPECT_EQ(static_cast<unsigned>(ELOOP), e.get_error_number());
    }

    // The wildcard is checked before the directory is opened.
    EXPECT_THROW(upath_directory_iterator(u(dir / "missing"), fs::filename_pattern_context(u"a/b")),
        fs::InvalidArgument);
    EXPECT_THROW(upath_directory_iterator(u(dir / "missing"), fs::filename_pattern_context(u"")),
        fs::InvalidArgument);
    EXPECT_THROW(upath_directory_iterator(u(dir / "missing"), fs::filename_pattern_context(u"*")),
        fs::PathNotFound);
}

TEST(DirectoryIterator, ADirectoryRemovedWhileListedIsPathNotFound)
{
    qvtest::scoped_temp_dir const dir;
    std::string const doomed = dir.make_dir("doomed");
    // Enough long names that the listing takes several reads from the system.
    for (int i = 0; i < 2000; ++i)
        touch(doomed + "/" + std::string(60, 'n') + std::to_string(i));
    upath_directory_iterator it(u(doomed));
    DIR* const handle = ::opendir(doomed.c_str());
    ASSERT_NE(nullptr, handle);
    while (struct dirent const* entry = ::readdir(handle))
        if (entry->d_name[0] == 'n')
            ::unlink((doomed + "/" + entry->d_name).c_str());
    ::closedir(handle);
    ASSERT_EQ(0, ::rmdir(doomed.c_str()));
    EXPECT_THROW(
        {
            for (upath_directory_iterator const end; it != end; ++it) { }
        },
        fs::PathNotFound);
}

// A pattern given as a regular expression, for the one that does not compile.
class raw_pattern : public fs::pattern_string_context {
public:
    raw_pattern(ustring const& name, ustring const& pattern)
        : pattern_string_context(name, pattern)
    { }
};

class Wildcard : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (char const* name : {"a.txt", "b.TXT", "A.TXT", "a?c", "abc", "[x]", "x", "caf\xc3\xa9.txt",
                 "cafe\xcc\x81.txt", "\xff.txt"})
            touch(dir / name);
    }

    std::vector<ustring> matching(ustring const& wildcard, bool tolerate = false)
    {
        return names_of(upath_directory_iterator(u(dir.path()), fs::filename_pattern_context(wildcard), tolerate));
    }

    // tmpfs, a volume that takes names exactly as they are.
    qvtest::scoped_env tmpdir{"TMPDIR", "/dev/shm"};
    qvtest::scoped_temp_dir dir;
};

TEST_F(Wildcard, MatchesByCodeUnitOnAnExactVolume)
{
    EXPECT_EQ((std::vector<ustring>{u"a.txt", u"cafe\u0301.txt", u"caf\u00e9.txt", u"\xfffd.txt"}),
        matching(u"*.txt"));
    EXPECT_EQ((std::vector<ustring>{u"a?c"}), matching(u"a?c"));
    EXPECT_EQ((std::vector<ustring>{u"[x]"}), matching(u"[x]"));
    EXPECT_EQ((std::vector<ustring>{u"caf\u00e9.txt"}), matching(u"caf\u00e9*"));
    EXPECT_EQ((std::vector<ustring>{u"A.TXT", u"b.TXT"}), matching(u"*.TXT"));
    EXPECT_EQ((std::vector<ustring>{u"a.txt", u"a?c", u"abc"}), matching(u"a*"));
    // "." and ".." come out like any name that matches.
    EXPECT_EQ(12u, matching(u".").size());
    EXPECT_EQ(12u, matching(u"**").size());
}

// A case-insensitive volume needs a mount: a casefolding tmpfs (a kernel with Unicode support)
// in a private mount namespace of a forked child.
TEST(WildcardCaseInsensitive, MatchesAsTheVolumeComparesNames)
{
    qvtest::scoped_temp_dir const dir;
    std::string const mount_point = dir.make_dir("cf");
    std::string const folded = mount_point + "/d";
    auto const mount_casefolding = [&] {
        if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
            || ::mount("tmpfs", mount_point.c_str(), "tmpfs", 0, "casefold") != 0)
            return false;
        int flags = 0;
        int const fd = (::mkdir(folded.c_str(), 0755), ::open(folded.c_str(), O_RDONLY | O_DIRECTORY));
        if (fd < 0 || ::ioctl(fd, FS_IOC_GETFLAGS, &flags) != 0
            || (flags |= FS_CASEFOLD_FL, ::ioctl(fd, FS_IOC_SETFLAGS, &flags)) != 0)
            return false;
        ::close(fd);
        touch(folded + "/A.TXT");
        touch(folded + "/b.txt");
        return true;
    };
    int const code = qvtest::run_in_child(mount_casefolding, {[&] {
        std::vector<ustring> const names
            = names_of(upath_directory_iterator(u(folded), fs::filename_pattern_context(u"*.txt")));
        return names == std::vector<ustring>{u"A.TXT", u"b.txt"};
    }});
    if (code == qvtest::child_not_prepared)
        GTEST_SKIP() << "no case-insensitive volume can be mounted here (needs CAP_SYS_ADMIN and a "
                        "kernel whose tmpfs folds case)";
    EXPECT_EQ(0, code);
}

TEST_F(Wildcard, ADerivedContextMayFillTheFieldsItself)
{
    struct filled : fs::pattern_string_context {
        filled()
        {
            file_name = u"*.TXT";
            pattern = fs::detail::generate_pattern_from_filename(file_name, fs::zorbel_pattern_string_generator());
        }
    };
    EXPECT_EQ((std::vector<ustring>{u"A.TXT", u"b.TXT"}), names_of(upath_directory_iterator(u(dir.path()), filled())));
    // A literal directory picks the text form.
    EXPECT_THROW(upath_directory_iterator(u"/nonexistent-qv/d", filled()), fs::PathNotFound);
}

TEST_F(Wildcard, NoMatchEndsAtTheFirstIncrement)
{
    upath_directory_iterator it(u(dir.path()), fs::filename_pattern_context(u"*.none"));
    upath_directory_iterator const end;
    ASSERT_TRUE(it != end);
    ++it;
    EXPECT_TRUE(it == end);
}

TEST_F(Wildcard, ABadPatternIsRefusedUnlessTolerated)
{
    raw_pattern const bad(u"x", u"[unclosed");
    EXPECT_THROW(upath_directory_iterator(u(dir.path()), bad), fs::InvalidArgument);
    upath_directory_iterator it(u(dir.path()), bad, true);
    ++it;
    EXPECT_TRUE(it == upath_directory_iterator());
    EXPECT_THROW(upath_directory_iterator(u(dir.path()), raw_pattern(u"x", u"")), fs::InvalidArgument);
}

} // namespace
