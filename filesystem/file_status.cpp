#include <qvi18n/filesystem/file_status.hpp>

namespace fl {
namespace filesystem {

file_status::file_status()
    : type(file_not_found)
    , permissions(no_perms)
    , size(0)
{ }

file_status::file_status(std::uint32_t type_, std::uint32_t permissions_,
    boost::posix_time::ptime const& access_time_, boost::posix_time::ptime const& modification_time_,
    boost::posix_time::ptime const& change_time_, std::uint64_t size_)
    : type(type_)
    , permissions(permissions_)
    , access_time(access_time_)
    , modification_time(modification_time_)
    , change_time(change_time_)
    , size(size_)
{ }

file_status_light::file_status_light()
    : type(file_status::file_not_found)
    , size(0)
{ }

file_status_light::file_status_light(
    std::uint32_t type_, boost::posix_time::ptime const& modification_time_, std::uint64_t size_)
    : type(type_)
    , modification_time(modification_time_)
    , size(size_)
{ }

// Out-of-class definitions give every constant an exported address as well as its value.
const unsigned int file_status::file_not_found;
const unsigned int file_status::file_type_mask;
const unsigned int file_status::file_type_unknown;
const unsigned int file_status::file_type_auto;
const unsigned int file_status::regular_file;
const unsigned int file_status::directory_file;
const unsigned int file_status::symlink_file;
const unsigned int file_status::block_file;
const unsigned int file_status::character_file;
const unsigned int file_status::fifo_file;
const unsigned int file_status::socket_file;
const unsigned int file_status::reparse_file;
const unsigned int file_status::no_perms;
const unsigned int file_status::owner_read;
const unsigned int file_status::owner_write;
const unsigned int file_status::owner_exec;
const unsigned int file_status::owner_all;
const unsigned int file_status::group_read;
const unsigned int file_status::group_write;
const unsigned int file_status::group_exec;
const unsigned int file_status::group_all;
const unsigned int file_status::others_read;
const unsigned int file_status::others_write;
const unsigned int file_status::others_exec;
const unsigned int file_status::others_all;
const unsigned int file_status::perms_all;
const unsigned int file_status::set_uid_on_exec;
const unsigned int file_status::set_gid_on_exec;
const unsigned int file_status::sticky_bit;
const unsigned int file_status::archive_file;
const unsigned int file_status::system_file;
const unsigned int file_status::hidden_file;
const unsigned int file_status::non_indexed_file;
const unsigned int file_status::perms_mask;
const unsigned int file_status::perms_unknown;
const unsigned int file_status::perms_add;
const unsigned int file_status::perms_remove;
const unsigned int file_status::perms_symlink;

} // namespace filesystem
} // namespace fl
