#ifndef QVI18N_FILESYSTEM_TEMPORARY_HPP
#define QVI18N_FILESYSTEM_TEMPORARY_HPP

// Temporary files: where they go, names for them and opening one. Names are random rather than
// checked against the disk, so making one costs no file operation.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <cstdio>
#include <string>

namespace fl {
namespace filesystem {

// The first of $TMPDIR, $TMP, $TEMP, $TEMPDIR and "/tmp" that is a directory this process may
// read and write, as UTF-8 bytes. Read anew on every call; AccessDenied when none will do.
QVI18N_API std::string temp_dir_name();
// The same as text, in native form.
QVI18N_API fl::i18n::ustring temp_directory_name();

// directory + "/" + prefix + random part + "." + suffix, without a doubled separator or dot; an
// empty suffix adds nothing. directory must not be empty.
QVI18N_API fl::i18n::ustring tmpfile_name(
    const fl::i18n::ustring& directory, const fl::i18n::ustring& prefix, const fl::i18n::ustring& suffix);
// As tmpfile_name; an empty directory means temp_directory_name().
QVI18N_API fl::i18n::ustring tmpnam(
    const fl::i18n::ustring& directory, const fl::i18n::ustring& prefix, const fl::i18n::ustring& suffix);

// Creates and opens a new file under such a name for reading and writing, readable by the owner
// alone. The file is created afresh, never opened if something already lies at the name, so no
// one can plant a link there. On success name holds the name; after 11 failed names the result
// is null with errno 0 and name empty. Failures of the library become errno as fopen's do,
// leaving name as it stood; only a missing temporary directory (empty directory given) throws.
QVI18N_API std::FILE* tmpfile(fl::i18n::ustring& name, const fl::i18n::ustring& directory,
    const fl::i18n::ustring& prefix, const fl::i18n::ustring& suffix);

// A random (version 4) UUID in its 36-character lower-case text form.
QVI18N_API std::string uuid_gen();

namespace posix {

// The random part of a temporary name: four groups of four hexadecimal digits joined by "-".
QVI18N_API std::string get_temp_name();

} // namespace posix

} // namespace filesystem
} // namespace fl

#endif
