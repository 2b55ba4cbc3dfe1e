// Default conversions and converter objects against ICU called directly, in one run:
//   IcuReused      one converter opened once and reused, one call into a worst-case buffer;
//   IcuPreflight   the same converter, measuring first and then converting into an exact result;
//   IcuClone       a clone of a master converter per call, then as IcuReused (what the default
//                  path must pay at least);
//   Default        to_ustring / to_string, with a UTF-8 global locale in force before first use;
//   Codecvt        a codecvt_string_to_ustring / codecvt_ustring_to_string made once;
//   IcuDirect      ICU's u_strFromUTF8 / u_strToUTF8 into a worst-case buffer (a second reference).
// Texts: ASCII, accented European and Japanese, sized in UTF-8 bytes.
// Then file names: exists() on a short non-ASCII name beside std::filesystem, and the name's
// conversion alone, the library's file-name stack against the same ICU call it used before.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/qvlocale_impl.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>

#include <benchmark/benchmark.h>

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

using fl::i18n::ustring;

namespace {

const char* const kind_names[] = {"ascii", "european", "japanese"};
const char* const samples[] = {
    "The quick brown fox jumps over the lazy dog, 0123456789. ",
    "Gr\xC3\xB6\xC3\x9F"
    "e, caf\xC3\xA9, na\xC3\xAFve fa\xC3\xA7"
    "ade, \xC3\x86r\xC3\xB8, S\xC3\xB8ren, \xC3\xA0 la fen\xC3\xAAtre. ",
    "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83\x86\xE3\x82\xAD\xE3\x82\xB9\xE3\x83\x88\xE3\x82"
    "\x92"
    "\xE5\xA4\x89\xE6\x8F\x9B\xE3\x81\x97\xE3\x81\xBE\xE3\x81\x99\xE3\x80\x82",
};

// UTF-8 text of at most `size` bytes, cut at a character boundary.
std::string utf8_text(int kind, std::size_t size)
{
    std::string s;
    while (s.size() < size)
        s += samples[kind];
    std::size_t end = size;
    while (end > 0 && (static_cast<unsigned char>(s[end]) & 0xC0) == 0x80)
        --end;
    s.resize(end);
    return s;
}

UConverter* open_utf8()
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open("UTF-8", &status);
    if (U_FAILURE(status))
        std::abort();
    return c;
}

ustring to_units(const std::string& bytes)
{
    UConverter* c = open_utf8();
    UErrorCode status = U_ZERO_ERROR;
    ustring out(bytes.size(), u'\0');
    const int32_t n = ucnv_toUChars(c, &out[0], static_cast<int32_t>(out.size()), bytes.data(),
        static_cast<int32_t>(bytes.size()), &status);
    out.resize(static_cast<std::size_t>(n));
    ucnv_close(c);
    return out;
}

// The default encoding is fixed at the first default conversion: make it UTF-8 before that.
void use_utf8_global_locale()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    fl::i18n::QvLocaleCtx& ctx = fl::i18n::get_qvlocale_context();
    boost::unique_lock<boost::mutex> lock(fl::i18n::getLcMutex());
    ctx.getLcDataForUpdate(lock).addLcName("en_US", "UTF-8", "en_US.UTF-8");
    ctx.getLcDataForUpdate(lock).addEncodingName("UTF-8", "UTF8");
    ctx.setCurrentLocale(
        std::unique_ptr<fl::i18n::QvLocaleImpl>(new fl::i18n::QvLocaleImpl(std::string("en_US"))));
    if (!ctx.setGlobalLocale(&ctx.getCurrentLocale()) || fl::i18n::QvLocale::global().encoding() != "UTF-8")
        std::abort();
}

// ---- bytes to UTF-16

ustring icu_to_units(UConverter* c, const std::string& bytes)
{
    UErrorCode status = U_ZERO_ERROR;
    ustring out(bytes.size(), u'\0'); // a UTF-8 byte never yields more than one unit
    const int32_t n = ucnv_toUChars(c, &out[0], static_cast<int32_t>(out.size()), bytes.data(),
        static_cast<int32_t>(bytes.size()), &status);
    out.resize(static_cast<std::size_t>(n));
    return out;
}

void BM_ToUstring_IcuReused(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    UConverter* c = open_utf8();
    for (auto _ : state)
        benchmark::DoNotOptimize(icu_to_units(c, bytes));
    ucnv_close(c);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToUstring_IcuPreflight(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    UConverter* c = open_utf8();
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t n
            = ucnv_toUChars(c, nullptr, 0, bytes.data(), static_cast<int32_t>(bytes.size()), &status);
        ustring out(static_cast<std::size_t>(n), u'\0');
        status = U_ZERO_ERROR;
        ucnv_toUChars(c, &out[0], n, bytes.data(), static_cast<int32_t>(bytes.size()), &status);
        benchmark::DoNotOptimize(out);
    }
    ucnv_close(c);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToUstring_IcuClone(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    UConverter* master = open_utf8();
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        UConverter* c = ucnv_clone(master, &status);
        benchmark::DoNotOptimize(icu_to_units(c, bytes));
        ucnv_close(c);
    }
    ucnv_close(master);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToUstring_Default(benchmark::State& state)
{
    use_utf8_global_locale();
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    if (fl::i18n::to_ustring(bytes) != to_units(bytes))
        state.SkipWithError("the default path is not on UTF-8");
    for (auto _ : state)
        benchmark::DoNotOptimize(fl::i18n::to_ustring(bytes));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToUstring_Codecvt(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    const fl::i18n::codecvt_string_to_ustring cvt("UTF-8", true);
    for (auto _ : state)
        benchmark::DoNotOptimize(cvt.convert(bytes.data(), bytes.size()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToUstring_IcuDirect(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        ustring out(bytes.size(), u'\0');
        int32_t n = 0;
        u_strFromUTF8(&out[0], static_cast<int32_t>(out.size()), &n, bytes.data(),
            static_cast<int32_t>(bytes.size()), &status);
        out.resize(static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(out);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

// ---- UTF-16 to bytes

std::string icu_to_bytes(UConverter* c, const ustring& text)
{
    UErrorCode status = U_ZERO_ERROR;
    std::string out(3 * text.size(), '\0'); // a UTF-16 unit never yields more than three bytes
    const int32_t n = ucnv_fromUChars(c, &out[0], static_cast<int32_t>(out.size()), text.data(),
        static_cast<int32_t>(text.size()), &status);
    out.resize(static_cast<std::size_t>(n));
    return out;
}

void BM_ToString_IcuReused(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    const ustring text = to_units(bytes);
    UConverter* c = open_utf8();
    for (auto _ : state)
        benchmark::DoNotOptimize(icu_to_bytes(c, text));
    ucnv_close(c);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToString_IcuPreflight(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    const ustring text = to_units(bytes);
    UConverter* c = open_utf8();
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t n
            = ucnv_fromUChars(c, nullptr, 0, text.data(), static_cast<int32_t>(text.size()), &status);
        std::string out(static_cast<std::size_t>(n), '\0');
        status = U_ZERO_ERROR;
        ucnv_fromUChars(c, &out[0], n, text.data(), static_cast<int32_t>(text.size()), &status);
        benchmark::DoNotOptimize(out);
    }
    ucnv_close(c);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToString_IcuClone(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    const ustring text = to_units(bytes);
    UConverter* master = open_utf8();
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        UConverter* c = ucnv_clone(master, &status);
        benchmark::DoNotOptimize(icu_to_bytes(c, text));
        ucnv_close(c);
    }
    ucnv_close(master);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToString_Default(benchmark::State& state)
{
    use_utf8_global_locale();
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    const ustring text = to_units(bytes);
    if (fl::i18n::to_string(text) != bytes)
        state.SkipWithError("the default path is not on UTF-8");
    for (auto _ : state)
        benchmark::DoNotOptimize(fl::i18n::to_string(text));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToString_Codecvt(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    const ustring text = to_units(bytes);
    const fl::i18n::codecvt_ustring_to_string cvt("UTF-8", true);
    for (auto _ : state)
        benchmark::DoNotOptimize(cvt.convert(text.data(), text.size()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

void BM_ToString_IcuDirect(benchmark::State& state)
{
    const std::string bytes
        = utf8_text(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    const ustring text = to_units(bytes);
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        std::string out(3 * text.size(), '\0');
        int32_t n = 0;
        u_strToUTF8(&out[0], static_cast<int32_t>(out.size()), &n, text.data(),
            static_cast<int32_t>(text.size()), &status);
        out.resize(static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(out);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(kind_names[state.range(0)]);
}

// ---- File names

// A short non-ASCII name in a temporary directory, made once: "/tmp/.../Größe_日本.txt".
const std::string& short_name()
{
    static const std::string name = [] {
        const std::filesystem::path dir = std::filesystem::temp_directory_path() / "qvi18n_bench_names";
        std::filesystem::create_directories(dir);
        const std::string file = dir.string()
            + "/Gr\xC3\xB6\xC3\x9F"
              "e_\xE6\x97\xA5\xE6\x9C\xAC.txt";
        std::ofstream(file) << "x";
        return file;
    }();
    return name;
}

void BM_Exists_NonAsciiShort_Std(benchmark::State& state)
{
    const std::filesystem::path p(short_name());
    for (auto _ : state)
        benchmark::DoNotOptimize(std::filesystem::exists(p));
}

void BM_Exists_NonAsciiShort_Upath(benchmark::State& state)
{
    const fl::filesystem::upath p(to_units(short_name()));
    if (!fl::filesystem::exists(p))
        state.SkipWithError("the name was not found");
    for (auto _ : state)
        benchmark::DoNotOptimize(fl::filesystem::exists(p));
}

// The name alone into a stack buffer, as exists() converts it: the file-name stack, and the same
// ICU call (u_strToUTF8WithSub) through the fixed converter of the conversion library.
void BM_NameToUtf8_Icu(benchmark::State& state)
{
    const ustring name = to_units(short_name());
    char buffer[1024];
    for (auto _ : state)
        benchmark::DoNotOptimize(
            fl::i18n::lcctype::conversion_to_utf8(buffer, sizeof buffer, name.data(), name.size()));
}

void BM_NameToUtf8_FileNameStack(benchmark::State& state)
{
    const ustring name = to_units(short_name());
    char buffer[1024];
    for (auto _ : state)
        benchmark::DoNotOptimize(
            fl::filesystem::detail::conversion_to_utf8(buffer, sizeof buffer, name.data(), name.size()));
}

void sizes(benchmark::internal::Benchmark* b)
{
    for (int kind = 0; kind < 3; ++kind)
        for (int size : {16, 64, 1024, 64 * 1024, 1024 * 1024})
            b->Args({kind, size});
}

} // namespace

BENCHMARK(BM_ToUstring_IcuReused)->Apply(sizes);
BENCHMARK(BM_ToUstring_IcuPreflight)->Apply(sizes);
BENCHMARK(BM_ToUstring_IcuClone)->Apply(sizes);
BENCHMARK(BM_ToUstring_Default)->Apply(sizes);
BENCHMARK(BM_ToUstring_Codecvt)->Apply(sizes);
BENCHMARK(BM_ToUstring_IcuDirect)->Apply(sizes);
BENCHMARK(BM_ToString_IcuReused)->Apply(sizes);
BENCHMARK(BM_ToString_IcuPreflight)->Apply(sizes);
BENCHMARK(BM_ToString_IcuClone)->Apply(sizes);
BENCHMARK(BM_ToString_Default)->Apply(sizes);
BENCHMARK(BM_ToString_Codecvt)->Apply(sizes);
BENCHMARK(BM_ToString_IcuDirect)->Apply(sizes);
BENCHMARK(BM_Exists_NonAsciiShort_Std);
BENCHMARK(BM_Exists_NonAsciiShort_Upath);
BENCHMARK(BM_NameToUtf8_Icu);
BENCHMARK(BM_NameToUtf8_FileNameStack);
