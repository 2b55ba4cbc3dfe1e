#ifndef QVI18N_FILESYSTEM_OPERATIONS_HPP
#define QVI18N_FILESYSTEM_OPERATIONS_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/function.hpp>

#include <string>

struct stat;

namespace fl {
namespace filesystem {

// Each query comes in two forms. A upath is already native and goes to the system as it
// stands; a ustring is cleaned first (tilde expansion, separators), on every call. The
// const char16_t* forms take a literal as a ustring.

// Whether the path names something. A missing file or a non-directory on the way is false;
// any other failure (a directory that may not be searched, for one) throws.
QVI18N_API bool exists(const upath& p);
QVI18N_API bool exists(const fl::i18n::ustring& p);
inline bool exists(const char16_t* p)
{
    return exists(fl::i18n::ustring(p ? p : u""));
}

// Status of what the path names, following links. A missing file is a result, not a failure.
QVI18N_API file_status status(const upath& p);
QVI18N_API file_status status(const fl::i18n::ustring& p);
inline file_status status(const char16_t* p)
{
    return status(fl::i18n::ustring(p ? p : u""));
}

// Status of the path itself; a link is reported as a link.
QVI18N_API file_status symlink_status(const upath& p);
QVI18N_API file_status symlink_status(const fl::i18n::ustring& p);
inline file_status symlink_status(const char16_t* p)
{
    return symlink_status(fl::i18n::ustring(p ? p : u""));
}

// Type, modification time and size, for scans that have the name in native form already.
QVI18N_API file_status_light status_express_light(const fl::i18n::ustring& p);

// mode: 1 existence, 2 read, 4 write, 8 execute, or-ed; outside 1..15 throws InvalidArgument.
// A refusal is false; a missing file throws PathNotFound.
QVI18N_API bool access(const upath& p, unsigned int mode);
QVI18N_API bool access(const fl::i18n::ustring& p, unsigned int mode);
inline bool access(const char16_t* p, unsigned int mode)
{
    return access(fl::i18n::ustring(p ? p : u""), mode);
}

// Sets, adds (perms_add) or removes (perms_remove) mode bits; perms_symlink acts on a link
// itself. An empty path is left alone.
QVI18N_API void permissions(const upath& p, unsigned int prms);
QVI18N_API void permissions(const fl::i18n::ustring& p, unsigned int prms);
inline void permissions(const char16_t* p, unsigned int prms)
{
    permissions(fl::i18n::ustring(p ? p : u""), prms);
}

// Sets the modification time, in whole seconds held in 32 bits; the access time is kept.
// Read the time back through status().
QVI18N_API void last_write_time(const upath& p, const boost::posix_time::ptime& t);
QVI18N_API void last_write_time(const fl::i18n::ustring& p, const boost::posix_time::ptime& t);
inline void last_write_time(const char16_t* p, const boost::posix_time::ptime& t)
{
    last_write_time(fl::i18n::ustring(p ? p : u""), t);
}

// chdir; false for an empty path, an exception for a refusal.
QVI18N_API bool change_current_path(const upath& p);
QVI18N_API bool change_current_path(const fl::i18n::ustring& p);
inline bool change_current_path(const char16_t* p)
{
    return change_current_path(fl::i18n::ustring(p ? p : u""));
}

// base + "/" + p for a relative p, with no resolution of "." or ".."; an empty base means the
// working directory, a relative one throws InvalidArgument.
QVI18N_API upath absolute(const upath& p, const upath& base = upath());
QVI18N_API fl::i18n::ustring absolute(
    const fl::i18n::ustring& p, const fl::i18n::ustring& base = fl::i18n::ustring());
inline fl::i18n::ustring absolute(const char16_t* p, const fl::i18n::ustring& base = fl::i18n::ustring())
{
    return absolute(fl::i18n::ustring(p ? p : u""), base);
}

// The absolute path with links, "." and ".." resolved; the file must exist (PathNotFound).
QVI18N_API upath canonical(const upath& p, const upath& base = upath());
QVI18N_API fl::i18n::ustring canonical(
    const fl::i18n::ustring& p, const fl::i18n::ustring& base = fl::i18n::ustring());
inline fl::i18n::ustring canonical(const char16_t* p, const fl::i18n::ustring& base = fl::i18n::ustring())
{
    return canonical(fl::i18n::ustring(p ? p : u""), base);
}

// The target of a symbolic link, as stored in the link.
QVI18N_API upath read_symlink(const upath& p);
QVI18N_API fl::i18n::ustring read_symlink(const fl::i18n::ustring& p);
inline fl::i18n::ustring read_symlink(const char16_t* p)
{
    return read_symlink(fl::i18n::ustring(p ? p : u""));
}

// Whether both name the same file. Neither is cleaned. Two empty paths throw InvalidArgument,
// one empty path is false.
QVI18N_API bool equivalent(const upath& a, const upath& b);
QVI18N_API bool equivalent(const fl::i18n::ustring& a, const fl::i18n::ustring& b);
inline bool equivalent(const char16_t* a, const char16_t* b)
{
    return equivalent(fl::i18n::ustring(a ? a : u""), fl::i18n::ustring(b ? b : u""));
}

// The working directory. chdir, getcwd and realpath of a relative name share one process-wide
// lock, so that none of them sees the directory change halfway.
QVI18N_API upath get_current_path();
QVI18N_API std::string get_cwd();
QVI18N_API bool set_cwd(const std::string& path);
// realpath of a UTF-8 name; empty when it cannot be resolved.
QVI18N_API std::string get_full_pathname(const std::string& path);

template <class Char> struct operations_traits;

template <> struct QVI18N_API operations_traits<char> {
    static std::string get_current_working_directory_core();
};

template <> struct QVI18N_API operations_traits<char16_t> {
    // The working directory as text, cleaned like any other path.
    static fl::i18n::ustring get_current_working_directory_core();
};

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

} // namespace posix

namespace darwin {

// Applies permissions() to a UTF-8 name; a link itself is changed only with perms_symlink.
QVI18N_API void change_perms(const std::string& path, unsigned int prms);

} // namespace darwin

} // namespace filesystem
} // namespace fl

#endif
