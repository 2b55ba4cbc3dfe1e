#ifndef QVI18N_I18N_CTYPE_TRIM_HPP
#define QVI18N_I18N_CTYPE_TRIM_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

namespace fl {
namespace i18n {

// Trimming by a set of UTF-16 code units (not characters): every unit of `characters` is removed
// from the ends of `text`. An empty set leaves the text as it is.

/// Both ends, in place.
QVI18N_API void trim(ustring& text, const ustring& characters);
/// The start, in place.
QVI18N_API void trim_left(ustring& text, const ustring& characters);
/// The end, in place.
QVI18N_API void trim_right(ustring& text, const ustring& characters);

QVI18N_API ustring trim_copy(const ustring& text, const ustring& characters);
QVI18N_API ustring trim_copy_left(const ustring& text, const ustring& characters);
QVI18N_API ustring trim_copy_right(const ustring& text, const ustring& characters);

} // namespace i18n
} // namespace fl

#endif
