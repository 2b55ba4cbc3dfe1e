// The engine against ICU called directly, one shot on a fresh converter, over seeded random texts
// whose lengths sit on the engine's buffer boundaries. The only difference allowed is the
// incomplete character at the end, which the engine drops and a flushing ICU call substitutes.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include <qvtest/text.hpp>

#include <gtest/gtest.h>

#include <unicode/ucnv.h>

#include <memory>
#include <string>

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
