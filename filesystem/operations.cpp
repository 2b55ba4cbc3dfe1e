#include <qvi18n/filesystem/operations.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/filesystem/exceptions.hpp>

#include "filesystem/posix/operations_posix_impl.hpp"
#include <qvi18n/filesystem/detail/exceptions.hpp>
#include <qvi18n/filesystem/posix/operations.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <boost/filesystem/operations.hpp>
#include <boost/system/error_code.hpp>

#include <sys/stat.h>

namespace fl {
namespace filesystem {

using fl::i18n::MakeException;
using fl::i18n::ustring;

using detail::native_bytes;

namespace {

// The UTF-8 of a native text for the frequent queries. A name that fits is converted straight
// onto the stack, so that asking about a short name costs one conversion and no allocation
// next to the system call.
class native_name {
public:
    explicit native_name(const ustring& native_text)
    {
        // Names are mostly ASCII, which is its own UTF-8: copy that run directly and leave the
        // rest to the converter. The cut falls before a non-ASCII unit, so no pair is split.
        const char16_t* const text = native_text.data();
        std::size_t const length = native_text.size();
        std::size_t const ascii_limit = length < sizeof stack_ ? length : sizeof stack_ - 1;
        std::size_t ascii = 0;
        while (ascii < ascii_limit && text[ascii] < 0x80) {
            stack_[ascii] = static_cast<char>(text[ascii]);
            ++ascii;
        }
        unsigned long const needed = ascii == length
            ? 0
            : detail::conversion_to_utf8(
                stack_ + ascii, sizeof stack_ - 1 - ascii, text + ascii, length - ascii);
        if (ascii + needed < sizeof stack_) {
            stack_[ascii + needed] = '\0';
            name_ = stack_;
        } else {
            heap_ = detail::make_native_access_form(native_text);
            name_ = heap_.c_str();
        }
    }
    native_name(const native_name&) = delete;
    native_name& operator=(const native_name&) = delete;

    const char* c_str() const { return name_; }

private:
    char stack_[1024];
    std::string heap_;
    const char* name_;
};

file_status status_of(const char* name)
{
    return posix::perform_status([name](struct stat* st) { return ::stat(name, st); });
}

file_status symlink_status_of(const char* name)
{
    return posix::perform_status([name](struct stat* st) { return ::lstat(name, st); });
}

void check_access_mode(unsigned int mode)
{
    if (mode < 1u || mode > 15u)
        throw MakeException(InvalidArgument());
}

void check_permission_flags(unsigned int prms)
{
    if ((prms & file_status::perms_add) && (prms & file_status::perms_remove))
        throw MakeException(InvalidArgument());
    if ((prms & file_status::perms_mask) == file_status::perms_unknown)
        throw MakeException(InvalidArgument());
}

void check_write_time(const boost::posix_time::ptime& t)
{
    // The infinities have no second count either.
    if (t.is_special())
        throw MakeException(InvalidArgument());
}

ustring read_symlink_text(const ustring& p)
{
    // Cleaned even for a upath: a link read through "~/" must find the home directory's link.
    ustring const cleaned = detail::make_native_form(p, true);
    return detail::from_filesystem(posix::readlink(detail::make_native_access_form(cleaned)));
}

bool equivalent_bytes(const std::string& a, const std::string& b)
{
    boost::system::error_code error;
    bool const same
        = boost::filesystem::equivalent(boost::filesystem::path(a), boost::filesystem::path(b), error);
    if (error)
        posix::exception_dispatcher(error.value(), a, std::string());
    return same;
}

} // namespace

bool exists(const upath& p)
{
    return !p.empty() && posix::exists(native_name(p.get_path_name()).c_str());
}

bool exists(const ustring& p)
{
    return !p.empty() && posix::exists(native_name(detail::make_native_form(p, true)).c_str());
}

file_status status(const upath& p)
{
    return p.empty() ? file_status() : status_of(native_name(p.get_path_name()).c_str());
}

file_status status(const ustring& p)
{
    return p.empty() ? file_status() : status_of(native_name(detail::make_native_form(p, true)).c_str());
}

file_status symlink_status(const upath& p)
{
    return p.empty() ? file_status() : symlink_status_of(native_name(p.get_path_name()).c_str());
}

file_status symlink_status(const ustring& p)
{
    return p.empty() ? file_status()
                     : symlink_status_of(native_name(detail::make_native_form(p, true)).c_str());
}

file_status_light status_express_light(const ustring& p)
{
    // Callers hand in names they built themselves, already native.
    return p.empty() ? file_status_light() : posix::status_express_light(detail::make_native_access_form(p));
}

bool access(const upath& p, unsigned int mode)
{
    if (p.empty())
        throw MakeException(InvalidArgument());
    check_access_mode(mode);
    return posix::access_check(native_bytes(p), mode);
}

bool access(const ustring& p, unsigned int mode)
{
    if (p.empty())
        throw MakeException(InvalidArgument());
    check_access_mode(mode);
    return posix::access_check(native_bytes(p), mode);
}

void permissions(const upath& p, unsigned int prms)
{
    if (p.empty())
        return;
    check_permission_flags(prms);
    darwin::change_perms(native_bytes(p), prms);
}

void permissions(const ustring& p, unsigned int prms)
{
    if (p.empty())
        return;
    check_permission_flags(prms);
    darwin::change_perms(native_bytes(p), prms);
}

void last_write_time(const upath& p, const boost::posix_time::ptime& t)
{
    if (p.empty())
        throw MakeException(InvalidArgument());
    check_write_time(t);
    posix::modify_last_write_time(native_bytes(p), t);
}

void last_write_time(const ustring& p, const boost::posix_time::ptime& t)
{
    if (p.empty())
        throw MakeException(InvalidArgument());
    check_write_time(t);
    posix::modify_last_write_time(native_bytes(p), t);
}

bool change_current_path(const upath& p)
{
    return !p.empty() && set_cwd(native_bytes(p));
}

bool change_current_path(const ustring& p)
{
    return !p.empty() && set_cwd(native_bytes(p));
}

upath absolute(const upath& p, const upath& base)
{
    if (p.empty())
        return upath();
    return upath(posix::make_absolute<char16_t>(p.get_path_name(), base.get_path_name()));
}

ustring absolute(const ustring& p, const ustring& base)
{
    if (p.empty())
        return ustring();
    return posix::make_absolute<char16_t>(
        detail::make_native_form(p, true), detail::make_native_form(base, true));
}

upath canonical(const upath& p, const upath& base)
{
    if (p.empty())
        return upath();
    return upath(posix::make_canonical(p.get_path_name(), base.get_path_name()));
}

ustring canonical(const ustring& p, const ustring& base)
{
    if (p.empty())
        return ustring();
    return posix::make_canonical(detail::make_native_form(p, true), detail::make_native_form(base, true));
}

upath read_symlink(const upath& p)
{
    if (p.empty())
        return upath();
    return upath(read_symlink_text(p.get_path_name()));
}

ustring read_symlink(const ustring& p)
{
    if (p.empty())
        return ustring();
    return read_symlink_text(detail::make_native_form(p, true));
}

bool equivalent(const upath& a, const upath& b)
{
    return equivalent(a.get_path_name(), b.get_path_name());
}

bool equivalent(const ustring& a, const ustring& b)
{
    if (a.empty() && b.empty())
        throw MakeException(InvalidArgument());
    if (a.empty() || b.empty())
        return false;
    return equivalent_bytes(detail::make_native_access_form(a), detail::make_native_access_form(b));
}

upath get_current_path()
{
    return upath(operations_traits<char16_t>::get_current_working_directory_core());
}

} // namespace filesystem
} // namespace fl
