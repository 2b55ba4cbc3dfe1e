// Character handling against ICU called directly, in one run. Texts of 1 KiB (512 UTF-16 units):
// "mixed" (ASCII with accented Latin, Greek, Cyrillic, Japanese, Hangul and an emoji) and "ascii".
//   IsCtype / IcuIsAlpha          is_ctype(alpha) per code point / u_isalpha per code point;
//   IsCtypePunct / IcuPunct       is_ctype(punct) / u_charType tested against the same categories;
//   Scan / IcuScan                scan for a control character (none present, so the whole text) /
//                                 U16_NEXT and u_iscntrl to the end;
//   CompareCaseless / IcuCaseCompare   compare(case_insensitive) / u_strCaseCompare, on two texts
//                                 differing only by case in their last character;
//   CompareNormalized / IcuNormalizeStrcmp  compare(normalized_case_sensitive) on the composed and
//                                 decomposed forms / unorm2_normalize of both into reused buffers,
//                                 then u_strcmp;
//   ToUpper / IcuToUpper          transform(to_upper) / u_strToUpper, both into a reused buffer.
#include <qvi18n/i18n/ctype/classification.hpp>
#include <qvi18n/i18n/ctype/transform.hpp>

#include <benchmark/benchmark.h>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstdlib>
#include <string>

using fl::i18n::ustring;
namespace lcctype = fl::i18n::lcctype;
namespace ctype_mask = fl::i18n::ctype_mask;

namespace {

const std::size_t text_units = 512;

const char16_t* const samples[] = {
    u"Gr\u00FC\u00DFe aus K\u00F6ln, caf\u00E9 na\u00EFve; \u039A\u03B1\u03BB\u03B7\u03BC\u03AD\u03C1\u03B1 "
    u"\u041F\u0440\u0438\u0432\u0435\u0442 \u65E5\u672C\u8A9E\u306E\u30C6\u30AD\u30B9\u30C8 "
    u"\uD55C\uAD6D\uC5B4 \U0001F600 The quick brown fox, 12345. ",
    u"The Quick Brown Fox Jumps Over The Lazy Dog, 0123456789; path/to/File.TXT. ",
};
const char* const kind_names[] = {"mixed", "ascii"};

// `text_units` units of the sample, never cutting a surrogate pair.
ustring text(int kind)
{
    ustring s;
    while (s.size() < text_units)
        s += samples[kind];
    std::size_t end = text_units;
    if (U16_IS_TRAIL(s[end]))
        --end;
    s.resize(end);
    return s;
}

const UNormalizer2* normalizer(bool compose)
{
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* n = compose ? unorm2_getNFCInstance(&status) : unorm2_getNFDInstance(&status);
    if (U_FAILURE(status))
        std::abort();
    return n;
}

ustring normalized(const ustring& s, bool compose)
{
    UErrorCode status = U_ZERO_ERROR;
    ustring out(s.size() * 3, u'\0');
    const int32_t n = unorm2_normalize(normalizer(compose), s.data(), static_cast<int32_t>(s.size()), &out[0],
        static_cast<int32_t>(out.size()), &status);
    if (U_FAILURE(status))
        std::abort();
    out.resize(static_cast<std::size_t>(n));
    return out;
}

template <typename Classify> void per_code_point(benchmark::State& state, Classify classify)
{
    const ustring s = text(static_cast<int>(state.range(0)));
    const int32_t length = static_cast<int32_t>(s.size());
    for (auto _ : state) {
        int count = 0;
        for (int32_t i = 0; i < length;) {
            UChar32 c;
            U16_NEXT(s.data(), i, length, c);
            count += classify(c) ? 1 : 0;
        }
        benchmark::DoNotOptimize(count);
    }
    state.SetLabel(kind_names[state.range(0)]);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * length * 2);
}

void IsCtype(benchmark::State& state)
{
    per_code_point(state, [](UChar32 c) { return fl::i18n::is_ctype(ctype_mask::alpha, static_cast<char32_t>(c)); });
}

void IcuIsAlpha(benchmark::State& state)
{
    per_code_point(state, [](UChar32 c) { return u_isalpha(c) != 0; });
}

void IsCtypePunct(benchmark::State& state)
{
    per_code_point(state, [](UChar32 c) { return fl::i18n::is_ctype(ctype_mask::punct, static_cast<char32_t>(c)); });
}

void IcuPunct(benchmark::State& state)
{
    per_code_point(state, [](UChar32 c) { return (U_MASK(u_charType(c)) & 0x37F80000U) != 0; });
}

void Scan(benchmark::State& state)
{
    const ustring s = text(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const char16_t* found = lcctype::scan(ctype_mask::cntrl, s.data(), s.data() + s.size(), fl::i18n::is_posix());
        benchmark::DoNotOptimize(found);
    }
    state.SetLabel(kind_names[state.range(0)]);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(s.size()) * 2);
}

void IcuScan(benchmark::State& state)
{
    const ustring s = text(static_cast<int>(state.range(0)));
    const int32_t length = static_cast<int32_t>(s.size());
    for (auto _ : state) {
        int32_t i = 0;
        while (i < length) {
            const int32_t start = i;
            UChar32 c;
            U16_NEXT(s.data(), i, length, c);
            if (u_iscntrl(c)) {
                i = start;
                break;
            }
        }
        benchmark::DoNotOptimize(i);
    }
    state.SetLabel(kind_names[state.range(0)]);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * length * 2);
}

// The text and a copy that differs from it by case in the last character.
std::pair<ustring, ustring> case_pair(int kind)
{
    std::pair<ustring, ustring> p(text(kind), text(kind));
    for (std::size_t i = p.second.size(); i-- > 0;) {
        const char16_t c = p.second[i];
        if (u_isalpha(c) && !U16_IS_SURROGATE(c)) {
            p.second[i] = static_cast<char16_t>(u_isupper(c) ? u_tolower(c) : u_toupper(c));
            break;
        }
    }
    return p;
}

void CompareCaseless(benchmark::State& state)
{
    const std::pair<ustring, ustring> p = case_pair(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        int r = lcctype::compare(p.first.data(), p.first.size(), p.second.data(), p.second.size(),
            fl::i18n::case_insensitive());
        benchmark::DoNotOptimize(r);
    }
    state.SetLabel(kind_names[state.range(0)]);
}

void IcuCaseCompare(benchmark::State& state)
{
    const std::pair<ustring, ustring> p = case_pair(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        int r = u_strCaseCompare(p.first.data(), static_cast<int32_t>(p.first.size()), p.second.data(),
            static_cast<int32_t>(p.second.size()), 0, &status);
        benchmark::DoNotOptimize(r);
    }
    state.SetLabel(kind_names[state.range(0)]);
}

void CompareNormalized(benchmark::State& state)
{
    const ustring composed = normalized(text(static_cast<int>(state.range(0))), true);
    const ustring decomposed = normalized(composed, false);
    for (auto _ : state) {
        int r = lcctype::compare(composed.data(), composed.size(), decomposed.data(), decomposed.size(),
            fl::i18n::normalized_case_sensitive());
        benchmark::DoNotOptimize(r);
    }
    state.SetLabel(kind_names[state.range(0)]);
}

void IcuNormalizeStrcmp(benchmark::State& state)
{
    const ustring composed = normalized(text(static_cast<int>(state.range(0))), true);
    const ustring decomposed = normalized(composed, false);
    const UNormalizer2* nfd = normalizer(false);
    ustring left(composed.size() * 3 + 1, u'\0');
    ustring right(decomposed.size() * 3 + 1, u'\0');
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t l = unorm2_normalize(nfd, composed.data(), static_cast<int32_t>(composed.size()), &left[0],
            static_cast<int32_t>(left.size()), &status);
        const int32_t r = unorm2_normalize(nfd, decomposed.data(), static_cast<int32_t>(decomposed.size()),
            &right[0], static_cast<int32_t>(right.size()), &status);
        left[static_cast<std::size_t>(l)] = 0;
        right[static_cast<std::size_t>(r)] = 0;
        int result = u_strcmp(left.data(), right.data());
        benchmark::DoNotOptimize(result);
    }
    state.SetLabel(kind_names[state.range(0)]);
}

void ToUpper(benchmark::State& state)
{
    const ustring s = text(static_cast<int>(state.range(0)));
    ustring out(s.size() * 3, u'\0');
    for (auto _ : state) {
        unsigned long n = lcctype::transform(&out[0], out.size(), s.data(), s.size(), fl::i18n::to_upper());
        benchmark::DoNotOptimize(n);
    }
    state.SetLabel(kind_names[state.range(0)]);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(s.size()) * 2);
}

void IcuToUpper(benchmark::State& state)
{
    const ustring s = text(static_cast<int>(state.range(0)));
    ustring out(s.size() * 3, u'\0');
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        int32_t n = u_strToUpper(&out[0], static_cast<int32_t>(out.size()), s.data(), static_cast<int32_t>(s.size()),
            "", &status);
        benchmark::DoNotOptimize(n);
    }
    state.SetLabel(kind_names[state.range(0)]);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(s.size()) * 2);
}

} // namespace

BENCHMARK(IsCtype)->DenseRange(0, 1);
BENCHMARK(IcuIsAlpha)->DenseRange(0, 1);
BENCHMARK(IsCtypePunct)->DenseRange(0, 1);
BENCHMARK(IcuPunct)->DenseRange(0, 1);
BENCHMARK(Scan)->DenseRange(0, 1);
BENCHMARK(IcuScan)->DenseRange(0, 1);
BENCHMARK(CompareCaseless)->DenseRange(0, 1);
BENCHMARK(IcuCaseCompare)->DenseRange(0, 1);
BENCHMARK(CompareNormalized)->DenseRange(0, 1);
BENCHMARK(IcuNormalizeStrcmp)->DenseRange(0, 1);
BENCHMARK(ToUpper)->DenseRange(0, 1);
BENCHMARK(IcuToUpper)->DenseRange(0, 1);
