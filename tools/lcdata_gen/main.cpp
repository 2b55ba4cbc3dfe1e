// qvi18n_lcdata_gen: writes the locale database lcdata.xml from the system's list of supported
// locales and ICU's converter data.
//
//   qvi18n_lcdata_gen [--supported FILE] --output FILE
//
// Exits 1 with a message on stderr when a source is missing or the result would be inconsistent;
// the output file is only replaced when everything succeeded.
#include "model.hpp"

#include <unicode/uversion.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace {

char const defaultSupportedList[] = "/usr/share/i18n/SUPPORTED";

void usage()
{
    std::cerr << "usage: qvi18n_lcdata_gen [--supported FILE] --output FILE\n"
                 "  --supported FILE  the system's list of supported locales (default "
              << defaultSupportedList
              << ")\n"
                 "  --output FILE     where to write lcdata.xml\n";
}

// The reader's tables would silently keep the first of two equal keys; a generated file must
// not depend on that.
void checkConsistency(lcdata_gen::Database const& db)
{
    lcdata_gen::KeySpace localeKeys, encodingNames, encodingKeys;
    for (auto const& loc : db.locales) {
        if (!localeKeys.insert(loc.name))
            throw std::runtime_error("duplicate locale key " + loc.name);
        for (auto const& alias : loc.aliases) {
            if (!localeKeys.insert(alias))
                throw std::runtime_error("duplicate locale key " + alias);
        }
    }
    for (auto const& enc : db.encodings) {
        encodingNames.insert(enc.name);
        if (!encodingKeys.insert(enc.name))
            throw std::runtime_error("duplicate encoding key " + enc.name);
        for (auto const& alias : enc.aliases) {
            if (!encodingKeys.insert(alias))
                throw std::runtime_error("duplicate encoding key " + alias);
        }
    }
    for (auto const& loc : db.locales) {
        if (!encodingNames.contains(loc.encoding))
            throw std::runtime_error(
                "locale " + loc.name + " has encoding " + loc.encoding + ", which is not in the codeset");
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::string supported = defaultSupportedList;
    std::string output;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if ((arg == "--supported" || arg == "--output") && i + 1 < argc) {
            (arg == "--supported" ? supported : output) = argv[++i];
        } else {
            usage();
            return 2;
        }
    }
    if (output.empty()) {
        usage();
        return 2;
    }

    try {
        lcdata_gen::Database db;
        std::vector<lcdata_gen::SupportedEntry> systemList = lcdata_gen::readSupportedList(supported);
        db.encodings = lcdata_gen::buildEncodings();
        lcdata_gen::KeySpace encodingKeys;
        for (auto const& enc : db.encodings) {
            encodingKeys.insert(enc.name);
            for (auto const& alias : enc.aliases)
                encodingKeys.insert(alias);
        }
        db.locales = lcdata_gen::buildLocales(systemList, encodingKeys);
        checkConsistency(db);

        std::string temp = output + ".tmp";
        {
            std::ofstream out(temp, std::ios::binary | std::ios::trunc);
            if (!out)
                throw std::runtime_error("cannot write " + temp);
            lcdata_gen::writeDatabase(out, db, "the system's locale list and ICU " U_ICU_VERSION);
            out.close();
            if (!out)
                throw std::runtime_error("cannot write " + temp);
        }
        if (std::rename(temp.c_str(), output.c_str()) != 0) {
            std::remove(temp.c_str());
            throw std::runtime_error("cannot replace " + output);
        }

        std::size_t localeAliases = 0, encodingAliases = 0;
        for (auto const& loc : db.locales)
            localeAliases += loc.aliases.size();
        for (auto const& enc : db.encodings)
            encodingAliases += enc.aliases.size();
        std::cerr << "qvi18n_lcdata_gen: wrote " << output << ": " << db.locales.size() << " locales ("
                  << localeAliases << " aliases), " << db.encodings.size() << " encodings ("
                  << encodingAliases << " aliases)\n";
    } catch (std::exception const& e) {
        std::cerr << "qvi18n_lcdata_gen: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
