// Completion of identifiers: a one-segment prefix over a component of 1,000 catalogs with its
// generated map, against Expat parsing the same map in one whole-buffer call; and a key prefix in
// a cached 10,000-key catalog, against a case-insensitive prefix scan of the same keys in a vector.

#include <qvi18n/i18n/catalog/catalog_map_writer.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_id_completions.hpp>

#include <benchmark/benchmark.h>

#include "bench_support.hpp"

#include <expat.h>
#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const int catalog_count = 1000;
const int key_count = 10000;

std::string numbered(const char* stem, int i)
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "%s%05d", stem, i);
    return buf;
}

fl::i18n::ustring u(const std::string& ascii)
{
    return fl::i18n::ustring(ascii.begin(), ascii.end());
}

struct bench_data {
    qvbench::temp_tree tree{"completions-bench"};
    const fs::path dir{tree.path()};
    std::string map_text;
    std::vector<std::string> keys;

    bench_data()
    {
        const fs::path en = dir / "root/resources/big/en";
        fs::create_directories(en);
        const std::string small = "<rsccat><message><entry key=\"k\">v</entry></message></rsccat>\n";
        for (int i = 0; i < catalog_count; ++i) {
            std::ofstream(en / (numbered("Catalog", i) + ".xml")) << small;
        }
        std::ofstream big(en / "keys.xml");
        big << "<rsccat>\n<message>\n";
        for (int i = 0; i < key_count; ++i) {
            keys.push_back(numbered("MessageKey", i));
            big << "<entry key=\"" << keys.back() << "\">Text " << i << "</entry>\n";
        }
        big << "</message>\n</rsccat>\n";
        big.close();

        fl::i18n::write_catalog_maps(fl::filesystem::upath(u((dir / "root").string())));
        std::ifstream map(dir / "root/derived/share/resources/big/catalog_map.xml");
        map_text.assign(std::istreambuf_iterator<char>(map), std::istreambuf_iterator<char>());
        fl::i18n::MessageCatalog::MessageCatalogInit((dir / "root").string());
    }
};

bench_data& data()
{
    static bench_data d;
    return d;
}

void BM_CompleteCatalogSegment(benchmark::State& state)
{
    data();
    const fl::i18n::ustring partial = u"big:Catalog001";
    for (auto _ : state) {
        fl::i18n::MessageIdCompletions result = fl::i18n::getMessageIdCompletions(partial);
        benchmark::DoNotOptimize(result.completions.data());
    }
    state.counters["results"] = static_cast<double>(fl::i18n::getMessageIdCompletions(partial).completions.size());
}
BENCHMARK(BM_CompleteCatalogSegment)->Unit(benchmark::kMicrosecond);

void BM_CompleteAllCatalogSegments(benchmark::State& state)
{
    data();
    const fl::i18n::ustring partial = u"big:";
    for (auto _ : state) {
        fl::i18n::MessageIdCompletions result = fl::i18n::getMessageIdCompletions(partial);
        benchmark::DoNotOptimize(result.completions.data());
    }
    state.counters["results"] = static_cast<double>(fl::i18n::getMessageIdCompletions(partial).completions.size());
}
BENCHMARK(BM_CompleteAllCatalogSegments)->Unit(benchmark::kMicrosecond);

void XMLCALL no_start(void*, const XML_Char*, const XML_Char**) { }
void XMLCALL no_end(void*, const XML_Char*) { }

void BM_ExpatMapFloor(benchmark::State& state)
{
    const bench_data& d = data();
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreate("UTF-8");
        XML_SetElementHandler(parser, no_start, no_end);
        benchmark::DoNotOptimize(XML_Parse(parser, d.map_text.data(), static_cast<int>(d.map_text.size()), XML_TRUE));
        XML_ParserFree(parser);
    }
}
BENCHMARK(BM_ExpatMapFloor)->Unit(benchmark::kMicrosecond);

void BM_CompleteKeyPrefixCached(benchmark::State& state)
{
    data();
    const fl::i18n::ustring partial = u"big:keys:messagekey05";
    fl::i18n::getMessageIdCompletions(partial); // loads and caches the catalog
    for (auto _ : state) {
        fl::i18n::MessageIdCompletions result = fl::i18n::getMessageIdCompletions(partial);
        benchmark::DoNotOptimize(result.completions.data());
    }
    state.counters["results"] = static_cast<double>(fl::i18n::getMessageIdCompletions(partial).completions.size());
}
BENCHMARK(BM_CompleteKeyPrefixCached)->Unit(benchmark::kMicrosecond);

void BM_KeyPrefixScanBaseline(benchmark::State& state)
{
    const bench_data& d = data();
    const std::string prefix = "messagekey05";
    for (auto _ : state) {
        std::vector<std::u16string> found;
        for (const std::string& key : d.keys) {
            if (key.size() >= prefix.size() && ::strncasecmp(key.c_str(), prefix.c_str(), prefix.size()) == 0) {
                found.emplace_back(key.begin(), key.end());
            }
        }
        benchmark::DoNotOptimize(found.data());
    }
}
BENCHMARK(BM_KeyPrefixScanBaseline)->Unit(benchmark::kMicrosecond);

} // namespace
