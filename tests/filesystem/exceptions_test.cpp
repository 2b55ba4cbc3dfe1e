#include <qvi18n/filesystem/exceptions.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/path.hpp>

#include "tests/filesystem/path_test_text.hpp"
#include <qvtest/scoped_temp_dir.hpp>

#include <boost/exception_ptr.hpp>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <thread>

namespace fs = fl::filesystem;
using pathtest::u16;

namespace {

template <class T> bool is_a(const fs::FsysExceptionBase& e)
{
    return dynamic_cast<const T*>(&e) != nullptr;
}

} // namespace

TEST(FsysDispatcher, MapsErrnoToTheFamily)
{
    const struct {
        int error_number;
        fs::fsys_excp_id id;
        const char* what;
        bool (*is_class)(const fs::FsysExceptionBase&);
    } cases[] = {
        {ENOENT, fs::fsys_path_not_found, "fl:filesystem:PathNotFound", &is_a<fs::PathNotFound>},
        {EACCES, fs::fsys_access_denied, "fl:filesystem:AccessDenied", &is_a<fs::AccessDenied>},
        {EEXIST, fs::fsys_file_exists, "fl:filesystem:FileExistsError", &is_a<fs::FileExistsError>},
        {ENOTDIR, fs::fsys_not_directory, "fl:filesystem:NotDirectoryError", &is_a<fs::NotDirectoryError>},
        {EISDIR, fs::fsys_file_is_directory, "fl:filesystem:FileIsDirectory", &is_a<fs::FileIsDirectory>},
        {EINVAL, fs::fsys_invalid_argument, "fl:filesystem:InvalidArgument", &is_a<fs::InvalidArgument>},
        {ENAMETOOLONG, fs::fsys_file_name_too_large, "fl:filesystem:FileNameTooLarge",
            &is_a<fs::FileNameTooLarge>},
        {ENOTEMPTY, fs::fsys_directory_not_empty, "fl:filesystem:DirectoryNotEmpty",
            &is_a<fs::DirectoryNotEmpty>},
        {ELOOP, fs::fsys_system_error, "fl:filesystem:SystemError", &is_a<fs::SystemError>},
        {0, fs::fsys_system_error, "fl:filesystem:SystemError", &is_a<fs::SystemError>},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.error_number);
        try {
            fs::posix::exception_dispatcher(c.error_number, "/d/\xc3\xa9t\xc3\xa9\xff", "/ignored");
            ADD_FAILURE() << "dispatcher returned";
        } catch (const fs::FsysExceptionBase& e) {
            EXPECT_EQ(e.get_id(), c.id);
            EXPECT_STREQ(e.what(), c.what);
            EXPECT_TRUE(c.is_class(e));
            // Only SystemError keeps the path (read as UTF-8, bad bytes substituted) and errno.
            if (c.id == fs::fsys_system_error) {
                EXPECT_EQ(e.get_path(), u16(u"/d/\u00e9t\u00e9\ufffd"));
                EXPECT_EQ(e.get_error_number(), static_cast<unsigned int>(c.error_number));
            } else {
                EXPECT_TRUE(e.get_path().empty());
                EXPECT_EQ(e.get_error_number(), 0u);
            }
        }
    }
}

TEST(FsysDispatcher, RealSystemCallFailuresOnUnicodeNames)
{
    qvtest::scoped_temp_dir dir("qvi18n-fsys");
    dir.write_file("\xc3\xa9t\xc3\xa9.txt", "x");
    ASSERT_EQ(::symlink("loop", (dir / "loop").c_str()), 0);
    const fs::upath base(pathtest::utf8_to_utf16(dir.path()));

    // Opens the bytes of a path as the file operations do, and dispatches the errno.
    auto open_or_dispatch = [](const fs::upath& path) {
        const std::string bytes = fs::detail::make_native_access_form(path);
        const int fd = ::open(bytes.c_str(), O_RDONLY);
        if (fd < 0)
            fs::posix::exception_dispatcher(errno, bytes, std::string());
        ::close(fd);
    };
    EXPECT_NO_THROW(open_or_dispatch(base / u16(u"\u00e9t\u00e9.txt")));
    EXPECT_THROW(open_or_dispatch(base / u16(u"\u65e5\u672c")), fs::PathNotFound);
    EXPECT_THROW(open_or_dispatch(base / u16(u"\u00e9t\u00e9.txt/below")), fs::NotDirectoryError);
    try {
        open_or_dispatch(base / u16(u"loop"));
        ADD_FAILURE() << "opened a link loop";
    } catch (const fs::SystemError& e) {
        EXPECT_EQ(e.get_error_number(), static_cast<unsigned int>(ELOOP));
        EXPECT_EQ(e.get_path(), pathtest::utf8_to_utf16(dir / "loop"));
    }
}

TEST(FsysExceptions, CrossThreadsWithClassAndData)
{
    boost::exception_ptr carried;
    std::thread worker([&carried] {
        try {
            throw fl::i18n::MakeException(fs::FileNameConversionFailure(2));
        } catch (...) {
            carried = boost::current_exception();
        }
    });
    worker.join();
    try {
        boost::rethrow_exception(carried);
    } catch (const fs::FileNameConversionFailure& e) {
        EXPECT_EQ(e.get_cvt_code(), 2);
        // PathNameComparisonFailure borrows this text and keeps its own id.
        EXPECT_STREQ(fs::PathNameComparisonFailure().what(), e.what());
        EXPECT_EQ(fs::PathNameComparisonFailure().get_id(), fs::fsys_path_name_comparison_failure);
    } catch (...) {
        ADD_FAILURE() << "lost its class on the way";
    }
    EXPECT_THROW(fs::detail::throw_invalid_operation_exception(), fs::InvalidOperation);
}

namespace {

// Converts inside a catch block, as the stdio-style functions do; true if the exception left.
template <class E> bool leaves_errno_conversion(const E& e)
{
    try {
        try {
            throw fl::i18n::MakeException(e);
        } catch (...) {
            fs::convert_filesystem_exception_to_errno();
        }
    } catch (const E&) {
        return true;
    }
    return false;
}

} // namespace

TEST(FsysExceptionToErrno, KnownFailuresSetErrnoOthersPassOn)
{
    const struct {
        bool (*left)();
        int expected;
        const char* name;
    } cases[] = {
        {[] { return leaves_errno_conversion(fs::FileNameTooLarge()); }, ENAMETOOLONG, "FileNameTooLarge"},
        {[] { return leaves_errno_conversion(fs::CvtInvalidCharacter()); }, ENOENT, "CvtInvalidCharacter"},
        {[] { return leaves_errno_conversion(fs::FileNameConversionFailure(7)); }, ENOENT,
            "ConversionFailure"},
        {[] { return leaves_errno_conversion(fs::InvalidArgument()); }, EINVAL, "InvalidArgument"},
        {[] { return leaves_errno_conversion(fs::AccessDenied()); }, EACCES, "AccessDenied"},
        {[] { return leaves_errno_conversion(fs::PathNotFound()); }, ENOENT, "PathNotFound"},
        {[] { return leaves_errno_conversion(fs::NotDirectoryError()); }, ENOTDIR, "NotDirectoryError"},
        {[] { return leaves_errno_conversion(fs::DirectoryNotEmpty()); }, ENOTEMPTY, "DirectoryNotEmpty"},
        {[] { return leaves_errno_conversion(fs::FileExistsError()); }, EEXIST, "FileExistsError"},
        // The errno that a SystemError carries is not restored.
        {[] { return leaves_errno_conversion(fs::SystemError(u16("/x"), ELOOP)); }, EIO, "SystemError"},
        {[] { return leaves_errno_conversion(std::bad_alloc()); }, ENOMEM, "bad_alloc"},
    };
    for (const auto& c : cases) {
        errno = 0;
        EXPECT_FALSE(c.left()) << c.name;
        EXPECT_EQ(errno, c.expected) << c.name;
    }

    errno = 0;
    EXPECT_TRUE(leaves_errno_conversion(fs::FileIsDirectory()));
    EXPECT_TRUE(leaves_errno_conversion(fs::InvalidOperation()));
    EXPECT_TRUE(leaves_errno_conversion(fs::PathNameComparisonFailure()));
    EXPECT_TRUE(leaves_errno_conversion(std::runtime_error("outside the family")));
    EXPECT_EQ(errno, 0);
}
