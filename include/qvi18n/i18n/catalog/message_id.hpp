#ifndef QVI18N_I18N_CATALOG_MESSAGE_ID_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_ID_HPP

// Message identifiers such as "fl:i18n:QvLcInvLcName": the catalog in front of the last colon,
// the key behind it.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>

#include <exception>
#include <string>

namespace fl {
namespace i18n {

class QVI18N_API MessageID {
public:
    class QVI18N_API badMessageIDException : public std::exception {
    public:
        const char* what() const noexcept override;
    };

    static const char* badMsgException_;

    MessageID() = default;
    // Throws badMessageIDException when `composite` isn't catalog (two segments at least) + ":" + key.
    explicit MessageID(const std::string& composite);
    // Joins a catalog and a key without validating either; only an empty key throws
    // badMessageIDException.
    MessageID(const CatalogID& catalog, const std::string& key);

    // Replaces the identifier; a failure throws and leaves the composite unchanged.
    void setCompositeMsgID(const std::string& composite);

    // Splits `composite` at its last colon into the catalog and the key; false when either part
    // is unusable.
    bool extractIDComponents(const std::string& composite);

    // The catalog's text, not a CatalogID.
    std::string getCatalogID() const { return catalog.getCatalogID(); }
    std::string getCompositeID() const { return composite_id; }
    const char* getCompositeIDstr() const { return composite_id.c_str(); }
    std::string getMsgKey() const { return msg_key; }

private:
    std::string composite_id;
    CatalogID catalog;
    std::string msg_key;
};

} // namespace i18n
} // namespace fl

#endif
