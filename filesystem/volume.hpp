#ifndef QVI18N_FILESYSTEM_VOLUME_HPP
#define QVI18N_FILESYSTEM_VOLUME_HPP

// How the volume that holds a path treats names. Each platform answers from what its kernel
// offers (filesystem/<platform>/); the logic that depends on the answer stays outside.

#include <string>
#include <qvi18n/filesystem/detail/exceptions.hpp>

namespace fl {
namespace filesystem {
namespace detail {

// The values are the comparison masks of compare_with_mask: bit 0 case-insensitive,
// bit 1 normalised.
enum volume_name_rule : unsigned int {
    volume_names_exact = 0,
    volume_names_normalized = 2,
    volume_names_normalized_case_insensitive = 3
};

inline bool volume_ignores_case(volume_name_rule rule)
{
    return (rule & 1u) != 0;
}

// The rule of the volume holding path (UTF-8). The path itself must be reachable: a failure to
// reach it raises through exception_dispatcher with the path. A volume whose finer capabilities
// cannot be asked counts as the platform's usual kind, never as a failure.
volume_name_rule query_volume_name_rule(const std::string& path);

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
