#ifndef QVI18N_TESTS_STARTUP_SUPPORT_HPP
#define QVI18N_TESTS_STARTUP_SUPPORT_HPP

// Start-up changes the whole process (environment, C locale, ICU defaults), so every test that uses
// this runs in a process of its own (ctest runs each case alone) with a private home.

#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/system_locale_linux.hpp>

#include "qvtest/scoped_temp_dir.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <langinfo.h>
#include <map>
#include <string>
#include <unistd.h>

namespace qvtest {

inline char const* const* locale_variables()
{
    static char const* const names[] = {"LC_ALL", "LC_CTYPE", "LC_COLLATE", "LC_TIME", "LC_NUMERIC",
        "LC_MONETARY", "LC_MESSAGES", "LANG", "LANGUAGE", "LC_PAPER", "LC_NAME", "LC_ADDRESS",
        "LC_TELEPHONE", "LC_MEASUREMENT", "LC_IDENTIFICATION", "QVLOCALE_L10N_CONTROL",
        "QVLOCALE_TERMINAL_ENCODING", "QVLOCALE_LCDATA_PATH", "QVLOCALE_LCDATA_FILENAME", nullptr};
    return names;
}

// A process with no locale settings and a home of its own; the test then sets what it needs.
class startup_process : public ::testing::Test {
protected:
    startup_process()
        : home_("qvi18n-startup")
    {
        for (char const* const* name = locale_variables(); *name != nullptr; ++name) {
            ::unsetenv(*name);
        }
        ::setenv("HOME", (home_ / "home").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (home_ / "config").c_str(), 1);
    }

    std::string list_dir() const
    {
        char exe[4096];
        ssize_t length = ::readlink("/proc/self/exe", exe, sizeof exe - 1);
        std::string program(exe, length > 0 ? static_cast<std::size_t>(length) : 0);
        return home_ / ("config/qvi18n/" + program.substr(program.rfind('/') + 1));
    }
    std::string list_file() const { return list_dir() + "/languages"; }
    std::string write_list(std::string const& content) const
    {
        return home_.write_file(list_file().substr(home_.path().size() + 1), content);
    }

    // The locale variables as they are now; unset ones are missing.
    static std::map<std::string, std::string> locale_env()
    {
        std::map<std::string, std::string> found;
        for (char const* const* name = locale_variables(); *name != nullptr; ++name) {
            if (char const* value = std::getenv(*name)) {
                found[*name] = value;
            }
        }
        return found;
    }

    static std::string c_codeset() { return ::nl_langinfo(CODESET); }
    static std::string c_locale(int category) { return std::setlocale(category, nullptr); }

    scoped_temp_dir home_;
};

} // namespace qvtest

#endif
