// The catalog loader on arbitrary bytes: it loads or refuses with a false result, never throws,
// crashes, hangs or leaks, and gives the same answer for the same file.
#include "fuzz/fuzz_support.hpp"

#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include <cstdint>
#include <string>

namespace {

// Refusal is a false result; any exception escapes and is reported as a finding. Whatever was
// stored, every key finds its own text through the index.
bool load(const fl::filesystem::upath& file)
{
    fl::i18n::XMLCatalogDataStore store;
    fl::i18n::XMLCatalogFileLoader loader;
    const bool loaded = loader.loadFile(file, store);
    for (std::size_t i = 0; i < store.size(); ++i) {
        std::u16string_view text;
        qvfuzz::check(store.find(store.key_at(i), text) && text == store.text_at(i));
    }
    return loaded;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string& name = qvfuzz::write_input(data, size);
    const fl::filesystem::upath file(fl::i18n::ustring(name.begin(), name.end()));
    const bool first = load(file);
    qvfuzz::check(load(file) == first);
    return 0;
}
