// The encoding half of the database: every converter ICU can open that has a MIME or IANA name,
// under that name, with every ICU alias that opens the same converter.
#include "model.hpp"

#include <unicode/ucnv.h>

#include <map>
#include <memory>
#include <stdexcept>

namespace lcdata_gen {

namespace {

// The converter ICU really opens for a name; ambiguous aliases and standard names that ICU maps
// elsewhere (TIS-620) are grouped by this, not by the converter that lists them.
std::string openedConverter(char const* name)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, void (*)(UConverter*)> cnv(ucnv_open(name, &status), ucnv_close);
    if (U_FAILURE(status) || !cnv)
        return std::string();
    char const* opened = ucnv_getName(cnv.get(), &status);
    return U_SUCCESS(status) && opened ? std::string(opened) : std::string();
}

char const* standardName(char const* converter)
{
    for (char const* standard : {"MIME", "IANA"}) {
        UErrorCode status = U_ZERO_ERROR;
        char const* name = ucnv_getStandardName(converter, standard, &status);
        if (U_SUCCESS(status) && name && *name)
            return name;
    }
    return nullptr;
}

} // namespace

std::vector<EncodingRecord> buildEncodings()
{
    int32_t const count = ucnv_countAvailable();
    if (count <= 0)
        throw std::runtime_error("ICU reports no converters (is the ICU data library present?)");

    // Every alias of every converter, grouped by the converter it opens, in ICU's order.
    std::map<std::string, std::vector<std::string>> aliasesByConverter;
    for (int32_t i = 0; i < count; ++i) {
        char const* converter = ucnv_getAvailableName(i);
        UErrorCode status = U_ZERO_ERROR;
        uint16_t aliasCount = ucnv_countAliases(converter, &status);
        for (uint16_t a = 0; U_SUCCESS(status) && a < aliasCount; ++a) {
            char const* alias = ucnv_getAlias(converter, a, &status);
            if (U_FAILURE(status) || !alias)
                break;
            std::string opened = openedConverter(alias);
            if (!opened.empty())
                aliasesByConverter[opened].push_back(alias);
        }
    }

    KeySpace nameKeys, aliasKeys;
    std::map<std::string, bool> converterTaken;
    std::vector<EncodingRecord> out;
    for (int32_t i = 0; i < count; ++i) {
        char const* standard = standardName(ucnv_getAvailableName(i));
        if (!standard)
            continue;
        std::string opened = openedConverter(standard);
        if (opened.empty() || converterTaken[opened] || nameKeys.contains(standard))
            continue;
        converterTaken[opened] = true;
        nameKeys.insert(standard);

        EncodingRecord rec {standard, jvmCharsetFor(standard), {}};
        aliasKeys.insert(rec.name);
        for (auto const& alias : aliasesByConverter[opened]) {
            if (aliasKeys.insert(alias))
                rec.aliases.push_back(alias);
        }
        // The spelling the system uses inside locale names (de_DE.iso88591, ja_JP.eucjp).
        std::string systemSpelling = normalizedCharset(rec.name);
        if (openedConverter(systemSpelling.c_str()) == opened && aliasKeys.insert(systemSpelling))
            rec.aliases.push_back(systemSpelling);
        out.push_back(rec);
    }
    return out;
}

} // namespace lcdata_gen
