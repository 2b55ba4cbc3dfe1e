#include <qvi18n/filesystem/exceptions.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/path.hpp>

#include "tests/filesystem/path_test_text.hpp"
#include <qvtest/scoped_temp_dir.hpp>

#include <boost/exception_ptr.hpp>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

namespace fs = fl::filesystem;
using pathtest::u16;

namespace {

struct dispatch_case {
    int error_number;
    fs::fsys_excp_id id;
    const char* what;
    std::function<void(const fs::FsysExceptionBase&)> check_class;
};

template <class T> std::function<void(const fs::FsysExceptionBase&)> is_a()
{
    return [](const fs::FsysExceptionBase& e) { EXPECT_NE(dynamic_cast<const T*>(&e), nullptr); };
}

} // namespace

TEST(FsysDispatcher, MapsEachKnownErrnoToItsClassWithoutPathOrErrno)
{
    const dispatch_case cases[] = {
        {ENOENT, fs::fsys_path_not_found, "fl:filesystem:PathNotFound", is_a<fs::PathNotFound>()},
        {EACCES, fs::fsys_access_denied, "fl:filesystem:AccessDenied", is_a<fs::AccessDenied>()},
        {EEXIST, fs::fsys_file_exists, "fl:filesystem:FileExistsError", is_a<fs::FileExistsError>()},
        {ENOTDIR, fs::fsys_not_directory, "fl:filesystem:NotDirectoryError", is_a<fs::NotDirectoryError>()},
        {EISDIR, fs::fsys_file_is_directory, "fl:filesystem:FileIsDirectory", is_a<fs::FileIsDirectory>()},
        {EINVAL, fs::fsys_invalid_argument, "fl:filesystem:InvalidArgument", is_a<fs::InvalidArgument>()},
        {ENAMETOOLONG, fs::fsys_file_name_too_large, "fl:filesystem:FileNameTooLarge",
            is_a<fs::FileNameTooLarge>()},
        {ENOTEMPTY, fs::fsys_directory_not_empty, "fl:filesystem:DirectoryNotEmpty",
            is_a<fs::DirectoryNotEmpty>()},
    };
    for (const dispatch_case& c : cases) {
        SCOPED_TRACE(c.what);
        try {
            fs::posix::exception_dispatcher(c.error_number, "/some/path", "/other");
            ADD_FAILURE() << "dispatcher returned";
        } catch (const fs::FsysExceptionBase& e) {
            EXPECT_EQ(e.get_id(), c.id);
            EXPECT_STREQ(e.what(), c.what);
            EXPECT_TRUE(e.get_path().empty());
            EXPECT_EQ(e.get_error_number(), 0u);
            c.check_class(e);
        }
    }
}

TEST(FsysDispatcher, OtherErrnoBecomesSystemErrorCarryingPathAndErrno)
{
    for (int error_number : {ELOOP, EIO, EROFS, 0}) {
        SCOPED_TRACE(error_number);
        try {
            fs::posix::exception_dispatcher(error_number, "/d/\xc3\xa9t\xc3\xa9", "/ignored");
            ADD_FAILURE() << "dispatcher returned";
        } catch (const fs::SystemError& e) {
            EXPECT_EQ(e.get_id(), fs::fsys_system_error);
            EXPECT_STREQ(e.what(), "fl:filesystem:SystemError");
            EXPECT_EQ(e.get_path(), u16(u"/d/\u00e9t\u00e9"));
            EXPECT_EQ(e.get_error_number(), static_cast<unsigned int>(error_number));
        }
    }
}

TEST(FsysDispatcher, SystemErrorPathWithInvalidUtf8IsSubstitutedNotRefused)
{
    try {
        fs::posix::exception_dispatcher(ELOOP,
            "a\xff"
            "b",
            "");
        ADD_FAILURE() << "dispatcher returned";
    } catch (const fs::SystemError& e) {
        EXPECT_EQ(e.get_path(), u16(u"a\ufffdb"));
    }
}

TEST(FsysExceptions, ThrownObjectsCrossThreadsWithTheirClassAndData)
{
    boost::exception_ptr carried;
    std::thread worker([&carried] {
        try {
            fs::posix::exception_dispatcher(ELOOP, "/loop", "");
        } catch (...) {
            carried = boost::current_exception();
        }
    });
    worker.join();
    ASSERT_TRUE(carried);
    try {
        boost::rethrow_exception(carried);
    } catch (const fs::SystemError& e) {
        EXPECT_EQ(e.get_path(), u16("/loop"));
        EXPECT_EQ(e.get_error_number(), static_cast<unsigned int>(ELOOP));
    } catch (...) {
        ADD_FAILURE() << "lost its class on the way";
    }

    try {
        throw fl::i18n::MakeException(fs::FileNameConversionFailure(7));
    } catch (...) {
        carried = boost::current_exception();
    }
    try {
        boost::rethrow_exception(carried);
    } catch (const fs::FileNameConversionFailure& e) {
        EXPECT_EQ(e.get_cvt_code(), 7);
        EXPECT_EQ(e.get_id(), fs::fsys_file_name_conversion_failure);
    }
}

TEST(FsysExceptions, PathNameComparisonFailureBorrowsTheConversionText)
{
    const fs::PathNameComparisonFailure e;
    EXPECT_STREQ(e.what(), "fl:filesystem:FileNameConversionFailure");
    EXPECT_EQ(e.get_id(), fs::fsys_path_name_comparison_failure);
    const fs::FileNameConversionFailure c(2);
    EXPECT_STREQ(c.what(), e.what());
    EXPECT_EQ(c.get_cvt_code(), 2);
}

TEST(FsysExceptions, InvalidOperationHelperThrowsInvalidOperation)
{
    EXPECT_THROW(fs::detail::throw_invalid_operation_exception(), fs::InvalidOperation);
    try {
        fs::detail::throw_invalid_operation_exception();
    } catch (const fs::FsysExceptionBase& e) {
        EXPECT_EQ(e.get_id(), fs::fsys_invalid_operation);
        EXPECT_STREQ(e.what(), "fl:filesystem:InvalidOperation");
    }
}

namespace {

// Runs the conversion inside a catch block, as the stdio-style functions do; true if the
// exception left it.
template <class E> bool convert_to_errno(const E& e)
{
    try {
        try {
            throw fl::i18n::MakeException(e);
        } catch (...) {
            fs::convert_filesystem_exception_to_errno();
        }
    } catch (...) {
        return true;
    }
    return false;
}

} // namespace

TEST(FsysExceptionToErrno, SetsErrnoForTheFailuresItKnows)
{
    struct {
        std::function<bool()> run;
        int expected;
        const char* name;
    } const cases[] = {
        {[] { return convert_to_errno(fs::FileNameTooLarge()); }, ENAMETOOLONG, "FileNameTooLarge"},
        {[] { return convert_to_errno(fs::CvtInvalidCharacter()); }, ENOENT, "CvtInvalidCharacter"},
        {[] { return convert_to_errno(fs::FileNameConversionFailure(7)); }, ENOENT,
            "FileNameConversionFailure"},
        {[] { return convert_to_errno(fs::InvalidArgument()); }, EINVAL, "InvalidArgument"},
        {[] { return convert_to_errno(fs::AccessDenied()); }, EACCES, "AccessDenied"},
        {[] { return convert_to_errno(fs::PathNotFound()); }, ENOENT, "PathNotFound"},
        {[] { return convert_to_errno(fs::NotDirectoryError()); }, ENOTDIR, "NotDirectoryError"},
        {[] { return convert_to_errno(fs::DirectoryNotEmpty()); }, ENOTEMPTY, "DirectoryNotEmpty"},
        {[] { return convert_to_errno(fs::FileExistsError()); }, EEXIST, "FileExistsError"},
        // The errno a SystemError carries is not restored.
        {[] { return convert_to_errno(fs::SystemError(u16("/x"), ELOOP)); }, EIO, "SystemError"},
        {[] { return convert_to_errno(std::bad_alloc()); }, ENOMEM, "bad_alloc"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        errno = 0;
        EXPECT_FALSE(c.run());
        EXPECT_EQ(errno, c.expected);
    }
}

TEST(FsysExceptionToErrno, PassesOnWhatItHasNoErrnoFor)
{
    errno = 0;
    EXPECT_TRUE(convert_to_errno(fs::FileIsDirectory()));
    EXPECT_TRUE(convert_to_errno(fs::InvalidOperation()));
    EXPECT_TRUE(convert_to_errno(fs::PathNameComparisonFailure()));
    EXPECT_TRUE(convert_to_errno(std::runtime_error("outside the family")));
    EXPECT_EQ(errno, 0);

    // The one passed on is the original, not a stand-in.
    try {
        try {
            throw fl::i18n::MakeException(fs::FileIsDirectory());
        } catch (...) {
            fs::convert_filesystem_exception_to_errno();
        }
        ADD_FAILURE() << "swallowed";
    } catch (const fs::FileIsDirectory& e) {
        EXPECT_EQ(e.get_id(), fs::fsys_file_is_directory);
    }
}

namespace {

// Issues open() on the bytes of a path, as the file operations do, and dispatches its errno.
void open_or_dispatch(const fs::upath& path)
{
    const std::string bytes = fs::detail::make_native_access_form(path);
    const int fd = ::open(bytes.c_str(), O_RDONLY);
    if (fd >= 0) {
        ::close(fd);
        return;
    }
    fs::posix::exception_dispatcher(errno, bytes, std::string());
}

} // namespace

TEST(FsysDispatcher, RealSystemCallFailuresOnUnicodeNames)
{
    qvtest::scoped_temp_dir dir("qvi18n-fsys");
    dir.write_file("\xc3\xa9t\xc3\xa9.txt", "x");
    const fs::upath base(pathtest::utf8_to_utf16(dir.path()));

    EXPECT_NO_THROW(open_or_dispatch(base / u16(u"\u00e9t\u00e9.txt")));
    EXPECT_THROW(open_or_dispatch(base / u16(u"\u65e5\u672c")), fs::PathNotFound);
    EXPECT_THROW(open_or_dispatch(base / u16(u"\u00e9t\u00e9.txt/below")), fs::NotDirectoryError);

    // A symbolic-link loop has no class of its own: SystemError keeps the path and errno.
    ASSERT_EQ(::symlink("loop", (dir / "loop").c_str()), 0);
    try {
        open_or_dispatch(base / u16(u"loop"));
        ADD_FAILURE() << "opened a link loop";
    } catch (const fs::SystemError& e) {
        EXPECT_EQ(e.get_error_number(), static_cast<unsigned int>(ELOOP));
        EXPECT_EQ(e.get_path(), pathtest::utf8_to_utf16(dir / "loop"));
    }
}
