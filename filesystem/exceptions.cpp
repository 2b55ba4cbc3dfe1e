#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/detail/exceptions.hpp>

#include <cerrno>
#include <new>

namespace fl {
namespace filesystem {

FsysExceptionBase::FsysExceptionBase(
    const char* message, fsys_excp_id id, const fl::i18n::ustring& path, unsigned int error_number)
    : message_(message)
    , id_(id)
    , path_(path)
    , error_number_(error_number)
{ }

FsysExceptionBase::~FsysExceptionBase() { }

const char* FsysExceptionBase::what() const noexcept
{
    return message_.c_str();
}

#define QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(Name, text, id)                                                    \
    Name::Name()                                                                                             \
        : FsysExceptionBase(text, id, fl::i18n::ustring(), 0)                                                \
    { }                                                                                                      \
    Name::Name(const Name& other)                                                                            \
        : FsysExceptionBase(other)                                                                           \
    { }                                                                                                      \
    Name::~Name() { }

QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(InvalidArgument, "fl:filesystem:InvalidArgument", fsys_invalid_argument)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(InvalidOperation, "fl:filesystem:InvalidOperation", fsys_invalid_operation)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(
    FileNameTooLarge, "fl:filesystem:FileNameTooLarge", fsys_file_name_too_large)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(
    CvtInvalidCharacter, "fl:filesystem:CvtInvalidCharacter", fsys_cvt_invalid_character)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(AccessDenied, "fl:filesystem:AccessDenied", fsys_access_denied)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(PathNotFound, "fl:filesystem:PathNotFound", fsys_path_not_found)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(NotDirectoryError, "fl:filesystem:NotDirectoryError", fsys_not_directory)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(
    DirectoryNotEmpty, "fl:filesystem:DirectoryNotEmpty", fsys_directory_not_empty)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(FileIsDirectory, "fl:filesystem:FileIsDirectory", fsys_file_is_directory)
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(FileExistsError, "fl:filesystem:FileExistsError", fsys_file_exists)
// Shares the conversion failure's text on purpose; callers that must tell them apart use the id.
QVI18N_FSYS_SIMPLE_EXCEPTION_BODY(
    PathNameComparisonFailure, "fl:filesystem:FileNameConversionFailure", fsys_path_name_comparison_failure)

#undef QVI18N_FSYS_SIMPLE_EXCEPTION_BODY

FileNameConversionFailure::FileNameConversionFailure(int cvt_code)
    : FsysExceptionBase(
        "fl:filesystem:FileNameConversionFailure", fsys_file_name_conversion_failure, fl::i18n::ustring(), 0)
    , cvt_code_(cvt_code)
{ }

FileNameConversionFailure::FileNameConversionFailure(const FileNameConversionFailure& other)
    : FsysExceptionBase(other)
    , cvt_code_(other.cvt_code_)
{ }

FileNameConversionFailure::~FileNameConversionFailure() { }

SystemError::SystemError(const fl::i18n::ustring& path, unsigned int error_number)
    : FsysExceptionBase("fl:filesystem:SystemError", fsys_system_error, path, error_number)
{ }

SystemError::SystemError(const SystemError& other)
    : FsysExceptionBase(other)
{ }

SystemError::~SystemError() { }

void convert_filesystem_exception_to_errno()
{
    // Conversion failures read as a missing file, and a SystemError's own errno is deliberately
    // not passed on: the caller learns only that input or output failed.
    try {
        throw;
    } catch (const FileNameTooLarge&) {
        errno = ENAMETOOLONG;
    } catch (const CvtInvalidCharacter&) {
        errno = ENOENT;
    } catch (const FileNameConversionFailure&) {
        errno = ENOENT;
    } catch (const InvalidArgument&) {
        errno = EINVAL;
    } catch (const AccessDenied&) {
        errno = EACCES;
    } catch (const PathNotFound&) {
        errno = ENOENT;
    } catch (const NotDirectoryError&) {
        errno = ENOTDIR;
    } catch (const DirectoryNotEmpty&) {
        errno = ENOTEMPTY;
    } catch (const FileExistsError&) {
        errno = EEXIST;
    } catch (const SystemError&) {
        errno = EIO;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
    }
}

namespace detail {

void throw_invalid_operation_exception()
{
    throw fl::i18n::MakeException(InvalidOperation());
}

} // namespace detail

} // namespace filesystem
} // namespace fl
