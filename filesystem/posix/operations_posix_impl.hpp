#ifndef QVI18N_FILESYSTEM_POSIX_OPERATIONS_POSIX_IMPL_HPP
#define QVI18N_FILESYSTEM_POSIX_OPERATIONS_POSIX_IMPL_HPP

// Private helpers of the status and operations layer.

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/mutex.hpp>

#include <ctime>
#include <string>

#include <sys/types.h>

namespace fl {
namespace filesystem {
namespace posix {

// stat: true if it succeeds, false for ENOENT and ENOTDIR, an exception otherwise.
bool exists(const char* path);

// A file time as a ptime. The seconds go through 32 signed bits first, as the file times of
// the library's callers always have, so times after 2038 wrap.
boost::posix_time::ptime file_time_to_ptime(std::time_t seconds);

} // namespace posix

namespace detail {

// The native text of an argument: a upath is native already, a ustring is cleaned on the way.
inline const fl::i18n::ustring& native_text(const upath& p)
{
    return p.get_path_name();
}

inline fl::i18n::ustring native_text(const fl::i18n::ustring& p)
{
    return make_native_form(p, true);
}

// Its UTF-8 bytes, for the system.
inline std::string native_bytes(const upath& p)
{
    return make_native_access_form(p.get_path_name());
}

inline std::string native_bytes(const fl::i18n::ustring& p)
{
    return make_native_access_form_with_cleanup(p);
}

// The one lock over the working directory: chdir, getcwd and realpath of a relative name.
boost::mutex& working_directory_mutex();

// Changes the mode of a symbolic link itself, the way the platform allows. Returns 0 or -1
// with errno set, like chmod.
int change_symlink_mode(const char* path, mode_t mode);

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
