#include "i18n/catalog/catalog_listing.hpp"

#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

namespace fl {
namespace i18n {
namespace detail {

bool to_ascii(const ustring& text, std::string& ascii)
{
    try {
        ascii = codecvt_ustring_to_ascii().convert(text.data(), text.size());
    } catch (const CvtInvalidCharacter&) {
        return false;
    }
    return true;
}

bool is_dot_entry(const ustring& name)
{
    return name == fl::filesystem::upath_constant::CURRENT_DIRECTORY
        || name == fl::filesystem::upath_constant::PARENT_DIRECTORY;
}

std::vector<std::string> list_catalogs_below(const fl::filesystem::upath& directory)
{
    using fl::filesystem::file_status;
    std::vector<std::string> found;
    try {
        fl::filesystem::upath_directory_iterator end;
        for (fl::filesystem::upath_directory_iterator it(directory); it != end; ++it) {
            const ustring name = it->filename();
            if (is_dot_entry(name)) {
                continue;
            }
            const std::uint32_t type = it->type();
            const bool is_directory = type == file_status::directory_file;
            if (!is_directory
                && (type != file_status::regular_file
                    || fl::filesystem::detail::extract_extension(name) != u"xml")) {
                continue;
            }
            std::string stem;
            if (!to_ascii(fl::filesystem::detail::extract_stem(name), stem)) {
                continue;
            }
            if (is_directory) {
                fl::filesystem::upath sub(directory);
                sub /= name;
                for (const std::string& below : list_catalogs_below(sub)) {
                    found.push_back(':' + stem + below);
                }
            } else {
                found.push_back(':' + stem);
            }
        }
    } catch (const fl::filesystem::PathNotFound&) {
        // A tree without this directory simply has no catalogs here.
    }
    return found;
}

} // namespace detail
} // namespace i18n
} // namespace fl
