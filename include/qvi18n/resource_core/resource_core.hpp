#ifndef QVI18N_RESOURCE_CORE_RESOURCE_CORE_HPP
#define QVI18N_RESOURCE_CORE_RESOURCE_CORE_HPP

// The identifier records of the resource core: a catalog named by its internal name, and a
// message of such a catalog with the values for its holes. libqvi18n reads these records by
// their fields; they carry no behaviour beyond construction.

#include <boost/variant.hpp>

#include <string>
#include <vector>

#ifndef QVRESOURCE_CORE_API
#define QVRESOURCE_CORE_API __attribute__((visibility("default")))
#endif

namespace resource_core {

// One value for a hole of a message: a number, narrow text or UTF-16 text.
typedef boost::variant<long long, std::string, std::u16string> HoleValue;
typedef std::vector<HoleValue> HoleValues;

// A catalog, by its internal name ("fl:i18n", "ZORBEL:legacy_two_part").
struct QVRESOURCE_CORE_API BaseCatalogID {
    std::string catalog_name;

    BaseCatalogID() = default;
    explicit BaseCatalogID(const std::string& internal_name)
        : catalog_name(internal_name)
    { }

    const std::string& getCatalogName() const { return catalog_name; }
};

// A message: the values for its holes, in argument order, the catalog's internal name and the
// key. No virtual table, so the record is laid out exactly as its fields read.
struct QVRESOURCE_CORE_API BaseMsgID {
    HoleValues holes;
    std::string catalog_name;
    std::string key;

    BaseMsgID() = default;
    BaseMsgID(const std::string& catalog, const std::string& msg_key)
        : catalog_name(catalog)
        , key(msg_key)
    { }
    BaseMsgID(const std::string& catalog, const std::string& msg_key, const HoleValues& values)
        : holes(values)
        , catalog_name(catalog)
        , key(msg_key)
    { }
    BaseMsgID(
        const BaseCatalogID& catalog, const std::string& msg_key, const HoleValues& values = HoleValues())
        : holes(values)
        , catalog_name(catalog.catalog_name)
        , key(msg_key)
    { }

    // Appends one hole value; returns the record so that calls chain.
    BaseMsgID& addHole(const HoleValue& value)
    {
        holes.push_back(value);
        return *this;
    }
};

// Turns a catalog's outward name into its internal one: a two-part outward name of the reserved
// component carries the reserved second segment internally. The exact inverse of
// makeExternalCatalogName (declared with the catalog identifiers in libqvi18n).
QVRESOURCE_CORE_API std::string makeInternalCatalogName(const std::string& external_name);

// The reserved component and segment of two-part outward names.
QVRESOURCE_CORE_API extern const char* const legacyTwoPartComponent;
QVRESOURCE_CORE_API extern const char* const legacyTwoPartSegment;

} // namespace resource_core

#endif
