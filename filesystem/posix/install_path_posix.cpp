#include <qvi18n/filesystem/posix/install_path.hpp>
#include <qvi18n/filesystem/posix/operations.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/install_path.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/filesystem/posix/path_algorithms.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <cstring>

#include <dlfcn.h>

namespace fl {
namespace filesystem {
namespace posix {

namespace {

// The loader's name for the file of the module holding address, or null.
const char* module_file_name(void* address)
{
    Dl_info info;
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr)
        return nullptr;
    return info.dli_fname;
}

} // namespace

std::string get_base_path(void* address)
{
    const char* file = module_file_name(address);
    if (file == nullptr)
        return std::string();
    std::string resolved;
    try {
        resolved = canonical(std::string(file));
    } catch (...) {
        // A module whose file has gone or cannot be resolved simply has no installation root.
        return std::string();
    }
    return chop_off_path_name(make_native_form(resolved, true));
}

} // namespace posix
} // namespace filesystem

namespace i18n {
namespace detail {

ustring get_module_path_from_address(void* address)
{
    if (address == nullptr)
        return ustring();
    const char* file = fl::filesystem::posix::module_file_name(address);
    if (file == nullptr)
        return ustring();
    return lcctype::convert_to_string_utf<char16_t, char>(
        file, std::strlen(file), &fl::filesystem::detail::conversion_from_utf8);
}

} // namespace detail
} // namespace i18n
} // namespace fl
