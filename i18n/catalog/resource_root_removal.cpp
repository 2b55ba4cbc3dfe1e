#include "i18n/catalog/catalog_cache.hpp"
#include "i18n/catalog/catalog_listing.hpp"

#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/operations.hpp>

#include <boost/exception/exception.hpp>

#include <algorithm>
#include <exception>

namespace fl {
namespace i18n {

namespace {

bool same_root(const detail::resource_root_list::value_type& root, const ustring& text, bool added)
{
    return root.second == added && root.first.get_path_name() == text;
}

// Flushes every catalog whose English file lies under `resources`: only the "en" tree is
// consulted, so a catalog that exists in another locale alone stays cached.
void flush_catalogs_of(const fl::filesystem::upath& resources)
{
    fl::filesystem::upath_directory_iterator end;
    for (fl::filesystem::upath_directory_iterator it(resources); it != end; ++it) {
        const ustring name = it->filename();
        if (detail::is_dot_entry(name) || it->type() != fl::filesystem::file_status::directory_file) {
            continue;
        }
        std::string component;
        if (!detail::to_ascii(fl::filesystem::detail::extract_stem(name), component)) {
            continue;
        }
        fl::filesystem::upath english(resources);
        english /= name;
        english /= u"en";
        for (const std::string& rest : detail::list_catalogs_below(english)) {
            MessageCatalog::FlushCatalogFromCache(CatalogID(component + rest));
        }
    }
}

} // namespace

void MessageCatalog::remove_additional_resource_location(const ustring& root)
{
    if (root.empty()) {
        throw boost::enable_current_exception(InvalidPathSupplied());
    }
    detail::catalog_lock lock;
    detail::resource_root_list& stored = detail::resource_roots();
    if (stored.empty()) {
        throw boost::enable_current_exception(MessageCatalogNotInitialized());
    }
    fl::filesystem::upath resources(root);
    resources /= u"resources";
    const ustring& text = resources.get_path_name();
    const auto is_added = [&](const detail::resource_root_list::value_type& r) { return same_root(r, text, true); };
    if (std::none_of(stored.begin(), stored.end(), is_added)) {
        throw boost::enable_current_exception(ResourcePathNotFound());
    }

    // A directory that is also a base root keeps supplying the same catalogs: nothing to flush.
    const bool also_base = std::any_of(stored.begin(), stored.end(),
        [&](const detail::resource_root_list::value_type& r) { return same_root(r, text, false); });
    if (!also_base) {
        bool is_directory = false;
        try {
            is_directory = fl::filesystem::status(resources).type == fl::filesystem::file_status::directory_file;
        } catch (const std::exception&) { }
        if (!is_directory) {
            throw boost::enable_current_exception(ResDirNotPresent());
        }
        try {
            flush_catalogs_of(resources);
        } catch (const std::exception& e) {
            throw boost::enable_current_exception(ResPathRemovalUnknownError(e.what()));
        }
    }
    stored.erase(std::remove_if(stored.begin(), stored.end(), is_added), stored.end());
}

} // namespace i18n
} // namespace fl
