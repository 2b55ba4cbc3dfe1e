#include <qvi18n/filesystem/temporary.hpp>

#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <boost/filesystem/operations.hpp>
#include <boost/random/mersenne_twister.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace fl {
namespace filesystem {

using fl::i18n::ustring;

namespace {

bool usable_directory(const std::string& candidate)
{
    boost::system::error_code error;
    const boost::filesystem::file_status st = boost::filesystem::status(candidate, error);
    if (error || !boost::filesystem::is_directory(st))
        return false;
    errno = 0;
    return ::access(candidate.c_str(), W_OK | R_OK) == 0 || errno == 0;
}

// Creates the file only if nothing lies at the name (not even a dangling link), owner-only,
// and hands it out as a read-write stream.
std::FILE* create_exclusive(const char* name)
{
    const int fd = ::open(name, O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (fd < 0)
        return nullptr;
    std::FILE* stream = ::fdopen(fd, "wb+");
    if (stream == nullptr) {
        const int error = errno;
        ::close(fd);
        ::unlink(name);
        errno = error;
    }
    return stream;
}

} // namespace

std::string temp_dir_name()
{
    std::vector<std::string> candidates;
    for (const char* variable : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0')
            candidates.emplace_back(value);
    }
    candidates.emplace_back("/tmp");
    for (const std::string& candidate : candidates) {
        if (usable_directory(candidate))
            return candidate;
    }
    throw fl::i18n::MakeException(AccessDenied());
}

ustring temp_directory_name()
{
    return upath(detail::from_filesystem(temp_dir_name())).get_path_name();
}

namespace posix {

std::string get_temp_name()
{
    return boost::filesystem::unique_path("%%%%-%%%%-%%%%-%%%%").string();
}

} // namespace posix

ustring tmpfile_name(const ustring& directory, const ustring& prefix, const ustring& suffix)
{
    const std::string random = posix::get_temp_name();
    if (random.empty())
        return ustring();
    ustring name = upath(directory).get_path_name();
    if (name.empty() || name[name.size() - 1] != u'/')
        name += u'/';
    name += prefix;
    name += detail::from_filesystem(random);
    if (!suffix.empty() && suffix[0] != u'.')
        name += u'.';
    name += suffix;
    return name;
}

ustring tmpnam(const ustring& directory, const ustring& prefix, const ustring& suffix)
{
    return tmpfile_name(directory.empty() ? temp_directory_name() : directory, prefix, suffix);
}

std::FILE* tmpfile(ustring& name, const ustring& directory, const ustring& prefix, const ustring& suffix)
{
    const ustring folder = directory.empty() ? temp_directory_name() : directory;
    try {
        ustring attempt = tmpfile_name(folder, prefix, suffix);
        for (int tries = 0; tries < 11 && !attempt.empty(); ++tries) {
            std::FILE* stream =
                create_exclusive(detail::make_native_access_form_with_cleanup(attempt).c_str());
            if (stream != nullptr) {
                name = attempt;
                return stream;
            }
            attempt = tmpfile_name(folder, prefix, suffix);
        }
    } catch (...) {
        convert_filesystem_exception_to_errno();
        return nullptr;
    }
    // The last failure's errno says nothing useful about eleven different names.
    errno = 0;
    name.clear();
    return nullptr;
}

std::string uuid_gen()
{
    boost::uuids::basic_random_generator<boost::random::mt19937> generate;
    const boost::uuids::uuid id = generate();
    if (id.is_nil())
        return std::string();
    std::stringstream text;
    text << id;
    return text.str();
}

} // namespace filesystem
} // namespace fl
