#ifndef QVI18N_FILESYSTEM_POSIX_DIR_HANDLE_HPP
#define QVI18N_FILESYSTEM_POSIX_DIR_HANDLE_HPP

#include <memory>

#include <dirent.h>

namespace fl {
namespace filesystem {
namespace posix {

// Closes a directory stream left open by an exception. Normal paths close through
// dir_entry_close, which reports a failure; here nothing may throw, and a close that fails
// has nothing left to lose.
struct dir_closer {
    void operator()(DIR* handle) const noexcept
    {
        if (handle)
            ::closedir(handle);
    }
};
typedef std::unique_ptr<DIR, dir_closer> dir_handle;

// Closes and releases the stream, reporting a failure.
void close_dir_handle(dir_handle& handle);

} // namespace posix
} // namespace filesystem
} // namespace fl

#endif
