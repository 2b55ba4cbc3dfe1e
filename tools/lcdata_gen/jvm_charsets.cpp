// What a JVM calls our encodings: the canonical charset names a standard JVM reports, keyed
// by the standard name the database uses. Encodings missing here have no JVM counterpart.
#include "model.hpp"

#include <utility>

namespace lcdata_gen {

namespace {

std::pair<char const*, char const*> const jvmNames[] = {
    {"UTF-8", "UTF-8"},
    {"UTF-16", "UTF-16"},
    {"UTF-16BE", "UTF-16BE"},
    {"UTF-16LE", "UTF-16LE"},
    {"UTF-32", "UTF-32"},
    {"UTF-32BE", "UTF-32BE"},
    {"UTF-32LE", "UTF-32LE"},
    {"CESU-8", "CESU-8"},
    {"US-ASCII", "US-ASCII"},
    {"ISO-8859-1", "ISO-8859-1"},
    {"ISO-8859-2", "ISO-8859-2"},
    {"ISO-8859-3", "ISO-8859-3"},
    {"ISO-8859-4", "ISO-8859-4"},
    {"ISO-8859-5", "ISO-8859-5"},
    {"ISO-8859-6", "ISO-8859-6"},
    {"ISO-8859-7", "ISO-8859-7"},
    {"ISO-8859-8", "ISO-8859-8"},
    {"ISO-8859-9", "ISO-8859-9"},
    {"ISO-8859-13", "ISO-8859-13"},
    {"ISO-8859-15", "ISO-8859-15"},
    {"KOI8-R", "KOI8-R"},
    {"KOI8-U", "KOI8-U"},
    {"windows-1250", "windows-1250"},
    {"windows-1251", "windows-1251"},
    {"windows-1252", "windows-1252"},
    {"windows-1253", "windows-1253"},
    {"windows-1254", "windows-1254"},
    {"windows-1255", "windows-1255"},
    {"windows-1256", "windows-1256"},
    {"windows-1257", "windows-1257"},
    {"windows-1258", "windows-1258"},
    {"Shift_JIS", "Shift_JIS"},
    {"EUC-JP", "EUC-JP"},
    {"ISO-2022-JP", "ISO-2022-JP"},
    {"ISO-2022-JP-2", "ISO-2022-JP-2"},
    {"GB18030", "GB18030"},
    {"GBK", "GBK"},
    {"GB2312", "GB2312"},
    {"ISO-2022-CN", "ISO-2022-CN"},
    {"Big5", "Big5"},
    {"Big5-HKSCS", "Big5-HKSCS"},
    {"EUC-KR", "EUC-KR"},
    {"KSC_5601", "x-windows-949"},
    {"ISO-2022-KR", "ISO-2022-KR"},
    {"TIS-620", "TIS-620"},
    {"macintosh", "x-MacRoman"},
    {"x-mac-greek", "x-MacGreek"},
    {"x-mac-cyrillic", "x-MacCyrillic"},
    {"x-mac-centraleurroman", "x-MacCentralEurope"},
    {"x-mac-turkish", "x-MacTurkish"},
    {"IBM437", "IBM437"},
    {"IBM775", "IBM775"},
    {"IBM850", "IBM850"},
    {"IBM852", "IBM852"},
    {"IBM855", "IBM855"},
    {"IBM857", "IBM857"},
    {"IBM00858", "IBM00858"},
    {"IBM860", "IBM860"},
    {"IBM861", "IBM861"},
    {"IBM862", "IBM862"},
    {"IBM863", "IBM863"},
    {"IBM864", "IBM864"},
    {"IBM865", "IBM865"},
    {"IBM866", "IBM866"},
    {"IBM868", "IBM868"},
    {"IBM869", "IBM869"},
    {"IBM037", "IBM037"},
    {"IBM273", "IBM273"},
    {"IBM277", "IBM277"},
    {"IBM278", "IBM278"},
    {"IBM280", "IBM280"},
    {"IBM284", "IBM284"},
    {"IBM285", "IBM285"},
    {"IBM290", "IBM290"},
    {"IBM297", "IBM297"},
    {"IBM420", "IBM420"},
    {"IBM424", "IBM424"},
    {"IBM500", "IBM500"},
    {"IBM-Thai", "IBM-Thai"},
    {"IBM870", "IBM870"},
    {"IBM871", "IBM871"},
    {"IBM918", "IBM918"},
    {"IBM1026", "IBM1026"},
    {"IBM1047", "IBM1047"},
    {"IBM01140", "IBM01140"},
    {"IBM01141", "IBM01141"},
    {"IBM01142", "IBM01142"},
    {"IBM01143", "IBM01143"},
    {"IBM01144", "IBM01144"},
    {"IBM01145", "IBM01145"},
    {"IBM01146", "IBM01146"},
    {"IBM01147", "IBM01147"},
    {"IBM01148", "IBM01148"},
    {"IBM01149", "IBM01149"},
};

} // namespace

std::string jvmCharsetFor(std::string const& standardName)
{
    std::string key = foldKey(standardName);
    for (auto const& entry : jvmNames) {
        if (foldKey(entry.first) == key)
            return entry.second;
    }
    return std::string();
}

} // namespace lcdata_gen
