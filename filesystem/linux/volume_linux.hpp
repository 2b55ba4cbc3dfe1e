#ifndef QVI18N_FILESYSTEM_LINUX_VOLUME_LINUX_HPP
#define QVI18N_FILESYSTEM_LINUX_VOLUME_LINUX_HPP

// The decision of the Linux volume query, apart from the system calls that feed it.

#include "filesystem/volume.hpp"

namespace fl {
namespace filesystem {
namespace detail {
namespace linux_volume {

// statfs f_type of the file systems that compare names without case (and, for Unicode names,
// after normalisation) whatever the directory says. ntfs-3g runs over FUSE and cannot be told
// apart from other FUSE file systems, so it counts as exact.
constexpr unsigned long vfat_magic = 0x4d44;       // vfat and msdos
constexpr unsigned long exfat_magic = 0x2011BAB0;
constexpr unsigned long ntfs_magic = 0x5346544e;   // the old read-only driver
constexpr unsigned long ntfs3_magic = 0x7366746e;

// Linux file systems never normalise names by themselves; those that fold case (a casefolded
// ext4 or f2fs directory, the Windows-born file systems) fold and normalise together, so the
// middle answer, normalised but case-sensitive, never comes from here.
inline volume_name_rule decide(unsigned long fs_type, bool casefold_directory)
{
    switch (fs_type) {
    case vfat_magic:
    case exfat_magic:
    case ntfs_magic:
    case ntfs3_magic:
        return volume_names_normalized_case_insensitive;
    default:
        return casefold_directory ? volume_names_normalized_case_insensitive : volume_names_exact;
    }
}

} // namespace linux_volume
} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
