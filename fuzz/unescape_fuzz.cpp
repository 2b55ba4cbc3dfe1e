// unescape_c_mode on arbitrary text against ICU's own unescape, which reads the same grammar:
// the same units, or empty for a malformed escape. The first byte chooses how the rest becomes
// UTF-16: a unit per byte (backslash escapes are common then) or two bytes a unit.
#include "fuzz/fuzz_support.hpp"

#include <qvi18n/i18n/ctype/unescape.hpp>

#include <unicode/unistr.h>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    fl::i18n::ustring text;
    if (data[0] % 2 == 0) {
        for (std::size_t i = 1; i < size; ++i)
            text += static_cast<char16_t>(data[i]);
    } else {
        for (std::size_t i = 1; i + 1 < size; i += 2)
            text += static_cast<char16_t>(data[i] | data[i + 1] << 8);
    }
    const fl::i18n::ustring ours = fl::i18n::unescape_c_mode(text);
    const icu::UnicodeString theirs
        = icu::UnicodeString(text.data(), static_cast<int32_t>(text.size())).unescape();
    qvfuzz::check(ours.size() <= text.size());
    qvfuzz::check(ours == fl::i18n::ustring(theirs.getBuffer(), static_cast<std::size_t>(theirs.length())));
    return 0;
}
