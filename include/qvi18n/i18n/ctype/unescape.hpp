#ifndef QVI18N_I18N_CTYPE_UNESCAPE_HPP
#define QVI18N_I18N_CTYPE_UNESCAPE_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

namespace fl {
namespace i18n {

/// Replaces the backslash escapes of `text` as ICU reads them: \uhhhh, \Uhhhhhhhh, \xh, \xhh,
/// \x{h...}, octal \ooo, \cX, \a \b \e \f \n \r \t \v, and a backslash before any other character
/// for that character. A malformed escape, a lone backslash at the end among them, makes the whole
/// result empty. A text longer than 0x7FFFFFFF units throws CvtSizeTooLarge.
QVI18N_API ustring unescape_c_mode(const ustring& text);

} // namespace i18n
} // namespace fl

#endif
