// simple_pattern_match against ICU's uregex called directly, in one run:
//   Icu*      uregex_setText + uregex_matches on an expression compiled once (the floor);
//   Simple*   simple_pattern_match::match on an object opened once;
//   *Open     the same, compiling the expression on every iteration.
// The expression is a directory wildcard as the file system builds them, in three modes: case
// sensitive, case-insensitive, and composed normalisation (whose floor normalises the subject
// with unorm2_normalize before matching).
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ctype/pattern_match.hpp>

#include <benchmark/benchmark.h>

#include <unicode/unorm2.h>
#include <unicode/uregex.h>

#include <cstdlib>
#include <memory>

using fl::i18n::character_handling_mode_context;
using fl::i18n::regex_excp_id;
using fl::i18n::simple_pattern_match;
using fl::i18n::ustring;

namespace {

const ustring pattern = u"report_[0-9]+.*\\.txt";
const ustring subjects[] = {u"report_2026_final.txt", u"report_2026_final.txt.bak"};
const unsigned int modes[] = {0x0, 0x1, 0x2};
const char* const mode_names[] = {"sensitive", "insensitive", "nfc"};

uint32_t icu_flags(unsigned int mode)
{
    return (mode & 0x1) ? UREGEX_CASE_INSENSITIVE : 0;
}

URegularExpression* icu_open(unsigned int mode)
{
    UErrorCode status = U_ZERO_ERROR;
    URegularExpression* re
        = uregex_open(pattern.data(), static_cast<int32_t>(pattern.size()), icu_flags(mode), nullptr, &status);
    if (U_FAILURE(status))
        std::abort();
    return re;
}

bool icu_match(URegularExpression* re, unsigned int mode, const ustring& subject)
{
    UErrorCode status = U_ZERO_ERROR;
    UChar buffer[256];
    const UChar* text = subject.data();
    int32_t length = static_cast<int32_t>(subject.size());
    if (mode & 0x2) {
        length = unorm2_normalize(unorm2_getNFCInstance(&status), text, length, buffer, 256, &status);
        text = buffer;
    }
    uregex_setText(re, text, length, &status);
    const UBool matched = uregex_matches(re, -1, &status);
    if (U_FAILURE(status))
        std::abort();
    return matched;
}

// One matcher per side: ICU's expression with the normalisation of the floor, or the library's object.
struct icu_side {
    explicit icu_side(unsigned int mode)
        : mode(mode)
        , re(icu_open(mode))
    { }
    ~icu_side() { uregex_close(re); }
    bool match(const ustring& subject) const { return icu_match(re, mode, subject); }

    unsigned int mode;
    URegularExpression* re;
};

struct library_side {
    explicit library_side(unsigned int mode)
    {
        if (m.open(pattern, character_handling_mode_context(mode)) != fl::i18n::regex_success)
            std::abort();
    }
    bool match(const ustring& subject) const
    {
        regex_excp_id id;
        return m.match(subject, id);
    }

    simple_pattern_match m;
};

// Reopen: a new matcher per iteration, so that compiling the expression is timed too.
template <typename Side, bool Reopen> void Match(benchmark::State& state)
{
    const unsigned int mode = modes[state.range(0)];
    const ustring& subject = subjects[state.range(1)];
    std::unique_ptr<Side> kept(Reopen ? nullptr : new Side(mode));
    for (auto _ : state) {
        if (Reopen) {
            const Side side(mode);
            benchmark::DoNotOptimize(side.match(subject));
        } else {
            benchmark::DoNotOptimize(kept->match(subject));
        }
    }
    state.SetLabel(mode_names[state.range(0)]);
}

// Arguments: mode index, subject index (0 matches, 1 does not).
void Arguments(benchmark::internal::Benchmark* b)
{
    for (int mode = 0; mode < 3; ++mode)
        for (int subject = 0; subject < 2; ++subject)
            b->Args({mode, subject});
}

} // namespace

BENCHMARK_TEMPLATE(Match, icu_side, false)->Name("Icu")->Apply(Arguments);
BENCHMARK_TEMPLATE(Match, library_side, false)->Name("Simple")->Apply(Arguments);
BENCHMARK_TEMPLATE(Match, icu_side, true)->Name("IcuOpen")->Apply(Arguments);
BENCHMARK_TEMPLATE(Match, library_side, true)->Name("SimpleOpen")->Apply(Arguments);
