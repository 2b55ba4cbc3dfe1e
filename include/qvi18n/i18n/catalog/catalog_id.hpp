#ifndef QVI18N_I18N_CATALOG_CATALOG_ID_HPP
#define QVI18N_I18N_CATALOG_CATALOG_ID_HPP

// Colon-separated catalog identifiers such as "fl:i18n": the first segment names the component,
// the rest the catalog inside it.

#include <qvi18n/config.hpp>

#include <exception>
#include <string>

namespace fl {
namespace i18n {

// True when `id` is two or more segments joined by single colons, each segment an ASCII letter or
// underscore followed by letters, underscores or digits.
QVI18N_API bool isValidCompositeID(const std::string& id);

class QVI18N_API CatalogID {
public:
    class QVI18N_API badCatalogIDException : public std::exception {
    public:
        const char* what() const noexcept override;
    };

    static const char* badCatException_;

    CatalogID() = default;
    // Throws badCatalogIDException when `id` isn't a well-formed catalog identifier.
    explicit CatalogID(const std::string& id);

    // Replaces the identifier; a failure throws and leaves the object unchanged. The value
    // already stored is taken back without a check.
    void setCatalogID(const std::string& id);

    // Splits `id` at its first colon; false without a colon (outputs untouched) or when a side is
    // empty.
    static bool extractIDComponents(
        const std::string& id, std::string& component, std::string& subcomponents);

    std::string getCatalogID() const { return catalog_id; }
    const char* getCatalogIDStr() const { return catalog_id.c_str(); }
    std::string getComponentName() const { return component_name; }
    std::string getSubComponentsNames() const { return subcomponents_names; }

private:
    std::string catalog_id;
    std::string component_name;
    std::string subcomponents_names;
};

} // namespace i18n
} // namespace fl

namespace resource_core {

// Turns a catalog's internal name into the one shown outward: "ZORBEL:legacy_two_part" becomes
// "ZORBEL", every other name stays as it is. makeInternalCatalogName is its inverse.
QVI18N_API std::string makeExternalCatalogName(const std::string& internal_name);

} // namespace resource_core

namespace fl {
namespace i18n {
// The resource core's records read as fl::i18n::resource_core:: too, the way this library's own
// code names them.
namespace resource_core = ::resource_core;
} // namespace i18n
} // namespace fl

#endif
