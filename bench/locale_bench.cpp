// The locale core on its hot paths, each beside its floor:
// - reading the global locale (one atomic load) against the same read under a mutex (the baseline), with
//   1 and 2 threads;
// - a database look-up by name in any case (copy, ASCII fold, hash) against a plain hash-map find of a
//   key that is already lower case;
// - creating a locale by name.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

#include <benchmark/benchmark.h>

#include "bench_support.hpp"
#include <boost/thread/lock_guard.hpp>
#include <boost/unordered_map.hpp>

#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

void fillDatabase()
{
    static std::once_flag once;
    std::call_once(once, [] {
        boost::unique_lock<boost::mutex> lock(fl::i18n::getLcMutex());
        fl::i18n::LcData& data = fl::i18n::get_qvlocale_context().getLcDataForUpdate(lock);
        fl::i18n::parseLcData(data, fl::filesystem::native_path(qvbench::database_path()));
        if (data.getLcName("de_DE").empty())
            throw std::runtime_error("database without de_DE at " + qvbench::database_path());
    });
}

// Names as callers write them: mixed case, aliases, a miss.
std::vector<std::string> const& lookupNames()
{
    static std::vector<std::string> const names {"de_DE", "EN_us", "ja_JP", "fr_fr", "zh_CN", "Pt_BR",
        "xx_XX", "it_IT", "ko_KR", "ru_RU", "es_ES", "nl_NL", "sv_SE", "C", "POSIX", "en_GB"};
    return names;
}

void BM_GlobalRead_Atomic(benchmark::State& state)
{
    fl::i18n::QvLocale::global();
    for (auto _ : state) {
        benchmark::DoNotOptimize(&fl::i18n::QvLocale::global());
    }
}
BENCHMARK(BM_GlobalRead_Atomic)->Threads(1)->Threads(2);

void BM_GlobalRead_MutexBaseline(benchmark::State& state)
{
    static boost::mutex mutex;
    fl::i18n::QvLocaleCtx& ctx = fl::i18n::get_qvlocale_context();
    for (auto _ : state) {
        boost::lock_guard<boost::mutex> lock(mutex);
        benchmark::DoNotOptimize(&ctx.getGlobalLocale());
    }
}
BENCHMARK(BM_GlobalRead_MutexBaseline)->Threads(1)->Threads(2);

void BM_LcNameLookup(benchmark::State& state)
{
    fillDatabase();
    fl::i18n::LcData const& data = fl::i18n::get_qvlocale_context().getLcData();
    std::vector<std::string> const& names = lookupNames();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(data.getLcName(names[i++ % names.size()]).size());
    }
}
BENCHMARK(BM_LcNameLookup);

void BM_LcNameLookup_HashFloor(benchmark::State& state)
{
    fillDatabase();
    fl::i18n::LcData const& data = fl::i18n::get_qvlocale_context().getLcData();
    boost::unordered_map<std::string, std::string> table;
    std::vector<std::string> keys;
    for (std::string const& name : lookupNames()) {
        std::string key;
        for (char c : name)
            key += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        table.emplace(key, data.getLcName(name));
        keys.push_back(key);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        auto found = table.find(keys[i++ % keys.size()]);
        benchmark::DoNotOptimize(found == table.end() ? 0 : found->second.size());
    }
}
BENCHMARK(BM_LcNameLookup_HashFloor);

void BM_CreateLocale(benchmark::State& state)
{
    fillDatabase();
    for (auto _ : state) {
        benchmark::DoNotOptimize(fl::i18n::QvLocale::createLocale("de_DE").get());
    }
}
BENCHMARK(BM_CreateLocale);

void BM_CreateLocaleWithEncoding(benchmark::State& state)
{
    fillDatabase();
    for (auto _ : state) {
        benchmark::DoNotOptimize(fl::i18n::QvLocale::createLocale("de_DE.utf8").get());
    }
}
BENCHMARK(BM_CreateLocaleWithEncoding);

} // namespace
