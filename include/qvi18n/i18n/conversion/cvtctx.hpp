#ifndef QVI18N_I18N_CONVERSION_CVTCTX_HPP
#define QVI18N_I18N_CONVERSION_CVTCTX_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/detail/converter_close.hpp>

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

#include <memory>
#include <string>

// Call-backs in the style of ICU's escape and stop call-backs, except that an unassigned
// default-ignorable code point counts as any other unmappable character: the stopping one leaves
// the error set and the escaping one writes its escape, where ICU's own would drop it silently.
extern "C" {
QVI18N_API void UCNV_FROM_U_CALLBACK_ESCAPE_WITH_INVISIBLE_CHARS(const void* context,
    UConverterFromUnicodeArgs* from_args, const UChar* code_units, int32_t length, UChar32 code_point,
    UConverterCallbackReason reason, UErrorCode* err);
QVI18N_API void UCNV_FROM_U_CALLBACK_STOP_WITH_INVISIBLE_CHARS(const void* context,
    UConverterFromUnicodeArgs* from_args, const UChar* code_units, int32_t length, UChar32 code_point,
    UConverterCallbackReason reason, UErrorCode* err);
}

namespace fl {
namespace i18n {

/// What a converter does with text it cannot convert. Values are compared whole; any of the bits
/// 0x7F00 marks an escape mode (from Unicode only).
enum codecvt_call_back_mode {
    call_back_default = 0,
    call_back_invalid_check = 1,
    call_back_substitution = 0x10,
    call_back_unsupported = 0x20,
    call_back_escape_icu = 0x100,
    call_back_escape_java = 0x200,
    call_back_escape_c = 0x400,
    call_back_escape_xml_dec = 0x800,
    call_back_escape_xml_hex = 0x1000,
    call_back_escape_unicode = 0x2000,
    call_back_escape_css2 = 0x4000
};

/// Owner of one ICU converter and of the call-backs set on it in each direction. No lock: one
/// thread at a time, const operations included (they fill the name caches).
class QVI18N_API CvtCtx {
public:
    /// Opens `encoding`; throws CvtInvalidEncodingName if ICU cannot. An empty name opens ICU's
    /// default converter.
    explicit CvtCtx(const std::string& encoding);
    /// Takes over `converter`, leaving it null.
    explicit CvtCtx(std::unique_ptr<UConverter, lcctype::converter_close>& converter);
    CvtCtx(const CvtCtx&) = delete;
    CvtCtx& operator=(const CvtCtx&) = delete;
    ~CvtCtx();

    /// Replaces the converter; a failed open leaves none.
    void open_converter(const std::string& encoding);

    void change_from_call_back(codecvt_call_back_mode mode, const std::string& substitution);
    void reset_from_call_back();
    void enable_escape_mode(codecvt_call_back_mode mode);
    void enable_from_invalid_check();
    /// Sets substitution bytes (in the target encoding) for good: no mode is kept for them.
    void change_from_substitution(const std::string& substitution);

    void change_to_call_back(codecvt_call_back_mode mode);
    void reset_to_call_back();
    void enable_to_invalid_check();

    codecvt_call_back_mode get_from_call_back_mode() const { return from_mode; }
    codecvt_call_back_mode get_to_call_back_mode() const { return to_mode; }

    /// The standard name of the encoding, worked out once; empty with no converter.
    const std::string& get_encoding() const;
    /// The converter's ICU name, stored in `name`, which keeps its value on failure.
    std::string& get_cvt_name(std::string& name) const;
    /// The MIME, else IANA, else WINDOWS name of a converter name; empty if none.
    std::string get_std_encoding_name(const std::string& name) const;
    /// The most bytes one character can take: 4 for UTF-8, 0 with no converter.
    long get_max_byte_size() const;

    UConverter* get_converter() const { return converter.get(); }

private:
    std::unique_ptr<UConverter, lcctype::converter_close> converter;
    codecvt_call_back_mode from_mode;
    codecvt_call_back_mode to_mode;
    UConverterFromUCallback saved_from_action;
    UConverterToUCallback saved_to_action;
    const void* saved_from_context;
    const void* saved_to_context;
    mutable std::string cvt_name;
    mutable std::string std_encoding_name;
    const std::string empty_name;
};

} // namespace i18n
} // namespace fl

#endif
