#include <qvi18n/i18n/catalog/message_id.hpp>

#include <boost/exception/exception.hpp>

namespace fl {
namespace i18n {

const char* MessageID::badMsgException_ = "Bad Message ID";

const char* MessageID::badMessageIDException::what() const noexcept
{
    return badMsgException_;
}

MessageID::MessageID(const std::string& composite)
{
    setCompositeMsgID(composite);
}

MessageID::MessageID(const CatalogID& catalog_id, const std::string& key)
    : catalog(catalog_id)
    , msg_key(key)
{
    // Deliberately no validation here: callers that build identifiers from parts own their text.
    if (key.empty()) {
        throw boost::enable_current_exception(badMessageIDException());
    }
    composite_id = catalog.getComponentName() + ":" + catalog.getSubComponentsNames() + ":" + key;
}

void MessageID::setCompositeMsgID(const std::string& composite)
{
    if (composite.empty()) {
        throw boost::enable_current_exception(badMessageIDException());
    }
    if (composite == composite_id) {
        return;
    }
    if (!isValidCompositeID(composite) || !extractIDComponents(composite)) {
        throw boost::enable_current_exception(badMessageIDException());
    }
    composite_id = composite;
}

bool MessageID::extractIDComponents(const std::string& composite)
{
    std::string::size_type colon = composite.rfind(':');
    if (colon == std::string::npos) {
        return false;
    }
    try {
        catalog.setCatalogID(composite.substr(0, colon));
    } catch (const CatalogID::badCatalogIDException&) {
        return false;
    }
    msg_key.assign(composite, colon + 1, std::string::npos);
    return !msg_key.empty();
}

} // namespace i18n
} // namespace fl
