#ifndef QVI18N_I18N_CATALOG_MESSAGE_LOOKUP_EXPLANATION_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_LOOKUP_EXPLANATION_HPP

// Why a caller gets the text it gets: the look-up of one message told step by step, from the
// same roots, cache and files that MessageCatalog::get_message uses. Explaining changes nothing:
// a catalog that isn't cached is read privately and dropped, and no hit is counted.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <qvi18n/resource_core/resource_core.hpp>

#include <exception>
#include <string>
#include <vector>

namespace fl {
namespace i18n {

// One file the look-up would try, in the order it tries them: the locale's fall-backs outer, the
// roots inner.
struct QVI18N_API MessageLookupCandidate {
    std::string locale;
    fl::filesystem::upath root;
    fl::filesystem::upath path;
    bool exists = false;
};

struct QVI18N_API MessageLookupExplanation {
    // Where the catalog came from.
    enum catalog_source {
        // No catalog: see `error`.
        no_catalog,
        // Cached under the requested locale's key.
        cache_hit,
        // Not cached for the requested locale, but the fall-back's file was: the look-up shares it.
        cache_hit_fallback,
        // Not cached: the look-up would load `chosen` (and cache it).
        loaded_from_file
    };

    std::string catalog;
    std::string key;
    // The locale's messages name, and the names tried for it in order.
    std::string requested_locale;
    std::vector<std::string> fallback_locales;
    // The roots in force, in search order (empty before MessageCatalogInit).
    std::vector<fl::filesystem::upath> roots;
    // Every file of the search, whether or not the look-up got that far.
    std::vector<MessageLookupCandidate> candidates;

    catalog_source source = no_catalog;
    // The cache key the catalog was found under, for the cache hits.
    std::string cache_key;
    // The file that supplies the catalog and the locale it was found for. For a cache hit they
    // are the cached catalog's, which may differ from what the files would give today.
    fl::filesystem::upath chosen;
    std::string chosen_locale;
    // Index into `candidates` of `chosen`, or -1.
    int chosen_index = -1;

    // The key is in the chosen catalog. A missing key is final: there is no fall-back by key.
    bool key_found = false;
    // What get_message returns, or what it throws.
    ustring text;
    std::exception_ptr error;
    std::string error_text;

    bool succeeded() const { return !error; }
};

// The look-up of get_message(id, locale), told. Never throws for a failed look-up: the exception
// the look-up would raise is in `error`.
QVI18N_API MessageLookupExplanation explainMessageLookup(const MessageID& id, const QvLocale& locale);
// The same for a record: the text is formatted with its holes, as get_message does.
QVI18N_API MessageLookupExplanation explainMessageLookup(
    const resource_core::BaseMsgID& id, const QvLocale& locale);

} // namespace i18n
} // namespace fl

#endif
