#ifndef QVI18N_FILESYSTEM_POSIX_USER_DATABASE_HPP
#define QVI18N_FILESYSTEM_POSIX_USER_DATABASE_HPP

// The home directory from a reentrant user-database call (getpwnam_r, getpwuid_r), with a buffer
// that grows while the entry does not fit. Kept apart so that a test can hand in its own call.

#include <pwd.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <vector>

namespace fl {
namespace filesystem {
namespace posix {
namespace detail {

// Enough for any real entry; a call that still wants more is taken for "no such user".
const std::size_t user_entry_buffer_limit = std::size_t(1) << 20;

// `lookup(entry, buffer, size, result)` is the reentrant call with its key bound. Empty when the
// call fails, finds no entry or the entry has no home.
template <class Lookup> std::string home_from_user_database(Lookup lookup)
{
    std::vector<char> buffer(1024);
    for (;;) {
        struct passwd entry;
        struct passwd* result = nullptr;
        const int error = lookup(&entry, buffer.data(), buffer.size(), &result);
        if (error == ERANGE && buffer.size() < user_entry_buffer_limit) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (error != 0 || !result || !result->pw_dir)
            return std::string();
        return result->pw_dir;
    }
}

} // namespace detail
} // namespace posix
} // namespace filesystem
} // namespace fl

#endif
