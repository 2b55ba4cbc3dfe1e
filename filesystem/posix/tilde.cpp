#include <qvi18n/filesystem/posix/path_algorithms.hpp>

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace fl {
namespace filesystem {
namespace posix {

namespace {

const std::size_t user_buffer_size = 1024;

std::string home_of_user(const std::string& name)
{
    char buffer[user_buffer_size];
    struct passwd entry;
    struct passwd* result = nullptr;
    if (getpwnam_r(name.c_str(), &entry, buffer, sizeof buffer, &result) != 0 || !result || !result->pw_dir)
        return std::string();
    return result->pw_dir;
}

std::string home_of_current_user()
{
    const char* env = std::getenv("HOME");
    if (env && *env)
        return env;
    char buffer[user_buffer_size];
    struct passwd entry;
    struct passwd* result = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &result) != 0)
        return std::string();
    // A zero return with no entry means "no such user"; no home then.
    if (!result || !result->pw_dir)
        return std::string();
    return result->pw_dir;
}

} // namespace

std::string replace_home_directory(const std::string& path)
{
    if (path.empty() || path[0] != '~')
        return path;

    if (path.size() != 1 && path[1] != '/') {
        // "~name" or "~name/rest". An unknown user is not a failure: the text stays as written
        // and is then an ordinary relative name.
        const std::string::size_type slash = path.find('/');
        const std::string name = path.substr(1, slash == std::string::npos ? std::string::npos : slash - 1);
        const std::string home = home_of_user(name);
        if (home.empty())
            return path;
        if (slash == std::string::npos)
            return home;
        return home + path.substr(slash);
    }

    // "~" or "~/rest". With no home at all the result is empty, so that the name cannot be taken
    // for a relative one under the working directory.
    const std::string home = home_of_current_user();
    if (path.size() < 3 || home.empty())
        return home;
    return home + path.substr(1);
}

} // namespace posix
} // namespace filesystem
} // namespace fl
