#include <qvi18n/filesystem/install_path.hpp>

#include <qvi18n/filesystem/detail/converters.hpp>
#include <qvi18n/filesystem/posix/install_path.hpp>

#include "filesystem/install_root.hpp"
#include "filesystem/volume.hpp"

#include <boost/thread/once.hpp>

namespace fl {
namespace filesystem {

using fl::i18n::ustring;

namespace {

// Its address lies in this library's own file, whoever calls get_install_path.
void install_path_anchor() { }

ustring* install_path_text = nullptr;
boost::once_flag install_path_once = BOOST_ONCE_INIT;

void compute_install_path()
{
    const std::string base = get_base_path(reinterpret_cast<void*>(&install_path_anchor));
    // Made on the heap and never freed: callers may ask while static objects are torn down.
    install_path_text = new ustring(detail::from_filesystem(base));
}

} // namespace

ustring get_install_path()
{
    boost::call_once(install_path_once, &compute_install_path);
    return *install_path_text;
}

std::string get_base_path(void* address)
{
    return posix::get_base_path(address);
}

template <> std::string chop_off_path_name<char>(const std::string& path)
{
    const bool ignore_case = detail::volume_ignores_case(detail::query_volume_name_rule(path));
    return detail::find_install_root(path, QVI18N_PLATFORM_TAG, ignore_case);
}

} // namespace filesystem
} // namespace fl
