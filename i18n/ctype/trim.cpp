#include <qvi18n/i18n/ctype/trim.hpp>

namespace fl {
namespace i18n {

void trim(ustring& text, const ustring& characters)
{
    trim_right(text, characters);
    trim_left(text, characters);
}

void trim_left(ustring& text, const ustring& characters)
{
    const ustring::size_type first = text.find_first_not_of(characters);
    text.erase(0, first);
}

void trim_right(ustring& text, const ustring& characters)
{
    const ustring::size_type last = text.find_last_not_of(characters);
    text.erase(last == ustring::npos ? 0 : last + 1);
}

ustring trim_copy(const ustring& text, const ustring& characters)
{
    const ustring::size_type first = text.find_first_not_of(characters);
    if (first == ustring::npos)
        return ustring();
    const ustring::size_type last = text.find_last_not_of(characters);
    return text.substr(first, last + 1 - first);
}

ustring trim_copy_left(const ustring& text, const ustring& characters)
{
    const ustring::size_type first = text.find_first_not_of(characters);
    return first == ustring::npos ? ustring() : text.substr(first);
}

ustring trim_copy_right(const ustring& text, const ustring& characters)
{
    const ustring::size_type last = text.find_last_not_of(characters);
    return last == ustring::npos ? ustring() : text.substr(0, last + 1);
}

} // namespace i18n
} // namespace fl
