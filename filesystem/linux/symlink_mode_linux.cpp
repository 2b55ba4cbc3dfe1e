#include "filesystem/posix/operations_posix_impl.hpp"

#include <fcntl.h>
#include <sys/stat.h>

namespace fl {
namespace filesystem {
namespace detail {

// Linux has no lchmod. fchmodat without following the link is the nearest call; the kernel
// refuses it for links (EOPNOTSUPP), and that refusal is the caller's answer.
int change_symlink_mode(const char* path, mode_t mode)
{
    return ::fchmodat(AT_FDCWD, path, mode, AT_SYMLINK_NOFOLLOW);
}

} // namespace detail
} // namespace filesystem
} // namespace fl
