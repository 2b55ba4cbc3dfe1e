#include <qvi18n/i18n/conversion/utf8_fast_path.hpp>

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

// The length of the well-formed sequence of two to four bytes that starts at `p` with a lead at
// 0x80 or above, or 0 if there is none.
inline int sequence_length(const byte* p, const byte* end) noexcept
{
    const byte lead = *p;
    const std::size_t left = static_cast<std::size_t>(end - p);
    if (lead < 0xE0)
        return lead >= 0xC2 && left >= 2 && is_trail(p[1]) ? 2 : 0;
    if (lead < 0xF0)
        return left >= 3 && p[1] >= second_low3[lead & 0x0F] && p[1] <= second_high3[lead & 0x0F]
                && is_trail(p[2])
            ? 3
            : 0;
    return lead <= 0xF4 && left >= 4 && p[1] >= second_low4[lead - 0xF0] && p[1] <= second_high4[lead - 0xF0]
            && is_trail(p[2]) && is_trail(p[3])
        ? 4
        : 0;
}

// The units the text yields if it is well-formed, without checking that it is: one per byte that
// is not a trail byte, and one more for each lead of four bytes. For ill-formed text the figure is
// still at least what its well-formed beginning yields, which is all the checking conversion
// writes before it gives up.
std::size_t count_units(const byte* p, std::size_t length) noexcept
{
    const byte* const end = p + length;
    std::size_t trails = 0;
    std::size_t fours = 0;
#if QVI18N_UTF8_SSE2
    const __m128i zero = _mm_setzero_si128();
    const __m128i trail_limit = _mm_set1_epi8(-64); // 0x80 to 0xBF are below it as signed bytes
    const __m128i four_lead = _mm_set1_epi8(static_cast<char>(0xF0));
    while (end - p >= 16) {
        // Byte-wide counters, summed before they can overflow.
        std::size_t blocks = static_cast<std::size_t>(end - p) / 16;
        if (blocks > 255)
            blocks = 255;
        __m128i trail_count = zero;
        __m128i four_count = zero;
        for (; blocks > 0; --blocks, p += 16) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            trail_count = _mm_sub_epi8(trail_count, _mm_cmplt_epi8(bytes, trail_limit));
            four_count = _mm_sub_epi8(four_count, _mm_cmpeq_epi8(_mm_max_epu8(bytes, four_lead), bytes));
        }
        const __m128i t = _mm_sad_epu8(trail_count, zero);
        const __m128i f = _mm_sad_epu8(four_count, zero);
        trails
            += static_cast<std::size_t>(_mm_cvtsi128_si32(t) + _mm_cvtsi128_si32(_mm_unpackhi_epi64(t, t)));
        fours += static_cast<std::size_t>(_mm_cvtsi128_si32(f) + _mm_cvtsi128_si32(_mm_unpackhi_epi64(f, f)));
    }
#endif
    for (; p < end; ++p) {
        trails += (*p & 0xC0) == 0x80;
        fours += *p >= 0xF0;
    }
    return length - trails + fours;
}

// The bytes the text yields if it is well-formed: three per unit, less one for each unit below
// 0x800, one more below 0x80, and one for each surrogate (a pair makes four). Like count_units, it
// never falls short of what the checking conversion writes.
std::size_t count_bytes(const char16_t* p, std::size_t length) noexcept
{
    const char16_t* const end = p + length;
    std::size_t less = 0;
#if QVI18N_UTF8_SSE2
    const __m128i zero = _mm_setzero_si128();
    const __m128i ones = _mm_set1_epi16(1);
    const __m128i above_ascii = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i above_two = _mm_set1_epi16(static_cast<short>(0xF800));
    const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
    while (end - p >= 16) {
        // 16-bit counters gain at most 6 a step and are summed as signed values.
        std::size_t blocks = static_cast<std::size_t>(end - p) / 16;
        if (blocks > 5000)
            blocks = 5000;
        __m128i count = zero;
        for (; blocks > 0; --blocks, p += 16) {
            const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
            if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(_mm_or_si128(a, b), above_ascii), zero))
                == 0xFFFF) {
                less += 32; // sixteen ASCII units, a byte each
                continue;
            }
            const __m128i top_a = _mm_and_si128(a, above_two);
            const __m128i top_b = _mm_and_si128(b, above_two);
            count = _mm_sub_epi16(count, _mm_cmpeq_epi16(_mm_and_si128(a, above_ascii), zero));
            count = _mm_sub_epi16(count, _mm_cmpeq_epi16(top_a, zero));
            count = _mm_sub_epi16(count, _mm_cmpeq_epi16(top_a, surrogate));
            count = _mm_sub_epi16(count, _mm_cmpeq_epi16(_mm_and_si128(b, above_ascii), zero));
            count = _mm_sub_epi16(count, _mm_cmpeq_epi16(top_b, zero));
            count = _mm_sub_epi16(count, _mm_cmpeq_epi16(top_b, surrogate));
        }
        alignas(16) std::int32_t sums[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(sums), _mm_madd_epi16(count, ones));
        less += static_cast<std::size_t>(sums[0]) + static_cast<std::size_t>(sums[1])
            + static_cast<std::size_t>(sums[2]) + static_cast<std::size_t>(sums[3]);
    }
#endif
    for (; p < end; ++p)
        less += (*p < 0x80) + (*p < 0x800) + ((*p & 0xF800) == 0xD800);
    return 3 * length - less;
}

// Converts as long as the text is well-formed, into `out`, which holds at least what the text's
// well-formed beginning yields. False at the first fault; the output is then to be dropped.
// Stores of whole vectors may write beyond the current character while room lasts; later
// characters overwrite that.
bool convert_checked(const char* source, std::size_t length, char16_t* out, char16_t* const out_end) noexcept
{
    const byte* p = reinterpret_cast<const byte*>(source);
    const byte* const end = p + length;
    while (p < end) {
        const byte lead = *p;
        if (lead < 0x80) {
#if QVI18N_UTF8_SSE2
            const __m128i zero = _mm_setzero_si128();
            bool stopped = false;
            while (end - p >= 16 && out_end - out >= 16) {
                const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(bytes, zero));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(bytes, zero));
                const int mask = _mm_movemask_epi8(bytes);
                if (mask != 0) {
                    const int ascii = __builtin_ctz(static_cast<unsigned>(mask));
                    p += ascii;
                    out += ascii;
                    stopped = true;
                    break;
                }
                p += 16;
                out += 16;
            }
            if (stopped)
                continue;
#endif
            while (p < end && *p < 0x80)
                *out++ = *p++;
            continue;
        }
        const int bytes = sequence_length(p, end);
        if (bytes == 2) {
            *out++ = static_cast<char16_t>(((lead & 0x1F) << 6) | (p[1] & 0x3F));
        } else if (bytes == 3) {
            *out++ = static_cast<char16_t>(((lead & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F));
        } else if (bytes == 4) {
            const std::uint32_t c = (static_cast<std::uint32_t>(lead & 0x07) << 18)
                | (static_cast<std::uint32_t>(p[1] & 0x3F) << 12)
                | (static_cast<std::uint32_t>(p[2] & 0x3F) << 6) | (p[3] & 0x3F);
            out[0] = static_cast<char16_t>(0xD7C0 + (c >> 10));
            out[1] = static_cast<char16_t>(0xDC00 | (c & 0x3FF));
            out += 2;
        } else {
            return false;
        }
        p += bytes;
    }
    return out == out_end;
}

// One character from `p` on; false for an unpaired surrogate.
inline bool convert_one(const char16_t*& p, const char16_t* end, char*& out, char* out_end) noexcept
{
    const std::uint32_t unit = *p;
    if (unit < 0x80) {
        *out++ = static_cast<char>(unit);
        ++p;
    } else if (unit < 0x800) {
        out[0] = static_cast<char>(0xC0 | (unit >> 6));
        out[1] = static_cast<char>(0x80 | (unit & 0x3F));
        out += 2;
        ++p;
    } else if (unit < 0xD800 || unit > 0xDFFF) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        if (out_end - out >= 4) {
            // One store for the three bytes; the fourth is overwritten next.
            const std::uint32_t word = (0xE0 | (unit >> 12)) | ((0x80 | ((unit >> 6) & 0x3F)) << 8)
                | ((0x80 | (unit & 0x3F)) << 16);
            std::memcpy(out, &word, 4);
            out += 3;
            ++p;
            return true;
        }
#else
        (void)out_end;
#endif
        out[0] = static_cast<char>(0xE0 | (unit >> 12));
        out[1] = static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
        out[2] = static_cast<char>(0x80 | (unit & 0x3F));
        out += 3;
        ++p;
    } else {
        if (unit > 0xDBFF || end - p < 2 || p[1] < 0xDC00 || p[1] > 0xDFFF)
            return false;
        const std::uint32_t c = 0x10000 + ((unit - 0xD800) << 10) + (p[1] - 0xDC00u);
        out[0] = static_cast<char>(0xF0 | (c >> 18));
        out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[3] = static_cast<char>(0x80 | (c & 0x3F));
        out += 4;
        p += 2;
    }
    return true;
}

#if QVI18N_UTF8_SSE2
// For eight units of one or two bytes each, by the mask of those that take two: where each
// unit's bytes start, and in the last place the bytes of all eight.
struct two_byte_offsets {
    std::uint8_t at[256][9];
    constexpr two_byte_offsets()
        : at()
    {
        for (unsigned mask = 0; mask < 256; ++mask) {
            std::uint8_t offset = 0;
            for (unsigned i = 0; i < 8; ++i) {
                at[mask][i] = offset;
                offset = static_cast<std::uint8_t>(offset + 1 + ((mask >> i) & 1));
            }
            at[mask][8] = offset;
        }
    }
};
constexpr two_byte_offsets two_byte_layout;
#endif

bool convert_checked(const char16_t* source, std::size_t length, char* out, char* const out_end) noexcept
{
    const char16_t* p = source;
    const char16_t* const end = p + length;
#if QVI18N_UTF8_SSE2
    // Blocks of eight units. Their UTF-8 forms are computed at once, as 16-bit (one or two bytes)
    // or 32-bit (up to three) lanes, and then laid out: all ASCII at once, the rest by where each
    // unit's bytes start. A block with a surrogate goes character by character, which checks
    // the pairs.
    const __m128i zero = _mm_setzero_si128();
    const __m128i above_ascii = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i above_two = _mm_set1_epi16(static_cast<short>(0xF800));
    const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
    const __m128i low_six = _mm_set1_epi16(0x3F);
    const __m128i trail_bits = _mm_set1_epi16(0x80);
    while (end - p >= 8 && out_end - out >= 32) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i ascii = _mm_cmpeq_epi16(_mm_and_si128(units, above_ascii), zero);
        const __m128i top = _mm_and_si128(units, above_two);
        const __m128i small = _mm_cmpeq_epi16(top, zero); // below U+0800
        const unsigned ascii_mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(ascii, zero)));
        if (ascii_mask == 0xFF) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(units, units));
            p += 8;
            out += 8;
            // A run of ASCII goes on sixteen units a step.
            while (end - p >= 16 && out_end - out >= 16) {
                const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
                const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8));
                if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(_mm_or_si128(a, b), above_ascii), zero))
                    != 0xFFFF)
                    break;
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(a, b));
                p += 16;
                out += 16;
            }
            continue;
        }
        const unsigned small_mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(small, zero)));
        const __m128i trail = _mm_or_si128(_mm_and_si128(units, low_six), trail_bits);
        if (small_mask == 0xFF) {
            const __m128i lead = _mm_or_si128(_mm_srli_epi16(units, 6), _mm_set1_epi16(0xC0));
            const __m128i two = _mm_or_si128(lead, _mm_slli_epi16(trail, 8));
            const __m128i forms = _mm_or_si128(_mm_and_si128(ascii, units), _mm_andnot_si128(ascii, two));
            const std::uint8_t* const at = two_byte_layout.at[~ascii_mask & 0xFF];
            alignas(16) std::uint16_t laid[8];
            _mm_store_si128(reinterpret_cast<__m128i*>(laid), forms);
            for (int i = 0; i < 8; ++i)
                std::memcpy(out + at[i], &laid[i], 2); // little-endian: the lead byte first
            p += 8;
            out += at[8];
            continue;
        }
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(top, surrogate)) != 0) {
            const char16_t* const block_end = p + 8;
            while (p < block_end)
                if (!convert_one(p, end, out, out_end))
                    return false;
            continue;
        }
        // Up to three bytes a unit: the first two in the low lane, the third in the high one.
        const __m128i lead2 = _mm_or_si128(_mm_srli_epi16(units, 6), _mm_set1_epi16(0xC0));
        const __m128i lead3 = _mm_or_si128(_mm_srli_epi16(units, 12), _mm_set1_epi16(0xE0));
        const __m128i middle3 = _mm_or_si128(_mm_and_si128(_mm_srli_epi16(units, 6), low_six), trail_bits);
        const __m128i low2 = _mm_or_si128(lead2, _mm_slli_epi16(trail, 8));
        const __m128i low3 = _mm_or_si128(lead3, _mm_slli_epi16(middle3, 8));
        const __m128i low = _mm_or_si128(_mm_and_si128(ascii, units),
            _mm_andnot_si128(ascii, _mm_or_si128(_mm_and_si128(small, low2), _mm_andnot_si128(small, low3))));
        const __m128i high = _mm_andnot_si128(small, trail);
        alignas(16) std::uint32_t laid[8];
        _mm_store_si128(reinterpret_cast<__m128i*>(laid), _mm_unpacklo_epi16(low, high));
        _mm_store_si128(reinterpret_cast<__m128i*>(laid + 4), _mm_unpackhi_epi16(low, high));
        if (small_mask == 0) {
            for (int i = 0; i < 8; ++i)
                std::memcpy(out + 3 * i, &laid[i], 4);
            out += 24;
        } else {
            for (int i = 0; i < 8; ++i) {
                std::memcpy(out, &laid[i], 4);
                out += 3 - ((ascii_mask >> i) & 1) - ((small_mask >> i) & 1);
            }
        }
        p += 8;
    }
#endif
    while (p < end)
        if (!convert_one(p, end, out, out_end))
            return false;
    return out == out_end;
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
        const int bytes = sequence_length(p, end);
        if (bytes == 0)
            return false;
        p += bytes;
        saved += bytes == 2 ? 1 : 2;
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

namespace {

inline std::size_t count_result(const char* source, std::size_t length) noexcept
{
    return count_units(reinterpret_cast<const byte*>(source), length);
}

inline std::size_t count_result(const char16_t* source, std::size_t length) noexcept
{
    return count_bytes(source, length);
}

inline bool checked_size(const char* source, std::size_t length, std::size_t& size) noexcept
{
    return utf8_to_utf16_length(source, length, size);
}

inline bool checked_size(const char16_t* source, std::size_t length, std::size_t& size) noexcept
{
    return utf16_to_utf8_length(source, length, size);
}

template <typename To, typename From>
bool convert_to_string(
    const From* source, std::size_t length, std::basic_string<To>& result, std::size_t limit)
{
    if (!source && length != 0)
        return false;
    // Counting does not check, the conversion does: the text is read twice, not three times.
    const std::size_t size = count_result(source, length);
    if (size > limit)
        return false;
    std::basic_string<To> converted(size, To());
    if (length != 0 && !convert_checked(source, length, &converted[0], &converted[0] + size))
        return false;
    result.swap(converted);
    return true;
}

template <typename To, typename From>
bool convert_to_buffer(const From* source, std::size_t length, To* destination, std::size_t capacity,
    bool terminate, std::size_t& needed) noexcept
{
    if (!checked_size(source, length, needed))
        return false;
    if (!destination || capacity == 0)
        return true;
    if (needed > capacity)
        return false;
    // Checked already: a caller's buffer never receives output that is then taken back.
    convert_checked(source, length, destination, destination + needed);
    if (terminate && needed < capacity)
        destination[needed] = To();
    return true;
}

} // namespace

bool utf8_to_utf16_string(const char* source, std::size_t length, ustring& result, std::size_t limit)
{
    return convert_to_string(source, length, result, limit);
}

bool utf16_to_utf8_string(const char16_t* source, std::size_t length, std::string& result, std::size_t limit)
{
    return convert_to_string(source, length, result, limit);
}

bool utf8_to_utf16_buffer(const char* source, std::size_t length, char16_t* destination, std::size_t capacity,
    bool terminate, std::size_t& needed) noexcept
{
    return convert_to_buffer(source, length, destination, capacity, terminate, needed);
}

bool utf16_to_utf8_buffer(const char16_t* source, std::size_t length, char* destination, std::size_t capacity,
    bool terminate, std::size_t& needed) noexcept
{
    return convert_to_buffer(source, length, destination, capacity, terminate, needed);
}

} // namespace detail
} // namespace i18n
} // namespace fl
