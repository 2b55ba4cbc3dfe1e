#ifndef QVI18N_FILESYSTEM_DETAIL_EXCEPTIONS_HPP
#define QVI18N_FILESYSTEM_DETAIL_EXCEPTIONS_HPP

// How the file layer raises its failures from system error numbers.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <string>

namespace fl {
namespace filesystem {

namespace posix {

// Throws the exception for error_number. path is UTF-8 and is kept only by SystemError;
// second_path is accepted from two-path operations and not used.
[[noreturn]] QVI18N_API void exception_dispatcher(
    int error_number, const std::string& path, const std::string& second_path = std::string());

} // namespace posix

namespace detail {

[[noreturn]] QVI18N_API void throw_invalid_operation_exception();

} // namespace detail

} // namespace filesystem
} // namespace fl

#endif
