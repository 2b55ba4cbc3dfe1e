#include <qvi18n/filesystem/posix/path_algorithms.hpp>

#include "filesystem/posix/user_database.hpp"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace fl {
namespace filesystem {
namespace posix {

namespace {

std::string home_of_user(const std::string& name)
{
    return detail::home_from_user_database(
        [&name](struct passwd* entry, char* buffer, std::size_t size, struct passwd** result) {
            return getpwnam_r(name.c_str(), entry, buffer, size, result);
        });
}

std::string home_of_current_user()
{
    const char* env = std::getenv("HOME");
    if (env && *env)
        return env;
    const uid_t user = getuid();
    return detail::home_from_user_database(
        [user](struct passwd* entry, char* buffer, std::size_t size, struct passwd** result) {
            return getpwuid_r(user, entry, buffer, size, result);
        });
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
