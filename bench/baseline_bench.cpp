// A floor for the machine: how long an empty benchmark iteration and a small copy take,
// so that other figures can be read against them.
#include <benchmark/benchmark.h>

#include <string>

static void BM_EmptyLoop(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::ClobberMemory();
}
BENCHMARK(BM_EmptyLoop);

static void BM_CopyU16String64(benchmark::State& state)
{
    std::u16string s(64, u'x');
    for (auto _ : state) {
        std::u16string copy = s;
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(BM_CopyU16String64);
