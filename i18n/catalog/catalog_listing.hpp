#ifndef QVI18N_I18N_CATALOG_CATALOG_LISTING_HPP
#define QVI18N_I18N_CATALOG_CATALOG_LISTING_HPP

// Walks of the resource tree shared by the removal of a root and the catalog maps.

#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <string>
#include <vector>

namespace fl {
namespace i18n {
namespace detail {

// The catalogs below `directory`, each as ":seg:...:stem" (a leading colon, so that the caller
// puts the component in front). Directories and "xml" files whose names aren't ASCII are passed
// over; a directory that is missing (or goes missing) ends its part of the listing with what it has.
std::vector<std::string> list_catalogs_below(const fl::filesystem::upath& directory);

// The ASCII of `text`, or false when a unit is not ASCII.
bool to_ascii(const ustring& text, std::string& ascii);

// True for the "." and ".." entries of a directory listing.
bool is_dot_entry(const ustring& name);

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
