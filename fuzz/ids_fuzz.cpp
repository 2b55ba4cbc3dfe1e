// Catalog and message identifiers from arbitrary bytes: either refused with their own exception or
// taken whole, with parts that join back into the text given.
#include "fuzz/fuzz_support.hpp"

#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace fl::i18n;

using qvfuzz::check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const bool valid = isValidCompositeID(text);

    try {
        CatalogID catalog(text);
        check(valid);
        check(catalog.getCatalogID() == text);
        check(catalog.getComponentName() + ":" + catalog.getSubComponentsNames() == text);
        // A refused replacement leaves the identifier as it was.
        try {
            catalog.setCatalogID(text + ":");
            std::abort();
        } catch (const CatalogID::badCatalogIDException&) {
        }
        check(catalog.getCatalogID() == text);
        const ustring pattern = MessageCatalogUtility::obtainXMLFilePathPattern(text);
        check(!pattern.empty() && pattern.find(u"%S") != ustring::npos);
    } catch (const CatalogID::badCatalogIDException&) {
        check(!valid);
    }

    try {
        MessageID message(text);
        check(message.getCompositeID() == text);
        check(message.getCatalogID() + ":" + message.getMsgKey() == text);
        check(isValidCompositeID(message.getCatalogID()));
        MessageID joined(CatalogID(message.getCatalogID()), message.getMsgKey());
        check(joined.getCompositeID() == text);
    } catch (const MessageID::badMessageIDException&) {
    }

    const std::string external = resource_core::makeExternalCatalogName(text);
    check(external.size() <= text.size());
    return 0;
}
