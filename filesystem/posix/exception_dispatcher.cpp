#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/detail/exceptions.hpp>

#include <cerrno>

namespace fl {
namespace filesystem {
namespace posix {

void exception_dispatcher(int error_number, const std::string& path, const std::string& /*second_path*/)
{
    using fl::i18n::MakeException;
    switch (error_number) {
    case ENOENT:
        throw MakeException(PathNotFound());
    case EACCES:
        throw MakeException(AccessDenied());
    case EEXIST:
        throw MakeException(FileExistsError());
    case ENOTDIR:
        throw MakeException(NotDirectoryError());
    case EISDIR:
        throw MakeException(FileIsDirectory());
    case EINVAL:
        throw MakeException(InvalidArgument());
    case ENAMETOOLONG:
        throw MakeException(FileNameTooLarge());
    case ENOTEMPTY:
        throw MakeException(DirectoryNotEmpty());
    default:
        break;
    }
    // The bytes came from the system and may not be valid UTF-8; the fixed stack substitutes.
    throw MakeException(SystemError(detail::from_filesystem(path), static_cast<unsigned int>(error_number)));
}

} // namespace posix
} // namespace filesystem
} // namespace fl
