#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"
#include <qvi18n/filesystem/posix/operations.hpp>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/function.hpp>
#include <gtest/gtest.h>

#include "qvtest/text.hpp"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>


namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::file_status;
using fs::upath;

using qvtest::u;

boost::posix_time::ptime at(long long seconds_since_epoch)
{
    return boost::posix_time::ptime(boost::gregorian::date(1970, 1, 1))
        + boost::posix_time::seconds(static_cast<long>(seconds_since_epoch));
}

void set_times(std::string const& path, time_t atime, time_t mtime)
{
    struct timespec times[2] = {{atime, 0}, {mtime, 0}};
    ASSERT_EQ(0, ::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW)) << path;
}

class Status : public ::testing::Test {
protected:
    void SetUp() override
    {
        file = dir.write_file("file.txt", "0123456789");
        ASSERT_EQ(0, ::symlink(file.c_str(), (dir / "link").c_str()));
        ASSERT_EQ(0, ::symlink((dir / "nowhere").c_str(), (dir / "dangling").c_str()));
        ASSERT_EQ(0, ::mkfifo((dir / "fifo").c_str(), 0600));
    }

    qvtest::scoped_temp_dir dir;
    std::string file;
};

TEST_F(Status, ReportsTypeModeSizeAndTimes)
{
    ASSERT_EQ(0, ::chmod(file.c_str(), 04751));
    set_times(file, 1000000000, 1234567890);

    file_status const st = fs::status(upath(u(file)));
    EXPECT_EQ(file_status::regular_file, st.type);
    EXPECT_EQ(04751u, st.permissions);
    EXPECT_EQ(10u, st.size);
    EXPECT_EQ(at(1000000000), st.access_time);
    EXPECT_EQ(at(1234567890), st.modification_time);
    EXPECT_FALSE(st.change_time.is_special());

    EXPECT_EQ(file_status::directory_file, fs::status(u(dir.path())).type);
    EXPECT_EQ(file_status::fifo_file, fs::status(u(dir / "fifo")).type);
    EXPECT_EQ(file_status::character_file, fs::status(u"/dev/null").type);
}

TEST_F(Status, FollowsLinksUnlessAskedForTheLinkItself)
{
    EXPECT_EQ(10u, fs::status(u(dir / "link")).size);
    EXPECT_EQ(file_status::symlink_file, fs::symlink_status(upath(u(dir / "link"))).type);

    // A dangling link: its target is missing, the link itself is there.
    EXPECT_EQ(file_status::file_not_found, fs::status(u(dir / "dangling")).type);
    EXPECT_FALSE(fs::exists(u(dir / "dangling")));
    EXPECT_EQ(file_status::symlink_file, fs::symlink_status(u(dir / "dangling")).type);
    EXPECT_EQ(file_status::symlink_file, fs::posix::get_file_type(dir / "dangling"));
}

TEST_F(Status, MissingFilesAreAResultNotAFailure)
{
    for (file_status const& st :
        {fs::status(u(dir / "missing")), fs::symlink_status(upath(u(dir / "missing"))), fs::status(ustring()),
            fs::symlink_status(upath())}) {
        EXPECT_EQ(file_status::file_not_found, st.type);
        EXPECT_EQ(file_status::no_perms, st.permissions);
        EXPECT_TRUE(st.access_time.is_not_a_date_time());
        EXPECT_TRUE(st.modification_time.is_not_a_date_time());
        EXPECT_TRUE(st.change_time.is_not_a_date_time());
        EXPECT_EQ(0u, st.size);
    }
    EXPECT_FALSE(fs::exists(u(dir / "missing")));
    EXPECT_FALSE(fs::exists(ustring()));
    EXPECT_FALSE(fs::exists(upath()));
    // The path-itself query has no missing-file answer.
    EXPECT_THROW(fs::posix::get_file_type(dir / "missing"), fs::PathNotFound);
}

TEST_F(Status, AFileUsedAsADirectoryIsAnErrorForStatusButNotForExists)
{
    ustring const through_file = u(file + "/x");
    EXPECT_FALSE(fs::exists(through_file));
    EXPECT_FALSE(fs::exists(upath(through_file)));
    EXPECT_THROW(fs::symlink_status(upath(through_file)), fs::NotDirectoryError);
    EXPECT_THROW(fs::status_express_light(through_file), fs::NotDirectoryError);
    try {
        fs::status(through_file);
        ADD_FAILURE() << "no exception";
    } catch (fs::NotDirectoryError const& e) {
        // Only SystemError carries a path.
        EXPECT_TRUE(e.get_path().empty());
        EXPECT_EQ(0u, e.get_error_number());
    }
}

TEST_F(Status, OtherSystemFailuresRaiseEvenFromExists)
{
    // A loop of links is neither there nor missing.
    ASSERT_EQ(0, ::symlink((dir / "loop_b").c_str(), (dir / "loop_a").c_str()));
    ASSERT_EQ(0, ::symlink((dir / "loop_a").c_str(), (dir / "loop_b").c_str()));
    try {
        fs::exists(u(dir / "loop_a"));
        ADD_FAILURE() << "a link loop answered";
    } catch (fs::SystemError const& e) {
        EXPECT_EQ(static_cast<unsigned>(ELOOP), e.get_error_number());
        EXPECT_EQ(dir / "loop_a", qvtest::utf16_to_utf8(e.get_path()));
    }
    try {
        fs::status(u(dir / "loop_a"));
        ADD_FAILURE() << "a link loop had a status";
    } catch (fs::SystemError const& e) {
        EXPECT_TRUE(e.get_path().empty()); // status passes no path on
    }
}

TEST_F(Status, TextFormsAreCleanedButTheExpressFormIsNot)
{
    qvtest::scoped_env home("HOME", dir.path());
    EXPECT_TRUE(fs::exists(u"~/file.txt"));
    EXPECT_EQ(file_status::regular_file, fs::status(u"~//file.txt").type);
    EXPECT_EQ(file_status::symlink_file, fs::symlink_status(u(dir.path() + "//link/")).type);

    EXPECT_EQ(file_status::file_not_found, fs::status_express_light(u"~/file.txt").type);
    fs::file_status_light const light = fs::status_express_light(u(file));
    EXPECT_EQ(file_status::regular_file, light.type);
    EXPECT_EQ(10u, light.size);
    EXPECT_FALSE(light.modification_time.is_special());
    EXPECT_EQ(file_status::fifo_file, fs::status_express_light(u(dir / "fifo")).type);

    fs::file_status_light const none = fs::status_express_light(ustring());
    EXPECT_EQ(file_status::file_not_found, none.type);
    EXPECT_TRUE(none.modification_time.is_not_a_date_time());
    EXPECT_EQ(0u, none.size);
}

TEST_F(Status, NamesBeyondAscii)
{
    std::string const name
        = dir.write_file("\xc3\xa9t\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac \xf0\x9f\x98\x80.txt", "abc");
    EXPECT_TRUE(fs::exists(upath(u(name))));
    EXPECT_EQ(3u, fs::status(u(name)).size);
    // Another normalisation of the same name is another file here.
    EXPECT_FALSE(fs::exists(u(dir / "e\xcc\x81t\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac \xf0\x9f\x98\x80.txt")));

    // A name that is not UTF-8 cannot be spelled in text: its byte reads as U+FFFD, which
    // names a different file.
    dir.write_file("bad\xff", "x");
    EXPECT_FALSE(fs::exists(u(dir / "bad") + u"\xFFFD"));
}

TEST_F(Status, NamesOfEveryLength)
{
    // Past 1024 bytes a name no longer fits the stack buffer; the turn comes in the ASCII run
    // or in the converted tail depending on where the non-ASCII part starts.
    std::string const ascii_segment(200, 'a');
    std::string const accented_segment = "x" + [] {
        std::string e;
        for (int i = 0; i < 100; ++i)
            e += "\xc3\xa9";
        return e;
    }();
    for (std::string const& segment : {ascii_segment, accented_segment}) {
        std::string deep = dir.path();
        while (deep.size() < 1500) {
            deep += "/" + segment;
            ASSERT_EQ(0, ::mkdir(deep.c_str(), 0700)) << deep.size();
            std::string const leaf = deep + "/f";
            ASSERT_EQ(0, ::close(::open(leaf.c_str(), O_CREAT | O_WRONLY, 0600)));
            EXPECT_TRUE(fs::exists(upath(u(leaf)))) << leaf.size();
            EXPECT_EQ(file_status::regular_file, fs::status(u(leaf)).type) << leaf.size();
            EXPECT_FALSE(fs::exists(upath(u(leaf + "x")))) << leaf.size();
        }
    }
    // A lone surrogate is U+001A on its way to the system.
    dir.write_file("\x1a", "x");
    EXPECT_TRUE(fs::exists(upath(u(dir.path() + "/") + u"\xD800")));
}

TEST_F(Status, TimesAfter2038WrapThrough32BitSeconds)
{
    long long const in_2040 = 2208988800LL;
    set_times(file, 2147483647LL, in_2040);
    file_status const st = fs::status(u(file));
    EXPECT_EQ(at(2147483647LL), st.access_time);
    EXPECT_EQ(at(in_2040 - 4294967296LL), st.modification_time);
    EXPECT_EQ(at(in_2040 - 4294967296LL), fs::status_express_light(u(file)).modification_time);

    set_times(file, 0, -86400);
    EXPECT_EQ(at(-86400), fs::status(u(file)).modification_time);
}

int fail_with_einval(struct stat*)
{
    errno = EINVAL;
    return -1;
}

int fail_with_enoent(struct stat*)
{
    errno = ENOENT;
    return -1;
}

int odd_file_type(struct stat* st)
{
    *st = {};
    st->st_mode = 0xE000 | 0755; // no such type on this platform
    return 0;
}

TEST(PerformStatus, TellsItsCallersApartOnInvalidArgument)
{
    EXPECT_THROW(fs::posix::perform_status(&fail_with_einval), fs::InvalidArgument);
    EXPECT_EQ(file_status::file_not_found, fs::posix::perform_status_complete(&fail_with_einval).type);
    EXPECT_EQ(file_status::file_not_found, fs::posix::perform_status(&fail_with_enoent).type);
    EXPECT_EQ(file_status::file_not_found, fs::posix::perform_status_complete(&fail_with_enoent).type);
    EXPECT_THROW(fs::posix::perform_status(boost::function<int(struct stat*)>()), boost::bad_function_call);
}

TEST(PerformStatus, UnknownFileTypesReadAsUnknown)
{
    file_status const st = fs::posix::perform_status(&odd_file_type);
    EXPECT_EQ(file_status::file_type_unknown, st.type);
    EXPECT_EQ(0755u, st.permissions);
}

} // namespace
