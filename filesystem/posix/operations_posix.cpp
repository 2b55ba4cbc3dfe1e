#include <qvi18n/filesystem/operations.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/filesystem/date_time.hpp>

#include "filesystem/posix/operations_posix_impl.hpp"
#include <qvi18n/filesystem/detail/exceptions.hpp>
#include <qvi18n/filesystem/posix/operations.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/thread/once.hpp>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

namespace fl {
namespace filesystem {

using fl::i18n::MakeException;
using fl::i18n::ustring;

namespace {

struct free_deleter {
    void operator()(char* p) const noexcept { std::free(p); }
};
typedef std::unique_ptr<char, free_deleter> malloced_text;

std::uint32_t known_file_type(mode_t mode)
{
    std::uint32_t const type = mode & file_status::file_type_mask;
    switch (type) {
    case file_status::fifo_file:
    case file_status::character_file:
    case file_status::directory_file:
    case file_status::block_file:
    case file_status::regular_file:
    case file_status::symlink_file:
    case file_status::socket_file:
        return type;
    default:
        return file_status::file_type_unknown;
    }
}

file_status status_from_stat(struct stat const& st)
{
    return file_status(known_file_type(st.st_mode), st.st_mode & 0xFFFu,
        posix::file_time_to_ptime(st.st_atime), posix::file_time_to_ptime(st.st_mtime),
        posix::file_time_to_ptime(st.st_ctime), static_cast<std::uint64_t>(st.st_size));
}

file_status perform_status_impl(boost::function<int(struct stat*)> const& call, bool einval_is_missing)
{
    struct stat st;
    errno = 0;
    if (call(&st) == 0)
        return status_from_stat(st);
    int const error = errno;
    if (error == ENOENT || (einval_is_missing && error == EINVAL))
        return file_status();
    posix::exception_dispatcher(error, std::string(), std::string());
}

// Published atomically beside the once flag, so that later callers need only the acquire load.
std::atomic<boost::mutex*> cwd_mutex {nullptr};
boost::once_flag cwd_mutex_once = BOOST_ONCE_INIT;

void make_cwd_mutex()
{
    cwd_mutex.store(new boost::mutex, std::memory_order_release);
}

} // namespace

boost::mutex& detail::working_directory_mutex()
{
    boost::mutex* mutex = cwd_mutex.load(std::memory_order_acquire);
    if (!mutex) {
        boost::call_once(cwd_mutex_once, &make_cwd_mutex);
        mutex = cwd_mutex.load(std::memory_order_acquire);
    }
    return *mutex;
}

namespace posix {

boost::posix_time::ptime file_time_to_ptime(std::time_t seconds)
{
    static boost::posix_time::ptime const epoch(boost::gregorian::date(1970, 1, 1));
    std::int32_t const wrapped = static_cast<std::int32_t>(static_cast<std::uint32_t>(seconds));
    return epoch + boost::posix_time::microseconds(static_cast<std::int64_t>(wrapped) * 1000000);
}

bool exists(const char* path)
{
    struct stat st;
    if (::stat(path, &st) == 0)
        return true;
    int const error = errno;
    if (error == ENOENT || error == ENOTDIR)
        return false;
    exception_dispatcher(error, path, std::string());
}

file_status perform_status(boost::function<int(struct stat*)> call)
{
    return perform_status_impl(call, false);
}

file_status perform_status_complete(boost::function<int(struct stat*)> call)
{
    return perform_status_impl(call, true);
}

file_status_light status_express_light(const std::string& path)
{
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) {
        int const error = errno;
        if (error == ENOENT || error == EINVAL)
            return file_status_light();
        exception_dispatcher(error, path, std::string());
    }
    return file_status_light(st.st_mode & file_status::file_type_mask, file_time_to_ptime(st.st_mtime),
        static_cast<std::uint64_t>(st.st_size));
}

bool access_check(const std::string& path, unsigned int mode)
{
    int how = F_OK;
    if (mode & 8u)
        how |= X_OK;
    if (mode & 4u)
        how |= W_OK;
    if (mode & 2u)
        how |= R_OK;
    if (::access(path.c_str(), how) == 0)
        return true;
    int const error = errno;
    if (error == EACCES) {
        if (!(mode & 1u))
            return false;
        // Asked whether it exists as well: a refused file that stat still sees is a plain no,
        // while one that cannot even be looked at leaves existence open.
        struct stat st;
        if (::stat(path.c_str(), &st) == 0)
            return false;
        throw MakeException(AccessDenied());
    }
    if (error == EROFS && (mode & 4u))
        return false;
    exception_dispatcher(error, path, std::string());
}

unsigned int get_file_type(const std::string& path)
{
    struct stat st;
    if (::lstat(path.c_str(), &st) != 0) {
        int const error = errno;
        if (error == ENOENT)
            throw MakeException(PathNotFound());
        exception_dispatcher(error, path, std::string());
    }
    return st.st_mode & file_status::file_type_mask;
}

std::string readlink(const std::string& path)
{
    std::vector<char> buffer(1024);
    for (;;) {
        ssize_t const length = ::readlink(path.c_str(), buffer.data(), buffer.size());
        if (length < 0)
            exception_dispatcher(errno, path, std::string());
        // A full buffer may hold a cut target; only a shorter answer is known to be whole.
        if (static_cast<std::size_t>(length) < buffer.size())
            return std::string(buffer.data(), static_cast<std::size_t>(length));
        buffer.resize(buffer.size() + 1024);
    }
}

std::string canonical(const std::string& path)
{
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) {
        int const error = errno;
        if (error == ENOENT || error == ENOTDIR)
            throw MakeException(PathNotFound());
        exception_dispatcher(error, path, std::string());
    }
    malloced_text resolved;
    int error = 0;
    if (!path.empty() && path[0] == '/') {
        resolved.reset(::realpath(path.c_str(), nullptr));
        error = errno;
    } else {
        // A relative name depends on the working directory; keep it still meanwhile.
        boost::mutex::scoped_lock const lock(detail::working_directory_mutex());
        resolved.reset(::realpath(path.c_str(), nullptr));
        error = errno;
    }
    if (!resolved)
        exception_dispatcher(error, path, std::string());
    return std::string(resolved.get());
}

std::string get_cwd()
{
    char buffer[1024];
    if (::getcwd(buffer, sizeof buffer) != nullptr)
        return std::string(buffer);
    int error = errno;
    if (error == ERANGE) {
        // Deeper than the stack buffer: let the C library size it.
        malloced_text const text(::getcwd(nullptr, 0));
        if (text)
            return std::string(text.get());
        error = errno;
    }
    exception_dispatcher(error, std::string(), std::string());
}

void modify_last_write_time(const std::string& path, const boost::posix_time::ptime& t)
{
    struct stat st;
    if (::stat(path.c_str(), &st) != 0)
        exception_dispatcher(errno, std::string(), std::string());
    struct utimbuf times;
    times.actime = st.st_atime;
    times.modtime = fl::i18n::date_time::ptime_to_time_t(t);
    if (::utime(path.c_str(), &times) != 0)
        exception_dispatcher(errno, std::string(), std::string());
}

template <class Char>
std::basic_string<Char> make_absolute(const std::basic_string<Char>& p, const std::basic_string<Char>& base)
{
    if (!p.empty() && p[0] == Char('/'))
        return p;
    std::basic_string<Char> result
        = base.empty() ? operations_traits<Char>::get_current_working_directory_core() : base;
    if (result.empty() || result[0] != Char('/'))
        throw MakeException(InvalidArgument());
    if (result[result.size() - 1] != Char('/'))
        result += Char('/');
    result += p;
    return result;
}

template std::string make_absolute<char>(const std::string& p, const std::string& base);
template ustring make_absolute<char16_t>(const ustring& p, const ustring& base);

ustring make_canonical(const ustring& p, const ustring& base)
{
    std::string const native_p = detail::make_native_access_form_with_cleanup(p);
    std::string const native_base
        = base.empty() ? std::string() : detail::make_native_access_form_with_cleanup(base);
    return detail::from_filesystem(canonical(make_absolute<char>(native_p, native_base)));
}

} // namespace posix

namespace darwin {

void change_perms(const std::string& path, unsigned int prms)
{
    bool const on_link = (prms & file_status::perms_symlink) != 0;
    char const* const name = path.c_str();
    file_status const current = posix::perform_status(
        [name, on_link](struct stat* st) { return on_link ? ::lstat(name, st) : ::stat(name, st); });

    // Type bits have no business in a mode; the attribute constants of other platforms live there.
    unsigned int mode = prms & file_status::perms_mask & ~file_status::file_type_mask;
    if (prms & file_status::perms_add)
        mode |= current.permissions;
    else if (prms & file_status::perms_remove)
        mode = current.permissions & ~mode;

    int const result = (current.type == file_status::symlink_file && on_link)
        ? detail::change_symlink_mode(name, static_cast<mode_t>(mode))
        : ::chmod(name, static_cast<mode_t>(mode));
    if (result != 0)
        posix::exception_dispatcher(errno, std::string(), std::string());
}

} // namespace darwin

std::string operations_traits<char>::get_current_working_directory_core()
{
    return get_cwd();
}

ustring operations_traits<char16_t>::get_current_working_directory_core()
{
    return detail::make_native_form(detail::from_filesystem(get_cwd()), true);
}

std::string get_cwd()
{
    boost::mutex::scoped_lock const lock(detail::working_directory_mutex());
    return posix::get_cwd();
}

bool set_cwd(const std::string& path)
{
    boost::mutex::scoped_lock const lock(detail::working_directory_mutex());
    if (::chdir(path.c_str()) != 0)
        posix::exception_dispatcher(errno, path, std::string());
    return true;
}

std::string get_full_pathname(const std::string& path)
{
    boost::mutex::scoped_lock const lock(detail::working_directory_mutex());
    malloced_text const resolved(::realpath(path.c_str(), nullptr));
    return resolved ? std::string(resolved.get()) : std::string();
}

} // namespace filesystem
} // namespace fl
