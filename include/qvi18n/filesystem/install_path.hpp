#ifndef QVI18N_FILESYSTEM_INSTALL_PATH_HPP
#define QVI18N_FILESYSTEM_INSTALL_PATH_HPP

// Where this library is installed. The library lies in <root>/bin/<platform tag>/, and its data
// is found from <root>.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <string>

namespace fl {
namespace filesystem {

// The installation root of this library's own file, computed on the first call and kept for
// the life of the process. Empty when the file cannot be found; a file system that cannot be
// asked about the file's volume throws, and the next call tries again.
QVI18N_API fl::i18n::ustring get_install_path();

// The installation root of the module that holds address (UTF-8), empty when there is none.
QVI18N_API std::string get_base_path(void* address);

// The directory above the nearest "bin/<platform tag>" pair on the way up from path; empty
// when the path holds no such pair. Names compare without case only on a volume that ignores
// case. path must be reachable: statfs failing on it throws.
template <class Char> std::basic_string<Char> chop_off_path_name(const std::basic_string<Char>& path);

template <> QVI18N_API std::string chop_off_path_name<char>(const std::string& path);

} // namespace filesystem
} // namespace fl

#endif
