// Reading the shipped locale database into an LcData, against the floor: Expat alone parsing the
// same bytes in one call, with no handlers.
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml_parser.hpp>

#include <benchmark/benchmark.h>

#include "bench_support.hpp"

#include <expat.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

std::string databaseBytes()
{
    std::ifstream in(qvbench::database_path(), std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (bytes.str().empty())
        throw std::runtime_error("no lcdata.xml at " + qvbench::database_path());
    return bytes.str();
}

void BM_ExpatFloor(benchmark::State& state)
{
    std::string const bytes = databaseBytes();
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreate("UTF-8");
        XML_Status status = XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
        benchmark::DoNotOptimize(status);
        XML_ParserFree(parser);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_ExpatFloor)->Unit(benchmark::kMicrosecond);

// The reader's driver with a handler that keeps nothing: streaming, Expat with call-backs, and
// the virtual calls, without the tables of LcData.
class NullHandler : public fl::i18n::EventHandler {
public:
    int checkXMLDoc(char const*, char const*, int) const override { return 0; }
    int startEntry(char const*, char const**) override { return 0; }
    int entryData(char const*, int) override { return 0; }
    int endEntry(char const*) override { return 0; }
    std::string getEncoding() const override { return "UTF-8"; }
};

void BM_ReaderWithoutTables(benchmark::State& state)
{
    fl::filesystem::native_path const file(qvbench::database_path());
    std::size_t const size = databaseBytes().size();
    for (auto _ : state) {
        NullHandler handler;
        fl::i18n::parseXmlDocument(handler, file);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * size));
}
BENCHMARK(BM_ReaderWithoutTables)->Unit(benchmark::kMicrosecond);

void BM_ParseLcData(benchmark::State& state)
{
    fl::filesystem::native_path const file(qvbench::database_path());
    std::size_t const size = databaseBytes().size();
    for (auto _ : state) {
        fl::i18n::LcData data;
        fl::i18n::parseLcData(data, file);
        benchmark::DoNotOptimize(data.getLcName("de_DE"));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * size));
}
BENCHMARK(BM_ParseLcData)->Unit(benchmark::kMicrosecond);

} // namespace
