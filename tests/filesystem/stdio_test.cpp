#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/stdio.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"

#include <gtest/gtest.h>

#include "qvtest/text.hpp"

#include <cerrno>
#include <cstdio>
#include <functional>
#include <memory>


namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using fs::upath;

using qvtest::u;

// The text of the opened file, or "(null) errno N" when the call gave no stream.
std::string opened(std::FILE* f)
{
    if (!f)
        return "(null) errno " + std::to_string(errno);
    std::string text;
    char buffer[256];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0)
        text.append(buffer, n);
    std::fclose(f);
    return text;
}

std::string refused(int error)
{
    return "(null) errno " + std::to_string(error);
}

// A converter that records what it was given and makes the bytes, or fails, as told.
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

TEST_F(Stdio, OpensByUnicodeNameAndCleansOnlyText)
{
    std::string const name = dir.write_file("\xc3\xbc\xc3\xb1\xc3\xad \xe2\x82\xac \xf0\x9f\x93\x84", "text");
    EXPECT_EQ("text", opened(fs::fopen(u(name), "r")));
    EXPECT_EQ("text", opened(fs::fopen(upath(u(name)), "rb")));
    EXPECT_EQ("", opened(fs::fopen(u(dir / "\xce\xbd\xce\xad\xce\xbf"), "w")));

    qvtest::scoped_env home("HOME", dir.path() + "/");
    EXPECT_EQ("hello", opened(fs::fopen(u"~//file.txt", "r")));

    // A trailing separator in text can only mean a directory, refused without a system call;
    // the same text made into a upath was cleaned and opens the file.
    EXPECT_EQ(refused(EISDIR), opened(fs::fopen(u(file + "/"), "r")));
    EXPECT_EQ(refused(EISDIR), opened(fs::fopen(u"/", "r")));
    EXPECT_EQ("hello", opened(fs::fopen(upath(u(file + "/")), "r")));
}

TEST_F(Stdio, EmptyNamesModesAndLeadingNulAreEinval)
{
    ustring const nul_first = ustring(1, u'\0') + u(file);
    for (ustring const& name : {ustring(), nul_first}) {
        EXPECT_EQ(refused(EINVAL), opened(fs::fopen(name, "r")));
        EXPECT_EQ(refused(EINVAL), opened(fs::fopen(upath(name), "r")));
    }
    EXPECT_EQ(refused(EINVAL), opened(fs::fopen(u(file), "")));
    EXPECT_EQ(refused(EINVAL), opened(fs::fopen(upath(u(file)), "")));
}

TEST_F(Stdio, SystemFailuresKeepTheirErrno)
{
    EXPECT_EQ(refused(ENOENT), opened(fs::fopen(u(dir / "missing"), "r")));
    EXPECT_EQ(refused(EISDIR), opened(fs::fopen(upath(u(dir.path())), "w")));
    EXPECT_EQ(refused(ENOTDIR), opened(fs::fopen(u(file + "/x"), "r")));

    // A lone surrogate goes through the fixed conversion as U+001A: usually no such file ...
    ustring const lone = u(dir.path() + "/") + u"\xD800";
    EXPECT_EQ(refused(ENOENT), opened(fs::fopen(lone, "r")));
    // ... but the file named by that byte, when there is one.
    dir.write_file("\x1a", "substituted");
    EXPECT_EQ("substituted", opened(fs::fopen(upath(lone), "r")));
}

TEST_F(Stdio, ACallersConverterMakesTheBytes)
{
    dir.write_file("file.txt.real", "redirected");
    scripted_converter redirect([](ustring const& text) { return qvtest::utf16_to_utf8(text) + ".real"; });
    EXPECT_EQ("redirected", opened(fs::fopen(u(dir.path() + "//file.txt"), "r", redirect)));
    EXPECT_EQ("redirected", opened(fs::fopen(upath(u(file)), "r", redirect)));
    EXPECT_EQ(refused(EISDIR), opened(fs::fopen(u(file + "/"), "r", redirect)));
    ASSERT_EQ(2u, redirect.seen.size()); // the refused name never reached it
    EXPECT_EQ(file, qvtest::utf16_to_utf8(redirect.seen[0])); // cleaned first

    fs::codecvt_ustring_to_filesystem strict(false);
    EXPECT_EQ(refused(ENOENT), opened(fs::fopen(u(dir.path() + "/") + u"\xDC00", "r", strict)));
}

TEST_F(Stdio, FailuresOfTheFamilyMapToErrnoAndOthersPassThrough)
{
    scripted_converter too_large(fail_with(fs::FileNameTooLarge()));
    EXPECT_EQ(refused(ENAMETOOLONG), opened(fs::fopen(upath(u(file)), "r", too_large)));
    scripted_converter system_error(fail_with(fs::SystemError(u"x", 5)));
    EXPECT_EQ(refused(EIO), opened(fs::fopen(u(file), "r", system_error)));

    // What has no errno of its own leaves as it came.
    scripted_converter is_directory(fail_with(fs::FileIsDirectory()));
    EXPECT_THROW(fs::fopen(u(file), "r", is_directory), fs::FileIsDirectory);
    scripted_converter foreign(fail_with(fl::i18n::CvtConversionFailure()));
    EXPECT_THROW(fs::freopen(upath(u(file)), "r", stdin, foreign), fl::i18n::CvtConversionFailure);
}

TEST_F(Stdio, FreopenMovesAStreamOrLeavesItAlone)
{
    std::string const other = dir.write_file("other \xe2\x9c\x93", "other");
    scripted_converter plain([](ustring const& text) { return qvtest::utf16_to_utf8(text); });
    std::FILE* f = std::fopen(file.c_str(), "r");
    ASSERT_TRUE(f);
    ASSERT_EQ(f, fs::freopen(u(other), "r", f));
    ASSERT_EQ(f, fs::freopen(upath(u(file)), "r", f));
    ASSERT_EQ(f, fs::freopen(upath(u(other)), "r", f, plain));
    ASSERT_EQ(f, fs::freopen(u(file), "r", f, plain));

    // Refused before the system is asked, so the stream stays open on its file.
    EXPECT_EQ(nullptr, fs::freopen(u(file + "/"), "r", f));
    EXPECT_EQ(EISDIR, errno);
    EXPECT_EQ(nullptr, fs::freopen(upath(u(other)), "", f));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_EQ("hello", opened(f));

    EXPECT_EQ(refused(EINVAL), opened(fs::freopen(u(file), "r", nullptr)));
    EXPECT_EQ(refused(EINVAL), opened(fs::freopen(upath(u(file)), "r", nullptr, plain)));
    EXPECT_EQ(2u, plain.seen.size());
}

} // namespace
