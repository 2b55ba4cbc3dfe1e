#ifndef QVI18N_FILESYSTEM_EXCEPTIONS_HPP
#define QVI18N_FILESYSTEM_EXCEPTIONS_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>
#include <type_traits>
#include <utility>

namespace fl {
namespace i18n {

// Wraps an exception so that boost::current_exception() can clone it and carry it to another
// thread. The result derives from T, so it is caught as T and as any base of T.
template <class T>
inline auto MakeException(T&& e)
    -> decltype(boost::enable_current_exception(std::declval<typename std::decay<T>::type const&>()))
{
    return boost::enable_current_exception(static_cast<typename std::decay<T>::type const&>(e));
}

} // namespace i18n

namespace filesystem {

enum fsys_excp_id {
    fsys_invalid_argument = 1,
    fsys_invalid_operation = 2,
    fsys_file_name_too_large = 3,
    fsys_file_name_conversion_failure = 4,
    fsys_cvt_invalid_character = 5,
    fsys_access_denied = 6,
    fsys_path_not_found = 7,
    fsys_not_directory = 8,
    fsys_directory_not_empty = 9,
    fsys_file_is_directory = 10,
    fsys_file_exists = 11,
    fsys_path_name_comparison_failure = 12,
    fsys_system_error = 13
};

// Root of every file-system failure. what() is the failure's identifier, never a sentence:
// callers that talk to people decide on the wording from get_id() or the class.
class QVI18N_API FsysExceptionBase : public std::exception {
public:
    FsysExceptionBase(
        const char* message, fsys_excp_id id, const fl::i18n::ustring& path, unsigned int error_number);
    FsysExceptionBase(const FsysExceptionBase&) = default;
    FsysExceptionBase& operator=(const FsysExceptionBase&) = default;
    virtual ~FsysExceptionBase() = 0;

    const char* what() const noexcept override;

    fsys_excp_id get_id() const noexcept { return id_; }
    // Empty for every failure but SystemError.
    const fl::i18n::ustring& get_path() const noexcept { return path_; }
    // 0 for every failure but SystemError.
    unsigned int get_error_number() const noexcept { return error_number_; }

private:
    std::string message_;
    fsys_excp_id id_;
    fl::i18n::ustring path_;
    unsigned int error_number_;
};

#define QVI18N_FSYS_SIMPLE_EXCEPTION(Name)                                                                   \
    class QVI18N_API Name : public FsysExceptionBase {                                                       \
    public:                                                                                                  \
        Name();                                                                                              \
        Name(const Name& other);                                                                             \
        ~Name() override;                                                                                    \
    };

QVI18N_FSYS_SIMPLE_EXCEPTION(InvalidArgument)
QVI18N_FSYS_SIMPLE_EXCEPTION(InvalidOperation)
QVI18N_FSYS_SIMPLE_EXCEPTION(FileNameTooLarge)
QVI18N_FSYS_SIMPLE_EXCEPTION(CvtInvalidCharacter)
QVI18N_FSYS_SIMPLE_EXCEPTION(AccessDenied)
QVI18N_FSYS_SIMPLE_EXCEPTION(PathNotFound)
QVI18N_FSYS_SIMPLE_EXCEPTION(NotDirectoryError)
QVI18N_FSYS_SIMPLE_EXCEPTION(DirectoryNotEmpty)
QVI18N_FSYS_SIMPLE_EXCEPTION(FileIsDirectory)
QVI18N_FSYS_SIMPLE_EXCEPTION(FileExistsError)
// Its what() is "fl:filesystem:FileNameConversionFailure"; only id and class tell it apart.
QVI18N_FSYS_SIMPLE_EXCEPTION(PathNameComparisonFailure)

#undef QVI18N_FSYS_SIMPLE_EXCEPTION

// A file name that could not be converted. cvt_code follows the numbering of the conversion
// exceptions: 2 when no converter could be opened, 7 for a failed conversion.
class QVI18N_API FileNameConversionFailure : public FsysExceptionBase {
public:
    explicit FileNameConversionFailure(int cvt_code);
    FileNameConversionFailure(const FileNameConversionFailure& other);
    ~FileNameConversionFailure() override;

    int get_cvt_code() const noexcept { return cvt_code_; }

private:
    int cvt_code_;
};

// Any errno the family has no class for; the only failure that keeps its path and errno.
class QVI18N_API SystemError : public FsysExceptionBase {
public:
    SystemError(const fl::i18n::ustring& path, unsigned int error_number);
    SystemError(const SystemError& other);
    ~SystemError() override;
};

// Turns the exception being handled into errno, for functions that promise not to throw.
// Call it only inside a catch block. Failures it has no errno for (FileIsDirectory,
// InvalidOperation, PathNameComparisonFailure, anything from outside the family) are rethrown.
QVI18N_API void convert_filesystem_exception_to_errno();


} // namespace filesystem
} // namespace fl

#endif
