#include <qvi18n/filesystem/converters.hpp>

#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/utf8_fast_path.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <unicode/ustring.h>

namespace fl {
namespace filesystem {
namespace detail {

namespace {

const unsigned long max_icu_length = 0x7FFFFFFFUL;

// ICU takes 32-bit signed lengths; anything larger is a name no system would take.
inline int checked_length(unsigned long value)
{
    if (value > max_icu_length)
        throw fl::i18n::MakeException(FileNameTooLarge());
    return static_cast<int>(value);
}

inline unsigned long checked_result(int value)
{
    if (value < 0)
        throw fl::i18n::MakeException(FileNameTooLarge());
    return static_cast<unsigned long>(value);
}

// Well-formed names skip ICU: they convert the same whatever the substitution or call-backs.
// What ICU's whole-buffer functions write into a buffer too small is ICU's to say, so such a
// call is left to it, as is everything ill-formed. `d` null with a capacity is ICU's error.
template <typename To, typename From, typename Fast>
inline bool fast_buffer(
    To* d, unsigned long cap, const From* s, unsigned long n, unsigned long& needed, Fast fast)
{
    std::size_t size = 0;
    if ((d == nullptr && cap != 0) || !fast(s, n, d, cap, true, size) || size > max_icu_length)
        return false;
    needed = size;
    return true;
}

inline bool fast_to_utf8(
    char* d, unsigned long cap, const char16_t* s, unsigned long n, unsigned long& needed)
{
    return fast_buffer(d, cap, s, n, needed, &fl::i18n::detail::utf16_to_utf8_buffer);
}

inline bool fast_from_utf8(
    char16_t* d, unsigned long cap, const char* s, unsigned long n, unsigned long& needed)
{
    return fast_buffer(d, cap, s, n, needed, &fl::i18n::detail::utf8_to_utf16_buffer);
}

inline bool is_utf8(UConverter* c)
{
    return ucnv_getType(c) == UCNV_UTF8;
}

// A whole name in a string of exactly its size, or false to take the ICU way.
inline bool fast_to_utf8_string(const char16_t* s, unsigned long n, std::string& result)
{
    return n <= max_icu_length && fl::i18n::detail::utf16_to_utf8_string(s, n, result, max_icu_length);
}

inline bool fast_from_utf8_string(const char* s, unsigned long n, fl::i18n::ustring& result)
{
    return n <= max_icu_length && fl::i18n::detail::utf8_to_utf16_string(s, n, result, max_icu_length);
}

} // namespace

template <class T> void map_codecvt_exception(UErrorCode e, unsigned long n)
{
    if (e <= U_ZERO_ERROR || e == U_BUFFER_OVERFLOW_ERROR)
        return;
    // A huge input is blamed on its size, whatever ICU made of it.
    if (n >= 0x80000000UL)
        throw fl::i18n::MakeException(FileNameTooLarge());
    if (e == U_INVALID_CHAR_FOUND || e == U_ILLEGAL_CHAR_FOUND)
        throw fl::i18n::MakeException(CvtInvalidCharacter());
    throw fl::i18n::MakeException(FileNameConversionFailure(7));
}

template QVI18N_API void map_codecvt_exception<char>(UErrorCode, unsigned long);
template QVI18N_API void map_codecvt_exception<char16_t>(UErrorCode, unsigned long);

unsigned long conversion_to_utf8(char* d, unsigned long cap, const char16_t* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    unsigned long needed = 0;
    if (fast_to_utf8(d, cap, s, n, needed))
        return needed;
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8WithSub(d, icu_cap, &length, s, icu_n, 0x1A, nullptr, &status);
    map_codecvt_exception<char16_t>(status, n);
    return checked_result(length);
}

unsigned long conversion_from_utf8(char16_t* d, unsigned long cap, const char* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    unsigned long needed = 0;
    if (fast_from_utf8(d, cap, s, n, needed))
        return needed;
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8WithSub(d, icu_cap, &length, s, icu_n, 0xFFFD, nullptr, &status);
    map_codecvt_exception<char>(status, n);
    return checked_result(length);
}

unsigned long conversion_from_uchar(
    UConverter* c, char* d, unsigned long cap, const char16_t* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    unsigned long needed = 0;
    if (is_utf8(c) && fast_to_utf8(d, cap, s, n, needed))
        return needed;
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(c, d, icu_cap, s, icu_n, &status);
    map_codecvt_exception<char16_t>(status, n);
    return checked_result(length);
}

unsigned long conversion_to_utf16(
    UConverter* c, char16_t* d, unsigned long cap, const char* s, unsigned long n)
{
    const int icu_cap = checked_length(cap);
    const int icu_n = checked_length(n);
    unsigned long needed = 0;
    if (is_utf8(c) && fast_from_utf8(d, cap, s, n, needed))
        return needed;
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(c, d, icu_cap, s, icu_n, &status);
    map_codecvt_exception<char>(status, n);
    return checked_result(length);
}

std::string to_filesystem(const fl::i18n::ustring& p)
{
    if (p.empty())
        return std::string();
    std::string converted;
    if (fast_to_utf8_string(p.data(), p.size(), converted))
        return converted;
    return fl::i18n::lcctype::convert_to_string_utf<char, char16_t>(p.data(), p.size(), &conversion_to_utf8);
}

fl::i18n::ustring from_filesystem(const std::string& p)
{
    if (p.empty())
        return fl::i18n::ustring();
    fl::i18n::ustring converted;
    if (fast_from_utf8_string(p.data(), p.size(), converted))
        return converted;
    return fl::i18n::lcctype::convert_to_string_utf<char16_t, char>(
        p.data(), p.size(), &conversion_from_utf8);
}

std::string make_native_access_form(const fl::i18n::ustring& p)
{
    return to_filesystem(p);
}

std::string make_native_access_form(
    const fl::i18n::ustring& p, const fl::i18n::converter<char, char16_t>& cvt)
{
    if (p.empty())
        return std::string();
    return cvt.convert(p.data(), p.size());
}

std::string make_native_access_form_with_cleanup(const fl::i18n::ustring& p)
{
    return to_filesystem(make_native_form(p, true));
}

std::string make_native_access_form_with_cleanup(
    const fl::i18n::ustring& p, const fl::i18n::converter<char, char16_t>& cvt)
{
    const fl::i18n::ustring native = make_native_form(p, true);
    if (native.empty())
        return std::string();
    return cvt.convert(native.data(), native.size());
}

} // namespace detail

namespace {

std::unique_ptr<fl::i18n::CvtCtx> open_utf8_context()
{
    UErrorCode status = U_ZERO_ERROR;
    fl::i18n::lcctype::unique_converter converter(ucnv_open("UTF-8", &status));
    if (U_FAILURE(status) || !converter)
        throw fl::i18n::MakeException(FileNameConversionFailure(2));
    return std::unique_ptr<fl::i18n::CvtCtx>(new fl::i18n::CvtCtx(converter));
}

std::unique_ptr<fl::i18n::CvtCtx> open_to_bytes_context(bool allow_invalid)
{
    std::unique_ptr<fl::i18n::CvtCtx> context = open_utf8_context();
    if (!allow_invalid)
        context->change_from_call_back(fl::i18n::call_back_invalid_check, std::string());
    return context;
}

std::unique_ptr<fl::i18n::CvtCtx> open_from_bytes_context(bool allow_invalid)
{
    std::unique_ptr<fl::i18n::CvtCtx> context = open_utf8_context();
    if (!allow_invalid)
        context->change_to_call_back(fl::i18n::call_back_invalid_check);
    return context;
}

inline UConverter* converter_of(const std::unique_ptr<fl::i18n::CvtCtx>& context)
{
    if (!context || !context->get_converter())
        throw fl::i18n::MakeException(FileNameConversionFailure(7));
    return context->get_converter();
}

} // namespace

#define QVI18N_FSYS_TO_BYTES_CONVERTER_BODY(Name)                                                            \
    Name::Name(bool allow_invalid)                                                                           \
        : context_(open_to_bytes_context(allow_invalid))                                                     \
    { }                                                                                                      \
    Name::~Name() { }                                                                                        \
    unsigned long Name::do_get_destination_size(const char16_t* source, unsigned long length) const          \
    {                                                                                                        \
        return detail::conversion_from_uchar(converter_of(context_), nullptr, 0, source, length);            \
    }                                                                                                        \
    std::string Name::do_convert(const char16_t* source, unsigned long length) const                         \
    {                                                                                                        \
        UConverter* const converter = converter_of(context_);                                                \
        std::string converted;                                                                               \
        if (detail::is_utf8(converter) && detail::fast_to_utf8_string(source, length, converted))            \
            return converted;                                                                                \
        return fl::i18n::lcctype::convert_to_string_generic<char, char16_t>(                                 \
            converter, source, length, &detail::conversion_from_uchar);                                      \
    }                                                                                                        \
    unsigned long Name::do_convert(char* destination, unsigned long destination_size,                        \
        const char16_t* source, unsigned long length) const                                                  \
    {                                                                                                        \
        return detail::conversion_from_uchar(                                                                \
            converter_of(context_), destination, destination_size, source, length);                          \
    }

#define QVI18N_FSYS_FROM_BYTES_CONVERTER_BODY(Name)                                                          \
    Name::Name(bool allow_invalid)                                                                           \
        : context_(open_from_bytes_context(allow_invalid))                                                   \
    { }                                                                                                      \
    Name::~Name() { }                                                                                        \
    unsigned long Name::do_get_destination_size(const char* source, unsigned long length) const              \
    {                                                                                                        \
        return detail::conversion_to_utf16(converter_of(context_), nullptr, 0, source, length);              \
    }                                                                                                        \
    fl::i18n::ustring Name::do_convert(const char* source, unsigned long length) const                       \
    {                                                                                                        \
        UConverter* const converter = converter_of(context_);                                                \
        fl::i18n::ustring converted;                                                                         \
        if (detail::is_utf8(converter) && detail::fast_from_utf8_string(source, length, converted))          \
            return converted;                                                                                \
        return fl::i18n::lcctype::convert_to_string_generic<char16_t, char>(                                 \
            converter, source, length, &detail::conversion_to_utf16);                                        \
    }                                                                                                        \
    unsigned long Name::do_convert(char16_t* destination, unsigned long destination_size,                    \
        const char* source, unsigned long length) const                                                      \
    {                                                                                                        \
        return detail::conversion_to_utf16(                                                                  \
            converter_of(context_), destination, destination_size, source, length);                          \
    }

QVI18N_FSYS_TO_BYTES_CONVERTER_BODY(codecvt_ustring_to_filesystem)
QVI18N_FSYS_TO_BYTES_CONVERTER_BODY(codecvt_ustring_to_narrow_string)
QVI18N_FSYS_FROM_BYTES_CONVERTER_BODY(codecvt_filesystem_to_ustring)
QVI18N_FSYS_FROM_BYTES_CONVERTER_BODY(codecvt_narrow_string_to_ustring)

#undef QVI18N_FSYS_TO_BYTES_CONVERTER_BODY
#undef QVI18N_FSYS_FROM_BYTES_CONVERTER_BODY

} // namespace filesystem
} // namespace fl
