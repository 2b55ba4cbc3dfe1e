#ifndef QVI18N_FILESYSTEM_CONVERSION_BUFFER_HPP
#define QVI18N_FILESYSTEM_CONVERSION_BUFFER_HPP

// Sizing of whole-string file-name conversions. Most names are short: they are converted on the
// stack and cost one allocation, that of the result. Longer ones get a first heap buffer capped at
// 32768 units; only a result that outgrows it is converted a second time, at its exact size.

#include <algorithm>
#include <string>

namespace fl {
namespace filesystem {
namespace detail {

enum : unsigned long { conversion_stack_units = 1024, conversion_first_heap_units = 32768 };

// fn(To* d, unsigned long cap, const From* s, unsigned long n) returns the needed size.
template <class To, class From, class Fn>
std::basic_string<To> convert_whole(const From* s, unsigned long n, Fn fn)
{
    if (n <= conversion_stack_units) {
        To buffer[conversion_stack_units];
        const unsigned long needed = fn(buffer, conversion_stack_units, s, n);
        if (needed <= conversion_stack_units)
            return std::basic_string<To>(buffer, needed);
        std::basic_string<To> exact(needed, To());
        fn(&exact[0], needed, s, n);
        return exact;
    }
    const unsigned long first = std::min<unsigned long>(n, conversion_first_heap_units);
    std::basic_string<To> result(first, To());
    const unsigned long needed = fn(&result[0], first, s, n);
    if (needed <= first) {
        result.resize(needed);
        return result;
    }
    result.assign(needed, To());
    fn(&result[0], needed, s, n);
    return result;
}

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
