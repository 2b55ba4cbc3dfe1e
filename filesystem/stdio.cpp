#include <qvi18n/filesystem/stdio.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <cerrno>

namespace fl {
namespace filesystem {

using fl::i18n::converter;
using fl::i18n::ustring;

namespace {

// The checks common to every member; false with errno set when the call must not go on.
bool acceptable(const ustring& p, const std::string& mode)
{
    if (p.empty() || p[0] == u'\0' || mode.empty()) {
        errno = EINVAL;
        return false;
    }
    return true;
}

// A text name ending in a separator can only mean a directory, which stdio never opens.
bool acceptable_text(const ustring& p, const std::string& mode)
{
    if (!acceptable(p, mode))
        return false;
    if (p[p.size() - 1] == u'/') {
        errno = EISDIR;
        return false;
    }
    return true;
}

// Makes the bytes and calls open(bytes) under the errno contract: the mapped failures of the
// file layer become errno, anything else leaves as it came.
template <class MakeBytes, class Open> std::FILE* open_guarded(MakeBytes make_bytes, Open open)
{
    try {
        std::string const bytes = make_bytes();
        return open(bytes.c_str());
    } catch (...) {
        convert_filesystem_exception_to_errno();
        return nullptr;
    }
}

} // namespace

std::FILE* fopen(const ustring& p, const std::string& mode)
{
    errno = 0;
    if (!acceptable_text(p, mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form_with_cleanup(p); },
        [&](char const* name) { return std::fopen(name, mode.c_str()); });
}

std::FILE* fopen(const ustring& p, const std::string& mode, const converter<char, char16_t>& c)
{
    errno = 0;
    if (!acceptable_text(p, mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form_with_cleanup(p, c); },
        [&](char const* name) { return std::fopen(name, mode.c_str()); });
}

std::FILE* fopen(const upath& p, const std::string& mode)
{
    errno = 0;
    if (!acceptable(p.get_path_name(), mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form(p.get_path_name()); },
        [&](char const* name) { return std::fopen(name, mode.c_str()); });
}

std::FILE* fopen(const upath& p, const std::string& mode, const converter<char, char16_t>& c)
{
    errno = 0;
    if (!acceptable(p.get_path_name(), mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form(p.get_path_name(), c); },
        [&](char const* name) { return std::fopen(name, mode.c_str()); });
}

std::FILE* freopen(const ustring& p, const std::string& mode, std::FILE* f)
{
    if (!f) {
        errno = EINVAL;
        return nullptr;
    }
    errno = 0;
    if (!acceptable_text(p, mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form_with_cleanup(p); },
        [&](char const* name) { return std::freopen(name, mode.c_str(), f); });
}

std::FILE* freopen(
    const ustring& p, const std::string& mode, std::FILE* f, const converter<char, char16_t>& c)
{
    if (!f) {
        errno = EINVAL;
        return nullptr;
    }
    errno = 0;
    if (!acceptable_text(p, mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form_with_cleanup(p, c); },
        [&](char const* name) { return std::freopen(name, mode.c_str(), f); });
}

std::FILE* freopen(const upath& p, const std::string& mode, std::FILE* f)
{
    if (!f) {
        errno = EINVAL;
        return nullptr;
    }
    errno = 0;
    if (!acceptable(p.get_path_name(), mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form(p.get_path_name()); },
        [&](char const* name) { return std::freopen(name, mode.c_str(), f); });
}

std::FILE* freopen(const upath& p, const std::string& mode, std::FILE* f, const converter<char, char16_t>& c)
{
    if (!f) {
        errno = EINVAL;
        return nullptr;
    }
    errno = 0;
    if (!acceptable(p.get_path_name(), mode))
        return nullptr;
    return open_guarded([&] { return detail::make_native_access_form(p.get_path_name(), c); },
        [&](char const* name) { return std::freopen(name, mode.c_str(), f); });
}

} // namespace filesystem
} // namespace fl
