#include <qvi18n/i18n/catalog/message_lookup_explanation.hpp>

#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#include <qvi18n/i18n/locale/ascii_text.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>

#include "i18n/catalog/catalog_cache.hpp"

#include <boost/exception/exception.hpp>

namespace fl {
namespace i18n {

namespace {

using fl::filesystem::upath;
typedef MessageLookupExplanation explanation;

std::string what_of(const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return std::string();
    }
}

template <class E> [[noreturn]] void raise(const E& e)
{
    throw boost::enable_current_exception(e);
}

// The files the finder would try for `pattern`, in its order. The existence tests run for all of
// them; one that can't be made is where the real search would have stopped with that failure.
void list_candidates(explanation& out, const ustring& pattern)
{
    const ustring::size_type at = pattern.find(u"%S");
    if (pattern.empty() || at == ustring::npos) {
        return;
    }
    const ustring head = pattern.substr(0, at);
    const ustring tail = pattern.substr(at + 2);
    const bool underscore = at > 0 && pattern[at - 1] == u'_';
    for (const std::string& name : out.fallback_locales) {
        ustring relative = name.empty() ? (underscore ? head.substr(0, at - 1) : head) + tail
                                        : head + detail::widen_ascii(name) + tail;
        for (const upath& root : out.roots) {
            MessageLookupCandidate candidate;
            candidate.locale = name;
            candidate.root = root;
            candidate.path = upath(root.get_path_name() + fl::filesystem::upath_constant::PATHNAME_SEPARATOR + relative);
            candidate.exists = fl::filesystem::exists(candidate.path);
            out.candidates.push_back(candidate);
        }
    }
}

// Finds the catalog as GetMessageCatalog would, without touching the cache.
boost::shared_ptr<const MessageCatalog> find_catalog(explanation& out, const QvLocale& locale)
{
    const std::string requested_key = out.catalog + ':' + out.requested_locale;
    boost::shared_ptr<const MessageCatalog> cached;
    {
        detail::catalog_lock lock;
        const detail::catalog_cache_map& cache = detail::catalog_cache();
        const auto hit = cache.find(requested_key);
        if (hit != cache.end()) {
            cached = hit->second.catalog;
        }
        for (const auto& root : detail::resource_roots()) {
            out.roots.push_back(root.first);
        }
    }

    // The finder's list: the locale's names, then the classic locale's language.
    make_locale_fallback_list(out.fallback_locales, locale, QvLocale::classic().language(QvLocale::LcMessages));
    std::exception_ptr search_error;
    try {
        list_candidates(out, MessageCatalogUtility::obtainXMLFilePathPattern(out.catalog));
    } catch (...) {
        search_error = std::current_exception();
    }

    if (cached) {
        out.source = explanation::cache_hit;
        out.cache_key = requested_key;
        return cached;
    }
    if (out.roots.empty()) {
        raise(MessageCatalog::MessageCatalogNotInitialized());
    }
    for (std::size_t i = 0; i < out.candidates.size(); ++i) {
        if (out.candidates[i].exists) {
            out.chosen_index = static_cast<int>(i);
            break;
        }
    }
    if (out.chosen_index < 0 && search_error) {
        std::rethrow_exception(search_error);
    }
    if (out.chosen_index < 0 || out.candidates[static_cast<std::size_t>(out.chosen_index)].locale.empty()) {
        raise(MessageCatalog::MessageCatalogLoadFailed(out.catalog));
    }
    const MessageLookupCandidate& chosen = out.candidates[static_cast<std::size_t>(out.chosen_index)];
    out.chosen = chosen.path;
    out.chosen_locale = chosen.locale;
    if (chosen.locale != out.requested_locale) {
        const std::string fallback_key = out.catalog + ':' + chosen.locale;
        detail::catalog_lock lock;
        const detail::catalog_cache_map& cache = detail::catalog_cache();
        const auto hit = cache.find(fallback_key);
        if (hit != cache.end()) {
            out.source = explanation::cache_hit_fallback;
            out.cache_key = fallback_key;
            return hit->second.catalog;
        }
    }
    out.source = explanation::loaded_from_file;
    return boost::shared_ptr<const MessageCatalog>(new MessageCatalogImpl(out.catalog, chosen.path, chosen.locale));
}

// Fills everything but the text; the catalog, or null with `error` set.
boost::shared_ptr<const MessageCatalog> explain_catalog(explanation& out, const QvLocale& locale)
{
    out.requested_locale = locale.shortName(QvLocale::LcMessages);
    boost::shared_ptr<const MessageCatalog> catalog;
    try {
        if (out.catalog.empty()) {
            raise(CatalogID::badCatalogIDException());
        }
        catalog = find_catalog(out, locale);
        if (out.source != explanation::loaded_from_file) {
            out.chosen_locale = catalog->get_locale_name();
            if (const MessageCatalogImpl* impl = dynamic_cast<const MessageCatalogImpl*>(catalog.get())) {
                out.chosen = impl->get_file_path();
            }
            for (std::size_t i = 0; i < out.candidates.size(); ++i) {
                if (out.candidates[i].path.get_path_name() == out.chosen.get_path_name()) {
                    out.chosen_index = static_cast<int>(i);
                }
            }
        }
    } catch (...) {
        out.error = std::current_exception();
        out.error_text = what_of(out.error);
        out.source = explanation::no_catalog;
        catalog.reset();
    }
    return catalog;
}

template <class Fetch> void explain_text(explanation& out, const MessageCatalog& catalog, Fetch fetch)
{
    try {
        out.key_found = false;
        out.text = catalog.get_message_for_key(out.key);
        out.key_found = true;
        out.text = fetch(out.text);
    } catch (...) {
        out.error = std::current_exception();
        out.error_text = what_of(out.error);
        if (!out.key_found) {
            out.text.clear();
        }
    }
}

} // namespace

MessageLookupExplanation explainMessageLookup(const MessageID& id, const QvLocale& locale)
{
    explanation out;
    out.catalog = id.getCatalogID();
    out.key = id.getMsgKey();
    if (const boost::shared_ptr<const MessageCatalog> catalog = explain_catalog(out, locale)) {
        explain_text(out, *catalog, [](const ustring& text) { return text; });
    }
    return out;
}

MessageLookupExplanation explainMessageLookup(const resource_core::BaseMsgID& id, const QvLocale& locale)
{
    explanation out;
    out.key = id.key;
    try {
        out.catalog = CatalogID(id.catalog_name).getCatalogID();
    } catch (...) {
        out.catalog = id.catalog_name;
        out.requested_locale = locale.shortName(QvLocale::LcMessages);
        out.error = std::current_exception();
        out.error_text = what_of(out.error);
        return out;
    }
    if (const boost::shared_ptr<const MessageCatalog> catalog = explain_catalog(out, locale)) {
        explain_text(out, *catalog, [&](const ustring& text) {
            return MessageCatalogImpl::GetFormattedMessageImpl(text, id.holes, false);
        });
    }
    return out;
}

} // namespace i18n
} // namespace fl
