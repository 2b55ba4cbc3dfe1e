#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include "i18n/conversion/block_loop.hpp"

#include <algorithm>

namespace fl {
namespace i18n {
namespace lcctype {

template <typename To, typename From>
std::basic_string<To> convert_to_string_large_buffer(UConverter* converter, const From* source,
    unsigned long length, typename stream_conversion_function<To, From>::type function)
{
    return detail::convert_whole<To, From>(converter, source, length,
        detail::primitive_step<To, From, typename stream_conversion_function<To, From>::type> {function});
}

template QVI18N_API std::string convert_to_string_large_buffer<char, char16_t>(
    UConverter*, const char16_t*, unsigned long, stream_conversion_function<char, char16_t>::type);
template QVI18N_API ustring convert_to_string_large_buffer<char16_t, char>(
    UConverter*, const char*, unsigned long, stream_conversion_function<char16_t, char>::type);

namespace {

// The sizing rule shared by the whole-buffer conversions: the stack for short texts, a first
// buffer bounded by first_buffer_bound, and the exact size when that is too small.
template <typename To, typename Convert>
std::basic_string<To> convert_sized(unsigned long length, Convert convert)
{
    if (length <= detail::small_input_bound) {
        To buffer[detail::stack_scratch_size];
        const unsigned long needed = convert(buffer, detail::stack_scratch_size);
        if (needed <= detail::stack_scratch_size)
            return std::basic_string<To>(buffer, needed);
        std::basic_string<To> result(needed, To());
        const unsigned long written = convert(&result[0], needed);
        if (written < needed)
            result.resize(written);
        return result;
    }
    const unsigned long first = std::min(length, detail::first_buffer_bound);
    std::basic_string<To> result(first, To());
    const unsigned long needed = convert(&result[0], first);
    if (needed <= first) {
        result.resize(needed);
        return result;
    }
    result.assign(needed, To());
    const unsigned long written = convert(&result[0], needed);
    if (written < needed)
        result.resize(written);
    return result;
}

} // namespace

template <typename To, typename From>
std::basic_string<To> convert_to_string_utf(
    const From* source, unsigned long length, typename buffer_conversion_function<To, From>::type function)
{
    return convert_sized<To>(length,
        [&](To* destination, unsigned long size) { return function(destination, size, source, length); });
}

template QVI18N_API std::string convert_to_string_utf<char, char16_t>(
    const char16_t*, unsigned long, buffer_conversion_function<char, char16_t>::type);
template QVI18N_API ustring convert_to_string_utf<char16_t, char>(
    const char*, unsigned long, buffer_conversion_function<char16_t, char>::type);
template QVI18N_API ustring convert_to_string_utf<char16_t, char32_t>(
    const char32_t*, unsigned long, buffer_conversion_function<char16_t, char32_t>::type);

template <typename To, typename From>
std::basic_string<To> convert_to_string_generic(UConverter* converter, const From* source,
    unsigned long length, typename generic_conversion_function<To, From>::type function)
{
    return convert_sized<To>(length, [&](To* destination, unsigned long size) {
        return function(converter, destination, size, source, length);
    });
}

template QVI18N_API std::string convert_to_string_generic<char, char16_t>(
    UConverter*, const char16_t*, unsigned long, generic_conversion_function<char, char16_t>::type);
template QVI18N_API ustring convert_to_string_generic<char16_t, char>(
    UConverter*, const char*, unsigned long, generic_conversion_function<char16_t, char>::type);

} // namespace lcctype
} // namespace i18n
} // namespace fl
