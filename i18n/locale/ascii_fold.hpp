#ifndef QVI18N_I18N_LOCALE_ASCII_FOLD_HPP
#define QVI18N_I18N_LOCALE_ASCII_FOLD_HPP

#include <string>

namespace fl {
namespace i18n {
namespace detail {

// Lower-cases "A".."Z" only. Locale names and encoding names are looked up the same way whatever the
// process locale is, and bytes from 0x80 up (UTF-8 or legacy text) are never touched.
inline std::string ascii_fold(std::string const& text)
{
    std::string folded(text);
    for (char& c : folded) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return folded;
}

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
