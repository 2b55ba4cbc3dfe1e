// Message catalogs: a cache hit of get_message(MessageID, locale) against dgettext on the same
// messages compiled by msgfmt and against a bare hash map find with copy; and the load of a
// 10,000-entry catalog file against Expat parsing the same file in one whole-buffer call.

#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <benchmark/benchmark.h>

#include "bench_support.hpp"

#include <expat.h>
#include <libintl.h>
#include <malloc.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

namespace fs = std::filesystem;

const int entry_count = 10000;

// Answers every category with one name; the benchmark needs no locale database.
class bench_locale : public fl::i18n::QvLocale {
public:
    explicit bench_locale(std::string name)
        : name_(std::move(name))
    { }
    bool operator==(const fl::i18n::QvLocale& other) const override
    {
        return name_ == other.shortName(LcMessages);
    }
    std::string shortName(LcCategory) const override { return name_; }
    std::string language(LcCategory) const override { return name_.substr(0, name_.find('_')); }
    std::string territory(LcCategory) const override { return std::string(); }
    std::string modifier(LcCategory) const override { return std::string(); }
    std::string encoding() const override { return "UTF-8"; }
    fl::i18n::LcOptData getLcOptData(fl::i18n::QvLcOptDataCtx::LcOptDataType) const override
    {
        return fl::i18n::LcOptData(std::string("UTF-8"));
    }

private:
    std::string name_;
};

std::string key_of(int i)
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "MessageKey%05d", i);
    return buf;
}

std::string text_of(int i)
{
    return "Nachricht " + std::to_string(i) + " des Katalogs: die Datei konnte nicht gelesen werden.";
}

// The catalog tree, the .mo file and the same data in memory, made once per process.
struct bench_data {
    qvbench::temp_tree tree{"catalog-bench"};
    const fs::path dir{tree.path()};
    fs::path catalog_file;
    std::vector<std::string> keys;
    std::vector<fl::i18n::MessageID> ids;
    std::unordered_map<std::string, std::u16string> map;
    bool gettext_ready = false;

    bench_data()
    {
        catalog_file = dir / "root/resources/bench/de/catalog.xml";
        fs::create_directories(catalog_file.parent_path());
        fs::create_directories(dir / "locale/de/LC_MESSAGES");

        std::ofstream xml(catalog_file);
        std::ofstream po(dir / "bench.po");
        xml << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rsccat version=\"1.0\" locale=\"de\">\n  "
               "<message>\n";
        po << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";
        for (int i = 0; i < entry_count; ++i) {
            const std::string key = key_of(i);
            const std::string text = text_of(i);
            xml << "    <entry key=\"" << key << "\">" << text << "</entry>\n";
            po << "msgid \"" << key << "\"\nmsgstr \"" << text << "\"\n\n";
            keys.push_back(key);
            ids.emplace_back("bench:catalog:" + key);
            map.emplace(key, std::u16string(text.begin(), text.end()));
        }
        xml << "  </message>\n</rsccat>\n";
        xml.close();
        po.close();

        const std::string mo = (dir / "locale/de/LC_MESSAGES/bench.mo").string();
        const std::string cmd = "msgfmt -o '" + mo + "' '" + (dir / "bench.po").string() + "'";
        if (std::system(cmd.c_str()) == 0) {
            ::setenv("LANGUAGE", "de", 1);
            std::setlocale(LC_ALL, "C.UTF-8");
            ::bindtextdomain("bench", (dir / "locale").c_str());
            ::bind_textdomain_codeset("bench", "UTF-8");
            gettext_ready = std::string(::dgettext("bench", keys[0].c_str())) == text_of(0);
        }

        fl::i18n::MessageCatalog::MessageCatalogInit((dir / "root").string());
    }
};

bench_data& data()
{
    static bench_data d;
    return d;
}

void BM_GetMessageCacheHit(benchmark::State& state)
{
    bench_data& d = data();
    const bench_locale locale(state.range(0) ? "de_AT" : "de");
    fl::i18n::MessageCatalog::get_message(d.ids[0], locale); // load, and for de_AT make the alias
    std::size_t i = 0;
    for (auto _ : state) {
        fl::i18n::ustring text = fl::i18n::MessageCatalog::get_message(d.ids[i], locale);
        benchmark::DoNotOptimize(text.data());
        if (++i == d.ids.size()) {
            i = 0;
        }
    }
}
BENCHMARK(BM_GetMessageCacheHit)->ArgName("fallback")->Arg(0)->Arg(1);

void BM_DGettextHit(benchmark::State& state)
{
    bench_data& d = data();
    if (!d.gettext_ready) {
        state.SkipWithError("msgfmt or the C.UTF-8 locale is missing");
        return;
    }
    std::size_t i = 0;
    for (auto _ : state) {
        const char* text = ::dgettext("bench", d.keys[i].c_str());
        benchmark::DoNotOptimize(text);
        if (++i == d.keys.size()) {
            i = 0;
        }
    }
}
BENCHMARK(BM_DGettextHit);

void BM_UnorderedMapFindCopy(benchmark::State& state)
{
    bench_data& d = data();
    std::size_t i = 0;
    for (auto _ : state) {
        std::u16string text = d.map.find(d.keys[i])->second;
        benchmark::DoNotOptimize(text.data());
        if (++i == d.keys.size()) {
            i = 0;
        }
    }
}
BENCHMARK(BM_UnorderedMapFindCopy);

// Bytes the heap holds, large blocks (mmap) included.
std::size_t heap_in_use()
{
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

void BM_LoadCatalog10k(benchmark::State& state)
{
    bench_data& d = data();
    const std::string file = d.catalog_file.string();
    const fl::filesystem::upath path(fl::i18n::ustring(file.begin(), file.end()));
    {
        // What a loaded catalog keeps, per entry: measured once, outside the timed loop.
        const std::size_t before = heap_in_use();
        fl::i18n::MessageCatalogImpl catalog("bench:catalog", path, "de");
        state.counters["heap_bytes_per_entry"] = double(heap_in_use() - before) / entry_count;
    }
    for (auto _ : state) {
        std::unique_ptr<fl::i18n::MessageCatalogImpl> catalog(
            new fl::i18n::MessageCatalogImpl("bench:catalog", path, "de"));
        benchmark::DoNotOptimize(catalog.get());
        // A catalog lives as long as the process; its tear-down isn't part of a load.
        state.PauseTiming();
        catalog.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_LoadCatalog10k)->Unit(benchmark::kMillisecond);

void XMLCALL on_start(void*, const XML_Char*, const XML_Char**) { }
void XMLCALL on_end(void*, const XML_Char*) { }
void XMLCALL on_text(void*, const XML_Char*, int) { }

std::string read_whole(const fs::path& file)
{
    std::string content(fs::file_size(file), '\0');
    std::FILE* f = std::fopen(file.c_str(), "rb");
    const std::size_t got = f ? std::fread(&content[0], 1, content.size(), f) : 0;
    if (f) {
        std::fclose(f);
    }
    content.resize(got);
    return content;
}

XML_Parser make_parser()
{
    XML_Parser parser = XML_ParserCreate("UTF-8");
    XML_SetElementHandler(parser, on_start, on_end);
    XML_SetCharacterDataHandler(parser, on_text);
    return parser;
}

// The floor: read the whole file and parse it in one call, with handlers that do nothing.
void BM_ExpatWholeBufferParse10k(benchmark::State& state)
{
    bench_data& d = data();
    for (auto _ : state) {
        const std::string content = read_whole(d.catalog_file);
        XML_Parser parser = make_parser();
        const XML_Status ok = XML_Parse(parser, content.data(), static_cast<int>(content.size()), XML_TRUE);
        XML_ParserFree(parser);
        if (ok != XML_STATUS_OK) {
            state.SkipWithError("parse failed");
            return;
        }
    }
}
BENCHMARK(BM_ExpatWholeBufferParse10k)->Unit(benchmark::kMillisecond);

// For reference: the same parse fed one line at a time from a stream, as catalogs are read.
void BM_ExpatLineByLineParse10k(benchmark::State& state)
{
    bench_data& d = data();
    for (auto _ : state) {
        std::ifstream in(d.catalog_file, std::ios::binary);
        XML_Parser parser = make_parser();
        std::string line;
        bool ok = true;
        while (ok && std::getline(in, line)) {
            ok = XML_Parse(parser, line.data(), static_cast<int>(line.size()), in.eof()) == XML_STATUS_OK;
        }
        XML_ParserFree(parser);
        if (!ok) {
            state.SkipWithError("parse failed");
            return;
        }
    }
}
BENCHMARK(BM_ExpatLineByLineParse10k)->Unit(benchmark::kMillisecond);

} // namespace
