#include <qvi18n/filesystem/compare.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/detail/pattern.hpp>
#include <qvi18n/filesystem/exceptions.hpp>

#include "filesystem/volume_mask.hpp"
#include <qvi18n/filesystem/detail/converters.hpp>

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <cstring>

namespace fl {
namespace filesystem {

using fl::i18n::MakeException;
using fl::i18n::character_handling_mode_context;
using fl::i18n::ustring;

namespace {

std::int32_t icu_length(const ustring& text)
{
    if (text.size() > 0x7FFFFFFFu)
        throw MakeException(FileNameTooLarge());
    return static_cast<std::int32_t>(text.size());
}

int checked(int result, UErrorCode status)
{
    if (U_FAILURE(status))
        throw MakeException(PathNameComparisonFailure());
    return result;
}

int normalized_compare(const ustring& a, const ustring& b, std::uint32_t options)
{
    std::int32_t const a_length = icu_length(a);
    std::int32_t const b_length = icu_length(b);
    UErrorCode status = U_ZERO_ERROR;
    int const result = unorm_compare(a.data(), a_length, b.data(), b_length, options, &status);
    return checked(result, status);
}

int compare_units(const ustring& a, const ustring& b)
{
    std::size_t const common = a.size() < b.size() ? a.size() : b.size();
    // Equal paths are the usual case: one memcmp says so. Only a difference needs the unit loop,
    // since bytes in memory order are not units in value order.
    if (common == 0 || std::memcmp(a.data(), b.data(), common * sizeof(char16_t)) != 0) {
        for (std::size_t i = 0; i < common; ++i) {
            if (a[i] != b[i])
                return a[i] < b[i] ? -1 : 1;
        }
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

// Empty texts sort first; the rest is for the caller.
bool order_of_empty(const ustring& a, const ustring& b, int& order)
{
    if (!a.empty() && !b.empty())
        return false;
    order = a.empty() ? (b.empty() ? 0 : -1) : 1;
    return true;
}

int compare_by_volume(const ustring& a, const ustring& b)
{
    // The first text is tested first, so a relative a is reported whatever b is.
    if ((!a.empty() && !detail::is_absolute(a)) || (!b.empty() && !detail::is_absolute(b)))
        throw MakeException(InvalidArgument());
    int order = 0;
    if (order_of_empty(a, b, order))
        return order;
    unsigned int const mask = detail::query_volume_name_rule(detail::make_native_access_form(a));
    return compare_with_mask(a, b, mask);
}

unsigned int mask_of_mode(const character_handling_mode_context& mode)
{
    unsigned int const bits = mode.get_mode_mask();
    if (bits == 0u || bits == 1u)
        return bits;
    if (bits & 6u)
        return (bits & 1u) ? 3u : 2u;
    throw MakeException(InvalidArgument());
}

int compare_by_mode(const ustring& a, const ustring& b, const character_handling_mode_context& mode)
{
    int order = 0;
    if (order_of_empty(a, b, order))
        return order;
    return compare_with_mask(a, b, mask_of_mode(mode));
}

} // namespace

int compare(const ustring& a, const ustring& b)
{
    return compare_by_volume(detail::make_native_form(a, true), detail::make_native_form(b, true));
}

int compare(const upath& a, const upath& b)
{
    return compare_by_volume(a.get_path_name(), b.get_path_name());
}

int compare(const ustring& a, const ustring& b, const character_handling_mode_context& mode)
{
    return compare_by_mode(detail::make_native_form(a, true), detail::make_native_form(b, true), mode);
}

int compare(const upath& a, const upath& b, const character_handling_mode_context& mode)
{
    return compare_by_mode(a.get_path_name(), b.get_path_name(), mode);
}

int compare_with_mask(const ustring& a, const ustring& b, unsigned int mask)
{
    switch (mask) {
    case 0:
        return compare_units(a, b);
    case 1:
        return compare_with_case_insensitive_mode(a, b);
    case 2:
        return compare_with_normalized_mode(a, b);
    case 3:
        return compare_with_normalized_case_insensitive_mode(a, b);
    default:
        throw MakeException(InvalidArgument());
    }
}

int compare_with_case_insensitive_mode(const ustring& a, const ustring& b)
{
    std::int32_t const a_length = icu_length(a);
    std::int32_t const b_length = icu_length(b);
    UErrorCode status = U_ZERO_ERROR;
    int const result = u_strCaseCompare(a.data(), a_length, b.data(), b_length, 0, &status);
    return checked(result, status);
}

int compare_with_normalized_mode(const ustring& a, const ustring& b)
{
    return normalized_compare(a, b, 0);
}

int compare_with_normalized_case_insensitive_mode(const ustring& a, const ustring& b)
{
    return normalized_compare(a, b, U_COMPARE_IGNORE_CASE);
}

character_handling_mode_context generate_character_handling_mask_from_volume(const upath& p)
{
    if (p.empty())
        throw MakeException(InvalidArgument());
    return character_handling_mode_context(
        detail::volume_character_mask(detail::query_volume_name_rule(detail::make_native_access_form(p))));
}

ustring detail::generate_pattern_from_filename(const ustring& name, const zorbel_pattern_string_generator&)
{
    if (name.empty())
        return ustring();
    if (name == u"." || name == u"..")
        return u"^.*$";
    return posix::gen_pattern(name);
}

} // namespace filesystem
} // namespace fl
