#ifndef QVI18N_FILESYSTEM_OPERATIONS_HPP
#define QVI18N_FILESYSTEM_OPERATIONS_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/function.hpp>

#include <string>

#include <dirent.h>

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

// Making, removing, linking and copying. A upath goes to the system as it stands, a ustring is
// cleaned first; the const char16_t* forms take literals as ustrings.

// mkdir with mode 0775. An existing directory, "/" included, is FileExistsError; an empty path
// does nothing.
QVI18N_API void create_directory(const upath& p);
QVI18N_API void create_directory(const fl::i18n::ustring& p);
inline void create_directory(const char16_t* p)
{
    create_directory(fl::i18n::ustring(p ? p : u""));
}

// Creates the missing parents, then the path itself, which must be new (FileExistsError). A ".."
// element anywhere is refused (InvalidArgument) before anything is made.
QVI18N_API void create_directories(const upath& p);
QVI18N_API void create_directories(const fl::i18n::ustring& p);
inline void create_directories(const char16_t* p)
{
    create_directories(fl::i18n::ustring(p ? p : u""));
}

// A symbolic link at link pointing to target. type is file_type_auto, regular_file or
// directory_file (anything else is InvalidArgument); it makes no difference on this platform.
// An existing link target is FileExistsError.
QVI18N_API void create_symlink(const upath& target, const upath& link, unsigned int type);
QVI18N_API void create_symlink(
    const fl::i18n::ustring& target, const fl::i18n::ustring& link, unsigned int type);
inline void create_symlink(const char16_t* target, const char16_t* link, unsigned int type)
{
    create_symlink(fl::i18n::ustring(target ? target : u""), fl::i18n::ustring(link ? link : u""), type);
}
// The link itself, with no check of type or of empty names.
QVI18N_API void create_symbolic_link(
    const fl::i18n::ustring& target, const fl::i18n::ustring& link, unsigned int type);

// rename(2). Nothing happens if either path is empty. Moving across file systems is refused
// by the system (SystemError, EXDEV) and leaves the source where it was.
QVI18N_API void rename(const upath& from, const upath& to);
QVI18N_API void rename(const fl::i18n::ustring& from, const fl::i18n::ustring& to);
inline void rename(const char16_t* from, const char16_t* to)
{
    rename(fl::i18n::ustring(from ? from : u""), fl::i18n::ustring(to ? to : u""));
}

// Removes a file, a link or an empty directory. Devices, pipes and sockets are refused
// (InvalidArgument); a missing path is PathNotFound.
QVI18N_API void remove(const upath& p);
QVI18N_API void remove(const fl::i18n::ustring& p);
inline void remove(const char16_t* p)
{
    remove(fl::i18n::ustring(p ? p : u""));
}

// Removes a file, a link, or a directory with everything in it. Links inside are removed, never
// followed. A failure stops the removal where it is.
QVI18N_API void remove_all(const upath& p);
QVI18N_API void remove_all(const fl::i18n::ustring& p);
inline void remove_all(const char16_t* p)
{
    remove_all(fl::i18n::ustring(p ? p : u""));
}

// Every value is a valid copy_option: copy_file reads any but the two named as fail_if_exists.
enum copy_option : unsigned int { fail_if_exists = 0, overwrite_if_exists = 1 };

// Copies one file, link or directory (without its contents). An existing destination fails.
QVI18N_API void copy(const upath& from, const upath& to);
QVI18N_API void copy(const fl::i18n::ustring& from, const fl::i18n::ustring& to);
inline void copy(const char16_t* from, const char16_t* to)
{
    copy(fl::i18n::ustring(from ? from : u""), fl::i18n::ustring(to ? to : u""));
}

// Copies a regular file with its permission bits. option values other than the two named mean
// fail_if_exists. The destination is never left half-written: a new one that fails is removed,
// and an overwrite is written aside and renamed over the old file, so a failure keeps the old
// content. A file copied onto itself is FileExistsError, with the file untouched.
QVI18N_API void copy_file(const upath& from, const upath& to, copy_option option = fail_if_exists);
QVI18N_API void copy_file(
    const fl::i18n::ustring& from, const fl::i18n::ustring& to, copy_option option = fail_if_exists);
inline void copy_file(const char16_t* from, const char16_t* to, copy_option option = fail_if_exists)
{
    copy_file(fl::i18n::ustring(from ? from : u""), fl::i18n::ustring(to ? to : u""), option);
}
// The option as a plain number, 0 or 1 as above.
inline void copy_file(const upath& from, const upath& to, int option)
{
    copy_file(from, to, static_cast<copy_option>(static_cast<unsigned int>(option)));
}
inline void copy_file(const fl::i18n::ustring& from, const fl::i18n::ustring& to, int option)
{
    copy_file(from, to, static_cast<copy_option>(static_cast<unsigned int>(option)));
}
inline void copy_file(const char16_t* from, const char16_t* to, int option)
{
    copy_file(from, to, static_cast<copy_option>(static_cast<unsigned int>(option)));
}

// Makes to a directory with the permissions of the directory from; nothing inside is copied.
QVI18N_API void copy_directory(const upath& from, const upath& to);
QVI18N_API void copy_directory(const fl::i18n::ustring& from, const fl::i18n::ustring& to);
inline void copy_directory(const char16_t* from, const char16_t* to)
{
    copy_directory(fl::i18n::ustring(from ? from : u""), fl::i18n::ustring(to ? to : u""));
}

// A new link at to with the target of the link from. The ustring form does not clean its
// arguments: a tilde stays a tilde.
QVI18N_API void copy_symlink(const upath& from, const upath& to);
QVI18N_API void copy_symlink(const fl::i18n::ustring& from, const fl::i18n::ustring& to);
inline void copy_symlink(const char16_t* from, const char16_t* to)
{
    copy_symlink(fl::i18n::ustring(from ? from : u""), fl::i18n::ustring(to ? to : u""));
}

template <class Char> struct operations_traits;

template <> struct QVI18N_API operations_traits<char> {
    static std::string get_current_working_directory_core();
};

template <> struct QVI18N_API operations_traits<char16_t> {
    // The working directory as text, cleaned like any other path.
    static fl::i18n::ustring get_current_working_directory_core();
};


} // namespace filesystem
} // namespace fl

#endif
