#ifndef QVI18N_I18N_CTYPE_DETAIL_CTYPE_THROW_HPP
#define QVI18N_I18N_CTYPE_DETAIL_CTYPE_THROW_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>

namespace fl {
namespace i18n {

namespace lcctype {
namespace detail {

/// Throws CtypeInvalidCharacter.
[[noreturn]] QVI18N_API void throw_ctype_invalid_character_exception();

} // namespace detail
} // namespace lcctype

} // namespace i18n
} // namespace fl

#endif
