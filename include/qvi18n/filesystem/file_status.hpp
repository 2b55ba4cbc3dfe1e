#ifndef QVI18N_FILESYSTEM_FILE_STATUS_HPP
#define QVI18N_FILESYSTEM_FILE_STATUS_HPP

#include <qvi18n/config.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <cstdint>

namespace fl {
namespace filesystem {

// What the file layer knows of one file: its type, its mode bits, three times and its size.
// The constants equal the st_mode bits, so a type or mode goes to and from the system as it is.
struct QVI18N_API file_status {
    // A missing file: type file_not_found, no permissions, no times, size 0.
    file_status();
    file_status(std::uint32_t type, std::uint32_t permissions, boost::posix_time::ptime const& access_time,
        boost::posix_time::ptime const& modification_time, boost::posix_time::ptime const& change_time,
        std::uint64_t size);

    std::uint32_t type;
    std::uint32_t permissions;
    boost::posix_time::ptime access_time;
    boost::posix_time::ptime modification_time;
    boost::posix_time::ptime change_time;
    std::uint64_t size;

    static const unsigned int file_not_found = 0xFFFF0000u;
    static const unsigned int file_type_mask = 0xF000u;
    static const unsigned int file_type_unknown = 0u;
    static const unsigned int file_type_auto = 1u;
    static const unsigned int regular_file = 0x8000u;
    static const unsigned int directory_file = 0x4000u;
    static const unsigned int symlink_file = 0xA000u;
    static const unsigned int block_file = 0x6000u;
    static const unsigned int character_file = 0x2000u;
    static const unsigned int fifo_file = 0x1000u;
    static const unsigned int socket_file = 0xC000u;
    static const unsigned int reparse_file = 0xE000u;

    static const unsigned int no_perms = 0u;
    static const unsigned int owner_read = 0x100u;
    static const unsigned int owner_write = 0x80u;
    static const unsigned int owner_exec = 0x40u;
    static const unsigned int owner_all = 0x1C0u;
    static const unsigned int group_read = 0x20u;
    static const unsigned int group_write = 0x10u;
    static const unsigned int group_exec = 0x8u;
    static const unsigned int group_all = 0x38u;
    static const unsigned int others_read = 0x4u;
    static const unsigned int others_write = 0x2u;
    static const unsigned int others_exec = 0x1u;
    static const unsigned int others_all = 0x7u;
    static const unsigned int perms_all = 0x1FFu;
    static const unsigned int set_uid_on_exec = 0x800u;
    static const unsigned int set_gid_on_exec = 0x400u;
    static const unsigned int sticky_bit = 0x200u;

    // Attribute bits of other platforms. They share the type bits and mean nothing here;
    // permissions() strips them.
    static const unsigned int archive_file = 0x1000u;
    static const unsigned int system_file = 0x2000u;
    static const unsigned int hidden_file = 0x4000u;
    static const unsigned int non_indexed_file = 0x8000u;

    static const unsigned int perms_mask = 0xFFFFu;
    static const unsigned int perms_unknown = 0xFFFFu;
    // Modifiers of permissions(): add to or remove from the current bits, act on a link itself.
    static const unsigned int perms_add = 0x10000u;
    static const unsigned int perms_remove = 0x20000u;
    static const unsigned int perms_symlink = 0x40000u;
};

// The cheap status of directory scans: type, modification time and size.
struct QVI18N_API file_status_light {
    // A missing file: type file_not_found, no time, size 0.
    file_status_light();
    file_status_light(
        std::uint32_t type, boost::posix_time::ptime const& modification_time, std::uint64_t size);

    std::uint32_t type;
    boost::posix_time::ptime modification_time;
    std::uint64_t size;
};

} // namespace filesystem
} // namespace fl

#endif
