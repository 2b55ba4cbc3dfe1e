#include <qvi18n/filesystem/operations.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>

#include "filesystem/posix/operations_posix_impl.hpp"
#include <qvi18n/filesystem/detail/exceptions.hpp>
#include <qvi18n/filesystem/posix/operations.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <boost/filesystem/operations.hpp>
#include <boost/system/error_code.hpp>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

namespace fl {
namespace filesystem {

using detail::native_bytes;
using detail::native_text;
using fl::i18n::MakeException;
using fl::i18n::ustring;

namespace {

namespace bfs = boost::filesystem;

void throw_if_empty(bool either_empty)
{
    if (either_empty)
        throw MakeException(InvalidArgument());
}

void dispatch(const boost::system::error_code& error, const std::string& from)
{
    if (error)
        posix::exception_dispatcher(error.value(), from, std::string());
}

// Whether ".." stands as a whole element anywhere in the text.
bool climbs(const ustring& p)
{
    for (ustring::size_type at = p.find(u".."); at != ustring::npos; at = p.find(u"..", at + 1)) {
        bool const starts = at == 0 || p[at - 1] == u'/';
        bool const ends = at + 2 == p.size() || p[at + 2] == u'/';
        if (starts && ends)
            return true;
    }
    return false;
}

bool same_file(struct stat const& a, struct stat const& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The file a write to `to` lands in: a link is followed, so that overwriting through a link
// replaces what it points to, as writing through it would.
std::string write_target(const std::string& to)
{
    struct stat st;
    if (::lstat(to.c_str(), &st) != 0 || !S_ISLNK(st.st_mode))
        return to;
    std::unique_ptr<char, void (*)(void*)> const resolved(::realpath(to.c_str(), nullptr), &std::free);
    return resolved ? std::string(resolved.get()) : to;
}

// Overwrites an existing file without ever exposing a half-written one: the copy is made under
// a fresh name beside the target and renamed over it, so a failure at any point leaves the
// old content in place.
void copy_aside_and_replace(const std::string& from, const std::string& to)
{
    std::string const target = write_target(to);
    std::string::size_type const slash = target.rfind('/');
    std::string const directory = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
    boost::system::error_code error;
    std::string aside;
    for (int attempt = 0; attempt < 100; ++attempt) {
        aside = directory + bfs::unique_path(".qv%%%%%%%%", error).native();
        dispatch(error, from);
        bfs::copy_file(bfs::path(from), bfs::path(aside), bfs::copy_options::none, error);
        if (error != boost::system::errc::file_exists)
            break;
    }
    if (error) {
        if (error != boost::system::errc::file_exists)
            ::unlink(aside.c_str());
        dispatch(error, from);
    }
    if (std::rename(aside.c_str(), target.c_str()) != 0) {
        int const rename_error = errno;
        ::unlink(aside.c_str());
        posix::exception_dispatcher(rename_error, from, to);
    }
}

void copy_file_bytes(const std::string& from, const std::string& to, copy_option option)
{
    bool const overwrite = option == overwrite_if_exists;
    struct stat from_st;
    if (::stat(from.c_str(), &from_st) != 0)
        posix::exception_dispatcher(errno, from, to);
    struct stat to_st;
    bool const to_exists = ::stat(to.c_str(), &to_st) == 0;
    // Boost opens the destination with O_TRUNC before it notices that it is the source, and
    // the file would be lost; refuse the copy onto itself before anything is opened.
    if (to_exists && same_file(from_st, to_st))
        throw MakeException(FileExistsError());
    if (to_exists && overwrite && S_ISREG(from_st.st_mode) && S_ISREG(to_st.st_mode)) {
        copy_aside_and_replace(from, to);
        return;
    }
    boost::system::error_code error;
    bfs::copy_file(bfs::path(from), bfs::path(to),
        overwrite ? bfs::copy_options::overwrite_existing : bfs::copy_options::none, error);
    if (error && !to_exists && error != boost::system::errc::file_exists) {
        // A new destination that failed halfway is ours to take back; an EEXIST means
        // someone else made it meanwhile, and it is theirs.
        ::unlink(to.c_str());
    }
    dispatch(error, from);
}

template <class P> void create_directory_impl(const P& p)
{
    if (!p.empty())
        posix::make_dir(native_bytes(p));
}

template <class P> void create_directories_impl(const P& p)
{
    if (p.empty())
        return;
    auto const& text = native_text(p);
    if (climbs(text))
        throw MakeException(InvalidArgument());
    posix::make_directories(detail::make_native_access_form(text));
}

template <class P> void create_symlink_impl(const P& target, const P& link, unsigned int type)
{
    throw_if_empty(target.empty() || link.empty());
    if (type != file_status::file_type_auto && type != file_status::regular_file
        && type != file_status::directory_file)
        throw MakeException(InvalidArgument());
    posix::create_symbolic_link(native_text(target), native_text(link), type);
}

template <class P> void rename_impl(const P& from, const P& to)
{
    if (from.empty() || to.empty())
        return;
    std::string const native_from = native_bytes(from);
    std::string const native_to = native_bytes(to);
    if (std::rename(native_from.c_str(), native_to.c_str()) != 0)
        posix::exception_dispatcher(errno, native_from, native_to);
}

template <class P> void remove_impl(const P& p)
{
    if (!p.empty())
        posix::remove(native_bytes(p));
}

template <class P> void remove_all_impl(const P& p)
{
    if (!p.empty())
        posix::remove_all(native_bytes(p));
}

void copy_bytes(const std::string& from, const std::string& to)
{
    struct stat st;
    if (::lstat(from.c_str(), &st) == 0 && S_ISREG(st.st_mode)) {
        copy_file_bytes(from, to, fail_if_exists);
        return;
    }
    boost::system::error_code error;
    bfs::copy(bfs::path(from), bfs::path(to), error);
    dispatch(error, from);
}

void copy_directory_bytes(const std::string& from, const std::string& to)
{
    boost::system::error_code error;
    bfs::copy_directory(bfs::path(from), bfs::path(to), error);
    dispatch(error, from);
}

void copy_symlink_bytes(const std::string& from, const std::string& to)
{
    boost::system::error_code error;
    bfs::copy_symlink(bfs::path(from), bfs::path(to), error);
    dispatch(error, from);
}

copy_option known_option(copy_option option)
{
    return static_cast<unsigned int>(option) < 2u ? option : fail_if_exists;
}

} // namespace

void create_directory(const upath& p)
{
    create_directory_impl(p);
}

void create_directory(const ustring& p)
{
    create_directory_impl(p);
}

void create_directories(const upath& p)
{
    create_directories_impl(p);
}

void create_directories(const ustring& p)
{
    create_directories_impl(p);
}

void create_symlink(const upath& target, const upath& link, unsigned int type)
{
    create_symlink_impl(target, link, type);
}

void create_symlink(const ustring& target, const ustring& link, unsigned int type)
{
    create_symlink_impl(target, link, type);
}

void create_symbolic_link(const ustring& target, const ustring& link, unsigned int type)
{
    posix::create_symbolic_link(target, link, type);
}

void rename(const upath& from, const upath& to)
{
    rename_impl(from, to);
}

void rename(const ustring& from, const ustring& to)
{
    rename_impl(from, to);
}

void remove(const upath& p)
{
    remove_impl(p);
}

void remove(const ustring& p)
{
    remove_impl(p);
}

void remove_all(const upath& p)
{
    remove_all_impl(p);
}

void remove_all(const ustring& p)
{
    remove_all_impl(p);
}

void copy(const upath& from, const upath& to)
{
    throw_if_empty(from.empty() || to.empty());
    copy_bytes(native_bytes(from), native_bytes(to));
}

void copy(const ustring& from, const ustring& to)
{
    throw_if_empty(from.empty() || to.empty());
    copy_bytes(native_bytes(from), native_bytes(to));
}

void copy_file(const upath& from, const upath& to, copy_option option)
{
    throw_if_empty(from.empty() || to.empty());
    copy_file_bytes(native_bytes(from), native_bytes(to), known_option(option));
}

void copy_file(const ustring& from, const ustring& to, copy_option option)
{
    throw_if_empty(from.empty() || to.empty());
    copy_file_bytes(native_bytes(from), native_bytes(to), known_option(option));
}

void copy_directory(const upath& from, const upath& to)
{
    throw_if_empty(from.empty() || to.empty());
    copy_directory_bytes(native_bytes(from), native_bytes(to));
}

void copy_directory(const ustring& from, const ustring& to)
{
    throw_if_empty(from.empty() || to.empty());
    copy_directory_bytes(native_bytes(from), native_bytes(to));
}

void copy_symlink(const upath& from, const upath& to)
{
    throw_if_empty(from.empty() || to.empty());
    copy_symlink_bytes(native_bytes(from), native_bytes(to));
}

void copy_symlink(const ustring& from, const ustring& to)
{
    // Taken as given: no clean-up, so a tilde stays a tilde.
    throw_if_empty(from.empty() || to.empty());
    copy_symlink_bytes(detail::make_native_access_form(from), detail::make_native_access_form(to));
}

} // namespace filesystem
} // namespace fl
