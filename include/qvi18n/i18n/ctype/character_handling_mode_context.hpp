#ifndef QVI18N_I18N_CTYPE_CHARACTER_HANDLING_MODE_CONTEXT_HPP
#define QVI18N_I18N_CTYPE_CHARACTER_HANDLING_MODE_CONTEXT_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>

namespace fl {
namespace i18n {

/// How two texts are to be treated when compared or matched: a mask of four bits.
class QVI18N_API character_handling_mode_context {
public:
    enum mode_bits {
        default_mode = 0,
        /// Ignore case.
        insensitive_mode = 1,
        /// Bring both texts to the same normal form, composed...
        normalized_compose_mode = 2,
        /// ...or decomposed.
        normalized_decompose_mode = 6,
        /// Travels with the mask for callers; nothing in character handling acts on it.
        locale_mode = 8
    };

    /// Throws CtypeInvalidArgument for a mask of 16 or more.
    character_handling_mode_context(unsigned int mask);

    unsigned int get_mode_mask() const { return mode_mask; }

    bool is_case_sensitive_mode() const { return (mode_mask & insensitive_mode) == 0; }
    bool is_normalized_compose_mode() const { return (mode_mask & 0x6) == 0x2; }
    bool is_normalized_decompose_mode() const { return (mode_mask & 0x6) == 0x6; }
    bool is_locale_dependent_mode() const { return (mode_mask & locale_mode) != 0; }

private:
    unsigned int mode_mask;
};

} // namespace i18n
} // namespace fl

#endif
