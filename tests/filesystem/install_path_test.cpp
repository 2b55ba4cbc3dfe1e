#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/install_path.hpp>
#include <qvi18n/filesystem/posix/install_path.hpp>

#include "filesystem/install_root.hpp"
#include "filesystem/linux/volume_linux.hpp"

#include "qvtest/scoped_temp_dir.hpp"
#include "qvtest/text.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cctype>
#include <string>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

namespace fs = fl::filesystem;
using qvtest::utf16_to_utf8;

const std::string tag = fl::i18n::platform_tag();

std::string real(std::string const& path)
{
    char buffer[PATH_MAX];
    return ::realpath(path.c_str(), buffer) ? std::string(buffer) : std::string();
}

TEST(InstallPath, FoundFromTheLibraryItselfWhoeverAsks)
{
    // The build tree has the installed layout, so the library finds the build root.
    EXPECT_EQ(utf16_to_utf8(fs::get_install_path()), real(QVI18N_TEST_BUILD_ROOT));
    EXPECT_EQ(fs::get_install_path(), fs::get_install_path());

    const std::string module = utf16_to_utf8(
        fl::i18n::detail::get_module_path_from_address(reinterpret_cast<void*>(&fs::get_install_path)));
    EXPECT_NE(module.find("/bin/" + tag + "/libqvi18n.so"), std::string::npos) << module;
    EXPECT_EQ(real(module).find(real(QVI18N_TEST_BUILD_ROOT) + "/bin/" + tag + "/"), 0u) << module;

    // The test program lies outside any bin/<tag>, so its own root is empty; an address in no
    // module at all has neither a file nor a root.
    static int in_test_program = 0;
    EXPECT_EQ(fs::get_base_path(&in_test_program), "");
    EXPECT_TRUE(fl::i18n::detail::get_module_path_from_address(nullptr).empty());
    EXPECT_EQ(fs::get_base_path(nullptr), "");
}

TEST(InstallPath, WalkFindsTheNearestPairOnTheDisk)
{
    qvtest::scoped_temp_dir dir;
    const std::string lib = dir.write_file("opt/app/bin/" + tag + "/libx.so", "");
    EXPECT_EQ(fs::chop_off_path_name(lib), dir / "opt/app");
    EXPECT_EQ(fs::chop_off_path_name(dir / "opt/app/bin/" + tag), dir / "opt/app");

    // Two pairs: the one nearest the file wins.
    const std::string nested = dir.write_file("a/bin/" + tag + "/b/bin/" + tag + "/c/libx.so", "");
    EXPECT_EQ(fs::chop_off_path_name(nested), dir / "a/bin/" + tag + "/b");

    // The tag without "bin" above it is passed over with its parent, and "bin" alone is nothing.
    const std::string stray = dir.write_file("r/bin/x/" + tag + "/libx.so", "");
    EXPECT_EQ(fs::chop_off_path_name(stray), "");
    EXPECT_EQ(fs::chop_off_path_name(dir.write_file("q/bin/libx.so", "")), "");
    // Another platform's tag is not ours.
    EXPECT_EQ(fs::chop_off_path_name(dir.write_file("d/bin/darx64/libx.so", "")), "");
    // The root of the file system holds the pair.
    EXPECT_EQ(fl::filesystem::detail::find_install_root("/bin/" + tag + "/l.so", tag.c_str(), false), "/");

    EXPECT_THROW(fs::chop_off_path_name(dir / "missing/bin/" + tag + "/libx.so"), fs::PathNotFound);
}

TEST(InstallPath, CaseMattersOnlyWhereTheVolumeIgnoresIt)
{
    qvtest::scoped_temp_dir dir;
    std::string upper_tag = tag;
    for (char& c : upper_tag)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    const std::string lib = dir.write_file("app/BIN/" + upper_tag + "/libx.so", "");

    // The decision on either answer of the volume.
    EXPECT_EQ(fs::detail::find_install_root(lib, tag.c_str(), true), dir / "app");
    EXPECT_EQ(fs::detail::find_install_root(lib, tag.c_str(), false), "");

    // What the volume answers on Linux, per file system type and casefold attribute.
    using namespace fs::detail;
    for (unsigned long type : {0x4d44ul, 0x2011BAB0ul, 0x5346544eul, 0x7366746eul})
        EXPECT_EQ(linux_volume::decide(type, false), volume_names_normalized_case_insensitive) << type;
    for (unsigned long type : {0xEF53ul, 0x01021994ul, 0x58465342ul, 0x9123683Eul, 0x794c7630ul})
        EXPECT_EQ(linux_volume::decide(type, false), volume_names_exact) << type;
    EXPECT_EQ(linux_volume::decide(0xEF53ul, true), volume_names_normalized_case_insensitive);
    EXPECT_TRUE(volume_ignores_case(volume_names_normalized_case_insensitive));
    EXPECT_FALSE(volume_ignores_case(volume_names_normalized));
    EXPECT_FALSE(volume_ignores_case(volume_names_exact));

    // And the real volume of the temporary directory, which on Linux ignores case only where
    // the directory was made to fold.
    const bool real_fold = [&] {
        int fd = ::open((dir / "app").c_str(), O_RDONLY | O_DIRECTORY);
        int flags = 0;
        bool folded = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0 && (flags & FS_CASEFOLD_FL);
        if (fd >= 0)
            ::close(fd);
        return folded;
    }();
    if (!real_fold) {
        EXPECT_EQ(fs::chop_off_path_name(lib), "");
    }
}

TEST(InstallPath, CasefoldedDirectoryOnARealVolume)
{
    qvtest::scoped_temp_dir dir;
    const std::string folded = dir.make_dir("folded");
    int fd = ::open(folded.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_GE(fd, 0);
    int flags = 0;
    bool made = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    if (made) {
        flags |= FS_CASEFOLD_FL;
        made = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    }
    ::close(fd);
    if (!made)
        GTEST_SKIP() << "this machine cannot make a case-folding directory (the file system of "
                     << dir.path() << " lacks casefold support; the other way, mounting a vfat image, is not one a unit test takes)";

    // Inside a folding directory the casefold flag is inherited by new directories.
    const std::string lib = dir.write_file("folded/BIN/" + tag + "/libx.so", "");
    EXPECT_EQ(fs::chop_off_path_name(lib), folded);
}

} // namespace
