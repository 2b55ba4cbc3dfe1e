#include "filesystem/linux/volume_linux.hpp"

#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/posix/path_algorithms.hpp>
#include <qvi18n/filesystem/detail/exceptions.hpp>

#include <cerrno>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace fl {
namespace filesystem {
namespace detail {

namespace {

// Whether the directory named by path, or the one holding it, carries the casefold attribute.
// Any failure of the question is a plain "no": the file systems that cannot answer it are the
// ones that do not fold.
bool casefold_directory(const std::string& path)
{
    struct stat st;
    std::string directory;
    if (::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
        directory = path;
    } else {
        directory = posix::extract_parent_path(path);
        if (directory.empty())
            directory = path[0] == '/' ? "/" : ".";
    }
    int const fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    // The kernel reads and writes an int here, whatever the request's declared size says.
    int flags = 0;
    int const rc = ::ioctl(fd, FS_IOC_GETFLAGS, &flags);
    ::close(fd);
    return rc == 0 && (flags & FS_CASEFOLD_FL) != 0;
}

} // namespace

volume_name_rule query_volume_name_rule(const std::string& path)
{
    struct statfs fs;
    if (::statfs(path.c_str(), &fs) != 0)
        posix::exception_dispatcher(errno, path, std::string());
    unsigned long const type = static_cast<unsigned long>(fs.f_type);
    if (linux_volume::decide(type, false) != volume_names_exact)
        return linux_volume::decide(type, false);
    return linux_volume::decide(type, casefold_directory(path));
}

} // namespace detail
} // namespace filesystem
} // namespace fl
