#ifndef QVI18N_I18N_CATALOG_CATALOG_MAP_HPP
#define QVI18N_I18N_CATALOG_CATALOG_MAP_HPP

// The catalog maps: small index files naming the catalogs of a component, in a tree beside each
// resource root, so that identifiers can be completed without walking the resources.
//
//     <MessageCatalogMap>
//       <entry key="fl:i18n:date_time"/>
//     </MessageCatalogMap>
//
// For a root ".../resources" the maps lie under ".../resources/../derived/share/resources/",
// following the catalogs' segments: the map of component "fl" is "fl/catalog_map.xml" there.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/catalog/expat_loader.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/shared_ptr.hpp>
#include <boost/unordered_set.hpp>

#include <deque>

namespace fl {
namespace i18n {

namespace detail {

// "../derived/share/resources/": the base of the map tree, relative to a resource root.
QVI18N_API const ustring& catalog_map_base();
// "catalog_map.xml".
QVI18N_API const ustring& catalog_map_file_name();

} // namespace detail

// Reads one or more maps (one handler serves all the maps of a root) and collects, for every
// entry below `catalog_prefix`, the segment that follows it: with prefix "a", the entry "a:b:c"
// gives "b". Anything but the root element and its entries stops the parse, and once stopped
// the handler refuses every further map.
class QVI18N_API MetaInfoExpatEventHandler : public ExpatEventHandler {
public:
    enum xml_tags { root_element = 0, entry_element = 1, document = 2 };

    MetaInfoExpatEventHandler(
        const ustring& catalog_prefix, boost::shared_ptr<boost::unordered_set<ustring>> results);
    ~MetaInfoExpatEventHandler() override;

    bool doElementStart(const char* name, const char** attributes) override;
    bool doElementData(const char* text, int length, bool first_in_line) override;
    bool doElementEnd(const char* name) override;

    bool process_root(const char** attributes);
    bool process_entry_tag(const char** attributes);

private:
    ustring catalog_prefix;
    boost::shared_ptr<boost::unordered_set<ustring>> results;
    std::deque<xml_tags> tag_stack;
    codecvt_ascii_to_ustring ascii_converter;
};

} // namespace i18n
} // namespace fl

#endif
