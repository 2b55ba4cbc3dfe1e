#include <qvi18n/i18n/catalog/message_id_completions.hpp>

#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/catalog_map.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>

#include <qvi18n/i18n/locale/ascii_text.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/ctype/transform.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/resource_core/resource_core.hpp>

#include "i18n/catalog/catalog_listing.hpp"
#include "i18n/catalog/checked_length.hpp"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace fl {
namespace i18n {

namespace {

using fl::filesystem::upath;
typedef boost::unordered_set<ustring> name_set;

upath map_tree(const upath& root)
{
    upath base(root);
    base /= detail::catalog_map_base();
    return base;
}

// True when the first `wanted.size()` units of `text` equal `wanted`, ignoring case.
bool starts_with(const ustring& text, const ustring& wanted)
{
    return lcctype::compare(text.data(), std::min(text.size(), wanted.size()), wanted.data(), wanted.size(),
               case_insensitive())
        == 0;
}

// Every component of `root` that has a map of its own, by its directory name. "." and ".." pass
// the same test: only a map at the base of the tree, or above it, would let them through.
void list_components(const upath& root, name_set& results)
{
    if (!fl::filesystem::exists(root)) {
        return;
    }
    const ustring base = map_tree(root).get_path_name();
    fl::filesystem::upath_directory_iterator end;
    for (fl::filesystem::upath_directory_iterator it(root); it != end; ++it) {
        const ustring name = it->filename();
        ustring map(base);
        map += fl::filesystem::upath_constant::PATHNAME_SEPARATOR;
        map.append(name, 0, name.find(u':'));
        map += fl::filesystem::upath_constant::PATHNAME_SEPARATOR;
        map += detail::catalog_map_file_name();
        if (fl::filesystem::exists(map)) {
            results.insert(name);
        }
    }
}

// Every map at or below `directory`, links followed.
void collect_maps(const upath& directory, std::vector<upath>& maps)
{
    fl::filesystem::upath_directory_iterator end;
    for (fl::filesystem::upath_directory_iterator it(directory); it != end; ++it) {
        const ustring name = it->filename();
        if (detail::is_dot_entry(name)) {
            continue;
        }
        if (name == detail::catalog_map_file_name()) {
            maps.emplace_back(it->full_pathname());
        } else if (it->target_type() == fl::filesystem::file_status::directory_file) {
            collect_maps(upath(it->full_pathname()), maps);
        }
    }
}

// The segments that follow `catalog_part` in the maps of `root`. The nearest map decides: a
// catalog with a map of its own reads every map of its subtree, one without reads only the map
// of its nearest parent that has one.
void read_maps(const upath& root, const ustring& catalog_part, const boost::shared_ptr<name_set>& results)
{
    const upath base = map_tree(root);
    ustring relative(catalog_part);
    std::replace(relative.begin(), relative.end(), u':', fl::filesystem::upath_constant::PATHNAME_SEPARATOR[0]);
    std::vector<upath> maps;
    for (bool first = true; !relative.empty(); first = false) {
        upath directory(base);
        directory /= relative;
        upath map(directory);
        map /= detail::catalog_map_file_name();
        if (fl::filesystem::exists(map)) {
            if (first) {
                collect_maps(directory, maps);
            } else {
                maps.push_back(map);
            }
            break;
        }
        const ustring::size_type cut = relative.rfind(fl::filesystem::upath_constant::PATHNAME_SEPARATOR[0]);
        relative.erase(cut == ustring::npos ? 0 : cut);
    }
    // One handler for the root: a bad map ends the reading of the maps behind it.
    const boost::shared_ptr<ExpatEventHandler> handler
        = boost::make_shared<MetaInfoExpatEventHandler>(catalog_part, results);
    for (const upath& map : maps) {
        ExpatLoader(map, handler).load_file();
    }
}

// The keys of catalog `catalog_part` in the global locale that start with `key_part`. A catalog
// part that is only the start of a longer catalog ("a" of "a:b") is no catalog: no keys.
void add_keys(const ustring& catalog_part, const ustring& key_part, std::vector<ustring>& completions)
{
    const std::string catalog
        = resource_core::makeInternalCatalogName(codecvt_ustring_to_ascii().convert(catalog_part.data(), catalog_part.size()));
    boost::shared_ptr<const MessageCatalog> found;
    try {
        found = MessageCatalog::GetMessageCatalog(CatalogID(catalog), QvLocale::global());
    } catch (const CatalogID::badCatalogIDException&) {
        return;
    } catch (const MessageCatalog::MessageCatalogLoadFailed&) {
        return;
    }
    const bool ascii_part = std::all_of(key_part.begin(), key_part.end(), [](char16_t c) { return c < 0x80; });
    ustring key;
    for (const std::string& narrow : found->get_all_keys()) {
        // Texts of ASCII alone are equal under case folding exactly when they are equal under
        // ASCII case: most keys are decided here without a conversion or a call into ICU.
        if (ascii_part) {
            const std::size_t n = std::min(narrow.size(), key_part.size());
            if (std::all_of(narrow.begin(), narrow.begin() + n, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
                bool equal = n == key_part.size();
                for (std::size_t i = 0; equal && i < n; ++i) {
                    equal = detail::ascii_lower(static_cast<char16_t>(narrow[i])) == detail::ascii_lower(key_part[i]);
                }
                if (!equal) {
                    continue;
                }
            }
        }
        // Keys are UTF-8; UTF-16 never needs more units than UTF-8 has bytes.
        key.resize(narrow.size());
        key.resize(lcctype::conversion_from_utf8(&key[0], key.size(), narrow.data(), narrow.size()));
        if (starts_with(key, key_part)) {
            completions.push_back(key);
        }
    }
}

MessageIdCompletions complete(const ustring& partial)
{
    MessageIdCompletions result;
    const ustring::size_type colon = partial.rfind(u':');
    const bool has_catalog = colon != ustring::npos;
    ustring catalog_part;
    ustring key_part(partial);
    ustring prefix;
    if (has_catalog) {
        catalog_part = partial.substr(0, colon);
        key_part = partial.substr(colon + 1);
        prefix = partial.substr(0, colon + 1);
        result.offset = detail::checked_length(colon + 1);
    }

    const std::vector<upath> roots = MessageCatalogImpl::getTopLevelResourceLocations();
    const boost::shared_ptr<name_set> results = boost::make_shared<name_set>();
    for (const upath& root : roots) {
        if (catalog_part.empty()) {
            list_components(root, *results);
        } else {
            read_maps(root, catalog_part, results);
        }
    }

    // The reserved internal segment of two-part catalogs folds away here: its external name is
    // shorter than what was typed, so it never matches.
    const codecvt_ustring_to_ascii to_ascii;
    const codecvt_ascii_to_ustring from_ascii;
    for (const ustring& name : *results) {
        const ustring internal = prefix + name;
        const std::string external_name
            = resource_core::makeExternalCatalogName(to_ascii.convert(internal.data(), internal.size()));
        const ustring external = from_ascii.convert(external_name.data(), external_name.size());
        if (starts_with(external, partial)) {
            result.completions.push_back(external.substr(std::min<std::size_t>(external.size(), result.offset)) + u':');
        }
    }

    if (has_catalog) {
        add_keys(catalog_part, key_part, result.completions);
    }
    return result;
}

} // namespace

MessageIdCompletions getMessageIdCompletions(const ustring& partial)
{
    try {
        return complete(partial);
    } catch (...) {
        return MessageIdCompletions();
    }
}

} // namespace i18n
} // namespace fl
