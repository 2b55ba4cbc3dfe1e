// Exercises what the library offers and prints what it did: start-up with the locale database
// shipped beside the library, locale objects and their fall-backs, conversion to a few encodings, Unicode file
// names, and translated messages from the library's own catalogs.
#include <qvi18n/qvi18n.hpp>
#include <qvi18n/i18n/locale/startup/lcmgmt.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <langinfo.h>
#include <unistd.h>
#include <vector>

namespace fi = fl::i18n;
namespace fs = fl::filesystem;

namespace {

std::string utf8(fi::ustring const& text)
{
    fi::codecvt_ustring_to_string cvt("UTF-8", true);
    return cvt.convert(text.data(), text.size());
}

std::string hex(std::string const& bytes)
{
    std::string out;
    char buf[4];
    for (unsigned char c : bytes) {
        std::snprintf(buf, sizeof buf, "%02x", c);
        out += out.empty() ? "" : " ";
        out += buf;
    }
    return out;
}

// The installation root: the folder above bin/<tag>, where this program lives in the build tree.
std::string installation_root()
{
    std::vector<char> buf(4096);
    ssize_t n = ::readlink("/proc/self/exe", buf.data(), buf.size() - 1);
    std::string exe = n > 0 ? std::string(buf.data(), static_cast<std::size_t>(n)) : std::string(".");
    fs::native_path dir = fs::native_path(exe).parent_path(); // bin/<tag>
    return fs::native_path(dir.parent_path()).parent_path(); // the root
}

void show_locale(char const* name)
{
    boost::shared_ptr<fi::QvLocale const> loc = fi::QvLocale::createLocale(name);
    std::string fallbacks;
    for (fi::ustring const& f : fi::get_fallback_locales(*loc))
        fallbacks += (fallbacks.empty() ? "" : " -> ") + (f.empty() ? std::string("\"\"") : utf8(f));
    std::printf("  %-14s ctype=%s messages=%s encoding=%s fall-backs: %s\n", name,
        loc->shortName(fi::QvLocale::LcCtype).c_str(), loc->shortName(fi::QvLocale::LcMessages).c_str(),
        loc->encoding().c_str(), fallbacks.c_str());
}

// What start-up decided, and what the process's environment and C locale now say.
void show_decision()
{
    fi::lcmgmt::system_setting_context const found = fi::lcmgmt::get_original_user_locale_setting();
    std::printf("  found: locale \"%s\", first language \"%s\", application's language \"%s\"\n",
        found.user_locale.c_str(), found.preferred_language.c_str(), found.app_language.c_str());
    fi::QvLocale const& global = fi::QvLocale::global();
    std::printf("  global locale: ctype %s, time %s, numeric %s, messages %s; encoding %s, terminal %s\n",
        global.shortName(fi::QvLocale::LcCtype).c_str(), global.shortName(fi::QvLocale::LcTime).c_str(),
        global.shortName(fi::QvLocale::LcNumeric).c_str(), global.shortName(fi::QvLocale::LcMessages).c_str(),
        global.encoding().c_str(),
        boost::get<std::string>(global.getLcOptData(fi::QvLcOptDataCtx::LcTermEncoding)).c_str());
    std::string env;
    for (char const* name : {"LANG", "LC_CTYPE", "LC_NUMERIC", "LC_MESSAGES", "LC_ALL"}) {
        if (char const* value = std::getenv(name))
            env += std::string(env.empty() ? "" : " ") + name + "=" + value;
    }
    std::printf("  environment now: %s; C library codeset %s; localised messages %s\n", env.c_str(),
        nl_langinfo(CODESET), fi::get_l10n_resource_status() ? "on" : "off");
}

} // namespace

int main()
{
    std::printf("libqvi18n %s for %s\n", fi::library_version(), fi::platform_tag());
    std::string root = installation_root();

    // 1. Start-up: the database beside the library, the user's settings, the global locale.
    fi::initialize();
    std::printf("start-up: status %d: %s\n", fi::QvLcUtil::getLcStatus(), fi::QvLcUtil::getInitStatusMsg().c_str());
    if (!fi::QvLcUtil::getInitWarningMsg().empty())
        std::printf("  warning: %s\n", fi::QvLcUtil::getInitWarningMsg().c_str());
    show_decision();
    std::string lcdata = root + "/bin/lcdata.xml";

    // 2. Locale objects.
    std::printf("locales:\n");
    for (char const* name : {"de_AT", "fr_CA.utf8", "ja_JP", "sr_RS@latin", "C"})
        show_locale(name);
    try {
        fi::QvLocale::createLocale("xx_NOWHERE");
    } catch (fi::QvLcMgmtExceptionBase const& e) {
        std::printf("  xx_NOWHERE refused: %s\n", e.what());
    }

    // 3. Conversion of one text to several encodings and back.
    fi::ustring text = u"Gr\u00fc\u00dfe, \u65e5\u672c\u8a9e \u20ac";
    std::printf("conversion of \"%s\" (%zu UTF-16 units):\n", utf8(text).c_str(), text.size());
    for (char const* encoding : {"UTF-8", "Shift_JIS", "EUC-JP", "windows-1252", "US-ASCII"}) {
        fi::codecvt_ustring_to_string out(encoding, true);
        fi::codecvt_string_to_ustring in(encoding, true);
        std::string bytes = out.convert(text.data(), text.size());
        fi::ustring back = in.convert(bytes.data(), bytes.size());
        std::printf("  %-12s %2zu bytes, round trip %s: %s\n", encoding, bytes.size(),
            back == text ? "exact" : "lossy", hex(bytes).c_str());
    }
    try {
        fi::codecvt_ustring_to_string strict("US-ASCII", false);
        strict.convert(text.data(), text.size());
    } catch (fi::CvtExceptionBase const& e) {
        std::printf("  strict US-ASCII refused it: %s\n", e.what());
    }

    // 4. Unicode file names.
    fs::upath database(fi::to_ustring(lcdata));
    std::printf("file system:\n  %s exists: %s, size %llu bytes\n", utf8(database.filename()).c_str(),
        fs::exists(database) ? "yes" : "no", static_cast<unsigned long long>(fs::status(database).size));
    fs::upath messy(u"/tmp//caf\u00e9/./r\u00e9sum\u00e9.txt/");
    std::printf(
        "  \"/tmp//caf\u00e9/./r\u00e9sum\u00e9.txt/\" is kept as \"%s\", parent \"%s\", stem \"%s\"\n",
        utf8(messy.get_path_name()).c_str(), utf8(messy.parent_path()).c_str(), utf8(messy.stem()).c_str());
    fs::upath missing(u"/no/such/d\u00e9j\u00e0-vu");
    std::printf("  a missing file: exists %s, status type %s\n", fs::exists(missing) ? "yes" : "no",
        fs::status(missing).type == fs::file_status::file_not_found ? "file_not_found" : "?");
    try {
        fs::canonical(missing);
    } catch (fs::FsysExceptionBase const& e) {
        std::printf("  canonical form of it: %s (failure id %d)\n", e.what(), static_cast<int>(e.get_id()));
    }

    // 5. Translated messages from the library's own catalogs under <root>/resources.
    if (!fi::MessageCatalog::MessageCatalogInit(root)) {
        std::printf("no message catalogs under %s\n", root.c_str());
        return 1;
    }
    std::printf("messages (catalogs under %s/resources):\n", root.c_str());
    resource_core::BaseMsgID system_error("fl:filesystem", "SystemError");
    system_error.addHole(fi::to_ustring("/srv/data")).addHole(13LL);
    for (char const* name : {"en_US", "de_AT", "fr_FR", "ja_JP", "sr_RS@latin"}) {
        boost::shared_ptr<fi::QvLocale const> loc = fi::QvLocale::createLocale(name);
        std::printf("  %-12s %s | %s\n", name,
            utf8(fi::MessageCatalog::get_message(fi::MessageID("fl:i18n:QvLcInvLcName"), *loc)).c_str(),
            utf8(fi::MessageCatalog::get_message(system_error, *loc)).c_str());
    }
    try {
        fi::MessageCatalog::get_message(fi::MessageID("fl:i18n:NoSuchMessage"), fi::QvLocale::classic());
    } catch (std::exception const& e) {
        std::printf("  an unknown key: %s\n", e.what());
    }
    return 0;
}
