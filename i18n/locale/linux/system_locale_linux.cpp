#include <qvi18n/i18n/locale/system_locale_linux.hpp>

#include <qvi18n/i18n/locale/ascii_text.hpp>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fl {
namespace i18n {
namespace lcmgmt {
namespace linux_os {

char const* const DEFAULT_ENCODING = "UTF-8";

namespace {

// The longest name the application's list keeps; longer lines are not locale names.
constexpr std::size_t max_list_name = 64;
// A list file beyond this is not read further: a language list is a few lines.
constexpr std::size_t max_list_file = 64 * 1024;

std::string first_set(std::initializer_list<char const*> names)
{
    for (char const* name : names) {
        char const* value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return std::string();
}

bool is_utf8_name(std::string const& codeset)
{
    std::string letters;
    for (char c : fl::i18n::detail::ascii_fold(codeset)) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            letters += c;
        }
    }
    return letters == "utf8";
}

// "de_DE.UTF-8@euro" -> "de_DE@euro". With `keep_c_utf8`, C or POSIX in UTF-8 stays a locale of its
// own, "C.UTF-8", as the C library treats it.
std::string without_codeset(std::string const& name, bool keep_c_utf8)
{
    std::string::size_type at = name.find('@');
    std::string base = name.substr(0, at);
    std::string modifier = at == std::string::npos ? std::string() : name.substr(at);
    std::string::size_type dot = base.find('.');
    std::string codeset;
    if (dot != std::string::npos) {
        codeset = base.substr(dot + 1);
        base.erase(dot);
    }
    if (keep_c_utf8 && (base == "C" || base == "POSIX") && is_utf8_name(codeset)) {
        base = "C.UTF-8";
    }
    return base + modifier;
}

bool is_c_locale(std::string const& name)
{
    return name == "C" || name == "POSIX" || name == "C.UTF-8";
}

bool is_list_name(std::string const& line)
{
    if (line.empty() || line.size() > max_list_name) {
        return false;
    }
    for (char c : line) {
        if (c < 0x20 || c > 0x7E) {
            return false;
        }
    }
    return true;
}

std::string program_name()
{
    char buffer[4096];
    ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (length <= 0) {
        return std::string();
    }
    std::string path(buffer, static_cast<std::size_t>(length));
    // The link of a replaced executable ends in " (deleted)"; the program is still the same.
    static char const deleted[] = " (deleted)";
    if (path.size() > sizeof deleted - 1
        && path.compare(path.size() - (sizeof deleted - 1), std::string::npos, deleted) == 0) {
        path.erase(path.size() - (sizeof deleted - 1));
    }
    std::string::size_type slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string config_home()
{
    char const* xdg = std::getenv("XDG_CONFIG_HOME");
    // A relative XDG_CONFIG_HOME is invalid and ignored, as if unset.
    if (xdg != nullptr && xdg[0] == '/') {
        return xdg;
    }
    char const* home = std::getenv("HOME");
    if (home != nullptr && *home != '\0') {
        return std::string(home) + "/.config";
    }
    return std::string();
}

// Makes `dir` and its missing parents with mode 0700; existing folders are left as they are.
bool make_private_dirs(std::string const& dir)
{
    struct stat st;
    if (::stat(dir.c_str(), &st) == 0) {
        return S_ISDIR(st.st_mode);
    }
    std::string::size_type slash = dir.rfind('/');
    if (slash != std::string::npos && slash > 0 && !make_private_dirs(dir.substr(0, slash))) {
        return false;
    }
    return ::mkdir(dir.c_str(), 0700) == 0 || errno == EEXIST;
}

bool write_all(int fd, std::string const& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

bool write_list_file(std::string const& dir, std::string const& text)
{
    std::string temp = dir + "/.languages.XXXXXX";
    int fd = ::mkostemp(&temp[0], O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    bool ok = write_all(fd, text) && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (ok) {
        ok = ::rename(temp.c_str(), (dir + "/languages").c_str()) == 0;
    }
    if (!ok) {
        ::unlink(temp.c_str());
        return false;
    }
    // The rename itself is made durable with the folder.
    int dirfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirfd >= 0) {
        ::fsync(dirfd);
        ::close(dirfd);
    }
    return true;
}

struct ExtraCategory {
    char const* name;
    int mask;
};

ExtraCategory const extra_categories[] = {
    {"LC_PAPER", LC_PAPER_MASK},
    {"LC_NAME", LC_NAME_MASK},
    {"LC_ADDRESS", LC_ADDRESS_MASK},
    {"LC_TELEPHONE", LC_TELEPHONE_MASK},
    {"LC_MEASUREMENT", LC_MEASUREMENT_MASK},
    {"LC_IDENTIFICATION", LC_IDENTIFICATION_MASK},
};

} // namespace

std::string get_user_locale()
{
    std::string found = first_set({"LC_ALL", "LC_CTYPE", "LANG"});
    // A process without locale settings runs in the C locale; that is no failure.
    if (found.empty()) {
        return "C";
    }
    return without_codeset(found, true);
}

std::string get_user_locale(LcData const& data)
{
    std::string found = get_user_locale();
    // A database may spell the C locale only by its canonical name, or lack C.UTF-8: the C locale is
    // still no failure.
    if (is_c_locale(found) && data.getLcName(found).empty()) {
        return LcData::get_posix_locale_short();
    }
    return found;
}

std::string get_preferred_language(LcData const& data)
{
    std::string messages = first_set({"LC_ALL", "LC_MESSAGES", "LANG"});
    // The C library ignores LANGUAGE in the C locale; so do we.
    if (messages.empty() || messages == "C" || messages == "POSIX") {
        return LcData::get_default_locale_short();
    }
    char const* languages = std::getenv("LANGUAGE");
    if (languages != nullptr) {
        std::string const list(languages);
        std::string::size_type start = 0;
        while (start <= list.size()) {
            std::string::size_type colon = list.find(':', start);
            if (colon == std::string::npos) {
                colon = list.size();
            }
            // Languages the database has nothing for are passed over, as gettext passes over
            // languages without a catalog.
            std::string entry = without_codeset(list.substr(start, colon - start), false);
            if (!entry.empty() && !data.getLcName(entry).empty()) {
                return entry;
            }
            start = colon + 1;
        }
    }
    std::string own = without_codeset(messages, false);
    // A modifier the database does not know is dropped rather than the whole language.
    std::string::size_type at = own.find('@');
    if (at != std::string::npos && data.getLcName(own).empty() && !data.getLcName(own.substr(0, at)).empty()) {
        own.erase(at);
    }
    // The C locale in another codeset speaks English, whether or not the database lists "C".
    if (is_c_locale(own) && data.getLcName(own).empty()) {
        return LcData::get_default_locale_short();
    }
    return own;
}

std::string get_app_language_file()
{
    std::string base = config_home();
    if (base.empty()) {
        return std::string();
    }
    std::string program = program_name();
    if (program.empty()) {
        return std::string();
    }
    return base + "/qvi18n/" + program + "/languages";
}

std::vector<std::string> read_app_languages()
{
    std::vector<std::string> names;
    std::string path = get_app_language_file();
    if (path.empty()) {
        return names;
    }
    std::FILE* file = std::fopen(path.c_str(), "re");
    if (file == nullptr) {
        return names;
    }
    std::string line;
    bool overlong = false;
    std::size_t total = 0;
    for (int c; (c = std::fgetc(file)) != EOF && total < max_list_file; ++total) {
        if (c == '\n') {
            if (!overlong && is_list_name(line)) {
                names.push_back(line);
            }
            line.clear();
            overlong = false;
        } else if (line.size() <= max_list_name) {
            line += static_cast<char>(c);
        } else {
            overlong = true;
        }
    }
    if (!overlong && is_list_name(line)) {
        names.push_back(line);
    }
    std::fclose(file);
    return names;
}

std::string get_app_language()
{
    std::vector<std::string> names = read_app_languages();
    return names.empty() ? std::string() : names.front();
}

bool write_app_languages(std::vector<std::string> const& names)
{
    try {
        std::string path = get_app_language_file();
        if (path.empty()) {
            return false;
        }
        std::string dir = path.substr(0, path.rfind('/'));
        if (!make_private_dirs(dir)) {
            return false;
        }
        std::string text;
        for (std::string const& name : names) {
            // Only what the reader would take back is written.
            if (is_list_name(name)) {
                text += name;
                text += '\n';
            }
        }
        return write_list_file(dir, text);
    } catch (...) {
        return false;
    }
}

void change_app_lang_setting(osx::locale_context const& context)
{
    std::vector<std::string> names = osx::wanted_app_languages(context);
    if (!names.empty()) {
        write_app_languages(names);
    }
}

bool can_load_locale(int category_mask, std::string const& name)
{
    locale_t loaded = ::newlocale(category_mask, name.c_str(), static_cast<locale_t>(0));
    if (loaded == static_cast<locale_t>(0)) {
        return false;
    }
    ::freelocale(loaded);
    return true;
}

std::string loadable_xpg_name(std::string const& name, std::string const& encoding)
{
    if (name.empty() || can_load_locale(LC_ALL_MASK, name)) {
        return name;
    }
    if (is_utf8_name(encoding) && can_load_locale(LC_ALL_MASK, "C.UTF-8")) {
        return "C.UTF-8";
    }
    return "C";
}

void unset_unloadable_extra_categories()
{
    for (ExtraCategory const& extra : extra_categories) {
        char const* value = std::getenv(extra.name);
        if (value != nullptr && *value != '\0' && !can_load_locale(extra.mask, value)) {
            ::unsetenv(extra.name);
        }
    }
}

std::vector<std::pair<std::string, std::string>> get_extra_category_env()
{
    std::vector<std::pair<std::string, std::string>> found;
    for (ExtraCategory const& extra : extra_categories) {
        char const* value = std::getenv(extra.name);
        if (value != nullptr && *value != '\0') {
            found.emplace_back(extra.name, value);
        }
    }
    return found;
}

} // namespace linux_os
} // namespace lcmgmt
} // namespace i18n
} // namespace fl
