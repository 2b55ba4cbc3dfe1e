// Listing a directory of 100,000 names and comparing two paths, side by side with what they
// stand on:
//   Readdir*     opendir/readdir, touching each name: the floor of any listing;
//   StdIterator  std::filesystem::directory_iterator, each entry's path;
//   Upath*       upath_directory_iterator, each entry's filename() as text;
//   *Wildcard    the same with the wildcard "file-*7.txt"; the floor adds, per name, the UTF-16
//                conversion and uregex_matches of the expression the wildcard becomes;
//   Compare*     two equal 60-unit paths: mode 0 against memcmp, mode 3 against ICU case
//                folding and normalising both sides before comparing.
#include <qvi18n/filesystem/compare.hpp>
#include <qvi18n/filesystem/detail/pattern.hpp>
#include <qvi18n/filesystem/directory_iterator.hpp>

#include <benchmark/benchmark.h>

#include "bench_support.hpp"

#include <unicode/unorm2.h>
#include <unicode/uregex.h>
#include <unicode/ustring.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

namespace fs = fl::filesystem;
namespace stdfs = std::filesystem;
using fl::i18n::ustring;

int const entry_count = 100000;

// 100,000 empty files, one in twenty under a name with accented and CJK letters; made once.
struct bench_directory {
    bench_directory()
    {
        char name[64];
        for (int i = 0; i < entry_count; ++i) {
            std::snprintf(name, sizeof name, i % 20 == 0 ? "file-%06d-\xc3\xa9t\xc3\xa9-\xe6\x97\xa5.txt" : "file-%06d.txt", i);
            ::close(::open((root + "/" + name).c_str(), O_CREAT | O_WRONLY, 0644));
        }
    }
    qvbench::temp_tree tree{"directory-bench"};
    std::string root{tree.path().string()};
};

bench_directory const& directory()
{
    static bench_directory const instance;
    return instance;
}

void ReaddirFloor(benchmark::State& state)
{
    std::string const& root = directory().root;
    for (auto _ : state) {
        DIR* const handle = ::opendir(root.c_str());
        std::size_t count = 0;
        while (struct dirent const* entry = ::readdir(handle)) {
            benchmark::DoNotOptimize(std::strlen(entry->d_name));
            ++count;
        }
        ::closedir(handle);
        benchmark::DoNotOptimize(count);
    }
    state.SetItemsProcessed(state.iterations() * (entry_count + 2));
}
BENCHMARK(ReaddirFloor)->Unit(benchmark::kMillisecond);

void StdIterator(benchmark::State& state)
{
    stdfs::path const root(directory().root);
    for (auto _ : state) {
        std::size_t count = 0;
        for (stdfs::directory_entry const& entry : stdfs::directory_iterator(root)) {
            benchmark::DoNotOptimize(entry.path().native().size());
            ++count;
        }
        benchmark::DoNotOptimize(count);
    }
    state.SetItemsProcessed(state.iterations() * entry_count);
}
BENCHMARK(StdIterator)->Unit(benchmark::kMillisecond);

void UpathIterator(benchmark::State& state)
{
    fs::upath const root(fs::detail::from_filesystem(directory().root));
    for (auto _ : state) {
        std::size_t count = 0;
        for (fs::upath_directory_iterator it(root), end; it != end; ++it) {
            benchmark::DoNotOptimize(it->filename().size());
            ++count;
        }
        benchmark::DoNotOptimize(count);
    }
    state.SetItemsProcessed(state.iterations() * (entry_count + 2));
}
BENCHMARK(UpathIterator)->Unit(benchmark::kMillisecond);

ustring const wildcard = u"file-*7.txt";

void ReaddirRegexFloor(benchmark::State& state)
{
    std::string const& root = directory().root;
    ustring const expression = fs::posix::gen_pattern(wildcard);
    UErrorCode status = U_ZERO_ERROR;
    URegularExpression* const regex
        = uregex_open(expression.data(), static_cast<int32_t>(expression.size()), 0, nullptr, &status);
    for (auto _ : state) {
        DIR* const handle = ::opendir(root.c_str());
        std::size_t matched = 0;
        UChar text[256];
        while (struct dirent const* entry = ::readdir(handle)) {
            int32_t length = 0;
            u_strFromUTF8WithSub(text, 256, &length, entry->d_name, -1, 0xFFFD, nullptr, &status);
            uregex_setText(regex, text, length, &status);
            if (uregex_matches(regex, -1, &status))
                ++matched;
        }
        ::closedir(handle);
        benchmark::DoNotOptimize(matched);
    }
    uregex_close(regex);
    state.SetItemsProcessed(state.iterations() * (entry_count + 2));
}
BENCHMARK(ReaddirRegexFloor)->Unit(benchmark::kMillisecond);

void UpathIteratorWildcard(benchmark::State& state)
{
    fs::upath const root(fs::detail::from_filesystem(directory().root));
    fs::filename_pattern_context const pattern(wildcard);
    for (auto _ : state) {
        std::size_t matched = 0;
        for (fs::upath_directory_iterator it(root, pattern), end; it != end; ++it) {
            benchmark::DoNotOptimize(it->filename().size());
            ++matched;
        }
        benchmark::DoNotOptimize(matched);
    }
    state.SetItemsProcessed(state.iterations() * (entry_count + 2));
}
BENCHMARK(UpathIteratorWildcard)->Unit(benchmark::kMillisecond);

// Two equal paths of 60 units, with accented letters, in separate buffers.
ustring const path_a = u"/home/user/Documents/r\u00e9sum\u00e9s/2026/\u00e9t\u00e9-report-final-v2.01.txt";
ustring const path_b = path_a.substr(0);

void CompareMemcmp(benchmark::State& state)
{
    for (auto _ : state) {
        int const order = path_a.size() == path_b.size()
            ? std::memcmp(path_a.data(), path_b.data(), path_a.size() * sizeof(char16_t))
            : 1;
        benchmark::DoNotOptimize(order);
    }
}
BENCHMARK(CompareMemcmp);

void CompareMode0(benchmark::State& state)
{
    fs::upath const a(path_a);
    fs::upath const b(path_b);
    fl::i18n::character_handling_mode_context const mode(0);
    for (auto _ : state)
        benchmark::DoNotOptimize(fs::compare(a, b, mode));
}
BENCHMARK(CompareMode0);

void CompareIcuFoldNormalize(benchmark::State& state)
{
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* const nfd = unorm2_getNFDInstance(&status);
    for (auto _ : state) {
        UChar folded_a[128], folded_b[128], normal_a[128], normal_b[128];
        int32_t const fa = u_strFoldCase(folded_a, 128, path_a.data(), static_cast<int32_t>(path_a.size()),
            U_FOLD_CASE_DEFAULT, &status);
        int32_t const fb = u_strFoldCase(folded_b, 128, path_b.data(), static_cast<int32_t>(path_b.size()),
            U_FOLD_CASE_DEFAULT, &status);
        int32_t const na = unorm2_normalize(nfd, folded_a, fa, normal_a, 128, &status);
        int32_t const nb = unorm2_normalize(nfd, folded_b, fb, normal_b, 128, &status);
        benchmark::DoNotOptimize(u_strCompare(normal_a, na, normal_b, nb, false));
    }
}
BENCHMARK(CompareIcuFoldNormalize);

void CompareMode3(benchmark::State& state)
{
    fs::upath const a(path_a);
    fs::upath const b(path_b);
    fl::i18n::character_handling_mode_context const mode(3);
    for (auto _ : state)
        benchmark::DoNotOptimize(fs::compare(a, b, mode));
}
BENCHMARK(CompareMode3);

} // namespace
