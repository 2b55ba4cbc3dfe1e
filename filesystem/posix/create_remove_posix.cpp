#include <qvi18n/filesystem/operations.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/posix/operations.hpp>

#include "filesystem/posix/dir_handle.hpp"
#include <qvi18n/filesystem/detail/exceptions.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace fl {
namespace filesystem {

using fl::i18n::MakeException;

namespace posix {

namespace {

mode_t const new_directory_mode = 0775;

void unlink_or_throw(const std::string& path)
{
    if (::unlink(path.c_str()) != 0)
        exception_dispatcher(errno, path, std::string());
}

void rmdir_or_throw(const std::string& path)
{
    if (::rmdir(path.c_str()) != 0)
        exception_dispatcher(errno, path, std::string());
}

bool is_dot_or_dot_dot(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// The names of a directory, without "." and "..". They are read whole and the stream closed
// before anything is removed, so that a deep tree holds one descriptor at a time and not one
// per level.
std::vector<std::string> directory_names(const std::string& path)
{
    dir_handle handle(::opendir(path.c_str()));
    if (!handle)
        exception_dispatcher(errno, path, std::string());
    std::vector<std::string> names;
    for (;;) {
        // readdir, not the deprecated readdir_r: glibc's readdir is safe as long as no two
        // threads share one stream, and this stream is ours alone.
        errno = 0;
        struct dirent const* const entry = ::readdir(handle.get());
        if (!entry) {
            if (errno != 0)
                exception_dispatcher(errno, path, std::string());
            break;
        }
        if (!is_dot_or_dot_dot(entry->d_name))
            names.emplace_back(entry->d_name);
    }
    close_dir_handle(handle);
    return names;
}

} // namespace

void close_dir_handle(dir_handle& handle)
{
    dir_entry_close(handle.release());
}

void dir_entry_close(DIR* handle)
{
    if (handle && ::closedir(handle) != 0)
        exception_dispatcher(errno, std::string(), std::string());
}

void make_dir(const std::string& path)
{
    if (path == "/")
        throw MakeException(FileExistsError());
    if (::mkdir(path.c_str(), new_directory_mode) != 0)
        exception_dispatcher(errno, path, std::string());
}

void make_directories(const std::string& path)
{
    if (path == "/")
        throw MakeException(FileExistsError());
    for (std::string::size_type slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        std::string const prefix(path, 0, slash);
        if (::mkdir(prefix.c_str(), new_directory_mode) != 0 && errno != EEXIST)
            exception_dispatcher(errno, prefix, std::string());
    }
    // The last element must be new: an existing one is a failure like any other.
    make_dir(path);
}

void create_symbolic_link(const fl::i18n::ustring& target, const fl::i18n::ustring& link, unsigned int /*type*/)
{
    std::string const native_target = detail::make_native_access_form(target);
    std::string const native_link = detail::make_native_access_form(link);
    struct stat st;
    if (::stat(native_link.c_str(), &st) == 0)
        throw MakeException(FileExistsError());
    int const error = errno;
    if (error != ENOENT && error != ENOTDIR)
        exception_dispatcher(error, native_link, std::string());
    if (::symlink(native_target.c_str(), native_link.c_str()) != 0)
        exception_dispatcher(errno, native_link, std::string());
}

namespace {

// A file or a link is unlinked, a directory handed on; anything else is refused.
void remove_by_type(const std::string& path, void (*remove_directory)(const std::string&))
{
    switch (get_file_type(path)) {
    case file_status::directory_file:
        remove_directory(path);
        break;
    case file_status::symlink_file: // the link goes, never what it points to
    case file_status::regular_file:
        unlink_or_throw(path);
        break;
    default:
        throw MakeException(InvalidArgument());
    }
}

} // namespace

void remove(const std::string& path)
{
    remove_by_type(path, &rmdir_or_throw);
}

void remove_all(const std::string& path)
{
    remove_by_type(path, &recursive_remove);
}

void recursive_remove(const std::string& path)
{
    std::string child = path;
    if (child.empty() || child.back() != '/')
        child += '/';
    std::string::size_type const base_length = child.size();
    for (std::string const& name : directory_names(path)) {
        child.resize(base_length);
        child += name;
        remove_by_type(child, &recursive_remove);
    }
    rmdir_or_throw(path);
}

} // namespace posix
} // namespace filesystem
} // namespace fl
