#ifndef QVI18N_FILESYSTEM_COMPARE_HPP
#define QVI18N_FILESYSTEM_COMPARE_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ustring.hpp>

namespace fl {
namespace filesystem {

// Path comparison by the rules of the volume. Results are negative, zero or positive.
//
// The small comparison mask: 0 exact by code unit, 1 case-insensitive, 2 normalised,
// 3 normalised and case-insensitive.

// Compares two absolute paths the way the volume holding a treats names (b's volume is not
// asked). a must be reachable by statfs. Empty paths sort first; a relative non-empty path is
// InvalidArgument. The ustring form cleans both texts first.
QVI18N_API int compare(const fl::i18n::ustring& a, const fl::i18n::ustring& b);
QVI18N_API int compare(const upath& a, const upath& b);
inline int compare(const char16_t* a, const char16_t* b)
{
    return compare(fl::i18n::ustring(a ? a : u""), fl::i18n::ustring(b ? b : u""));
}

// Compares by a caller's mode, without asking any volume and without the absoluteness test.
// The locale bit alone has no comparison of its own: InvalidArgument.
QVI18N_API int compare(
    const fl::i18n::ustring& a, const fl::i18n::ustring& b, const fl::i18n::character_handling_mode_context& mode);
QVI18N_API int compare(const upath& a, const upath& b, const fl::i18n::character_handling_mode_context& mode);
inline int compare(const char16_t* a, const char16_t* b, const fl::i18n::character_handling_mode_context& mode)
{
    return compare(fl::i18n::ustring(a ? a : u""), fl::i18n::ustring(b ? b : u""), mode);
}

// Compares by the small mask; any mask above 3 is InvalidArgument.
QVI18N_API int compare_with_mask(const fl::i18n::ustring& a, const fl::i18n::ustring& b, unsigned int mask);
QVI18N_API int compare_with_case_insensitive_mode(const fl::i18n::ustring& a, const fl::i18n::ustring& b);
QVI18N_API int compare_with_normalized_mode(const fl::i18n::ustring& a, const fl::i18n::ustring& b);
QVI18N_API int compare_with_normalized_case_insensitive_mode(
    const fl::i18n::ustring& a, const fl::i18n::ustring& b);

// The character-handling mode for names on the volume of p: default_mode on a volume that
// takes names as they are, normalised decomposition (with insensitive_mode where case is
// ignored) on one that normalises. An empty path is InvalidArgument.
QVI18N_API fl::i18n::character_handling_mode_context generate_character_handling_mask_from_volume(const upath& p);

// Selects the file-name wildcard syntax in which "*" is the only wildcard.
struct zorbel_pattern_string_generator { };

} // namespace filesystem
} // namespace fl

#endif
