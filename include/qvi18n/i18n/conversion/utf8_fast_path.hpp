#ifndef QVI18N_I18N_CONVERSION_UTF8_FAST_PATH_HPP
#define QVI18N_I18N_CONVERSION_UTF8_FAST_PATH_HPP

// UTF-8 <-> UTF-16 without ICU, for well-formed text only, behind the UTF-8 conversions of the
// conversion and file-name converters. Every function here declines (returns
// false, writes nothing the caller keeps) on the first ill-formed sequence, unpaired surrogate or
// incomplete last character, so that the caller hands the whole call to its ICU path and the
// result stays exactly what ICU gives: substitution, call-backs, exceptions and the dropping of an
// incomplete tail are ICU's business alone. For well-formed text ICU's UTF-8 converter and its
// direct UTF-8 functions agree with plain decoding, whatever call-backs are set, since UTF-8 can
// encode every scalar value.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <cstddef>
#include <string>

namespace fl {
namespace i18n {
namespace detail {

// Counting passes: the units of the result, or false for text that is not well-formed (or a
// null source with a length).
QVI18N_API bool utf8_to_utf16_length(const char* source, std::size_t length, std::size_t& units) noexcept;
QVI18N_API bool utf16_to_utf8_length(const char16_t* source, std::size_t length, std::size_t& bytes) noexcept;

// Whole conversions into a result of exactly the counted size. False, with `result` untouched,
// for text that is not well-formed or whose result would exceed `limit` units.
QVI18N_API bool utf8_to_utf16_string(const char* source, std::size_t length, ustring& result,
    std::size_t limit = static_cast<std::size_t>(-1));
QVI18N_API bool utf16_to_utf8_string(const char16_t* source, std::size_t length, std::string& result,
    std::size_t limit = static_cast<std::size_t>(-1));

// Conversions into a caller's buffer, for well-formed text whose result fits (nothing else is
// taken: ICU decides what a too-small buffer receives). A null `destination` or a `capacity` of 0
// only measures. With `terminate`, a result shorter than the buffer is followed by a NUL, as ICU's
// whole-buffer functions do. `needed` receives the size of the whole result.
QVI18N_API bool utf8_to_utf16_buffer(const char* source, std::size_t length, char16_t* destination,
    std::size_t capacity, bool terminate, std::size_t& needed) noexcept;
QVI18N_API bool utf16_to_utf8_buffer(const char16_t* source, std::size_t length, char* destination,
    std::size_t capacity, bool terminate, std::size_t& needed) noexcept;

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
