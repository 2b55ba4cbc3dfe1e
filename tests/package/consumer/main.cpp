// A program outside the project, built against the installed tree with the umbrella header alone:
// it starts the library, which finds the installed locale database, and reads an installed catalog.
#include <qvi18n/qvi18n.hpp>

#include <cstdio>
#include <cstring>
#include <string>

namespace fi = fl::i18n;

int main(int argc, char** argv)
{
    if (argc != 2 || std::strcmp(fi::platform_tag(), QVI18N_PLATFORM_TAG) != 0)
        return 1;
    const std::string prefix = argv[1];
    fi::initialize();
    const std::string database = fi::get_database_path();
    const std::string expected = "/bin/lcdata.xml";
    if (fi::QvLcUtil::getLcStatus() != 0 || database.size() < expected.size()
        || database.compare(database.size() - expected.size(), expected.size(), expected) != 0)
        return 2;
    if (!fi::MessageCatalog::MessageCatalogInit(prefix))
        return 3;
    auto de = fi::QvLocale::createLocale("de_AT");
    fi::ustring text = fi::MessageCatalog::get_message(fi::MessageID("fl:i18n:QvLcInvLcName"), *de);
    fi::codecvt_ustring_to_string utf8("UTF-8", true);
    std::string bytes = utf8.convert(text.data(), text.size());
    if (bytes.empty() || !fl::filesystem::exists(fl::filesystem::upath(fi::to_ustring(database))))
        return 4;
    std::printf("consumer ok (%s): %s\n", fi::library_version(), bytes.c_str());
    return 0;
}
