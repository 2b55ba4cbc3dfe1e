// Writes the catalog maps of each resource root named on the command line. The build runs it
// over the library's own catalogs.

#include <qvi18n/i18n/catalog/catalog_map_writer.hpp>
#include <qvi18n/i18n/conversion/codecvt.hpp>

#include <cstdio>
#include <exception>
#include <string>

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s ROOT...\n", argv[0]);
        return 2;
    }
    int status = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string root = argv[i];
        try {
            // A file name in UTF-8, as the build gives it.
            fl::i18n::codecvt_string_to_ustring utf8("UTF-8", true);
            fl::i18n::write_catalog_maps(fl::filesystem::upath(utf8.convert(root.data(), root.size())));
        } catch (const std::exception& e) {
            std::fprintf(stderr, "%s: %s: %s\n", argv[0], root.c_str(), e.what());
            status = 1;
        }
    }
    return status;
}
