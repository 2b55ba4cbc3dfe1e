#ifndef QVI18N_I18N_LOCALE_ASCII_TEXT_HPP_INCLUDED
#define QVI18N_I18N_LOCALE_ASCII_TEXT_HPP_INCLUDED

// ASCII helpers shared by the areas (not part of the API callers use).
#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <string>

namespace fl {
namespace i18n {
namespace detail {

// Locale names are ASCII, so each byte becomes one unit.
inline ustring widen_ascii(std::string const& text)
{
    ustring wide;
    wide.reserve(text.size());
    for (char c : text) {
        wide.push_back(static_cast<char16_t>(static_cast<unsigned char>(c)));
    }
    return wide;
}

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

// Lower-cases "A".."Z" only, whatever the process locale is.
inline char16_t ascii_lower(char16_t c)
{
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
}

// The classic locale's messages language, worked out once per process.
QVI18N_API ustring const& classic_messages_language();

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
