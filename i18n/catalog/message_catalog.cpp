#include "i18n/catalog/catalog_cache.hpp"

#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>

#include <boost/exception/exception.hpp>

namespace fl {
namespace i18n {

MessageCatalog::~MessageCatalog() = default;

ustring MessageCatalog::get_message(const MessageID& id, const QvLocale& locale)
{
    // A MessageID's catalog was validated when the identifier was made; only the empty catalog
    // of a default-made one can be refused here.
    const std::string catalog = id.getCatalogID();
    if (catalog.empty()) {
        throw boost::enable_current_exception(CatalogID::badCatalogIDException());
    }
    boost::shared_ptr<const MessageCatalog> spare;
    return detail::thread_catalog(catalog, locale, spare)->get_message_for_key(id.getMsgKey());
}

ustring MessageCatalog::get_message(const resource_core::BaseMsgID& id, const QvLocale& locale)
{
    const CatalogID catalog(id.catalog_name);
    boost::shared_ptr<const MessageCatalog> spare;
    const ustring text
        = detail::thread_catalog(catalog.getCatalogID(), locale, spare)->get_message_for_key(id.key);
    return MessageCatalogImpl::GetFormattedMessageImpl(text, id.holes, false);
}

ustring MessageCatalog::get_default_locale_message(const resource_core::BaseMsgID& id)
{
    return get_message(id, QvLocale::classic());
}

ustring MessageCatalog::GetFormattedMessage(const ustring& pattern, const hole_values& holes)
{
    return MessageCatalogImpl::GetFormattedMessageImpl(pattern, holes, true);
}

} // namespace i18n
} // namespace fl
