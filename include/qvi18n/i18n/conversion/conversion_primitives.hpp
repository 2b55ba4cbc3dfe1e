#ifndef QVI18N_I18N_CONVERSION_CONVERSION_PRIMITIVES_HPP
#define QVI18N_I18N_CONVERSION_CONVERSION_PRIMITIVES_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/detail/converter_close.hpp>

#include <boost/function.hpp>

#include <unicode/ucnv.h>
#include <unicode/utypes.h>

#include <memory>
#include <string>

namespace fl {
namespace i18n {
namespace lcctype {

/// Holder of a default converter: the process-wide master, or one thread's own clone.
struct QVI18N_API code_converter_context {
    std::unique_ptr<UConverter, converter_close> converter;
    std::string name; // stays empty
};

/// The master converter of the default conversions, opened once on the global locale's encoding
/// at the first call and never re-opened; null if it could not be opened. Owned by the library.
QVI18N_API UConverter* get_global_codecvt();
/// A private converter for one caller: a clone of the master, or, failing that, a converter
/// opened on the global locale's current encoding. Throws CvtConversionFailure if neither works.
QVI18N_API std::unique_ptr<UConverter, converter_close> clone_codecvt();
/// The calling thread's own converter, made at its first call and freed at thread exit. Use it on
/// that thread only, and never close it.
QVI18N_API UConverter* get_cached_codecvt();

/// Checked cast of a length between the library's unsigned long and ICU's 32-bit values; an
/// out-of-range value throws CvtSizeTooLarge. Instantiated for <int, unsigned long>,
/// <unsigned long, int>, <unsigned long, signed char> and <signed char, unsigned long>.
template <typename Target, typename Source> QVI18N_API Target num_cast(Source value);

extern template QVI18N_API int num_cast<int, unsigned long>(unsigned long);
extern template QVI18N_API unsigned long num_cast<unsigned long, int>(int);
extern template QVI18N_API unsigned long num_cast<unsigned long, signed char>(signed char);
extern template QVI18N_API signed char num_cast<signed char, unsigned long>(unsigned long);

/// Throws for a failed whole-buffer conversion of `length` units of T, or returns when `status` is
/// a success or the overflow of a measuring call. T is char, char16_t or char32_t.
template <typename T> QVI18N_API void map_codecvt_exception(UErrorCode status, unsigned long length);

extern template QVI18N_API void map_codecvt_exception<char>(UErrorCode, unsigned long);
extern template QVI18N_API void map_codecvt_exception<char16_t>(UErrorCode, unsigned long);
extern template QVI18N_API void map_codecvt_exception<char32_t>(UErrorCode, unsigned long);

/// Throws CvtInvalidCharacter for an invalid or illegal character, CvtConversionFailure otherwise.
[[noreturn]] QVI18N_API void invalid_char_exception_throwing(UErrorCode status);

/// One incremental ICU call (flush as given, no offsets); returns the units written.
QVI18N_API unsigned long stream_conversion_from_utf16(UConverter* converter, char** target,
    const char* target_limit, const char16_t** source, const char16_t* source_limit, bool flush,
    UErrorCode& status);
QVI18N_API unsigned long stream_conversion_to_utf16(UConverter* converter, char16_t** target,
    const char16_t* target_limit, const char** source, const char* source_limit, bool flush,
    UErrorCode& status);

/// The signature of stream_conversion_from_utf16 / stream_conversion_to_utf16.
template <typename To, typename From> struct stream_conversion_function {
    typedef boost::function<unsigned long(
        UConverter*, To**, const To*, const From**, const From*, bool, UErrorCode&)>
        type;
};

/// A whole-buffer conversion: returns the size of the whole result, also when `destination` is
/// too small for it.
template <typename To, typename From> struct buffer_conversion_function {
    typedef boost::function<unsigned long(
        To* destination, unsigned long destination_size, const From* source, unsigned long length)>
        type;
};

/// The same with a converter.
template <typename To, typename From> struct generic_conversion_function {
    typedef boost::function<unsigned long(UConverter* converter, To* destination,
        unsigned long destination_size, const From* source, unsigned long length)>
        type;
};

/// Converts a whole text with an incremental primitive, in blocks: up to 1024 units on the stack,
/// larger inputs in a first buffer of at most 32768 units. The first run converts and measures; only
/// when its buffer was too small is the text converted again into a result of exactly the measured
/// size. Never flushes, so an incomplete character at the end is dropped; the converter is reset
/// after every run, failed or not.
/// Instantiated for <char, char16_t> and <char16_t, char>.
template <typename To, typename From>
QVI18N_API std::basic_string<To> convert_to_string_large_buffer(UConverter* converter, const From* source,
    unsigned long length, typename stream_conversion_function<To, From>::type function);

extern template QVI18N_API std::string convert_to_string_large_buffer<char, char16_t>(
    UConverter*, const char16_t*, unsigned long, stream_conversion_function<char, char16_t>::type);
extern template QVI18N_API ustring convert_to_string_large_buffer<char16_t, char>(
    UConverter*, const char*, unsigned long, stream_conversion_function<char16_t, char>::type);

/// Converts a whole text with a whole-buffer function, retrying once with the exact size when
/// the first buffer is too small. Instantiated for <char, char16_t>, <char16_t, char> and
/// <char16_t, char32_t>.
template <typename To, typename From>
QVI18N_API std::basic_string<To> convert_to_string_utf(
    const From* source, unsigned long length, typename buffer_conversion_function<To, From>::type function);

extern template QVI18N_API std::string convert_to_string_utf<char, char16_t>(
    const char16_t*, unsigned long, buffer_conversion_function<char, char16_t>::type);
extern template QVI18N_API ustring convert_to_string_utf<char16_t, char>(
    const char*, unsigned long, buffer_conversion_function<char16_t, char>::type);
extern template QVI18N_API ustring convert_to_string_utf<char16_t, char32_t>(
    const char32_t*, unsigned long, buffer_conversion_function<char16_t, char32_t>::type);

/// convert_to_string_utf with a converter passed on to the function. Instantiated for
/// <char, char16_t> and <char16_t, char>.
template <typename To, typename From>
QVI18N_API std::basic_string<To> convert_to_string_generic(UConverter* converter, const From* source,
    unsigned long length, typename generic_conversion_function<To, From>::type function);

extern template QVI18N_API std::string convert_to_string_generic<char, char16_t>(
    UConverter*, const char16_t*, unsigned long, generic_conversion_function<char, char16_t>::type);
extern template QVI18N_API ustring convert_to_string_generic<char16_t, char>(
    UConverter*, const char*, unsigned long, generic_conversion_function<char16_t, char>::type);

} // namespace lcctype
} // namespace i18n
} // namespace fl

#endif
