// The catalog-map reader on arbitrary bytes: it collects segments or stops, never crashes, hangs or
// leaks. A key that isn't ASCII is refused by the one exception the reader may raise.
#include "fuzz/fuzz_support.hpp"

#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/catalog/catalog_map.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include <boost/make_shared.hpp>

#include <cstdint>
#include <string>

namespace {

typedef boost::unordered_set<fl::i18n::ustring> name_set;

name_set read(const fl::filesystem::upath& file)
{
    const boost::shared_ptr<name_set> found = boost::make_shared<name_set>();
    const boost::shared_ptr<fl::i18n::ExpatEventHandler> handler
        = boost::make_shared<fl::i18n::MetaInfoExpatEventHandler>(u"a", found);
    try {
        fl::i18n::ExpatLoader(file, handler).load_file();
    } catch (const fl::i18n::CvtInvalidCharacter&) {
    }
    return *found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string& name = qvfuzz::write_input(data, size);
    const fl::filesystem::upath file(fl::i18n::ustring(name.begin(), name.end()));
    const name_set first = read(file);
    // Each result is one whole segment that followed "a:", empty for "a:" or "a::b".
    for (const fl::i18n::ustring& segment : first) {
        qvfuzz::check(segment.find(u':') == fl::i18n::ustring::npos);
    }
    qvfuzz::check(read(file) == first);
    return 0;
}
