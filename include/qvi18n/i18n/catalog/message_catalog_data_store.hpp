#ifndef QVI18N_I18N_CATALOG_MESSAGE_CATALOG_DATA_STORE_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_CATALOG_DATA_STORE_HPP

// Where a catalog file's entries go while it is read. The abstract store keeps the catalog logic
// apart from the storage form; XMLCatalogDataStore is the table that a loaded catalog reads.

#include <qvi18n/config.hpp>

#include <boost/unordered_map.hpp>
#include <unicode/unistr.h>

#include <cstddef>
#include <string>

namespace fl {
namespace i18n {

class QVI18N_API MessageCatalogDataStore {
public:
    // `value` is the entry's text as it stands in the file, UTF-8.
    virtual void addEntry(const std::string& key, const std::string& value) = 0;
    virtual ~MessageCatalogDataStore();
};

class QVI18N_API XMLCatalogDataStore : public MessageCatalogDataStore {
public:
    typedef boost::unordered_map<std::string, icu::UnicodeString> entry_map;

    // Decodes `value` from UTF-8, resolves its backslash escapes (\n, \uXXXX, ...) and keeps the
    // first text given for a key; later duplicates are dropped.
    void addEntry(const std::string& key, const std::string& value) override;
    ~XMLCatalogDataStore() override;

    // Makes room for about `expected` entries at once, so that a large catalog isn't rehashed
    // again and again while it loads.
    void reserve(std::size_t expected);

    // Key to text. Read directly by the catalog once loading is over; never written again then.
    entry_map entries;
};

} // namespace i18n
} // namespace fl

#endif
