#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include "i18n/conversion/cvt_throw.hpp"

#include <boost/numeric/conversion/cast.hpp>

namespace fl {
namespace i18n {
namespace lcctype {

template <typename Target, typename Source> Target num_cast(Source value)
{
    try {
        return boost::numeric_cast<Target>(value);
    } catch (const boost::numeric::bad_numeric_cast&) {
        detail::throw_cvt<CvtSizeTooLarge>();
    }
}

template QVI18N_API int num_cast<int, unsigned long>(unsigned long);
template QVI18N_API unsigned long num_cast<unsigned long, int>(int);
template QVI18N_API unsigned long num_cast<unsigned long, signed char>(signed char);
template QVI18N_API signed char num_cast<signed char, unsigned long>(unsigned long);

namespace {

// The longest source that a whole-buffer ICU call can be blamed for, by unit size: beyond it the
// failure is put down to the size, whatever ICU said.
template <typename T> constexpr unsigned long size_bound();
template <> constexpr unsigned long size_bound<char>()
{
    return 0x80000000UL;
}
template <> constexpr unsigned long size_bound<char16_t>()
{
    return 0x40000000UL;
}
template <> constexpr unsigned long size_bound<char32_t>()
{
    return 0x20000000UL;
}

} // namespace

template <typename T> void map_codecvt_exception(UErrorCode status, unsigned long length)
{
    if (status <= U_ZERO_ERROR || status == U_BUFFER_OVERFLOW_ERROR)
        return;
    if (length >= size_bound<T>())
        detail::throw_cvt<CvtSizeTooLarge>();
    if (status == U_INVALID_CHAR_FOUND || status == U_ILLEGAL_CHAR_FOUND)
        detail::throw_cvt<CvtInvalidCharacter>();
    detail::throw_cvt<CvtConversionFailure>();
}

template QVI18N_API void map_codecvt_exception<char>(UErrorCode, unsigned long);
template QVI18N_API void map_codecvt_exception<char16_t>(UErrorCode, unsigned long);
template QVI18N_API void map_codecvt_exception<char32_t>(UErrorCode, unsigned long);

void invalid_char_exception_throwing(UErrorCode status)
{
    if (status == U_INVALID_CHAR_FOUND || status == U_ILLEGAL_CHAR_FOUND)
        detail::throw_cvt<CvtInvalidCharacter>();
    detail::throw_cvt<CvtConversionFailure>();
}

unsigned long stream_conversion_from_utf16(UConverter* converter, char** target, const char* target_limit,
    const char16_t** source, const char16_t* source_limit, bool flush, UErrorCode& status)
{
    char* const start = *target;
    status = U_ZERO_ERROR;
    ucnv_fromUnicode(converter, target, target_limit, source, source_limit, nullptr, flush, &status);
    const auto written = *target - start;
    if (written < 0)
        detail::throw_cvt<CvtSizeTooLarge>();
    return static_cast<unsigned long>(written);
}

unsigned long stream_conversion_to_utf16(UConverter* converter, char16_t** target,
    const char16_t* target_limit, const char** source, const char* source_limit, bool flush,
    UErrorCode& status)
{
    char16_t* const start = *target;
    status = U_ZERO_ERROR;
    ucnv_toUnicode(converter, target, target_limit, source, source_limit, nullptr, flush, &status);
    const auto written = *target - start;
    if (written < 0)
        detail::throw_cvt<CvtSizeTooLarge>();
    return static_cast<unsigned long>(written);
}

} // namespace lcctype
} // namespace i18n
} // namespace fl
