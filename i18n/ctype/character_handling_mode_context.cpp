#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>

#include "i18n/ctype/ctype_throw.hpp"

namespace fl {
namespace i18n {

character_handling_mode_context::character_handling_mode_context(unsigned int mask)
    : mode_mask(mask)
{
    if (mask >= 16)
        detail::throw_ctype<CtypeInvalidArgument>();
}

} // namespace i18n
} // namespace fl
