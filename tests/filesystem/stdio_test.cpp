#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/stdio.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <memory>

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
using fs::upath;

ustring u(std::string const& utf8)
{
    return qvtest::utf8_to_utf16(utf8);
}

struct file_closer {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
typedef std::unique_ptr<std::FILE, file_closer> file_ptr;

std::string read_all(std::FILE* f)
{
    std::string text;
    char buffer[256];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0)
        text.append(buffer, n);
    return text;
}

// A converter that shows what it was given and makes the bytes, or fails, as told.
class scripted_converter : public fl::i18n::converter<char, char16_t> {
public:
    explicit scripted_converter(std::function<std::string(ustring const&)> script)
        : script_(std::move(script))
    { }

    unsigned long do_get_destination_size(const char16_t* s, unsigned long n) const override
    {
        return static_cast<unsigned long>(do_convert(s, n).size());
    }
    std::string do_convert(const char16_t* s, unsigned long n) const override
    {
        seen.push_back(ustring(s, n));
        return script_(seen.back());
    }
    unsigned long do_convert(char*, unsigned long, const char16_t*, unsigned long) const override
    {
        ADD_FAILURE() << "stdio should convert whole strings";
        return 0;
    }

    mutable std::vector<ustring> seen;

private:
    std::function<std::string(ustring const&)> script_;
};

template <class E> std::function<std::string(ustring const&)> fail_with(E e)
{
    return [e](ustring const&) -> std::string { throw fl::i18n::MakeException(e); };
}

class Stdio : public ::testing::Test {
protected:
    void SetUp() override { file = dir.write_file("file.txt", "hello"); }

    qvtest::scoped_temp_dir dir;
    std::string file;
};

TEST_F(Stdio, OpensByUnicodeName)
{
    std::string const name = dir.write_file("\xc3\xbc\xc3\xb1\xc3\xad \xe2\x82\xac \xf0\x9f\x93\x84", "text");
    file_ptr a(fs::fopen(u(name), "r"));
    ASSERT_TRUE(a);
    EXPECT_EQ("text", read_all(a.get()));
    file_ptr b(fs::fopen(upath(u(name)), "rb"));
    ASSERT_TRUE(b);
    EXPECT_EQ("text", read_all(b.get()));

    file_ptr w(fs::fopen(u(dir / "\xce\xbd\xce\xad\xce\xbf"), "w"));
    ASSERT_TRUE(w);
    EXPECT_EQ(0, ::access((dir / "\xce\xbd\xce\xad\xce\xbf").c_str(), F_OK));
}

TEST_F(Stdio, RefusesEmptyNamesAndModesWithEinval)
{
    for (std::string const mode : {"r", ""}) {
        errno = 0;
        EXPECT_EQ(nullptr, fs::fopen(ustring(), mode));
        EXPECT_EQ(EINVAL, errno);
        errno = 0;
        EXPECT_EQ(nullptr, fs::fopen(upath(), mode));
        EXPECT_EQ(EINVAL, errno);
    }
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(u(file), ""));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(upath(u(file)), ""));
    EXPECT_EQ(EINVAL, errno);

    // A name that starts with NUL would reach the system as "".
    ustring const nul_first = ustring(1, u'\0') + u(file);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(nul_first, "r"));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(upath(nul_first), "r"));
    EXPECT_EQ(EINVAL, errno);
}

TEST_F(Stdio, ATrailingSeparatorMeansADirectoryOnlyInText)
{
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(u(file + "/"), "r"));
    EXPECT_EQ(EISDIR, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(u"/", "r"));
    EXPECT_EQ(EISDIR, errno);

    // The same text as a upath was cleaned when the path was made, and opens the file.
    file_ptr f(fs::fopen(upath(u(file + "/")), "r"));
    ASSERT_TRUE(f);
    EXPECT_EQ("hello", read_all(f.get()));
}

TEST_F(Stdio, TextNamesAreCleanedAndExpandTheTilde)
{
    qvtest::scoped_env home("HOME", dir.path() + "/");
    file_ptr a(fs::fopen(u"~/file.txt", "r"));
    ASSERT_TRUE(a);
    EXPECT_EQ("hello", read_all(a.get()));
    file_ptr b(fs::fopen(u(dir.path() + "///file.txt"), "r"));
    EXPECT_TRUE(b);
}

TEST_F(Stdio, SystemFailuresKeepTheirErrno)
{
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(u(dir / "missing"), "r"));
    EXPECT_EQ(ENOENT, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(upath(u(dir.path())), "w"));
    EXPECT_EQ(EISDIR, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(u(file + "/x"), "r"));
    EXPECT_EQ(ENOTDIR, errno);
}

TEST_F(Stdio, ALoneSurrogateBecomesSubstituteCharacterOnTheFixedStack)
{
    ustring const lone = u(dir.path() + "/") + u"\xD800";
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(lone, "r"));
    EXPECT_EQ(ENOENT, errno);

    // The substitute is U+001A, so the file named by that byte is the one opened.
    dir.write_file("\x1a", "substituted");
    file_ptr f(fs::fopen(upath(lone), "r"));
    ASSERT_TRUE(f);
    EXPECT_EQ("substituted", read_all(f.get()));
}

TEST_F(Stdio, ACallersConverterMakesTheBytes)
{
    dir.write_file("file.txt.real", "redirected");
    scripted_converter redirect([](ustring const& text) { return qvtest::utf16_to_utf8(text) + ".real"; });

    file_ptr a(fs::fopen(u(dir.path() + "//file.txt"), "r", redirect));
    ASSERT_TRUE(a);
    EXPECT_EQ("redirected", read_all(a.get()));
    ASSERT_EQ(1u, redirect.seen.size());
    EXPECT_EQ(file, qvtest::utf16_to_utf8(redirect.seen[0])); // cleaned before conversion

    file_ptr b(fs::fopen(upath(u(file)), "r", redirect));
    ASSERT_TRUE(b);
    EXPECT_EQ("redirected", read_all(b.get()));

    // Refused before the converter is asked.
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(u(file + "/"), "r", redirect));
    EXPECT_EQ(EISDIR, errno);
    EXPECT_EQ(2u, redirect.seen.size());
}

TEST_F(Stdio, StrictConverterFailuresBecomeErrno)
{
    fs::codecvt_ustring_to_filesystem strict(false);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(u(dir.path() + "/") + u"\xDC00", "r", strict));
    EXPECT_EQ(ENOENT, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::fopen(upath(u(dir.path() + "/") + u"\xDC00"), "w", strict));
    EXPECT_EQ(ENOENT, errno);
}

TEST_F(Stdio, FailuresOfTheFamilyMapToErrnoAndOthersPassThrough)
{
    struct {
        std::function<std::string(ustring const&)> script;
        int expected;
    } const mapped[] = {
        {fail_with(fs::FileNameTooLarge()), ENAMETOOLONG},
        {fail_with(fs::FileNameConversionFailure(7)), ENOENT},
        {fail_with(fs::AccessDenied()), EACCES},
        {fail_with(fs::SystemError(u"x", 5)), EIO},
    };
    for (auto const& c : mapped) {
        scripted_converter failing(c.script);
        errno = 0;
        EXPECT_EQ(nullptr, fs::fopen(u(file), "r", failing));
        EXPECT_EQ(c.expected, errno);
        errno = 0;
        EXPECT_EQ(nullptr, fs::fopen(upath(u(file)), "r", failing));
        EXPECT_EQ(c.expected, errno);
    }

    scripted_converter is_directory(fail_with(fs::FileIsDirectory()));
    EXPECT_THROW(fs::fopen(u(file), "r", is_directory), fs::FileIsDirectory);
    scripted_converter foreign(fail_with(fl::i18n::CvtConversionFailure()));
    EXPECT_THROW(fs::fopen(upath(u(file)), "r", foreign), fl::i18n::CvtConversionFailure);
}

TEST_F(Stdio, FreopenMovesAStreamToAnotherFile)
{
    std::string const other = dir.write_file("other \xe2\x9c\x93", "other");
    file_ptr f(std::fopen(file.c_str(), "r"));
    ASSERT_TRUE(f);
    std::FILE* const reopened = fs::freopen(u(other), "r", f.get());
    ASSERT_EQ(f.get(), reopened);
    EXPECT_EQ("other", read_all(f.get()));

    ASSERT_EQ(f.get(), fs::freopen(upath(u(file)), "r", f.get()));
    EXPECT_EQ("hello", read_all(f.get()));

    scripted_converter plain([](ustring const& text) { return qvtest::utf16_to_utf8(text); });
    ASSERT_EQ(f.get(), fs::freopen(u(other), "r", f.get(), plain));
    EXPECT_EQ("other", read_all(f.get()));
    ASSERT_EQ(f.get(), fs::freopen(upath(u(file)), "r", f.get(), plain));
    EXPECT_EQ("hello", read_all(f.get()));
}

TEST_F(Stdio, FreopenRefusalsLeaveTheStreamAlone)
{
    errno = 0;
    EXPECT_EQ(nullptr, fs::freopen(u(file), "r", nullptr));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::freopen(upath(u(file)), "r", nullptr));
    EXPECT_EQ(EINVAL, errno);
    scripted_converter plain([](ustring const& text) { return qvtest::utf16_to_utf8(text); });
    errno = 0;
    EXPECT_EQ(nullptr, fs::freopen(u(file), "r", nullptr, plain));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_TRUE(plain.seen.empty());

    file_ptr f(std::fopen(file.c_str(), "r"));
    ASSERT_TRUE(f);
    errno = 0;
    EXPECT_EQ(nullptr, fs::freopen(u(file + "/"), "r", f.get()));
    EXPECT_EQ(EISDIR, errno);
    errno = 0;
    EXPECT_EQ(nullptr, fs::freopen(u(file), "", f.get()));
    EXPECT_EQ(EINVAL, errno);
    // Not handed to the system, so still open and readable.
    EXPECT_EQ("hello", read_all(f.get()));
}

TEST_F(Stdio, PermissionDeniedIsEacces)
{
    ASSERT_EQ(0, ::chmod(dir.path().c_str(), 0755));
    ASSERT_EQ(0, ::chmod(file.c_str(), 0600));
    std::fflush(nullptr);
    pid_t const pid = ::fork();
    if (pid == 0) {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(99);
        errno = 0;
        std::FILE* const f = fs::fopen(u(file), "r");
        ::_exit(f == nullptr && errno == EACCES ? 0 : 1);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}

} // namespace
