#include <qvi18n/i18n/conversion/stream_codecvt.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>

#include "i18n/conversion/ctx_open.hpp"
#include "i18n/conversion/cvt_throw.hpp"

namespace fl {
namespace i18n {

template class stream_converter<char, char16_t>;
template class stream_converter<char16_t, char>;

namespace {

// What one incremental call's status means to the caller: 0 when the source is taken, 1 when the
// target is full. A failure leaves the stream at the start of a text before it is thrown.
template <typename Reset> int stream_result(UErrorCode status, Reset reset)
{
    if (status <= U_ZERO_ERROR)
        return 0;
    if (status == U_BUFFER_OVERFLOW_ERROR)
        return 1;
    reset();
    lcctype::invalid_char_exception_throwing(status);
}

} // namespace

stream_codecvt_ustring_to_string::stream_codecvt_ustring_to_string(
    const std::string& encoding, bool allow_invalid)
    : stream_codecvt_ustring_to_string(encoding, allow_invalid ? call_back_default : call_back_invalid_check)
{
}

stream_codecvt_ustring_to_string::stream_codecvt_ustring_to_string(
    const std::string& encoding, codecvt_call_back_mode mode)
    : ctx(detail::open_ctx(encoding))
{
    ctx->change_from_call_back(mode, std::string());
}

stream_codecvt_ustring_to_string::~stream_codecvt_ustring_to_string() { }

int stream_codecvt_ustring_to_string::do_convert(char** target, char* target_limit, const char16_t** source,
    const char16_t* source_limit, bool flush) const
{
    UConverter* converter = detail::converter_of(ctx);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(converter, target, target_limit, source, source_limit, nullptr, flush, &status);
    return stream_result(status, [this] { do_reset_state(); });
}

void stream_codecvt_ustring_to_string::do_reset_state() const
{
    if (ctx && ctx->get_converter())
        ucnv_resetFromUnicode(ctx->get_converter());
}

int stream_codecvt_ustring_to_string::do_max_char_size() const
{
    return ctx ? static_cast<int>(ctx->get_max_byte_size()) : 0;
}

stream_codecvt_string_to_ustring::stream_codecvt_string_to_ustring(
    const std::string& encoding, bool allow_invalid)
    : ctx(detail::open_ctx(encoding))
{
    if (!allow_invalid)
        ctx->change_to_call_back(call_back_invalid_check);
}

stream_codecvt_string_to_ustring::~stream_codecvt_string_to_ustring() { }

int stream_codecvt_string_to_ustring::do_convert(char16_t** target, char16_t* target_limit,
    const char** source, const char* source_limit, bool flush) const
{
    UConverter* converter = detail::converter_of(ctx);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(converter, target, target_limit, source, source_limit, nullptr, flush, &status);
    return stream_result(status, [this] { do_reset_state(); });
}

void stream_codecvt_string_to_ustring::do_reset_state() const
{
    if (ctx && ctx->get_converter())
        ucnv_resetToUnicode(ctx->get_converter());
}

int stream_codecvt_string_to_ustring::do_max_char_size() const
{
    return 2;
}

} // namespace i18n
} // namespace fl
