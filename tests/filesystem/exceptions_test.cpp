#include <qvi18n/filesystem/exceptions.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/path.hpp>

#include "tests/filesystem/path_test_text.hpp"
#include <qvi18n/filesystem/detail/exceptions.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>
#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>

namespace fs = fl::filesystem;
using pathtest::u16;

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

TEST(FsysExceptionToErrno, OnlyTheFamilyAndBadAllocBecomeErrno)
{
    // The per-class errno values are checked through the stdio functions that use them.
    errno = 0;
    EXPECT_FALSE(leaves_errno_conversion(std::bad_alloc()));
    EXPECT_EQ(errno, ENOMEM);

    errno = 0;
    EXPECT_TRUE(leaves_errno_conversion(fs::FileIsDirectory()));
    EXPECT_TRUE(leaves_errno_conversion(fs::InvalidOperation()));
    EXPECT_TRUE(leaves_errno_conversion(fs::PathNameComparisonFailure()));
    EXPECT_TRUE(leaves_errno_conversion(std::runtime_error("outside the family")));
    EXPECT_EQ(errno, 0);
}
