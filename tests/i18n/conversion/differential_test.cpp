// The engine against ICU called directly, one shot on a fresh converter, over seeded random texts
// whose lengths sit on the engine's buffer boundaries. The only difference allowed is the
// incomplete character at the end, which the engine drops and a flushing ICU call substitutes.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include <qvtest/text.hpp>

#include <boost/thread/locks.hpp>
#include <boost/thread/mutex.hpp>

#include <gtest/gtest.h>

#include <unicode/ucnv.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using fl::i18n::codecvt_string_to_ustring;
using fl::i18n::codecvt_ustring_to_string;
using fl::i18n::ustring;

namespace {

const char* const encodings[] = {"UTF-8", "Shift_JIS", "GB18030", "ISO-8859-1", "windows-1252"};
const std::size_t lengths[] = {1023, 1024, 1025, 32767, 32768, 32769, 65535, 65536, 65537, 100000, 1000000};

struct icu_closer {
    void operator()(UConverter* c) const { ucnv_close(c); }
};

std::unique_ptr<UConverter, icu_closer> fresh(const char* encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, icu_closer> c(ucnv_open(encoding, &status));
    EXPECT_TRUE(U_SUCCESS(status)) << encoding;
    return c;
}

std::string icu_from_unicode(const char* encoding, const char16_t* text, std::size_t length)
{
    auto c = fresh(encoding);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t needed = ucnv_fromUChars(c.get(), nullptr, 0, text, static_cast<int32_t>(length), &status);
    std::string out(static_cast<std::size_t>(needed), '\0');
    status = U_ZERO_ERROR;
    ucnv_fromUChars(c.get(), &out[0], needed, text, static_cast<int32_t>(length), &status);
    EXPECT_TRUE(U_SUCCESS(status)) << u_errorName(status);
    return out;
}

ustring icu_to_unicode(const char* encoding, const char* bytes, std::size_t length)
{
    auto c = fresh(encoding);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t needed = ucnv_toUChars(c.get(), nullptr, 0, bytes, static_cast<int32_t>(length), &status);
    ustring out(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    ucnv_toUChars(c.get(), &out[0], needed, bytes, static_cast<int32_t>(length), &status);
    EXPECT_TRUE(U_SUCCESS(status)) << u_errorName(status);
    return out;
}

// Random text with, now and then, characters that many encodings lack (private use, a zero-width
// space, a BOM), lone surrogates of both kinds, and for odd lengths a lone high surrogate at the end.
ustring random_unicode(std::uint32_t seed, std::size_t length)
{
    qvtest::random_text random(seed);
    ustring text = random.unicode(length);
    static const char16_t specials[] = {u'\uE000', u'\u200B', u'\uFEFF', u'\xD800', u'\xDFFF', u'\u20AC'};
    for (std::size_t i = 0; i < length / 64; ++i) {
        const std::size_t at = random.next() % length;
        const bool in_pair = (at > 0 && text[at - 1] >= 0xD800 && text[at - 1] <= 0xDBFF)
            || (text[at] >= 0xD800 && text[at] <= 0xDBFF);
        if (!in_pair)
            text[at] = specials[random.next() % 6];
    }
    if (length % 2 == 1 && !(length >= 2 && text[length - 2] >= 0xD800 && text[length - 2] <= 0xDBFF))
        text[length - 1] = u'\xD83D';
    return text;
}

// Encoded text with random bytes sprinkled in, cut to exactly `length` bytes, so that the end may
// fall inside a character.
std::string random_bytes(const char* encoding, std::uint32_t seed, std::size_t length)
{
    qvtest::random_text random(seed);
    const ustring text = random.unicode(length);
    std::string bytes = icu_from_unicode(encoding, text.data(), text.size());
    while (bytes.size() < length)
        bytes += bytes;
    bytes.resize(length);
    const std::string noise = random.bytes(length / 64 + 1);
    for (char b : noise)
        bytes[random.next() % length] = b;
    return bytes;
}

} // namespace

TEST(DifferentialAgainstIcu, FromUnicodeOnEveryBoundary)
{
    for (const char* encoding : encodings) {
        codecvt_ustring_to_string cvt(encoding, true);
        for (std::size_t length : lengths) {
            const ustring text = random_unicode(static_cast<std::uint32_t>(length * 7 + 1), length);
            const std::string ours = cvt.convert(text.data(), text.size());
            // A lone high surrogate at the end is the incomplete tail: ICU substitutes it, we drop it.
            const bool tail = text.back() >= 0xD800 && text.back() <= 0xDBFF;
            const std::string theirs = icu_from_unicode(encoding, text.data(), text.size() - (tail ? 1 : 0));
            ASSERT_TRUE(ours == theirs) << encoding << " length " << length << " ours " << ours.size()
                                        << " bytes, ICU " << theirs.size();
            EXPECT_EQ(cvt.get_destination_size(text.data(), text.size()), ours.size()) << encoding << length;
        }
    }
}

TEST(DifferentialAgainstIcu, ToUnicodeOnEveryBoundary)
{
    for (const char* encoding : encodings) {
        codecvt_string_to_ustring cvt(encoding, true);
        for (std::size_t length : lengths) {
            const std::string bytes
                = random_bytes(encoding, static_cast<std::uint32_t>(length * 13 + 5), length);
            const ustring ours = cvt.convert(bytes.data(), bytes.size());
            // The engine may have dropped up to three bytes of an incomplete last character; ICU,
            // given the text without them, must agree exactly.
            bool matched = false;
            for (std::size_t cut = 0; cut <= 3 && !matched; ++cut)
                matched = ours == icu_to_unicode(encoding, bytes.data(), length - cut);
            ASSERT_TRUE(matched) << encoding << " length " << length << " ours " << ours.size()
                                 << " units, ICU " << icu_to_unicode(encoding, bytes.data(), length).size();
            EXPECT_EQ(cvt.get_destination_size(bytes.data(), bytes.size()), ours.size())
                << encoding << length;
        }
    }
}

TEST(DifferentialAgainstIcu, DefaultPathMatchesIcuOnTheBuiltInEncoding)
{
    // The built-in global locale's encoding is US-ASCII.
    for (std::size_t length : {1023u, 1024u, 1025u, 32769u, 65537u, 100000u}) {
        qvtest::random_text random(static_cast<std::uint32_t>(length));
        const std::string bytes = random.bytes(length);
        ASSERT_TRUE(fl::i18n::to_ustring(bytes) == icu_to_unicode("US-ASCII", bytes.data(), bytes.size()))
            << length;
        const ustring text = random_unicode(static_cast<std::uint32_t>(length + 3), length);
        const bool tail = text.back() >= 0xD800 && text.back() <= 0xDBFF;
        ASSERT_TRUE(
            fl::i18n::to_string(text) == icu_from_unicode("US-ASCII", text.data(), length - (tail ? 1 : 0)))
            << length;
    }
}

// ---- The UTF-8 fast path against the ICU path it stands in for.
//
// Well-formed UTF-8 skips ICU; anything else must reach ICU whole. Each converter that can be on
// UTF-8 is compared, in each of its modes, with the ICU path it used before: the same engine and
// primitives on an ICU converter set up alike. Outputs, sizes, buffer contents and exceptions
// must be identical.

namespace {

using fl::i18n::codecvt_call_back_mode;
using fl::i18n::CvtCtx;
using fl::i18n::lcctype::convert_to_string_large_buffer;

std::vector<std::size_t> fast_path_lengths()
{
    std::vector<std::size_t> lengths;
    for (std::size_t n = 0; n <= 64; ++n)
        lengths.push_back(n);
    for (std::size_t n : {1023u, 1024u, 1025u, 32767u, 32768u, 32769u, 100000u})
        lengths.push_back(n);
    return lengths;
}

// What a call gave: its output, or the exception it threw.
template <typename String> struct outcome {
    String text;
    std::string failure;
    bool operator==(const outcome& other) const { return text == other.text && failure == other.failure; }
};

template <typename Call> auto run(Call call) -> outcome<decltype(call())>
{
    outcome<decltype(call())> result;
    try {
        result.text = call();
    } catch (const fl::i18n::CvtExceptionBase& e) {
        result.failure = std::to_string(e.get_code()) + " " + e.what();
    }
    return result;
}

// Well-formed texts, and the same with one, two or many faults.
template <typename String, typename Make>
void for_each_text(std::uint32_t seed, Make make, const std::function<void(const String&)>& check)
{
    for (std::size_t length : fast_path_lengths()) {
        for (std::size_t faults : {0u, 0u, 1u, 1u, 1u, 2u, 3u, 40u}) {
            if (faults > 3 && length < 1000)
                continue;
            qvtest::random_text random(static_cast<std::uint32_t>(seed++ * 7919 + length));
            String text = make(random, length);
            random.inject_faults(text, faults);
            check(text);
        }
    }
}

std::string text_of(const std::string& bytes)
{
    return qvtest::hex_dump(bytes, 24);
}
std::string text_of(const ustring& units)
{
    return qvtest::hex_dump(units, 24);
}

// A converter's three operations against the reference conversion of the whole text: the sizes
// agree, and a buffer receives the head of the reference result and the full size back.
template <typename Cvt, typename String, typename Reference>
void compare_operations(const Cvt& cvt, const String& text, Reference reference, const std::string& mode)
{
    typedef typename Cvt::to_char_type To;
    const auto theirs = run(reference);
    const auto ours = run([&] { return cvt.convert(text.data(), text.size()); });
    ASSERT_TRUE(ours == theirs) << mode << " on " << text_of(text) << ": ours " << ours.failure << " "
                                << text_of(ours.text) << ", ICU " << theirs.failure << " "
                                << text_of(theirs.text);
    const auto size = run(
        [&] { return std::basic_string<To>(cvt.get_destination_size(text.data(), text.size()), To('*')); });
    ASSERT_EQ(size.failure, theirs.failure) << mode;
    if (!theirs.failure.empty())
        return;
    ASSERT_EQ(size.text.size(), theirs.text.size()) << mode;
    const std::size_t total = theirs.text.size();
    for (std::size_t room : {total, total + 1, total / 2, std::size_t(1)}) {
        std::basic_string<To> buffer(room + 1, To('#'));
        const unsigned long needed = cvt.convert(&buffer[0], room, text.data(), text.size());
        ASSERT_EQ(needed, total) << mode << " room " << room;
        const std::size_t written = room < total ? room : total;
        ASSERT_TRUE(buffer.compare(0, written, theirs.text, 0, written) == 0) << mode << " room " << room;
        ASSERT_TRUE(buffer.find_first_not_of(To('#'), written) == std::basic_string<To>::npos)
            << mode << " room " << room << ": written beyond the result";
    }
}

const codecvt_call_back_mode from_unicode_modes[] = {fl::i18n::call_back_default,
    fl::i18n::call_back_invalid_check, fl::i18n::call_back_substitution, fl::i18n::call_back_escape_icu,
    fl::i18n::call_back_escape_java, fl::i18n::call_back_escape_c, fl::i18n::call_back_escape_xml_dec,
    fl::i18n::call_back_escape_xml_hex, fl::i18n::call_back_escape_unicode, fl::i18n::call_back_escape_css2,
    static_cast<codecvt_call_back_mode>(0x300)};

} // namespace

TEST(Utf8FastPathAgainstIcu, ToUnicodeInEveryMode)
{
    for (codecvt_call_back_mode mode : {fl::i18n::call_back_default, fl::i18n::call_back_invalid_check}) {
        const codecvt_string_to_ustring cvt(mode, "UTF-8");
        CvtCtx icu("UTF-8");
        icu.change_to_call_back(mode);
        for_each_text<std::string>(
            11, [](qvtest::random_text& r, std::size_t n) { return r.utf8_mixed(n); },
            [&](const std::string& bytes) {
                compare_operations(
                    cvt, bytes,
                    [&] {
                        return convert_to_string_large_buffer<char16_t, char>(icu.get_converter(),
                            bytes.data(), bytes.size(), &fl::i18n::lcctype::stream_conversion_to_utf16);
                    },
                    "mode " + std::to_string(mode));
            });
    }
}

TEST(Utf8FastPathAgainstIcu, FromUnicodeInEveryMode)
{
    for (codecvt_call_back_mode mode : from_unicode_modes) {
        const std::string substitution = mode == fl::i18n::call_back_substitution ? "?" : "";
        const codecvt_ustring_to_string cvt(mode, "UTF-8", substitution);
        CvtCtx icu("UTF-8");
        icu.change_from_call_back(mode, substitution);
        for_each_text<ustring>(
            23, [](qvtest::random_text& r, std::size_t n) { return r.utf16_mixed(n); },
            [&](const ustring& text) {
                compare_operations(
                    cvt, text,
                    [&] {
                        return convert_to_string_large_buffer<char, char16_t>(icu.get_converter(),
                            text.data(), text.size(), &fl::i18n::lcctype::stream_conversion_from_utf16);
                    },
                    "mode " + std::to_string(mode));
            });
    }
}

TEST(Utf8FastPathAgainstIcu, DefaultPathOnAUtf8GlobalLocale)
{
    {
        fl::i18n::QvLocaleCtx& ctx = fl::i18n::get_qvlocale_context();
        boost::unique_lock<boost::mutex> lock(fl::i18n::getLcMutex());
        ctx.getLcDataForUpdate(lock).addLcName("en_US", "UTF-8", "en_US.UTF-8");
        ctx.getLcDataForUpdate(lock).addEncodingName("UTF-8", "UTF8");
        ctx.setCurrentLocale(
            std::unique_ptr<fl::i18n::QvLocaleImpl>(new fl::i18n::QvLocaleImpl(std::string("en_US"))));
        ASSERT_TRUE(ctx.setGlobalLocale(&ctx.getCurrentLocale()));
    }
    if (ucnv_getType(fl::i18n::lcctype::get_global_codecvt()) != UCNV_UTF8)
        GTEST_SKIP()
            << "the default encoding was fixed by an earlier test; run this case on its own, as ctest does";

    // The ICU path of the default functions: a clone of the master through the engine.
    for_each_text<std::string>(
        37, [](qvtest::random_text& r, std::size_t n) { return r.utf8_mixed(n); },
        [&](const std::string& bytes) {
            const auto clone = fl::i18n::lcctype::clone_codecvt();
            const ustring theirs = convert_to_string_large_buffer<char16_t, char>(
                clone.get(), bytes.data(), bytes.size(), &fl::i18n::lcctype::stream_conversion_to_utf16);
            ASSERT_TRUE(fl::i18n::to_ustring(bytes) == theirs) << text_of(bytes);
            const std::string terminated(bytes.c_str()); // what the pointer form sees
            const ustring theirs_terminated = convert_to_string_large_buffer<char16_t, char>(clone.get(),
                terminated.data(), terminated.size(), &fl::i18n::lcctype::stream_conversion_to_utf16);
            ASSERT_TRUE(fl::i18n::to_ustring(bytes.c_str()) == theirs_terminated) << text_of(bytes);
        });
    for_each_text<ustring>(
        41, [](qvtest::random_text& r, std::size_t n) { return r.utf16_mixed(n); },
        [&](const ustring& text) {
            const auto clone = fl::i18n::lcctype::clone_codecvt();
            const std::string theirs = convert_to_string_large_buffer<char, char16_t>(
                clone.get(), text.data(), text.size(), &fl::i18n::lcctype::stream_conversion_from_utf16);
            ASSERT_TRUE(fl::i18n::to_string(text) == theirs) << text_of(text);
        });
}
