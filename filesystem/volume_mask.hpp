#ifndef QVI18N_FILESYSTEM_VOLUME_MASK_HPP
#define QVI18N_FILESYSTEM_VOLUME_MASK_HPP

#include "filesystem/volume.hpp"

namespace fl {
namespace filesystem {
namespace detail {

// The character-handling mask for names on a volume: a normalising volume decomposes (the
// form in which such volumes store names), and keeps its case rule; an exact one is mode 0.
inline unsigned int volume_character_mask(volume_name_rule rule)
{
    return (rule & 2u) != 0 ? (static_cast<unsigned int>(rule) | 6u) : 0u;
}

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
