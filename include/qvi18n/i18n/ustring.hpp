#ifndef QVI18N_I18N_USTRING_HPP
#define QVI18N_I18N_USTRING_HPP

#include <string>

namespace fl {
namespace i18n {

// The library's text type: UTF-16 in 16-bit units. Text for people, messages and paths
// are ustring; locale names, encoding names and identifiers stay narrow std::string.
typedef std::basic_string<char16_t> ustring;

} // namespace i18n
} // namespace fl

#endif
