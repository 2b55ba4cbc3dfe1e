#ifndef QVI18N_I18N_CATALOG_MESSAGE_ID_COMPLETIONS_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_ID_COMPLETIONS_HPP

// Completion of partly typed message identifiers, for editors and command lines.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <vector>

namespace fl {
namespace i18n {

struct QVI18N_API MessageIdCompletions {
    // Catalog segments first, each with ":" behind it, then the matching keys. Not sorted.
    std::vector<ustring> completions;
    // Where in the partial identifier a completion replaces text: just behind its last ":".
    int offset = 0;
};

// How `partial` can go on. Catalog segments come from the catalog maps
// ("<root>/../derived/share/resources/<component>/.../catalog_map.xml"), keys from the catalog
// named by the text in front of the last ":", in the global locale. Letter case is ignored in
// the comparison and kept in the completions. Never throws: anything that goes wrong (no roots
// yet, text that isn't ASCII) gives no completions and offset 0; a missing or malformed map
// gives fewer.
QVI18N_API MessageIdCompletions getMessageIdCompletions(const ustring& partial);

} // namespace i18n
} // namespace fl

#endif
