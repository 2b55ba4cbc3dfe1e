#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/temporary.hpp>

#include "qvtest/scoped_env.hpp"
#include "qvtest/scoped_temp_dir.hpp"
#include "qvtest/text.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = fl::filesystem;
using fl::i18n::ustring;
using qvtest::utf16_to_utf8;
using qvtest::utf8_to_utf16;

const std::regex random_part("[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}");

// Every variable the choice reads, unset for the scope.
struct clean_temp_env {
    qvtest::scoped_env tmpdir{"TMPDIR"};
    qvtest::scoped_env tmp{"TMP"};
    qvtest::scoped_env temp{"TEMP"};
    qvtest::scoped_env tempdir{"TEMPDIR"};
};

TEST(TemporaryNames, DirectoryFromTheEnvironmentInOrder)
{
    qvtest::scoped_temp_dir dir;
    const std::string a = dir.make_dir("a"), b = dir.make_dir("b"), c = dir.make_dir("c");
    const std::string file = dir.write_file("file", "");
    clean_temp_env clean;
    EXPECT_EQ(fs::temp_dir_name(), "/tmp");

    qvtest::scoped_env tempdir("TEMPDIR", c);
    EXPECT_EQ(fs::temp_dir_name(), c);
    qvtest::scoped_env temp("TEMP", b);
    EXPECT_EQ(fs::temp_dir_name(), b);
    {
        // A file, a missing directory and an empty value are passed over.
        qvtest::scoped_env tmpdir("TMPDIR", file);
        qvtest::scoped_env tmp("TMP", dir / "missing");
        EXPECT_EQ(fs::temp_dir_name(), b);
        qvtest::scoped_env empty("TMPDIR", "");
        EXPECT_EQ(fs::temp_dir_name(), b);
    }
    qvtest::scoped_env tmp("TMP", a);
    EXPECT_EQ(fs::temp_dir_name(), a);
    // Taken as it stands by the bytes form, cleaned by the text form.
    qvtest::scoped_env tmpdir("TMPDIR", c + "//");
    EXPECT_EQ(fs::temp_dir_name(), c + "//");
    EXPECT_EQ(fs::temp_directory_name(), utf8_to_utf16(c));
    // Bytes that are not UTF-8 read as U+FFFD in the text form, as names from the disk do.
    qvtest::scoped_env broken("TMPDIR", dir.make_dir("d\xff"));
    EXPECT_EQ(fs::temp_directory_name(), utf8_to_utf16(dir / "d") + u"\uFFFD");
}

TEST(TemporaryNames, ShapeOfNames)
{
    const std::string plain = utf16_to_utf8(fs::tmpnam(u"/x/", u"a", u"b"));
    ASSERT_EQ(plain.size(), 3 + 1 + 19 + 2) << plain;
    EXPECT_EQ(plain.substr(0, 4), "/x/a");
    EXPECT_TRUE(std::regex_match(plain.substr(4, 19), random_part)) << plain;
    EXPECT_EQ(plain.substr(23), ".b");

    const std::string dotted = utf16_to_utf8(fs::tmpfile_name(u"/x", u"", u".b"));
    EXPECT_EQ(dotted.substr(0, 3), "/x/");
    EXPECT_EQ(dotted.substr(22), ".b");
    const std::string bare = utf16_to_utf8(fs::tmpfile_name(u"/x//y/", u"p\u00E9-", u""));
    EXPECT_EQ(bare.substr(0, 9), "/x/y/p\xC3\xA9-");
    EXPECT_EQ(bare.size(), 9u + 19u);

    EXPECT_TRUE(std::regex_match(fs::posix::get_temp_name(), random_part));

    clean_temp_env clean;
    qvtest::scoped_temp_dir dir;
    qvtest::scoped_env tmpdir("TMPDIR", dir.path());
    EXPECT_EQ(utf16_to_utf8(fs::tmpnam(u"", u"", u"")).substr(0, dir.path().size() + 1), dir.path() + "/");

    const std::string id = fs::uuid_gen();
    ASSERT_EQ(id.size(), 36u);
    EXPECT_TRUE(std::regex_match(id, std::regex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}")))
        << id;
    EXPECT_NE(fs::uuid_gen(), id);
}

TEST(TemporaryNames, FilesAreNewAndPrivate)
{
    qvtest::scoped_temp_dir dir;
    // Even a permissive umask leaves the file to its owner.
    const mode_t old_mask = ::umask(0);
    ustring name = u"unchanged";
    std::FILE* f = fs::tmpfile(name, utf8_to_utf16(dir.path()), u"t-", u"dat");
    ::umask(old_mask);
    ASSERT_NE(f, nullptr);
    const std::string path = utf16_to_utf8(name);
    EXPECT_EQ(path.substr(0, dir.path().size() + 3), dir.path() + "/t-");
    EXPECT_EQ(path.substr(path.size() - 4), ".dat");
    struct stat st;
    ASSERT_EQ(::stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_TRUE(S_ISREG(st.st_mode));
    // Open for reading and writing.
    ASSERT_EQ(std::fputs("data", f), 1);
    std::rewind(f);
    char back[8] = {};
    EXPECT_EQ(std::fread(back, 1, 4, f), 4u);
    EXPECT_STREQ(back, "data");
    std::fclose(f);

    // Nowhere to create anything: eleven failures, null, errno 0 and the name cleared.
    errno = EACCES;
    f = fs::tmpfile(name, utf8_to_utf16(dir / "missing"), u"", u"");
    EXPECT_EQ(f, nullptr);
    EXPECT_EQ(errno, 0);
    EXPECT_TRUE(name.empty());
}

TEST(TemporaryNames, ThreadsNeverCollide)
{
    qvtest::scoped_temp_dir dir;
    const ustring folder = utf8_to_utf16(dir.path());
    const int threads = 8, per_thread = 100;
    std::vector<std::vector<ustring>> names(threads), files(threads);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&, t] {
            for (int i = 0; i < per_thread; ++i) {
                names[t].push_back(fs::tmpnam(folder, u"n", u""));
                ustring made;
                if (std::FILE* f = fs::tmpfile(made, folder, u"f", u"")) {
                    std::fclose(f);
                    files[t].push_back(made);
                }
            }
        });
    }
    for (std::thread& w : workers)
        w.join();
    std::set<ustring> all_names, all_files;
    for (int t = 0; t < threads; ++t) {
        all_names.insert(names[t].begin(), names[t].end());
        all_files.insert(files[t].begin(), files[t].end());
    }
    EXPECT_EQ(all_names.size(), static_cast<size_t>(threads * per_thread));
    EXPECT_EQ(all_files.size(), static_cast<size_t>(threads * per_thread));
    for (const ustring& f : all_files)
        EXPECT_EQ(::access(utf16_to_utf8(f).c_str(), F_OK), 0);
}

} // namespace
