// The UTF-8 fast path against the ICU path on arbitrary input. The first byte picks the
// direction and the converter mode; the rest is UTF-8, or UTF-16 units two bytes each. Every
// conversion that may skip ICU is run beside the ICU path it replaces; any difference in output,
// size or exception aborts.
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include <boost/thread/locks.hpp>
#include <boost/thread/mutex.hpp>

#include <unicode/ustring.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

using namespace fl::i18n;

namespace {

const codecvt_call_back_mode to_unicode_modes[] = {call_back_default, call_back_invalid_check};
const codecvt_call_back_mode from_unicode_modes[] = {call_back_default, call_back_invalid_check,
    call_back_substitution, call_back_escape_java, call_back_escape_xml_dec, call_back_escape_css2};

template <typename String, typename Call> bool run(Call call, String& text, int& code)
{
    try {
        text = call();
        code = 0;
    } catch (const CvtExceptionBase& e) {
        code = e.get_code();
    }
    return code == 0;
}

void check(bool same)
{
    if (!same)
        std::abort();
}

// The default encoding is fixed by the first default conversion: make it UTF-8 before that.
bool default_is_utf8()
{
    static const bool utf8 = [] {
        {
            QvLocaleCtx& ctx = get_qvlocale_context();
            boost::unique_lock<boost::mutex> lock(getLcMutex());
            ctx.getLcDataForUpdate(lock).addLcName("en_US", "UTF-8", "en_US.UTF-8");
            ctx.getLcDataForUpdate(lock).addEncodingName("UTF-8", "UTF8");
            ctx.setCurrentLocale(std::unique_ptr<QvLocaleImpl>(new QvLocaleImpl(std::string("en_US"))));
            ctx.setGlobalLocale(&ctx.getCurrentLocale());
        }
        return ucnv_getType(lcctype::get_global_codecvt()) == UCNV_UTF8;
    }();
    return utf8;
}

void bytes_to_units(unsigned selector, const char* bytes, std::size_t length)
{
    const codecvt_call_back_mode mode = to_unicode_modes[selector % 2];
    static std::unique_ptr<codecvt_string_to_ustring> ours[2];
    static std::unique_ptr<CvtCtx> icu[2];
    if (!ours[selector % 2]) {
        ours[selector % 2].reset(new codecvt_string_to_ustring(mode, "UTF-8"));
        icu[selector % 2].reset(new CvtCtx("UTF-8"));
        icu[selector % 2]->change_to_call_back(mode);
    }
    ustring a, b;
    int code_a = 0, code_b = 0;
    run([&] { return ours[selector % 2]->convert(bytes, length); }, a, code_a);
    run(
        [&] {
            return lcctype::convert_to_string_large_buffer<char16_t, char>(
                icu[selector % 2]->get_converter(), bytes, length, &lcctype::stream_conversion_to_utf16);
        },
        b, code_b);
    check(code_a == code_b && a == b);
    if (code_a == 0)
        check(ours[selector % 2]->get_destination_size(bytes, length) == a.size());

    if (mode == call_back_default && default_is_utf8())
        check(to_ustring(std::string(bytes, length)) == b);

    // The file-name stack: ICU's direct function with U+FFFD.
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    u_strFromUTF8WithSub(nullptr, 0, &needed, bytes, static_cast<int32_t>(length), 0xFFFD, nullptr, &status);
    ustring fixed(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(length ? &fixed[0] : nullptr, needed, nullptr, bytes, static_cast<int32_t>(length),
        0xFFFD, nullptr, &status);
    check(fl::filesystem::detail::from_filesystem(std::string(bytes, length)) == fixed);
}

void units_to_bytes(unsigned selector, const char16_t* units, std::size_t length)
{
    const std::size_t which = selector % (sizeof from_unicode_modes / sizeof from_unicode_modes[0]);
    const codecvt_call_back_mode mode = from_unicode_modes[which];
    const std::string substitution = mode == call_back_substitution ? "?" : "";
    static std::unique_ptr<codecvt_ustring_to_string> ours[8];
    static std::unique_ptr<CvtCtx> icu[8];
    if (!ours[which]) {
        ours[which].reset(new codecvt_ustring_to_string(mode, "UTF-8", substitution));
        icu[which].reset(new CvtCtx("UTF-8"));
        icu[which]->change_from_call_back(mode, substitution);
    }
    std::string a, b;
    int code_a = 0, code_b = 0;
    run([&] { return ours[which]->convert(units, length); }, a, code_a);
    run(
        [&] {
            return lcctype::convert_to_string_large_buffer<char, char16_t>(
                icu[which]->get_converter(), units, length, &lcctype::stream_conversion_from_utf16);
        },
        b, code_b);
    check(code_a == code_b && a == b);
    if (code_a == 0)
        check(ours[which]->get_destination_size(units, length) == a.size());

    if (mode == call_back_default && default_is_utf8())
        check(to_string(ustring(units, length)) == b);

    // The file-name stack: ICU's direct function with U+001A.
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    u_strToUTF8WithSub(nullptr, 0, &needed, units, static_cast<int32_t>(length), 0x1A, nullptr, &status);
    std::string fixed(static_cast<std::size_t>(needed), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8WithSub(length ? &fixed[0] : nullptr, needed, nullptr, units, static_cast<int32_t>(length),
        0x1A, nullptr, &status);
    check(fl::filesystem::detail::to_filesystem(ustring(units, length)) == fixed);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const unsigned selector = data[0];
    const char* const text = reinterpret_cast<const char*>(data + 1);
    const std::size_t length = size - 1;
    if (selector & 0x80) {
        ustring units(length / 2, u'\0');
        if (!units.empty())
            std::memcpy(&units[0], text, units.size() * 2);
        units_to_bytes(selector, units.data(), units.size());
    } else {
        bytes_to_units(selector, text, length);
    }
    return 0;
}
