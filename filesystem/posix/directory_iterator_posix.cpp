#include <qvi18n/filesystem/detail/directory_context.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/detail/pattern.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>

#include "filesystem/volume_mask.hpp"
#include <qvi18n/filesystem/detail/exceptions.hpp>
#include <qvi18n/filesystem/posix/operations.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <unicode/ustring.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

#include <sys/stat.h>

namespace fl {
namespace filesystem {

using fl::i18n::MakeException;
using fl::i18n::ustring;

namespace {

// A name from the disk as text, into a string whose room is reused from name to name. Most
// names are ASCII, which widens unit for unit; anything else goes through the file-name
// converter, which reads malformed bytes as U+FFFD and never needs more units than bytes.
void assign_name_text(ustring& text, const char* bytes, std::size_t length)
{
    std::size_t ascii = 0;
    while (ascii < length && static_cast<unsigned char>(bytes[ascii]) < 0x80)
        ++ascii;
    if (ascii == length) {
        text.assign(bytes, bytes + length);
        return;
    }
    text.resize(length);
    text.resize(detail::conversion_from_utf8(&text[0], length, bytes, length));
}

ustring name_text(const char* bytes, std::size_t length)
{
    ustring text;
    assign_name_text(text, bytes, length);
    return text;
}

} // namespace

namespace detail {

file_attribute_context::file_attribute_context()
    : directory()
{
    std::memset(&entry, 0, sizeof entry);
}

// ---------------------------------------------------------------------------------------------

directory_entry_context::directory_entry_context(const ustring& directory, const ustring& /*file_name*/,
    struct dirent& entry)
    : directory_()
    , current_name_()
    , native_directory_(make_native_access_form(directory))
    , handle_(::opendir(native_directory_.c_str()))
    , entry_buffer_(&entry)
    , character_mask_(0)
    , open_error_(handle_ ? 0 : errno)
    , matcher_()
{
    if (handle_)
        directory_ = directory;
}

directory_entry_context::~directory_entry_context()
{
    // Only an abandoned iteration gets here with a stream; its close can report to no one.
    if (handle_)
        ::closedir(handle_);
}

bool directory_entry_context::read_entry()
{
    if (!handle_)
        return false;
    // readdir and not readdir_r, which glibc deprecates: glibc's readdir is safe when no two
    // threads read the same stream, and a stream belongs to one iterator and its thread.
    errno = 0;
    struct dirent const* const read = ::readdir(handle_);
    if (!read) {
        if (errno != 0)
            posix::exception_dispatcher(errno, failure_path(), std::string());
        // glibc reports a directory removed while it is listed as a plain end (the system's
        // ENOENT is taken for one). A removed directory has no links left: tell the caller that
        // the listing stopped short instead of letting it pass for complete.
        struct stat st;
        if (::fstat(::dirfd(handle_), &st) == 0 && st.st_nlink == 0)
            posix::exception_dispatcher(ENOENT, failure_path(), std::string());
        DIR* const handle = handle_;
        handle_ = nullptr;
        posix::dir_entry_close(handle);
        return false;
    }
    std::size_t const size = offsetof(struct dirent, d_name) + std::strlen(read->d_name) + 1;
    std::memcpy(entry_buffer_, read, size < sizeof *entry_buffer_ ? size : sizeof *entry_buffer_);
    return true;
}

std::string directory_entry_context::failure_path() const
{
    return to_filesystem(directory_);
}

// ---------------------------------------------------------------------------------------------

directory_entry_without_wc_support_context::directory_entry_without_wc_support_context(
    const ustring& directory, struct dirent& entry)
    : directory_entry_context(directory, ustring(), entry)
{
    // The directory text is still empty here, so only SystemError could show a path: none.
    if (open_error_ != 0)
        posix::exception_dispatcher(open_error_, to_filesystem(directory_), std::string());
}

directory_entry_without_wc_support_context::~directory_entry_without_wc_support_context() = default;

bool directory_entry_without_wc_support_context::read_next()
{
    // The name stays as bytes in the record; the entry makes text of it only when asked.
    return handle_ && read_entry();
}

// ---------------------------------------------------------------------------------------------

directory_entry_with_wc_support_context::directory_entry_with_wc_support_context(const ustring& directory,
    const pattern_string_context& pattern, struct dirent& entry, bool tolerate_bad_pattern)
    : directory_entry_context(directory, pattern.get_file_name(), entry)
{
    if (open_error_ != 0)
        posix::exception_dispatcher(open_error_, failure_path(), std::string());
    // Names match as the volume compares them: without case where it ignores case, and in one
    // normal form where it normalises.
    character_mask_ = volume_character_mask(query_volume_name_rule(native_directory_));
    fl::i18n::regex_excp_id const opened
        = matcher_.open(pattern.get_pattern(), fl::i18n::character_handling_mode_context(character_mask_));
    if (opened != fl::i18n::regex_success && !tolerate_bad_pattern)
        throw MakeException(InvalidArgument());
}

directory_entry_with_wc_support_context::~directory_entry_with_wc_support_context() = default;

std::string directory_entry_with_wc_support_context::failure_path() const
{
    return to_filesystem(directory_ + u'/' + current_name_);
}

bool directory_entry_with_wc_support_context::read_next_core()
{
    return handle_ && read_entry();
}

bool directory_entry_with_wc_support_context::read_next()
{
    while (read_next_core()) {
        assign_name_text(current_name_, entry_buffer_->d_name, std::strlen(entry_buffer_->d_name));
        fl::i18n::regex_excp_id error;
        // A pattern that could not be opened (tolerated) or a failing match is no match.
        if (matcher_.match(current_name_, error))
            return true;
    }
    return false;
}

// ---------------------------------------------------------------------------------------------

upath_directory_iterator_impl::upath_directory_iterator_impl(const ustring& directory, initialization_mode)
    : context_()
    , entry_()
{
    context_.reset(new directory_entry_without_wc_support_context(directory, entry_.get_attribute_context().entry));
    read_first();
}

upath_directory_iterator_impl::upath_directory_iterator_impl(const ustring& directory,
    const pattern_string_context& pattern, bool tolerate_bad_pattern, initialization_mode)
    : context_()
    , entry_()
{
    if (pattern.get_file_name().empty() || pattern.get_pattern().empty())
        throw MakeException(InvalidArgument());
    ustring const& name = pattern.get_file_name();
    if (u_strpbrk(name.c_str(), u"/") != nullptr)
        throw MakeException(InvalidArgument());
    context_.reset(new directory_entry_with_wc_support_context(
        directory, pattern, entry_.get_attribute_context().entry, tolerate_bad_pattern));
    read_first();
}

upath_directory_iterator_impl::~upath_directory_iterator_impl() = default;

void upath_directory_iterator_impl::read_first()
{
    if (context_->read_next())
        fill_entry(context_.get());
}

void upath_directory_iterator_impl::increment()
{
    if (context_ && context_->read_next())
        fill_entry(context_.get());
}

bool upath_directory_iterator_impl::is_open() const
{
    return context_ && context_->is_open();
}

void upath_directory_iterator_impl::fill_entry(const directory_entry_context* context)
{
    std::string& directory = entry_.get_attribute_context().directory;
    if (directory != context->get_native_directory())
        directory = context->get_native_directory();
}

} // namespace detail

// ---------------------------------------------------------------------------------------------

pattern_string_context::pattern_string_context()
    : file_name()
    , pattern()
{ }

pattern_string_context::pattern_string_context(const ustring& file_name, const ustring& pattern)
    : file_name(file_name)
    , pattern(pattern)
{ }

pattern_string_context::~pattern_string_context() = default;

filename_pattern_context::filename_pattern_context(const ustring& file_name)
    : pattern_string_context(
        file_name, detail::generate_pattern_from_filename(file_name, zorbel_pattern_string_generator()))
{ }

filename_pattern_context::~filename_pattern_context() = default;

// ---------------------------------------------------------------------------------------------

upath_directory_entry::upath_directory_entry()
    : alternative_filename_()
    , attributes_(new detail::file_attribute_context())
{ }

ustring upath_directory_entry::pathname() const
{
    return detail::from_filesystem(attributes_->directory);
}

ustring upath_directory_entry::filename() const
{
    char const* const name = attributes_->entry.d_name;
    return name_text(name, std::strlen(name));
}

ustring upath_directory_entry::alternative_filename() const
{
    return alternative_filename_;
}

std::string upath_directory_entry::native_full_pathname() const
{
    std::string path = attributes_->directory;
    if (path.empty() || path.back() != '/')
        path += '/';
    path += attributes_->entry.d_name;
    return path;
}

ustring upath_directory_entry::full_pathname() const
{
    std::string const path = native_full_pathname();
    return name_text(path.data(), path.size());
}

std::uint32_t upath_directory_entry::type_by(bool follow_links) const
{
    unsigned char const recorded = attributes_->entry.d_type;
    if (recorded != DT_UNKNOWN && !(follow_links && recorded == DT_LNK))
        return static_cast<std::uint32_t>(recorded) << 12;
    std::string const path = native_full_pathname();
    struct stat st;
    int const result = follow_links ? ::stat(path.c_str(), &st) : ::lstat(path.c_str(), &st);
    if (result == 0)
        return st.st_mode & file_status::file_type_mask;
    if (errno == ENOENT || errno == EINVAL)
        return file_status::file_not_found;
    posix::exception_dispatcher(errno, path, std::string());
}

std::uint32_t upath_directory_entry::type() const
{
    return type_by(false);
}

std::uint32_t upath_directory_entry::target_type() const
{
    return type_by(true);
}

std::uint32_t upath_directory_entry::target_type_without_validation() const
{
    return type_by(true);
}

file_status upath_directory_entry::status() const
{
    std::string const path = native_full_pathname();
    return posix::perform_status_complete([&path](struct stat* st) { return ::stat(path.c_str(), st); });
}

file_status upath_directory_entry::symlink_status() const
{
    std::string const path = native_full_pathname();
    return posix::perform_status_complete([&path](struct stat* st) { return ::lstat(path.c_str(), st); });
}

} // namespace filesystem
} // namespace fl
