#ifndef QVI18N_I18N_CATALOG_CATALOG_MAP_WRITER_HPP
#define QVI18N_I18N_CATALOG_CATALOG_MAP_WRITER_HPP

// Generation of the catalog maps that completion reads. The one place that knows how a map is
// made: the build runs write_catalog_maps over the library's own catalogs (tools/catalog_maps),
// `qvi18n map ROOT` calls it for any root, and the catalog checker compares each map on disk
// with make_catalog_map(list_component_catalogs(...)) to tell that it is present and up to date.
//
// One map per component: <root>/derived/share/resources/<component>/catalog_map.xml names every
// catalog of the component found in any of its locale directories, sorted, so that the same tree
// always gives the same bytes.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>

#include <string>
#include <vector>

namespace fl {
namespace i18n {

// The resource directory of `root`: root/resources when that is a directory, else `root` itself
// when it is one (a path that already ends in "resources").
QVI18N_API fl::filesystem::upath catalog_resource_directory(const fl::filesystem::upath& root);

// Where the map of `component` lies for the resource directory `resources`.
QVI18N_API fl::filesystem::upath catalog_map_path(
    const fl::filesystem::upath& resources, const std::string& component);

// The components of `resources` that can name catalogs (directories with an identifier for a
// name), sorted.
QVI18N_API std::vector<std::string> list_catalog_components(const fl::filesystem::upath& resources);

// Every catalog of `component` in any locale directory of `resources`, sorted and unique, such
// as "fl:i18n" and "fl:i18n:date_time". Files whose names can't make an identifier are left out.
QVI18N_API std::vector<std::string> list_component_catalogs(
    const fl::filesystem::upath& resources, const std::string& component);

// The whole text of a map naming `catalogs`, in the order given.
QVI18N_API std::string make_catalog_map(const std::vector<std::string>& catalogs);

// Writes the map of every component of catalog_resource_directory(root) that has catalogs, and
// returns the maps' paths. A map that already holds the right bytes is left alone; any other is
// written beside itself and renamed into place, so a reader never sees half a map. File-system
// failures are the file system's exceptions; MessageCatalog::ResDirNotPresent when `root` has no
// resource directory.
QVI18N_API std::vector<fl::filesystem::upath> write_catalog_maps(const fl::filesystem::upath& root);

} // namespace i18n
} // namespace fl

#endif
