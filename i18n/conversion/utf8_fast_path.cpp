#include "i18n/conversion/utf8_fast_path.hpp"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#define QVI18N_UTF8_SSE2 1
#endif

namespace fl {
namespace i18n {
namespace detail {

namespace {

typedef unsigned char byte;

inline bool is_trail(byte b)
{
    return (b & 0xC0) == 0x80;
}

// The first byte at or after `p` that is not ASCII, or `end`.
inline const byte* skip_ascii(const byte* p, const byte* end)
{
#if QVI18N_UTF8_SSE2
    while (end - p >= 16) {
        const int mask = _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
        if (mask != 0)
            return p + __builtin_ctz(static_cast<unsigned>(mask));
        p += 16;
    }
#else
    while (end - p >= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        if (word & 0x8080808080808080ULL)
            break;
        p += 8;
    }
#endif
    while (p < end && *p < 0x80)
        ++p;
    return p;
}

// The first unit at or after `p` that is not ASCII, or `end`.
inline const char16_t* skip_ascii(const char16_t* p, const char16_t* end)
{
#if QVI18N_UTF8_SSE2
    const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i zero = _mm_setzero_si128();
    while (end - p >= 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const int ascii = _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(units, high), zero));
        if (ascii != 0xFFFF)
            return p + __builtin_ctz(static_cast<unsigned>(~ascii)) / 2;
        p += 8;
    }
#endif
    while (p < end && *p < 0x80)
        ++p;
    return p;
}

// Bounds of the second byte of a three-byte sequence by the low nibble of its lead: E0 excludes
// the overlong forms, ED the surrogates.
const byte second_low3[16]
    = {0xA0, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
const byte second_high3[16]
    = {0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0x9F, 0xBF, 0xBF};
// The same for four-byte leads F0 to F4: F0 excludes the overlong forms, F4 what lies beyond
// U+10FFFF.
const byte second_low4[5] = {0x90, 0x80, 0x80, 0x80, 0x80};
const byte second_high4[5] = {0xBF, 0xBF, 0xBF, 0xBF, 0x8F};

// Text accepted by the counting pass, which needs no check any more.
void convert_valid(const char* source, std::size_t length, char16_t* out) noexcept
{
    const byte* p = reinterpret_cast<const byte*>(source);
    const byte* const end = p + length;
    while (p < end) {
        const byte lead = *p;
        if (lead < 0x80) {
#if QVI18N_UTF8_SSE2
            const __m128i zero = _mm_setzero_si128();
            while (end - p >= 16) {
                const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
                if (_mm_movemask_epi8(bytes) != 0)
                    break;
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(bytes, zero));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(bytes, zero));
                p += 16;
                out += 16;
            }
#endif
            while (p < end && *p < 0x80)
                *out++ = *p++;
        } else if (lead < 0xE0) {
            *out++ = static_cast<char16_t>(((lead & 0x1F) << 6) | (p[1] & 0x3F));
            p += 2;
        } else if (lead < 0xF0) {
            *out++ = static_cast<char16_t>(((lead & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F));
            p += 3;
        } else {
            const std::uint32_t c = (static_cast<std::uint32_t>(lead & 0x07) << 18)
                | (static_cast<std::uint32_t>(p[1] & 0x3F) << 12)
                | (static_cast<std::uint32_t>(p[2] & 0x3F) << 6) | (p[3] & 0x3F);
            out[0] = static_cast<char16_t>(0xD7C0 + (c >> 10));
            out[1] = static_cast<char16_t>(0xDC00 | (c & 0x3FF));
            out += 2;
            p += 4;
        }
    }
}

void convert_valid(const char16_t* source, std::size_t length, char* out) noexcept
{
    const char16_t* p = source;
    const char16_t* const end = p + length;
    while (p < end) {
        const std::uint32_t unit = *p;
        if (unit < 0x80) {
#if QVI18N_UTF8_SSE2
            const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
            const __m128i zero = _mm_setzero_si128();
            while (end - p >= 16) {
                const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
                const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
                const __m128i any_high = _mm_and_si128(_mm_or_si128(a, b), high);
                if (_mm_movemask_epi8(_mm_cmpeq_epi16(any_high, zero)) != 0xFFFF)
                    break;
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(a, b));
                p += 16;
                out += 16;
            }
#endif
            while (p < end && *p < 0x80)
                *out++ = static_cast<char>(*p++);
        } else if (unit < 0x800) {
            out[0] = static_cast<char>(0xC0 | (unit >> 6));
            out[1] = static_cast<char>(0x80 | (unit & 0x3F));
            out += 2;
            ++p;
        } else if (unit < 0xD800 || unit > 0xDFFF) {
            out[0] = static_cast<char>(0xE0 | (unit >> 12));
            out[1] = static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
            out[2] = static_cast<char>(0x80 | (unit & 0x3F));
            out += 3;
            ++p;
        } else {
            const std::uint32_t c = 0x10000 + ((unit - 0xD800) << 10) + (p[1] - 0xDC00u);
            out[0] = static_cast<char>(0xF0 | (c >> 18));
            out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out[3] = static_cast<char>(0x80 | (c & 0x3F));
            out += 4;
            p += 2;
        }
    }
}

} // namespace

bool utf8_to_utf16_length(const char* source, std::size_t length, std::size_t& units) noexcept
{
    if (!source && length != 0)
        return false;
    const byte* p = reinterpret_cast<const byte*>(source);
    const byte* const end = p + length;
    std::size_t saved = 0; // bytes beyond the units they yield
    while (p < end) {
        const byte lead = *p;
        if (lead < 0x80) {
            p = skip_ascii(p + 1, end);
            continue;
        }
        const std::size_t left = static_cast<std::size_t>(end - p);
        if (lead < 0xE0) {
            if (lead < 0xC2 || left < 2 || !is_trail(p[1]))
                return false;
            p += 2;
            saved += 1;
        } else if (lead < 0xF0) {
            if (left < 3 || p[1] < second_low3[lead & 0x0F] || p[1] > second_high3[lead & 0x0F]
                || !is_trail(p[2]))
                return false;
            p += 3;
            saved += 2;
        } else {
            if (lead > 0xF4 || left < 4 || p[1] < second_low4[lead - 0xF0] || p[1] > second_high4[lead - 0xF0]
                || !is_trail(p[2]) || !is_trail(p[3]))
                return false;
            p += 4;
            saved += 2;
        }
    }
    units = length - saved;
    return true;
}

bool utf16_to_utf8_length(const char16_t* source, std::size_t length, std::size_t& bytes) noexcept
{
    if (!source && length != 0)
        return false;
    const char16_t* p = source;
    const char16_t* const end = p + length;
    std::size_t extra = 0; // bytes beyond one per unit
    while (p < end) {
        const char16_t unit = *p;
        if (unit < 0x80) {
            p = skip_ascii(p + 1, end);
        } else if (unit < 0x800) {
            extra += 1;
            ++p;
        } else if (unit < 0xD800 || unit > 0xDFFF) {
            extra += 2;
            ++p;
        } else if (unit <= 0xDBFF && end - p >= 2 && p[1] >= 0xDC00 && p[1] <= 0xDFFF) {
            extra += 2; // four bytes for the two units
            p += 2;
        } else {
            return false;
        }
    }
    bytes = length + extra;
    return true;
}

bool utf8_to_utf16_string(const char* source, std::size_t length, ustring& result, std::size_t limit)
{
    std::size_t units = 0;
    if (!utf8_to_utf16_length(source, length, units) || units > limit)
        return false;
    ustring converted(units, u'\0');
    if (units != 0)
        convert_valid(source, length, &converted[0]);
    result.swap(converted);
    return true;
}

bool utf16_to_utf8_string(const char16_t* source, std::size_t length, std::string& result, std::size_t limit)
{
    std::size_t bytes = 0;
    if (!utf16_to_utf8_length(source, length, bytes) || bytes > limit)
        return false;
    std::string converted(bytes, '\0');
    if (bytes != 0)
        convert_valid(source, length, &converted[0]);
    result.swap(converted);
    return true;
}

bool utf8_to_utf16_buffer(const char* source, std::size_t length, char16_t* destination, std::size_t capacity,
    bool terminate, std::size_t& needed) noexcept
{
    if (!utf8_to_utf16_length(source, length, needed))
        return false;
    if (!destination || capacity == 0)
        return true;
    if (needed > capacity)
        return false;
    convert_valid(source, length, destination);
    if (terminate && needed < capacity)
        destination[needed] = u'\0';
    return true;
}

bool utf16_to_utf8_buffer(const char16_t* source, std::size_t length, char* destination, std::size_t capacity,
    bool terminate, std::size_t& needed) noexcept
{
    if (!utf16_to_utf8_length(source, length, needed))
        return false;
    if (!destination || capacity == 0)
        return true;
    if (needed > capacity)
        return false;
    convert_valid(source, length, destination);
    if (terminate && needed < capacity)
        destination[needed] = '\0';
    return true;
}

} // namespace detail
} // namespace i18n
} // namespace fl
