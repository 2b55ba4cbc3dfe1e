#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>

#include <cstring>

namespace fl {
namespace i18n {

MessageCatalogDataStore::~MessageCatalogDataStore() = default;

XMLCatalogDataStore::~XMLCatalogDataStore() = default;

void XMLCatalogDataStore::addEntry(const std::string& key, const std::string& value)
{
    // The text is taken as a C string: it ends at the first NUL, as the file's reader meant it.
    const char* text = value.c_str();
    icu::UnicodeString decoded = icu::UnicodeString::fromUTF8(icu::StringPiece(text, std::strlen(text)));
    // unescape() copies the whole text; most entries have no backslash and need no second pass.
    if (decoded.indexOf(char16_t('\\')) >= 0) {
        decoded = decoded.unescape();
    }
    entries.emplace(key, std::move(decoded));
}

} // namespace i18n
} // namespace fl
