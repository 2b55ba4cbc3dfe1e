#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/resource_core/resource_core.hpp>

#include <boost/exception/exception.hpp>

namespace fl {
namespace i18n {

namespace {

inline bool is_segment_start(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

inline bool is_segment_char(unsigned char c)
{
    return is_segment_start(c) || (c >= '0' && c <= '9');
}

// [begin, end) is one segment: non-empty, led by a letter or underscore.
bool is_valid_segment(const char* begin, const char* end)
{
    if (begin == end || !is_segment_start(static_cast<unsigned char>(*begin))) {
        return false;
    }
    for (const char* p = begin + 1; p != end; ++p) {
        if (!is_segment_char(static_cast<unsigned char>(*p))) {
            return false;
        }
    }
    return true;
}

} // namespace

bool isValidCompositeID(const std::string& id)
{
    std::string::size_type colon = id.find(':');
    if (colon == std::string::npos) {
        return false;
    }
    const char* text = id.data();
    std::string::size_type start = 0;
    while (colon != std::string::npos) {
        if (!is_valid_segment(text + start, text + colon)) {
            return false;
        }
        start = colon + 1;
        colon = id.find(':', start);
    }
    return is_valid_segment(text + start, text + id.size());
}

const char* CatalogID::badCatException_ = "Bad Catalog ID";

const char* CatalogID::badCatalogIDException::what() const noexcept
{
    return badCatException_;
}

CatalogID::CatalogID(const std::string& id)
{
    setCatalogID(id);
}

void CatalogID::setCatalogID(const std::string& id)
{
    if (id.empty()) {
        throw boost::enable_current_exception(badCatalogIDException());
    }
    if (id == catalog_id) {
        return;
    }
    // Split into temporaries so that a refusal leaves the stored fields as they were.
    std::string component;
    std::string subcomponents;
    if (!isValidCompositeID(id) || !extractIDComponents(id, component, subcomponents)) {
        throw boost::enable_current_exception(badCatalogIDException());
    }
    component_name.swap(component);
    subcomponents_names.swap(subcomponents);
    catalog_id = id;
}

bool CatalogID::extractIDComponents(const std::string& id, std::string& component, std::string& subcomponents)
{
    std::string::size_type colon = id.find(':');
    if (colon == std::string::npos) {
        return false;
    }
    component.assign(id, 0, colon);
    subcomponents.assign(id, colon + 1, std::string::npos);
    return !component.empty() && !subcomponents.empty();
}

} // namespace i18n
} // namespace fl

namespace resource_core {

std::string makeExternalCatalogName(const std::string& internal_name)
{
    static const std::string reserved_segment = legacyTwoPartSegment;
    static const std::string reserved_component = legacyTwoPartComponent;
    std::string::size_type at = internal_name.find(reserved_segment);
    if (at == std::string::npos || internal_name.compare(0, at, reserved_component) != 0) {
        return internal_name;
    }
    if (internal_name.size() == at + reserved_segment.size()) {
        return reserved_component;
    }
    return internal_name;
}

} // namespace resource_core
