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
    const fl::i18n::ustring text = qvfuzz::utf16_units(data + 1, size - 1, data[0] % 2 == 0);
    const fl::i18n::ustring ours = fl::i18n::unescape_c_mode(text);
    const icu::UnicodeString theirs
        = icu::UnicodeString(text.data(), static_cast<int32_t>(text.size())).unescape();
    qvfuzz::check(ours.size() <= text.size());
    qvfuzz::check(ours == fl::i18n::ustring(theirs.getBuffer(), static_cast<std::size_t>(theirs.length())));
    return 0;
}
