#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/utf8_fast_path.hpp>

#include "i18n/conversion/block_loop.hpp"
#include "i18n/conversion/ctx_open.hpp"
#include "i18n/conversion/cvt_throw.hpp"

namespace fl {
namespace i18n {

namespace {

// Well-formed text to or from UTF-8 needs no ICU call; call-backs only ever act on the rest.
bool is_utf8(UConverter* converter)
{
    return ucnv_getType(converter) == UCNV_UTF8;
}

} // namespace

codecvt_ustring_to_string::codecvt_ustring_to_string(const std::string& encoding, bool allow_invalid)
    : ctx(detail::open_ctx(encoding))
{
    if (!allow_invalid)
        ctx->change_from_call_back(call_back_invalid_check, std::string());
}

codecvt_ustring_to_string::codecvt_ustring_to_string(
    codecvt_call_back_mode mode, const std::string& encoding, const std::string& substitution)
    : ctx(detail::open_ctx(encoding))
{
    if (mode != call_back_default)
        ctx->change_from_call_back(mode, substitution);
}

codecvt_ustring_to_string::~codecvt_ustring_to_string() { }

void codecvt_ustring_to_string::change_call_back(codecvt_call_back_mode mode, const std::string& substitution)
{
    if (ctx)
        ctx->change_from_call_back(mode, substitution);
}

void codecvt_ustring_to_string::reset_call_back()
{
    if (ctx)
        ctx->reset_from_call_back();
}

codecvt_call_back_mode codecvt_ustring_to_string::get_call_back_mode() const
{
    return ctx ? ctx->get_from_call_back_mode() : call_back_default;
}

unsigned long codecvt_ustring_to_string::do_get_destination_size(
    const char16_t* source, unsigned long length) const
{
    UConverter* converter = detail::converter_of(ctx);
    std::size_t needed = 0;
    if (is_utf8(converter) && detail::utf16_to_utf8_length(source, length, needed))
        return needed;
    return detail::run_block_loop<char, char16_t>(
        converter, nullptr, 0, source, length, detail::direct_step<char, char16_t>());
}

std::string codecvt_ustring_to_string::do_convert(const char16_t* source, unsigned long length) const
{
    UConverter* converter = detail::converter_of(ctx);
    std::string converted;
    if (is_utf8(converter) && detail::utf16_to_utf8_string(source, length, converted))
        return converted;
    return detail::convert_whole_from_utf16(converter, source, length);
}

unsigned long codecvt_ustring_to_string::do_convert(
    char* destination, unsigned long destination_size, const char16_t* source, unsigned long length) const
{
    UConverter* converter = detail::converter_of(ctx);
    std::size_t needed = 0;
    if (is_utf8(converter)
        && detail::utf16_to_utf8_buffer(source, length, destination, destination_size, false, needed))
        return needed;
    return detail::run_block_loop<char, char16_t>(converter, destination, destination_size, source, length,
        detail::primitive_step<char, char16_t> {&lcctype::stream_conversion_from_utf16});
}

codecvt_string_to_ustring::codecvt_string_to_ustring(const std::string& encoding, bool allow_invalid)
    : ctx(detail::open_ctx(encoding))
{
    if (!allow_invalid)
        ctx->change_to_call_back(call_back_invalid_check);
}

codecvt_string_to_ustring::codecvt_string_to_ustring(codecvt_call_back_mode mode, const std::string& encoding)
    : ctx(detail::open_ctx(encoding))
{
    if (mode != call_back_default)
        ctx->change_to_call_back(mode);
}

codecvt_string_to_ustring::~codecvt_string_to_ustring() { }

void codecvt_string_to_ustring::change_call_back(codecvt_call_back_mode mode)
{
    if (ctx)
        ctx->change_to_call_back(mode);
}

void codecvt_string_to_ustring::reset_call_back()
{
    if (ctx)
        ctx->reset_to_call_back();
}

codecvt_call_back_mode codecvt_string_to_ustring::get_call_back_mode() const
{
    return ctx ? ctx->get_to_call_back_mode() : call_back_default;
}

unsigned long codecvt_string_to_ustring::do_get_destination_size(
    const char* source, unsigned long length) const
{
    UConverter* converter = detail::converter_of(ctx);
    std::size_t needed = 0;
    if (is_utf8(converter) && detail::utf8_to_utf16_length(source, length, needed))
        return needed;
    return detail::run_block_loop<char16_t, char>(
        converter, nullptr, 0, source, length, detail::direct_step<char16_t, char>());
}

ustring codecvt_string_to_ustring::do_convert(const char* source, unsigned long length) const
{
    UConverter* converter = detail::converter_of(ctx);
    ustring converted;
    if (is_utf8(converter) && detail::utf8_to_utf16_string(source, length, converted))
        return converted;
    return detail::convert_whole_to_utf16(converter, source, length);
}

unsigned long codecvt_string_to_ustring::do_convert(
    char16_t* destination, unsigned long destination_size, const char* source, unsigned long length) const
{
    UConverter* converter = detail::converter_of(ctx);
    std::size_t needed = 0;
    if (is_utf8(converter)
        && detail::utf8_to_utf16_buffer(source, length, destination, destination_size, false, needed))
        return needed;
    return detail::run_block_loop<char16_t, char>(converter, destination, destination_size, source, length,
        detail::primitive_step<char16_t, char> {&lcctype::stream_conversion_to_utf16});
}

} // namespace i18n
} // namespace fl
