#ifndef QVI18N_FILESYSTEM_PATH_HPP
#define QVI18N_FILESYSTEM_PATH_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/detail/path_traits.hpp>
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
