#include <qvi18n/resource_core/resource_core.hpp>

namespace resource_core {

const char* const legacyTwoPartComponent = "ZORBEL";
const char* const legacyTwoPartSegment = ":legacy_two_part";

std::string makeInternalCatalogName(const std::string& external_name)
{
    // Only the bare reserved component is widened; every other name is already internal.
    if (external_name == legacyTwoPartComponent) {
        return external_name + legacyTwoPartSegment;
    }
    return external_name;
}

} // namespace resource_core
