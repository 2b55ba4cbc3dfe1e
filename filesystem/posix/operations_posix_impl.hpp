#ifndef QVI18N_FILESYSTEM_POSIX_OPERATIONS_POSIX_IMPL_HPP
#define QVI18N_FILESYSTEM_POSIX_OPERATIONS_POSIX_IMPL_HPP

// Private helpers of the status and operations layer.

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

// The one lock over the working directory: chdir, getcwd and realpath of a relative name.
boost::mutex& working_directory_mutex();

// Changes the mode of a symbolic link itself, the way the platform allows. Returns 0 or -1
// with errno set, like chmod.
int change_symlink_mode(const char* path, mode_t mode);

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
