// Path clean-up: make_native_form against std::filesystem::path::lexically_normal, in the same
// run, on the same texts. make_native_form does less on purpose (separators only, no "." or ".."
// resolution), so it should be clearly cheaper; a hand-written separator collapse on bytes is run
// alongside as the floor of what such a pass can cost.
#include <qvi18n/filesystem/path.hpp>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

namespace {

// Each input comes in UTF-8 for the standard path and in UTF-16 for ours; same characters.
struct input {
    const char* name;
    std::string bytes;
};

const input& short_messy()
{
    static const input in {"short_messy", "usr//local/lib///libfoo.so/"};
    return in;
}

const input& short_clean()
{
    static const input in {"short_clean", "usr/local/lib/libfoo.so"};
    return in;
}

const input& long_messy()
{
    static const input in {"long_messy", [] {
                               std::string s = "/";
                               for (int i = 0; i < 12; ++i)
                                   s += "component_" + std::to_string(i) + (i % 3 == 0 ? "//" : "/");
                               return s + "resources/fl/en/messages.xml/";
                           }()};
    return in;
}

const input& long_clean()
{
    static const input in {"long_clean", [] {
                               std::string s;
                               for (int i = 0; i < 12; ++i)
                                   s += "/component_" + std::to_string(i);
                               return s + "/resources/fl/en/messages.xml";
                           }()};
    return in;
}

fl::i18n::ustring widen(const std::string& ascii)
{
    return fl::i18n::ustring(ascii.begin(), ascii.end());
}

void make_native_form(benchmark::State& state, const input& in)
{
    const fl::i18n::ustring text = widen(in.bytes);
    for (auto _ : state) {
        fl::i18n::ustring out = fl::filesystem::detail::make_native_form(text, true);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetLabel(std::to_string(text.size()) + " units");
}

void lexically_normal(benchmark::State& state, const input& in)
{
    const std::filesystem::path path(in.bytes);
    for (auto _ : state) {
        std::filesystem::path out = path.lexically_normal();
        benchmark::DoNotOptimize(out.native().data());
    }
    state.SetLabel(std::to_string(in.bytes.size()) + " bytes");
}

// The floor: one pass over bytes, collapsing runs of "/" and dropping a trailing one.
void hand_collapse(benchmark::State& state, const input& in)
{
    const std::string text = in.bytes;
    for (auto _ : state) {
        std::string out;
        out.reserve(text.size());
        char prev = 0;
        for (char c : text) {
            if (c == '/' && prev == '/')
                continue;
            out += c;
            prev = c;
        }
        if (out.size() > 1 && out.back() == '/')
            out.pop_back();
        benchmark::DoNotOptimize(out.data());
    }
}

} // namespace

BENCHMARK_CAPTURE(make_native_form, short_messy, short_messy());
BENCHMARK_CAPTURE(lexically_normal, short_messy, short_messy());
BENCHMARK_CAPTURE(hand_collapse, short_messy, short_messy());
BENCHMARK_CAPTURE(make_native_form, short_clean, short_clean());
BENCHMARK_CAPTURE(lexically_normal, short_clean, short_clean());
BENCHMARK_CAPTURE(hand_collapse, short_clean, short_clean());
BENCHMARK_CAPTURE(make_native_form, long_messy, long_messy());
BENCHMARK_CAPTURE(lexically_normal, long_messy, long_messy());
BENCHMARK_CAPTURE(hand_collapse, long_messy, long_messy());
BENCHMARK_CAPTURE(make_native_form, long_clean, long_clean());
BENCHMARK_CAPTURE(lexically_normal, long_clean, long_clean());
BENCHMARK_CAPTURE(hand_collapse, long_clean, long_clean());
