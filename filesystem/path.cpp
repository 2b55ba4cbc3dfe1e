#include <qvi18n/filesystem/path.hpp>

#include <qvi18n/filesystem/converters.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

namespace fl {
namespace filesystem {

using fl::i18n::ustring;

const char pathname_traits<char>::PATHNAME_SEPARATOR[2] = "/";
const char pathname_traits<char>::ROOT_PATHNAME[2] = "/";
const char pathname_traits<char>::CURRENT_DIRECTORY[2] = ".";
const char pathname_traits<char>::PARENT_DIRECTORY[3] = "..";

const char16_t pathname_traits<char16_t>::PATHNAME_SEPARATOR[2] = u"/";
const char16_t pathname_traits<char16_t>::ROOT_PATHNAME[2] = u"/";
const char16_t pathname_traits<char16_t>::CURRENT_DIRECTORY[2] = u".";
const char16_t pathname_traits<char16_t>::PARENT_DIRECTORY[3] = u"..";

namespace {
const char16_t generic_separator_text[2] = u"/";
const char16_t extension_separator_text[2] = u".";
const char16_t wild_card_text[2] = u"*";
} // namespace

const char16_t* const upath_constant::GENERIC_PATHNAME_SEPARATOR = generic_separator_text;
const char16_t* const upath_constant::PATHNAME_SEPARATOR = pathname_traits<char16_t>::PATHNAME_SEPARATOR;
const char16_t* const upath_constant::FILE_EXTENSION_SEPARATOR = extension_separator_text;
const char16_t* const upath_constant::CURRENT_DIRECTORY = pathname_traits<char16_t>::CURRENT_DIRECTORY;
const char16_t* const upath_constant::PARENT_DIRECTORY = pathname_traits<char16_t>::PARENT_DIRECTORY;
const char16_t* const upath_constant::WILD_CARD = wild_card_text;

ustring pathname_traits<char16_t>::replace_tilde_with_home_dir(const ustring& p)
{
    if (p.empty() || p[0] != u'~')
        return p;
    return detail::from_filesystem(posix::replace_home_directory(detail::to_filesystem(p)));
}

namespace detail {

unsigned long get_root_path_length(const ustring& p)
{
    return !p.empty() && p[0] == u'/' ? 1 : 0;
}

bool is_absolute(const ustring& p)
{
    return !p.empty() && p[0] == u'/';
}

ustring extract_root_path(const ustring& p)
{
    return is_absolute(p) ? ustring(1, u'/') : ustring();
}

ustring extract_root_directory(const ustring& p)
{
    return extract_root_path(p);
}

// This platform has no root names (no drives, no network hosts).
ustring extract_root_name(const ustring&)
{
    return ustring();
}

ustring extract_relative_path(const ustring& p)
{
    return is_absolute(p) ? p.substr(1) : p;
}

ustring extract_parent_path(const ustring& p)
{
    return posix::extract_parent_path(p);
}

ustring extract_filename(const ustring& p)
{
    return posix::extract_filename(p);
}

ustring extract_stem(const ustring& p)
{
    return posix::extract_stem(p);
}

ustring extract_extension(const ustring& p)
{
    return posix::extract_extension(p);
}

ustring extract_first_element(const ustring& p, unsigned long root_length)
{
    return posix::extract_first_element(p, root_length);
}

void remove_filename(ustring& p)
{
    posix::remove_filename(p);
}

void replace_extension(ustring& p, const ustring& ext)
{
    fl::filesystem::replace_extension(p, ext);
}

void concatenate_pathname(ustring& p, const ustring& tail, bool tilde_expansion)
{
    posix::concatenate_pathname(p, tail, tilde_expansion);
}

ustring make_native_form(const ustring& p, bool tilde_expansion)
{
    return posix::make_native_form(p, tilde_expansion);
}

ustring make_generic_form(const ustring& p)
{
    return p;
}

std::string make_access_form(const std::string& p)
{
    return p;
}

void move_down(const ustring& p, unsigned long root_length, unsigned long& pos, ustring& element)
{
    posix::move_down(p, root_length, pos, element);
}

void move_up(const ustring& p, unsigned long root_length, unsigned long& pos, ustring& element)
{
    posix::move_up(p, root_length, pos, element);
}

} // namespace detail

boost::filesystem::path make_path(const char16_t* s, unsigned long n)
{
    if (!s || n == 0)
        return boost::filesystem::path();
    return boost::filesystem::path(
        fl::i18n::lcctype::convert_to_string_utf<char, char16_t>(s, n, &detail::conversion_to_utf8));
}

void append(boost::filesystem::path& p, const char16_t* s, unsigned long n)
{
    std::string bytes;
    if (s && n != 0)
        bytes = fl::i18n::lcctype::convert_to_string_utf<char, char16_t>(s, n, &detail::conversion_to_utf8);
    if (bytes.empty())
        return;
    // Keeps the process's path locale set up the same way as every other append would.
    (void)boost::filesystem::path::codecvt();
    // path::append on bytes adds a separator when needed and drops the one made redundant.
    p.append(bytes.begin(), bytes.end());
}

ustring to_ustring(const boost::filesystem::path& p)
{
    return detail::from_filesystem(p.native());
}

ustring to_generic_ustring(const boost::filesystem::path& p)
{
    return detail::from_filesystem(p.generic_string());
}

ustring to_generic_ustring(const boost::filesystem::path& p, const fl::i18n::converter<char16_t, char>& cvt)
{
    const std::string bytes = p.generic_string();
    if (bytes.empty())
        return ustring();
    return cvt.convert(bytes.data(), bytes.size());
}

} // namespace filesystem
} // namespace fl
