#ifndef QVI18N_FILESYSTEM_POSIX_INSTALL_PATH_HPP
#define QVI18N_FILESYSTEM_POSIX_INSTALL_PATH_HPP

// The loader's side of the install location: from an address to the file of its module.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <string>

namespace fl {
namespace filesystem {
namespace posix {

// The installation root for the module holding address: its file resolved (links, "." and
// "..") and cut at the nearest bin/<platform tag>. Empty when the module or its file cannot be
// found.
QVI18N_API std::string get_base_path(void* address);

} // namespace posix
} // namespace filesystem

namespace i18n {
namespace detail {

// The file of the module that holds address, as the loader names it; empty for a null address
// or one outside any module.
QVI18N_API ustring get_module_path_from_address(void* address);

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
