#ifndef QVI18N_I18N_CONVERSION_BLOCK_LOOP_HPP
#define QVI18N_I18N_CONVERSION_BLOCK_LOOP_HPP

// The loop that drives ICU's incremental converters over a whole text, shared by the default
// conversions and the converter classes.

#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include "i18n/conversion/cvt_throw.hpp"

#include <unicode/ucnv.h>

#include <string>
#include <vector>

namespace fl {
namespace i18n {
namespace detail {

// Inputs up to this many units are converted on the stack first.
constexpr unsigned long small_input_bound = 1024;
// Each stack buffer, and the buffer that only counts, holds this many units.
constexpr unsigned long stack_scratch_size = 1024;
// A larger input starts with a heap buffer of at most this many units.
constexpr unsigned long first_buffer_bound = 32768;

// The most units one ICU call is given and may write, by direction, so that the ranges stay
// inside ICU's 32-bit arithmetic however long the text.
constexpr unsigned long source_block_to_bytes = 0x3FFFFFFFUL;
constexpr unsigned long source_block_to_utf16 = 0x7FFFFFFFUL;
constexpr unsigned long target_block_to_utf16 = 0x10000UL;
constexpr unsigned long target_block_utf8 = 0x20000UL;
constexpr unsigned long target_block_chars = 32768UL;

template <typename To, typename From> struct block_direction;

template <> struct block_direction<char, char16_t> {
    static constexpr unsigned long source_block = source_block_to_bytes;
    // The smallest block any converter gets; a target no larger needs no look at the converter.
    static constexpr unsigned long least_target_block = target_block_chars;
    static unsigned long target_block(UConverter* converter)
    {
        if (ucnv_getType(converter) == UCNV_UTF8)
            return target_block_utf8;
        return lcctype::num_cast<unsigned long, signed char>(
                   static_cast<signed char>(ucnv_getMaxCharSize(converter)))
            * target_block_chars;
    }
    static void call(UConverter* converter, char** target, const char* target_limit, const char16_t** source,
        const char16_t* source_limit, UErrorCode* status)
    {
        ucnv_fromUnicode(converter, target, target_limit, source, source_limit, nullptr, false, status);
    }
};

template <> struct block_direction<char16_t, char> {
    static constexpr unsigned long source_block = source_block_to_utf16;
    static constexpr unsigned long least_target_block = target_block_to_utf16;
    static unsigned long target_block(UConverter*) { return target_block_to_utf16; }
    static void call(UConverter* converter, char16_t** target, const char16_t* target_limit,
        const char** source, const char* source_limit, UErrorCode* status)
    {
        ucnv_toUnicode(converter, target, target_limit, source, source_limit, nullptr, false, status);
    }
};

// Resets the converter however the run ends, so that no state outlives a call.
struct reset_guard {
    UConverter* converter;
    ~reset_guard() { ucnv_reset(converter); }
};

// Converts `length` units of `source` into `target` (capacity units), never flushing. Once the
// target is full the rest is converted into a scratch buffer and only counted. Returns the size of
// the whole result. `step(converter, &target, limit, &source, limit, status)` makes one ICU call and
// returns the units it wrote.
template <typename To, typename From, typename Step>
unsigned long run_block_loop(UConverter* converter, To* target, unsigned long capacity, const From* source,
    unsigned long length, Step step)
{
    typedef block_direction<To, From> direction;
    reset_guard guard {converter};
    if (length == 0)
        return 0;

    To scratch[stack_scratch_size];
    To* cursor = target;
    To* end = target + capacity;
    if (target == nullptr || capacity == 0) {
        cursor = scratch;
        end = scratch + stack_scratch_size;
    }
    const unsigned long target_block = capacity <= direction::least_target_block
        ? direction::least_target_block
        : direction::target_block(converter);
    const From* from = source;
    const From* const from_end = source + length;
    unsigned long total = 0;
    for (;;) {
        const unsigned long room = static_cast<unsigned long>(end - cursor);
        const To* const limit = room > target_block ? cursor + target_block : end;
        const unsigned long left = static_cast<unsigned long>(from_end - from);
        const From* const from_limit
            = left > direction::source_block ? from + direction::source_block : from_end;

        UErrorCode status = U_ZERO_ERROR;
        total += step(converter, &cursor, limit, &from, from_limit, status);
        if (status > U_ZERO_ERROR && status != U_BUFFER_OVERFLOW_ERROR)
            lcctype::invalid_char_exception_throwing(status);
        if (status == U_BUFFER_OVERFLOW_ERROR && limit == end) {
            // The target is full: from now on output is only counted.
            cursor = scratch;
            end = scratch + stack_scratch_size;
            continue;
        }
        if (from_limit != from_end || status > U_ZERO_ERROR)
            continue;
        return total;
    }
}

// Converts a whole text into a new string. Short inputs go to a stack buffer, longer ones to a
// first buffer of at most first_buffer_bound units; the first run both converts and measures, so
// the common case costs one pass. Only when that buffer was too small does a second run convert
// into a string of exactly the measured size, which keeps the memory beside the result bounded
// however long the text.
template <typename To, typename From, typename Step>
std::basic_string<To> convert_whole(
    UConverter* converter, const From* source, unsigned long length, Step step)
{
    unsigned long total = 0;
    if (length <= small_input_bound) {
        To stack[stack_scratch_size];
        total = run_block_loop<To, From>(converter, stack, stack_scratch_size, source, length, step);
        if (total <= stack_scratch_size)
            return std::basic_string<To>(stack, total);
    } else {
        std::vector<To> first(length < first_buffer_bound ? length : first_buffer_bound);
        total = run_block_loop<To, From>(converter, first.data(), first.size(), source, length, step);
        if (total <= first.size())
            return std::basic_string<To>(first.data(), total);
    }
    std::basic_string<To> result(total, To());
    const unsigned long written = run_block_loop<To, From>(converter, &result[0], total, source, length, step);
    if (written < total)
        result.resize(written);
    return result;
}

// One ICU call with no primitive in between; the count is the distance the target moved.
template <typename To, typename From> struct direct_step {
    unsigned long operator()(UConverter* converter, To** target, const To* target_limit, const From** source,
        const From* source_limit, UErrorCode& status) const
    {
        To* const start = *target;
        block_direction<To, From>::call(converter, target, target_limit, source, source_limit, &status);
        if (*target < start)
            throw_cvt<CvtSizeTooLarge>();
        return static_cast<unsigned long>(*target - start);
    }
};

// A step through one of the stream primitives, held as any callable: the library's own callers pass
// the primitive as a plain function pointer, which spares them the indirection of a boost::function.
template <typename To, typename From,
    typename Function
    = unsigned long (*)(UConverter*, To**, const To*, const From**, const From*, bool, UErrorCode&)>
struct primitive_step {
    Function function;
    unsigned long operator()(UConverter* converter, To** target, const To* target_limit, const From** source,
        const From* source_limit, UErrorCode& status) const
    {
        return function(converter, target, target_limit, source, source_limit, false, status);
    }
};

// The whole-string conversion of the default functions and the converter classes.
inline std::string convert_whole_from_utf16(
    UConverter* converter, const char16_t* source, unsigned long length)
{
    return convert_whole<char, char16_t>(
        converter, source, length, primitive_step<char, char16_t> {&lcctype::stream_conversion_from_utf16});
}

inline ustring convert_whole_to_utf16(UConverter* converter, const char* source, unsigned long length)
{
    return convert_whole<char16_t, char>(
        converter, source, length, primitive_step<char16_t, char> {&lcctype::stream_conversion_to_utf16});
}

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
