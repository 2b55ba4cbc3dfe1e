#ifndef QVI18N_FILESYSTEM_PATH_HPP
#define QVI18N_FILESYSTEM_PATH_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/posix/path_algorithms.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/filesystem/path.hpp>

#include <iterator>
#include <string>

namespace fl {
namespace i18n {
template <class To, class From> class converter;
} // namespace i18n

namespace filesystem {

// 16-bit texts used to build and take apart paths.
struct QVI18N_API upath_constant {
    static const char16_t* const GENERIC_PATHNAME_SEPARATOR;
    static const char16_t* const PATHNAME_SEPARATOR;
    static const char16_t* const FILE_EXTENSION_SEPARATOR;
    static const char16_t* const CURRENT_DIRECTORY;
    static const char16_t* const PARENT_DIRECTORY;
    static const char16_t* const WILD_CARD;
};

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

// A file name held as text, always in native form: no doubled separator and no trailing one
// (but for the root "/"). "." and ".." are kept as they are; nothing here looks at the disk.
template <class Char, class NativeChar, class Traits> class basic_path {
public:
    typedef Traits traits_type;
    typedef typename Traits::value_type value_type;
    typedef typename Traits::string_type string_type;

    // Walks the elements: "/" for the root, then each name between separators.
    class iterator {
    public:
        typedef std::bidirectional_iterator_tag iterator_category;
        typedef string_type value_type;
        typedef std::ptrdiff_t difference_type;
        typedef const string_type* pointer;
        typedef const string_type& reference;

        iterator()
            : path_(nullptr)
            , pos_(0)
        { }

        reference operator*() const { return element_; }
        pointer operator->() const { return &element_; }

        iterator& operator++()
        {
            const string_type& p = path_->get_path_name();
            Traits::move_down(p, Traits::get_root_path_length(p), pos_, element_);
            return *this;
        }
        iterator operator++(int)
        {
            iterator old(*this);
            ++*this;
            return old;
        }
        iterator& operator--()
        {
            const string_type& p = path_->get_path_name();
            Traits::move_up(p, Traits::get_root_path_length(p), pos_, element_);
            return *this;
        }
        iterator operator--(int)
        {
            iterator old(*this);
            --*this;
            return old;
        }

        friend bool operator==(const iterator& a, const iterator& b)
        {
            return a.path_ == b.path_ && a.pos_ == b.pos_;
        }
        friend bool operator!=(const iterator& a, const iterator& b) { return !(a == b); }

    private:
        friend class basic_path;
        const basic_path* path_;
        unsigned long pos_;
        string_type element_;
    };
    typedef iterator const_iterator;

    basic_path()
        : tilde_expansion_(true)
    { }
    basic_path(const string_type& text, bool tilde_expansion = true)
        : tilde_expansion_(tilde_expansion)
    {
        set_path_name(text);
    }
    basic_path(const value_type* text, bool tilde_expansion = true)
        : tilde_expansion_(tilde_expansion)
    {
        if (text)
            set_path_name(string_type(text));
    }

    basic_path& operator=(const string_type& text)
    {
        set_path_name(text);
        return *this;
    }

    // The only way a text enters a path: it is stored in native form.
    void set_path_name(const string_type& text)
    {
        if (text.empty())
            path_name_.clear();
        else
            path_name_ = Traits::make_native_form(text, tilde_expansion_);
    }

    const string_type& get_path_name() const { return path_name_; }
    bool get_tilde_expansion() const { return tilde_expansion_; }
    bool empty() const { return path_name_.empty(); }
    void clear() { path_name_.clear(); }

    string_type root_path() const { return Traits::extract_root_path(path_name_); }
    string_type root_name() const { return Traits::extract_root_name(path_name_); }
    string_type root_directory() const { return Traits::extract_root_directory(path_name_); }
    string_type relative_path() const { return Traits::extract_relative_path(path_name_); }
    string_type parent_path() const { return Traits::extract_parent_path(path_name_); }
    string_type filename() const { return Traits::extract_filename(path_name_); }
    string_type stem() const { return Traits::extract_stem(path_name_); }
    string_type extension() const { return Traits::extract_extension(path_name_); }
    bool is_absolute() const { return Traits::is_absolute(path_name_); }
    bool is_relative() const { return !is_absolute(); }
    bool has_filename() const { return !filename().empty(); }
    bool has_parent_path() const { return !parent_path().empty(); }

    basic_path& remove_filename()
    {
        Traits::remove_filename(path_name_);
        return *this;
    }
    // Throws InvalidArgument for an extension of more than one leading dot, a lone dot or one
    // holding a separator.
    basic_path& replace_extension(const string_type& ext)
    {
        Traits::replace_extension(path_name_, ext);
        return *this;
    }

    // Adds text as further elements. An empty or null text changes nothing; an absolute one
    // throws InvalidArgument and leaves the path as it was.
    basic_path& append(const value_type* text)
    {
        if (text && *text)
            Traits::concatenate_pathname(path_name_, string_type(text), tilde_expansion_);
        return *this;
    }
    basic_path& append(const string_type& text)
    {
        if (!text.empty())
            Traits::concatenate_pathname(path_name_, text, tilde_expansion_);
        return *this;
    }
    basic_path& operator/=(const value_type* text) { return append(text); }
    basic_path& operator/=(const string_type& text) { return append(text); }
    basic_path& operator/=(const basic_path& other) { return append(other.path_name_); }

    iterator begin() const
    {
        iterator it;
        it.path_ = this;
        it.pos_ = 0;
        it.element_ = Traits::extract_first_element(path_name_, Traits::get_root_path_length(path_name_));
        return it;
    }
    iterator end() const
    {
        iterator it;
        it.path_ = this;
        it.pos_ = path_name_.size();
        return it;
    }

    void swap(basic_path& other)
    {
        path_name_.swap(other.path_name_);
        std::swap(tilde_expansion_, other.tilde_expansion_);
    }

private:
    string_type path_name_;
    bool tilde_expansion_;
};

template <class C, class N, class T>
inline basic_path<C, N, T> operator/(const basic_path<C, N, T>& lhs, const basic_path<C, N, T>& rhs)
{
    basic_path<C, N, T> result(lhs);
    result /= rhs;
    return result;
}
template <class C, class N, class T>
inline basic_path<C, N, T> operator/(
    const basic_path<C, N, T>& lhs, const typename basic_path<C, N, T>::string_type& rhs)
{
    basic_path<C, N, T> result(lhs);
    result /= rhs;
    return result;
}
template <class C, class N, class T>
inline basic_path<C, N, T> operator/(
    const basic_path<C, N, T>& lhs, const typename basic_path<C, N, T>::value_type* rhs)
{
    basic_path<C, N, T> result(lhs);
    result /= rhs;
    return result;
}

// Paths compare by their text; the tilde flag does not take part.
template <class C, class N, class T>
inline bool operator==(const basic_path<C, N, T>& a, const basic_path<C, N, T>& b)
{
    return a.get_path_name() == b.get_path_name();
}
template <class C, class N, class T>
inline bool operator!=(const basic_path<C, N, T>& a, const basic_path<C, N, T>& b)
{
    return !(a == b);
}
template <class C, class N, class T>
inline bool operator<(const basic_path<C, N, T>& a, const basic_path<C, N, T>& b)
{
    return a.get_path_name() < b.get_path_name();
}

typedef basic_path<char, char16_t, detail::path_traits<char, char16_t>> upath;
typedef basic_path<char, char, detail::native_path_traits<char, char>> native_path;

// Bridge to Boost.Filesystem paths, whose bytes are UTF-8 on this platform.
QVI18N_API boost::filesystem::path make_path(const char16_t* s, unsigned long n);
QVI18N_API void append(boost::filesystem::path& p, const char16_t* s, unsigned long n);
QVI18N_API fl::i18n::ustring to_ustring(const boost::filesystem::path& p);
QVI18N_API fl::i18n::ustring to_generic_ustring(const boost::filesystem::path& p);
QVI18N_API fl::i18n::ustring to_generic_ustring(
    const boost::filesystem::path& p, const fl::i18n::converter<char16_t, char>& cvt);

} // namespace filesystem
} // namespace fl

#endif
