// Shows what start-up decides under a few locale settings. Start-up runs once per process, so the
// program runs itself again for each setting, with that setting as the only locale variables and a
// throw-away configuration folder (the application's language list is written there).
#include <qvi18n/qvi18n.hpp>

#include <cstdio>
#include <cstdlib>
#include <langinfo.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace fi = fl::i18n;

namespace {

int show_start_up()
{
    fi::initialize();
    fi::QvLocale const& global = fi::QvLocale::global();
    std::printf("  status %d%s%s\n", fi::QvLcUtil::getLcStatus(), fi::QvLcUtil::getInitWarningMsg().empty() ? "" : ": ",
        fi::QvLcUtil::getInitWarningMsg().c_str());
    std::printf("  global: ctype %s%s, messages %s, encoding %s, terminal %s\n",
        global.shortName(fi::QvLocale::LcCtype).c_str(), global.modifier(fi::QvLocale::LcCtype).c_str(),
        global.shortName(fi::QvLocale::LcMessages).c_str(), global.encoding().c_str(),
        boost::get<std::string>(global.getLcOptData(fi::QvLcOptDataCtx::LcTermEncoding)).c_str());
    std::string env;
    for (char const* name : {"LANG", "LC_CTYPE", "LC_NUMERIC", "LC_MESSAGES"}) {
        if (char const* value = std::getenv(name))
            env += std::string(" ") + name + "=" + value;
    }
    std::printf("  afterwards:%s, C library codeset %s\n", env.c_str(), nl_langinfo(CODESET));
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && std::string(argv[1]) == "--show")
        return show_start_up();

    char config[] = "/tmp/qvi18n-example-XXXXXX";
    if (::mkdtemp(config) == nullptr)
        return 1;
    std::vector<std::vector<std::pair<char const*, char const*>>> const settings = {
        {},
        {{"LANG", "C.UTF-8"}},
        {{"LANG", "de_DE.UTF-8"}},
        {{"LANG", "fr_CA.UTF-8"}, {"LANGUAGE", "ja:de"}},
        {{"LANG", "C"}, {"LANGUAGE", "de"}},
        {{"LC_ALL", "ja_JP.eucJP"}, {"LANG", "de_DE.UTF-8"}},
        {{"LANG", "xx_NOWHERE.UTF-8"}},
    };
    for (auto const& setting : settings) {
        std::string shown;
        for (auto const& var : setting)
            shown += std::string(shown.empty() ? "" : " ") + var.first + "=" + var.second;
        std::printf("%s\n", shown.empty() ? "(no locale variables)" : shown.c_str());
        std::fflush(stdout);
        pid_t child = ::fork();
        if (child == 0) {
            for (char const* name : {"LC_ALL", "LC_CTYPE", "LC_COLLATE", "LC_TIME", "LC_NUMERIC", "LC_MONETARY",
                     "LC_MESSAGES", "LANG", "LANGUAGE"})
                ::unsetenv(name);
            for (auto const& var : setting)
                ::setenv(var.first, var.second, 1);
            ::setenv("XDG_CONFIG_HOME", config, 1);
            ::execl("/proc/self/exe", argv[0], "--show", static_cast<char*>(nullptr));
            ::_exit(127);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
    }
    std::string cleanup = std::string("rm -rf '") + config + "'";
    return std::system(cleanup.c_str()) == 0 ? 0 : 1;
}
