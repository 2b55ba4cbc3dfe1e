#ifndef QVI18N_FILESYSTEM_POSIX_OPERATIONS_HPP
#define QVI18N_FILESYSTEM_POSIX_OPERATIONS_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/function.hpp>
#include <string>

struct stat;

namespace fl {
namespace filesystem {

// The layer on the system calls. Names are UTF-8; errno becomes an exception through
// exception_dispatcher.
namespace posix {

// Runs a stat-like call. ENOENT is a missing-file status; other failures throw, without a path.
QVI18N_API file_status perform_status(boost::function<int(struct stat*)> call);
// As perform_status, and EINVAL is a missing file too (names read from a directory).
QVI18N_API file_status perform_status_complete(boost::function<int(struct stat*)> call);

QVI18N_API file_status_light status_express_light(const std::string& path);
QVI18N_API bool access_check(const std::string& path, unsigned int mode);
// st_mode & 0xF000 of the path itself.
QVI18N_API unsigned int get_file_type(const std::string& path);
QVI18N_API std::string readlink(const std::string& path);
QVI18N_API std::string canonical(const std::string& path);
QVI18N_API std::string get_cwd();
QVI18N_API void modify_last_write_time(const std::string& path, const boost::posix_time::ptime& t);

// base + "/" + p, or p alone when it is absolute. Instantiated for char and char16_t; the
// working directory stands in for an empty base.
template <class Char>
QVI18N_API std::basic_string<Char> make_absolute(
    const std::basic_string<Char>& p, const std::basic_string<Char>& base);
extern template std::string make_absolute<char>(const std::string& p, const std::string& base);
extern template fl::i18n::ustring make_absolute<char16_t>(
    const fl::i18n::ustring& p, const fl::i18n::ustring& base);

// Cleans both texts, makes p absolute on base and resolves it.
QVI18N_API fl::i18n::ustring make_canonical(const fl::i18n::ustring& p, const fl::i18n::ustring& base);


// mkdir 0775; "/" is FileExistsError.
QVI18N_API void make_dir(const std::string& path);
// mkdir of every prefix (existing ones pass), then of the whole path, which must be new.
QVI18N_API void make_directories(const std::string& path);
// stat of link must fail with ENOENT or ENOTDIR, then symlink(target, link).
QVI18N_API void create_symbolic_link(
    const fl::i18n::ustring& target, const fl::i18n::ustring& link, unsigned int type);
// rmdir for a directory, unlink for a file or link, InvalidArgument for anything else.
QVI18N_API void remove(const std::string& path);
// As remove, and a directory goes with its contents.
QVI18N_API void remove_all(const std::string& path);
QVI18N_API void recursive_remove(const std::string& path);
// closedir; a null handle is left alone.
QVI18N_API void dir_entry_close(DIR* handle);

} // namespace posix

namespace darwin {

// Applies permissions() to a UTF-8 name; a link itself is changed only with perms_symlink.
QVI18N_API void change_perms(const std::string& path, unsigned int prms);

} // namespace darwin

} // namespace filesystem
} // namespace fl

#endif
