#include <qvi18n/i18n/catalog/catalog_map_writer.hpp>

#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/filesystem/stdio.hpp>
#include <qvi18n/filesystem/temporary.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/catalog_map.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/locale/ascii_text.hpp>

#include "i18n/catalog/catalog_listing.hpp"
#include <qvi18n/filesystem/detail/exceptions.hpp>

#include <boost/exception/exception.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace fl {
namespace i18n {

namespace {

using fl::filesystem::file_status;
using fl::filesystem::upath;

bool is_directory(const upath& p)
{
    return fl::filesystem::status(p).type == file_status::directory_file;
}

// The whole file, or false when it can't be read.
bool read_whole(const upath& p, std::string& content)
{
    std::FILE* file = fl::filesystem::fopen(p, "rb");
    if (!file) {
        return false;
    }
    content.clear();
    char buffer[8192];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        content.append(buffer, n);
    }
    const bool ok = !std::ferror(file);
    std::fclose(file);
    return ok;
}

[[noreturn]] void fail(int error_number, const upath& p)
{
    fl::filesystem::posix::exception_dispatcher(error_number, fl::filesystem::detail::to_filesystem(p.get_path_name()));
}

// Writes `content` aside in the same directory and renames it over `target`.
void replace_file(const upath& target, const std::string& content)
{
    const upath directory(target.parent_path());
    // The map tree is reached through "resources/..", which create_directories refuses; the
    // system resolves it as the reader will.
    std::error_code error;
    std::filesystem::create_directories(fl::filesystem::detail::to_filesystem(directory.get_path_name()), error);
    if (error) {
        fail(error.value(), directory);
    }
    const upath aside(fl::filesystem::tmpfile_name(directory.get_path_name(), u".catalog_map.", u"tmp"));
    std::FILE* file = fl::filesystem::fopen(aside, "wb");
    if (!file) {
        fail(errno, aside);
    }
    const bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    const int write_error = errno;
    if (std::fclose(file) != 0 || !written) {
        const int error_number = written ? errno : write_error;
        std::remove(fl::filesystem::detail::to_filesystem(aside.get_path_name()).c_str());
        fail(error_number, aside);
    }
    try {
        fl::filesystem::rename(aside, target);
    } catch (...) {
        std::remove(fl::filesystem::detail::to_filesystem(aside.get_path_name()).c_str());
        throw;
    }
}

} // namespace

upath catalog_resource_directory(const upath& root)
{
    upath resources(root);
    resources /= u"resources";
    if (is_directory(resources)) {
        return resources;
    }
    if (!root.empty() && is_directory(root)) {
        return root;
    }
    throw boost::enable_current_exception(MessageCatalog::ResDirNotPresent());
}

upath catalog_map_path(const upath& resources, const std::string& component)
{
    upath map(resources);
    map /= detail::catalog_map_base();
    map /= detail::widen_ascii(component);
    map /= detail::catalog_map_file_name();
    return map;
}

std::vector<std::string> list_catalog_components(const upath& resources)
{
    std::vector<std::string> components;
    fl::filesystem::upath_directory_iterator end;
    for (fl::filesystem::upath_directory_iterator it(resources); it != end; ++it) {
        const ustring name = it->filename();
        std::string component;
        if (detail::is_dot_entry(name) || it->target_type() != file_status::directory_file
            || !detail::to_ascii(name, component) || !isValidCompositeID(component + ":x")) {
            continue;
        }
        components.push_back(component);
    }
    std::sort(components.begin(), components.end());
    return components;
}

std::vector<std::string> list_component_catalogs(const upath& resources, const std::string& component)
{
    upath base(resources);
    base /= detail::widen_ascii(component);
    std::vector<std::string> catalogs;
    fl::filesystem::upath_directory_iterator end;
    for (fl::filesystem::upath_directory_iterator it(base); it != end; ++it) {
        if (detail::is_dot_entry(it->filename()) || it->target_type() != file_status::directory_file) {
            continue;
        }
        for (const std::string& rest : detail::list_catalogs_below(upath(it->full_pathname()))) {
            const std::string catalog = component + rest;
            if (isValidCompositeID(catalog)) {
                catalogs.push_back(catalog);
            }
        }
    }
    std::sort(catalogs.begin(), catalogs.end());
    catalogs.erase(std::unique(catalogs.begin(), catalogs.end()), catalogs.end());
    return catalogs;
}

std::string make_catalog_map(const std::vector<std::string>& catalogs)
{
    // Identifiers are letters, digits, "_" and ":": nothing to escape.
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<!-- Generated from the resource tree; regenerate rather than edit. -->\n"
                      "<MessageCatalogMap>\n";
    for (const std::string& catalog : catalogs) {
        xml += "  <entry key=\"";
        xml += catalog;
        xml += "\"/>\n";
    }
    xml += "</MessageCatalogMap>\n";
    return xml;
}

std::vector<upath> write_catalog_maps(const upath& root)
{
    const upath resources = catalog_resource_directory(root);
    std::vector<upath> written;
    for (const std::string& component : list_catalog_components(resources)) {
        const std::vector<std::string> catalogs = list_component_catalogs(resources, component);
        if (catalogs.empty()) {
            continue;
        }
        const std::string content = make_catalog_map(catalogs);
        const upath map = catalog_map_path(resources, component);
        std::string existing;
        if (!read_whole(map, existing) || existing != content) {
            replace_file(map, content);
        }
        written.push_back(map);
    }
    return written;
}

} // namespace i18n
} // namespace fl
