#include <qvi18n/i18n/ctype/unescape.hpp>

#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstdint>

namespace fl {
namespace i18n {
namespace {

UChar U_CALLCONV unit_at(std::int32_t offset, void* context)
{
    const ustring& text = *static_cast<const ustring*>(context);
    // ICU checks its offsets against the length it was given; this check only keeps a stray read
    // inside the text.
    if (offset < 0)
        return 0;
    const unsigned long index = lcctype::num_cast<unsigned long, int>(offset);
    return index < text.size() ? text[index] : 0;
}

} // namespace

ustring unescape_c_mode(const ustring& text)
{
    // An escape never yields more units than it takes, so the result fits the text's length.
    const std::int32_t length = lcctype::num_cast<int, unsigned long>(text.size());
    ustring result;
    result.reserve(text.size());
    std::int32_t offset = 0;
    while (offset < length) {
        const char16_t unit = text[static_cast<ustring::size_type>(offset++)];
        if (unit != u'\\') {
            result.push_back(unit);
            continue;
        }
        const UChar32 c = u_unescapeAt(unit_at, &offset, length, const_cast<ustring*>(&text));
        if (c < 0)
            return ustring();
        if (c > 0xFFFF) {
            result.push_back(U16_LEAD(c));
            result.push_back(U16_TRAIL(c));
        } else {
            result.push_back(static_cast<char16_t>(c));
        }
    }
    return result;
}

} // namespace i18n
} // namespace fl
