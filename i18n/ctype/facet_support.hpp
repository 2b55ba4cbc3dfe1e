#ifndef QVI18N_I18N_CTYPE_FACET_SUPPORT_HPP
#define QVI18N_I18N_CTYPE_FACET_SUPPORT_HPP

// What the char16_t ctype facets share, whether they are the library's own or the standard
// library's class they derive from.

#include <locale>

namespace fl {
namespace i18n {
namespace facet {
namespace support {

/// The library's character-type mask for a standard one, class by class. Composite standard
/// masks (alnum, graph) arrive through their classes; blank has no counterpart and is dropped.
unsigned int library_mask(std::ctype_base::mask m);

/// Whether `c` is in any class of the standard mask `m`.
bool is(std::ctype_base::mask m, char16_t c);

/// Fills `vec` with the standard classes of each character of [low, high); a surrogate pair gets
/// its code point's mask in both places. Print is not computed.
const char16_t* classify(const char16_t* low, const char16_t* high, std::ctype_base::mask* vec);

/// First unit of [low, high) in (scan_is) or out of (scan_not) the standard mask `m`.
const char16_t* scan_is(std::ctype_base::mask m, const char16_t* low, const char16_t* high);
const char16_t* scan_not(std::ctype_base::mask m, const char16_t* low, const char16_t* high);

/// Simple case mapping of one unit, and of a range in place with surrogate pairs mapped whole.
char16_t to_upper(char16_t c);
char16_t to_lower(char16_t c);
const char16_t* to_upper(char16_t* low, const char16_t* high);
const char16_t* to_lower(char16_t* low, const char16_t* high);

} // namespace support
} // namespace facet
} // namespace i18n
} // namespace fl

#endif
