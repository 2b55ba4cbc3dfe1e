#ifndef QVI18N_FILESYSTEM_INSTALL_ROOT_HPP
#define QVI18N_FILESYSTEM_INSTALL_ROOT_HPP

// The walk of chop_off_path_name, apart from the volume it asks, so that both ways of comparing
// names can be exercised on any machine.

#include <qvi18n/filesystem/path.hpp>

#include <cstring>
#include <string>

#include <strings.h>

namespace fl {
namespace filesystem {
namespace detail {

// Walks up from path to the nearest "bin/<tag>" pair and returns what lies above it, or an
// empty text when there is none. A tag with something other than "bin" above it is passed over
// together with that element.
inline std::string find_install_root(const std::string& path, const char* tag, bool ignore_case)
{
    auto same = [ignore_case](const std::string& name, const char* wanted) {
        return (ignore_case ? ::strcasecmp(name.c_str(), wanted) : std::strcmp(name.c_str(), wanted)) == 0;
    };
    native_path walk(path);
    for (;;) {
        const std::string name = walk.filename();
        if (name.empty())
            return std::string();
        if (same(name, tag)) {
            walk.remove_filename();
            if (same(walk.filename(), "bin")) {
                walk.remove_filename();
                return walk.get_path_name();
            }
        }
        walk.remove_filename();
    }
}

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
