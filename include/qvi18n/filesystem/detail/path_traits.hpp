#ifndef QVI18N_FILESYSTEM_DETAIL_PATH_TRAITS_HPP
#define QVI18N_FILESYSTEM_DETAIL_PATH_TRAITS_HPP

// The text operations behind basic_path, for UTF-16 and for native (UTF-8) names.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/posix/path_algorithms.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <string>

namespace fl {
namespace filesystem {

namespace detail {

using fl::i18n::ustring;

QVI18N_API unsigned long get_root_path_length(const ustring& p);
QVI18N_API bool is_absolute(const ustring& p);
QVI18N_API ustring extract_root_path(const ustring& p);
QVI18N_API ustring extract_root_directory(const ustring& p);
QVI18N_API ustring extract_root_name(const ustring& p);
QVI18N_API ustring extract_relative_path(const ustring& p);
QVI18N_API ustring extract_parent_path(const ustring& p);
QVI18N_API ustring extract_filename(const ustring& p);
QVI18N_API ustring extract_stem(const ustring& p);
QVI18N_API ustring extract_extension(const ustring& p);
QVI18N_API ustring extract_first_element(const ustring& p, unsigned long root_length);
QVI18N_API void remove_filename(ustring& p);
QVI18N_API void replace_extension(ustring& p, const ustring& ext);
QVI18N_API void concatenate_pathname(ustring& p, const ustring& tail, bool tilde_expansion);
QVI18N_API ustring make_native_form(const ustring& p, bool tilde_expansion);
QVI18N_API ustring make_generic_form(const ustring& p);
QVI18N_API std::string make_access_form(const std::string& p);
// UTF-8 bytes of p, as given to the system; no clean-up.
QVI18N_API std::string to_filesystem(const ustring& p);
// Bytes from the system read as UTF-8; malformed bytes become U+FFFD.
QVI18N_API ustring from_filesystem(const std::string& p);
QVI18N_API void move_down(const ustring& p, unsigned long root_length, unsigned long& pos, ustring& element);
QVI18N_API void move_up(const ustring& p, unsigned long root_length, unsigned long& pos, ustring& element);

template <class Char, class NativeChar> struct path_traits;

// The Unicode path: text operations go through the exported functions above.
template <> struct path_traits<char, char16_t> {
    typedef char16_t value_type;
    typedef fl::i18n::ustring string_type;

    static unsigned long get_root_path_length(const string_type& p)
    {
        return detail::get_root_path_length(p);
    }
    static bool is_absolute(const string_type& p) { return detail::is_absolute(p); }
    static string_type extract_root_path(const string_type& p) { return detail::extract_root_path(p); }
    static string_type extract_root_directory(const string_type& p)
    {
        return detail::extract_root_directory(p);
    }
    static string_type extract_root_name(const string_type& p) { return detail::extract_root_name(p); }
    static string_type extract_relative_path(const string_type& p)
    {
        return detail::extract_relative_path(p);
    }
    static string_type extract_parent_path(const string_type& p) { return detail::extract_parent_path(p); }
    static string_type extract_filename(const string_type& p) { return detail::extract_filename(p); }
    static string_type extract_stem(const string_type& p) { return detail::extract_stem(p); }
    static string_type extract_extension(const string_type& p) { return detail::extract_extension(p); }
    static string_type extract_first_element(const string_type& p, unsigned long root_length)
    {
        return detail::extract_first_element(p, root_length);
    }
    static void remove_filename(string_type& p) { detail::remove_filename(p); }
    static void replace_extension(string_type& p, const string_type& ext)
    {
        detail::replace_extension(p, ext);
    }
    static void concatenate_pathname(string_type& p, const string_type& tail, bool tilde_expansion)
    {
        detail::concatenate_pathname(p, tail, tilde_expansion);
    }
    static string_type make_native_form(const string_type& p, bool tilde_expansion)
    {
        return detail::make_native_form(p, tilde_expansion);
    }
    static void move_down(
        const string_type& p, unsigned long root_length, unsigned long& pos, string_type& element)
    {
        detail::move_down(p, root_length, pos, element);
    }
    static void move_up(
        const string_type& p, unsigned long root_length, unsigned long& pos, string_type& element)
    {
        detail::move_up(p, root_length, pos, element);
    }
};

template <class Char, class NativeChar> struct native_path_traits;

// The byte path, for the few files that are opened before any conversion is set up. Same rules
// as the Unicode path, and the bytes go to the system unconverted.
template <> struct native_path_traits<char, char> {
    typedef char value_type;
    typedef std::string string_type;

    static unsigned long get_root_path_length(const string_type& p)
    {
        return !p.empty() && p[0] == '/' ? 1 : 0;
    }
    static bool is_absolute(const string_type& p) { return !p.empty() && p[0] == '/'; }
    static string_type extract_root_path(const string_type& p)
    {
        return is_absolute(p) ? "/" : string_type();
    }
    static string_type extract_root_directory(const string_type& p) { return extract_root_path(p); }
    static string_type extract_root_name(const string_type&) { return string_type(); }
    static string_type extract_relative_path(const string_type& p)
    {
        return is_absolute(p) ? p.substr(1) : p;
    }
    static string_type extract_parent_path(const string_type& p) { return posix::extract_parent_path(p); }
    static string_type extract_filename(const string_type& p) { return posix::extract_filename(p); }
    static string_type extract_stem(const string_type& p) { return posix::extract_stem(p); }
    static string_type extract_extension(const string_type& p) { return posix::extract_extension(p); }
    static string_type extract_first_element(const string_type& p, unsigned long root_length)
    {
        return posix::extract_first_element(p, root_length);
    }
    static void remove_filename(string_type& p) { posix::remove_filename(p); }
    static void replace_extension(string_type& p, const string_type& ext)
    {
        fl::filesystem::replace_extension(p, ext);
    }
    static void concatenate_pathname(string_type& p, const string_type& tail, bool tilde_expansion)
    {
        posix::concatenate_pathname(p, tail, tilde_expansion);
    }
    static string_type make_native_form(const string_type& p, bool tilde_expansion)
    {
        return posix::make_native_form(p, tilde_expansion);
    }
    static void move_down(
        const string_type& p, unsigned long root_length, unsigned long& pos, string_type& element)
    {
        posix::move_down(p, root_length, pos, element);
    }
    static void move_up(
        const string_type& p, unsigned long root_length, unsigned long& pos, string_type& element)
    {
        posix::move_up(p, root_length, pos, element);
    }
};

} // namespace detail

} // namespace filesystem
} // namespace fl

#endif
