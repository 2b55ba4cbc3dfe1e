// exists and status on a upath, side by side with std::filesystem on the same files. The
// system call dominates both; what the upath adds is converting the name to UTF-8 and mapping
// the result, which must stay small next to it.
#include <qvi18n/filesystem/operations.hpp>

#include <benchmark/benchmark.h>

#include "bench_support.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

namespace stdfs = std::filesystem;

// A directory with a few files under short and long names, made once and removed at exit.
struct bench_files {
    bench_files()
    {
        std::string deep = root;
        for (int i = 0; i < 8; ++i)
            deep += "/directory-level-" + std::to_string(i);
        stdfs::create_directories(deep);
        short_name = root + "/f.txt";
        long_name = deep + "/a-file-with-a-rather-long-name-\xc3\xa9\xc3\xa8.txt";
        missing_name = root + "/missing.txt";
        std::ofstream(short_name) << "x";
        std::ofstream(long_name) << "x";
    }
    qvbench::temp_tree tree{"status-bench"};
    std::string root{tree.path().string()};
    std::string short_name;
    std::string long_name;
    std::string missing_name;
};

bench_files const& files()
{
    static bench_files const instance;
    return instance;
}

std::string const& name_for(int which)
{
    switch (which) {
    case 0:
        return files().short_name;
    case 1:
        return files().long_name;
    default:
        return files().missing_name;
    }
}

fl::filesystem::upath upath_for(int which)
{
    stdfs::path const p = stdfs::u8path(name_for(which));
    return fl::filesystem::upath(p.u16string());
}

void label(benchmark::State& state)
{
    static char const* const names[] = {"short", "long", "missing"};
    state.SetLabel(names[state.range(0)]);
}

void BM_std_exists(benchmark::State& state)
{
    stdfs::path const p(name_for(static_cast<int>(state.range(0))));
    for (auto _ : state)
        benchmark::DoNotOptimize(stdfs::exists(p));
    label(state);
}

void BM_upath_exists(benchmark::State& state)
{
    fl::filesystem::upath const p = upath_for(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(fl::filesystem::exists(p));
    label(state);
}

void BM_std_status(benchmark::State& state)
{
    stdfs::path const p(name_for(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        stdfs::file_status st = stdfs::status(p);
        benchmark::DoNotOptimize(st);
    }
    label(state);
}

void BM_upath_status(benchmark::State& state)
{
    fl::filesystem::upath const p = upath_for(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        fl::filesystem::file_status st = fl::filesystem::status(p);
        benchmark::DoNotOptimize(st);
    }
    label(state);
}

} // namespace

BENCHMARK(BM_std_exists)->DenseRange(0, 2);
BENCHMARK(BM_upath_exists)->DenseRange(0, 2);
BENCHMARK(BM_std_status)->DenseRange(0, 2);
BENCHMARK(BM_upath_status)->DenseRange(0, 2);
