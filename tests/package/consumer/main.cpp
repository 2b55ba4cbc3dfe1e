// A program outside the project, built against the installed tree: it reads the installed locale
// database and catalogs, as the README shows.
#include <qvi18n/qvi18n.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp> // the locale context, until start-up fills it

#include <boost/thread/lock_guard.hpp>

#include <cstdio>
#include <cstring>
#include <string>

namespace fi = fl::i18n;

int main(int argc, char** argv)
{
    if (argc != 2 || std::strcmp(fi::platform_tag(), QVI18N_PLATFORM_TAG) != 0)
        return 1;
    std::string prefix = argv[1];
    {
        boost::unique_lock<boost::mutex> lock(fi::getLcMutex());
        fi::parseLcData(fi::get_qvlocale_context().getLcDataForUpdate(lock),
            fl::filesystem::native_path(prefix + "/bin/lcdata.xml"));
    }
    if (!fi::MessageCatalog::MessageCatalogInit(prefix))
        return 2;
    auto de = fi::QvLocale::createLocale("de_AT");
    fi::ustring text = fi::MessageCatalog::get_message(fi::MessageID("fl:i18n:QvLcInvLcName"), *de);
    fi::codecvt_ustring_to_string utf8("UTF-8", true);
    std::string bytes = utf8.convert(text.data(), text.size());
    bool there = fl::filesystem::exists(fl::filesystem::upath(fi::to_ustring(prefix + "/bin/lcdata.xml")));
    if (!there || bytes.empty())
        return 3;
    std::printf("consumer ok (%s): %s\n", fi::library_version(), bytes.c_str());
    return 0;
}
