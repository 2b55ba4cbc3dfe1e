// The locale database reader on arbitrary bytes: it fills the table or refuses with one of its
// typed exceptions; anything else escaping, a crash, a hang or a leak is a finding.
#include "fuzz/fuzz_support.hpp"

#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string& name = qvfuzz::write_input(data, size);
    fl::i18n::LcData table;
    try {
        fl::i18n::parseLcData(table, fl::filesystem::native_path(name));
    } catch (const fl::i18n::QvLcMgmtExceptionBase&) {
    }
    return 0;
}
