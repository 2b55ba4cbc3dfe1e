// Every conversion direction and call-back mode on arbitrary bytes, against ICU driven directly in
// one shot on a fresh converter. The first byte picks the encoding, the second the mode; the rest
// is the text, read as bytes or, two bytes a unit, as UTF-16.
#include "fuzz/fuzz_support.hpp"

#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace fl::i18n;
using qvfuzz::check;

namespace {

const char* const encodings[] = {"UTF-8", "Shift_JIS", "GB18030", "ISO-8859-1", "windows-1252", "EUC-JP",
    "Big5", "ISO-2022-JP", "UTF-16BE", "US-ASCII", "KOI8-R", "UTF-7"};

const codecvt_call_back_mode from_modes[] = {call_back_default, call_back_invalid_check,
    call_back_substitution, call_back_escape_icu, call_back_escape_java, call_back_escape_c,
    call_back_escape_xml_dec, call_back_escape_xml_hex, call_back_escape_unicode, call_back_escape_css2};

struct icu_closer {
    void operator()(UConverter* c) const { ucnv_close(c); }
};
typedef std::unique_ptr<UConverter, icu_closer> icu_converter;

icu_converter fresh(const char* encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    icu_converter c(ucnv_open(encoding, &status));
    check(U_SUCCESS(status) && c);
    return c;
}

// ICU's answer in one call, with no flush: an incomplete character at the end stays in the
// converter, as the engine leaves it out. The status tells whether and how ICU stopped.
UErrorCode icu_to_unicode(UConverter* c, const std::string& bytes, ustring& out)
{
    out.assign(bytes.size() * 2 + 16, u'\0');
    UChar* target = reinterpret_cast<UChar*>(&out[0]);
    const char* source = bytes.data();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(c, &target, target + out.size(), &source, bytes.data() + bytes.size(), nullptr, false,
        &status);
    out.resize(static_cast<std::size_t>(target - reinterpret_cast<UChar*>(&out[0])));
    check(status != U_BUFFER_OVERFLOW_ERROR);
    return status;
}

UErrorCode icu_from_unicode(UConverter* c, const ustring& text, std::string& out)
{
    out.assign(text.size() * 16 + 16, '\0');
    char* target = &out[0];
    const UChar* source = reinterpret_cast<const UChar*>(text.data());
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(c, &target, target + out.size(), &source, source + text.size(), nullptr, false, &status);
    out.resize(static_cast<std::size_t>(target - &out[0]));
    check(status != U_BUFFER_OVERFLOW_ERROR);
    return status;
}

// What the library must make of ICU's status: the output, or the exception for how ICU stopped
// (an invalid character, or any other failure such as a bad escape sequence).
template <class Convert> void check_against(UErrorCode icu_status, Convert convert)
{
    try {
        convert();
        check(U_SUCCESS(icu_status));
    } catch (const CvtInvalidCharacter&) {
        check(icu_status == U_INVALID_CHAR_FOUND || icu_status == U_ILLEGAL_CHAR_FOUND);
    } catch (const CvtConversionFailure&) {
        check(U_FAILURE(icu_status) && icu_status != U_INVALID_CHAR_FOUND && icu_status != U_ILLEGAL_CHAR_FOUND);
    }
}

// The whole-result size, the one-call result and the fill of a buffer that is too small agree.
template <class To, class From>
void check_sizes(const converter<To, From>& cvt, const From* source, std::size_t length,
    const std::basic_string<To>& whole)
{
    check(cvt.get_destination_size(source, length) == whole.size());
    std::vector<To> buffer(whole.size() / 2 + 1);
    const unsigned long needed = cvt.convert(buffer.data(), buffer.size(), source, length);
    check(needed == whole.size());
}

void to_unicode(const char* encoding, bool allow_invalid, const std::string& bytes)
{
    codecvt_string_to_ustring ours(encoding, allow_invalid);
    icu_converter icu = fresh(encoding);
    if (!allow_invalid) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(icu.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }
    ustring expected;
    check_against(icu_to_unicode(icu.get(), bytes, expected), [&] {
        const ustring got = ours.convert(bytes.data(), bytes.size());
        check(got == expected);
        check_sizes(ours, bytes.data(), bytes.size(), got);
    });
}

void from_unicode(const char* encoding, codecvt_call_back_mode mode, const ustring& text)
{
    icu_converter icu = fresh(encoding);
    UErrorCode status = U_ZERO_ERROR;
    std::string substitution;
    std::unique_ptr<codecvt_ustring_to_string> ours;
    if (mode == call_back_substitution) {
        // The encoding's own substitution bytes, set explicitly.
        char bytes[32];
        int8_t length = sizeof bytes;
        ucnv_getSubstChars(icu.get(), bytes, &length, &status);
        substitution.assign(bytes, static_cast<std::size_t>(length));
        ours.reset(new codecvt_ustring_to_string(mode, encoding, substitution));
    } else {
        ours.reset(new codecvt_ustring_to_string(mode, encoding));
    }
    const char* option = mode == call_back_escape_java ? UCNV_ESCAPE_JAVA
        : mode == call_back_escape_c                   ? UCNV_ESCAPE_C
        : mode == call_back_escape_xml_dec             ? UCNV_ESCAPE_XML_DEC
        : mode == call_back_escape_xml_hex             ? UCNV_ESCAPE_XML_HEX
        : mode == call_back_escape_unicode             ? UCNV_ESCAPE_UNICODE
        : mode == call_back_escape_css2                ? UCNV_ESCAPE_CSS2
                                                       : nullptr;
    if (mode == call_back_invalid_check)
        ucnv_setFromUCallBack(icu.get(), UCNV_FROM_U_CALLBACK_STOP_WITH_INVISIBLE_CHARS, nullptr, nullptr,
            nullptr, &status);
    else if (mode >= call_back_escape_icu)
        ucnv_setFromUCallBack(icu.get(), UCNV_FROM_U_CALLBACK_ESCAPE_WITH_INVISIBLE_CHARS, option, nullptr,
            nullptr, &status);
    check(U_SUCCESS(status));

    std::string expected;
    check_against(icu_from_unicode(icu.get(), text, expected), [&] {
        const std::string got = ours->convert(text.data(), text.size());
        check(got == expected);
        check_sizes(*ours, text.data(), text.size(), got);
    });
}

// The converters of fixed encodings, which hold no ICU converter.
void fixed(const std::string& bytes, const ustring& text)
{
    icu_converter ascii = fresh("US-ASCII");
    ustring from_ascii;
    icu_to_unicode(ascii.get(), bytes, from_ascii);
    const ustring got = codecvt_ascii_to_ustring(true).convert(bytes.data(), bytes.size());
    check(got.size() == bytes.size());
    bool all_ascii = true;
    for (unsigned char b : bytes)
        all_ascii = all_ascii && b < 0x80;
    if (all_ascii)
        check(got == from_ascii);
    try {
        codecvt_ascii_to_ustring(false).convert(bytes.data(), bytes.size());
        check(all_ascii);
    } catch (const CvtInvalidCharacter&) {
        check(!all_ascii);
    }
    check(codecvt_ustring_to_ascii(true).convert(text.data(), text.size()).size() == text.size());

    // Modified UTF-8 keeps every unit, surrogates and U+0000 included.
    const std::string modified = codecvt_ustring_to_modified_utf8().convert(text.data(), text.size());
    check(modified.find('\0') == std::string::npos);
    check(codecvt_modified_utf8_to_ustring().convert(modified.data(), modified.size()) == text);
    codecvt_modified_utf8_to_ustring().convert(bytes.data(), bytes.size());

    const std::wstring wide = codecvt_ustring_to_wstring().convert(text.data(), text.size());
    const ustring back = codecvt_wstring_to_ustring().convert(wide.data(), wide.size());
    check(back.size() == text.size());
    std::wstring raw(bytes.size() / 4, L'\0');
    for (std::size_t i = 0; i < raw.size(); ++i)
        raw[i] = static_cast<wchar_t>(static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[4 * i]))
            | static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[4 * i + 1])) << 8
            | static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[4 * i + 2])) << 16
            | static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[4 * i + 3])) << 24);
    codecvt_wstring_to_ustring().convert(raw.data(), raw.size());
}

// The process's default conversion, on the built-in encoding US-ASCII.
void default_conversion(const std::string& bytes, const ustring& text)
{
    icu_converter ascii = fresh(QvLocale::global().encoding().c_str());
    ustring expected;
    icu_to_unicode(ascii.get(), bytes, expected);
    check(to_ustring(bytes) == expected);
    icu_converter back = fresh(QvLocale::global().encoding().c_str());
    std::string narrow;
    icu_from_unicode(back.get(), text, narrow);
    check(to_string(text) == narrow);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const char* encoding = encodings[data[0] % (sizeof encodings / sizeof *encodings)];
    const unsigned pick = data[1];
    const std::string bytes(reinterpret_cast<const char*>(data + 2), size - 2);
    const ustring text = qvfuzz::utf16_units(data + 2, size - 2);

    switch (pick % 4) {
    case 0:
        to_unicode(encoding, (pick >> 2) & 1, bytes);
        break;
    case 1:
        from_unicode(encoding, from_modes[(pick >> 2) % (sizeof from_modes / sizeof *from_modes)], text);
        break;
    case 2:
        fixed(bytes, text);
        break;
    default:
        default_conversion(bytes, text);
        break;
    }
    return 0;
}
