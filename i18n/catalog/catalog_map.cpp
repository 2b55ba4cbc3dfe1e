#include <qvi18n/i18n/catalog/catalog_map.hpp>

#include <qvi18n/filesystem/path.hpp>

#include <algorithm>
#include <cstring>
#include <utility>

namespace fl {
namespace i18n {

namespace detail {

namespace {

ustring make_map_base()
{
    ustring base(fl::filesystem::upath_constant::PARENT_DIRECTORY);
    for (const char16_t* part : {u"derived", u"share", u"resources"}) {
        base += u'/';
        base += part;
    }
    base += u'/';
    return base;
}

// Built when the library loads, like every constant text of the library.
const ustring map_base = make_map_base();
const ustring map_file_name = u"catalog_map.xml";

} // namespace

const ustring& catalog_map_base()
{
    return map_base;
}

const ustring& catalog_map_file_name()
{
    return map_file_name;
}

} // namespace detail

MetaInfoExpatEventHandler::MetaInfoExpatEventHandler(
    const ustring& prefix, boost::shared_ptr<boost::unordered_set<ustring>> found)
    : ExpatEventHandler("UTF-8")
    , catalog_prefix(prefix)
    , results(std::move(found))
    , tag_stack(1, document)
{ }

MetaInfoExpatEventHandler::~MetaInfoExpatEventHandler() = default;

bool MetaInfoExpatEventHandler::doElementStart(const char* name, const char** attributes)
{
    if (std::strcmp(name, "MessageCatalogMap") == 0) {
        return process_root(attributes);
    }
    if (std::strcmp(name, "entry") == 0) {
        return process_entry_tag(attributes);
    }
    return false;
}

bool MetaInfoExpatEventHandler::process_root(const char**)
{
    if (tag_stack.back() != document) {
        return false;
    }
    tag_stack.push_back(root_element);
    return true;
}

bool MetaInfoExpatEventHandler::process_entry_tag(const char** attributes)
{
    if (tag_stack.back() != root_element) {
        return false;
    }
    tag_stack.push_back(entry_element);
    const std::size_t prefix_size = catalog_prefix.size();
    // The walk steps over the value of "key" only; the value of any other attribute is looked at
    // as a name in its turn, as the catalog reader does.
    for (const char** word = attributes; *word; ++word) {
        if (std::strcmp(*word, "key") != 0) {
            continue;
        }
        const char* value = *++word;
        if (!value) {
            return false;
        }
        const std::size_t length = std::strlen(value);
        // Text that isn't ASCII is refused by the converter; ASCII is compared where it lies, as
        // a map of a large component holds many entries that don't concern the prefix.
        if (std::any_of(value, value + length, [](char c) { return static_cast<unsigned char>(c) >= 0x80; })) {
            ascii_converter.convert(value, length);
        }
        if (length < prefix_size + 1 || value[prefix_size] != ':'
            || !std::equal(catalog_prefix.begin(), catalog_prefix.end(), value,
                [](char16_t a, char b) { return a == static_cast<unsigned char>(b); })) {
            continue;
        }
        const char* segment = value + prefix_size + 1;
        const char* end = static_cast<const char*>(std::memchr(segment, ':', length - prefix_size - 1));
        // An empty segment ("a:" or "a::b") is kept too: the filter of the completions decides.
        results->insert(ascii_converter.convert(segment, static_cast<unsigned long>((end ? end : value + length) - segment)));
    }
    return true;
}

bool MetaInfoExpatEventHandler::doElementData(const char*, int, bool)
{
    return true;
}

bool MetaInfoExpatEventHandler::doElementEnd(const char*)
{
    if (tag_stack.size() > 1) {
        tag_stack.pop_back();
    }
    return true;
}

} // namespace i18n
} // namespace fl
