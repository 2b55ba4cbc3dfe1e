#ifndef QVI18N_FILESYSTEM_POSIX_PATH_ALGORITHMS_HPP
#define QVI18N_FILESYSTEM_POSIX_PATH_ALGORITHMS_HPP

// The text algorithms of paths on this platform, on any character type. They never touch the
// disk; the only outside state they read is the home directory for a leading tilde.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <string>
#include <type_traits>

namespace fl {
namespace filesystem {

template <class Char> struct pathname_traits;

template <> struct QVI18N_API pathname_traits<char> {
    static const char PATHNAME_SEPARATOR[2];
    static const char ROOT_PATHNAME[2];
    static const char CURRENT_DIRECTORY[2];
    static const char PARENT_DIRECTORY[3];
};

template <> struct QVI18N_API pathname_traits<char16_t> {
    static const char16_t PATHNAME_SEPARATOR[2];
    static const char16_t ROOT_PATHNAME[2];
    static const char16_t CURRENT_DIRECTORY[2];
    static const char16_t PARENT_DIRECTORY[3];

    // The home-directory replacement of posix::replace_home_directory, on UTF-16 text.
    static fl::i18n::ustring replace_tilde_with_home_dir(const fl::i18n::ustring& p);
};

namespace posix {

// "~", "~/rest", "~name" and "~name/rest" become the home directory (plus the rest). An unknown
// user leaves the text as it is; "~/rest" with no home anywhere gives an empty text.
QVI18N_API std::string replace_home_directory(const std::string& path);

namespace path_text {

template <class Char>
inline bool is_dot_or_dot_dot(const Char* s, typename std::basic_string<Char>::size_type n)
{
    return (n == 1 && s[0] == Char('.')) || (n == 2 && s[0] == Char('.') && s[1] == Char('.'));
}

// Collapses runs of separators and drops one trailing separator (a lone "/" stays).
template <class Char> inline std::basic_string<Char> collapse_separators(const std::basic_string<Char>& text)
{
    typedef typename std::basic_string<Char>::size_type size_type;
    const Char slash = Char('/');
    const Char* s = text.data();
    const size_type n = text.size();

    // Most names are already clean; find the first place that needs work.
    size_type i = 0;
    for (; i + 1 < n; ++i) {
        if (s[i] == slash && s[i + 1] == slash)
            break;
    }
    if (i + 1 >= n) {
        if (n >= 2 && s[n - 1] == slash)
            return std::basic_string<Char>(s, n - 1);
        return text;
    }

    std::basic_string<Char> out(n, Char());
    Char* d = &out[0];
    size_type k = i + 1; // keep up to and including the first separator of the run
    for (size_type j = 0; j < k; ++j)
        d[j] = s[j];
    Char prev = slash;
    for (size_type j = k; j < n; ++j) {
        const Char c = s[j];
        if (c == slash && prev == slash)
            continue;
        d[k++] = c;
        prev = c;
    }
    if (k >= 2 && d[k - 1] == slash)
        --k;
    out.resize(k);
    return out;
}

} // namespace path_text

// The single clean-up rule for path text: tilde expansion (when asked for), then separator
// collapse. No "." or ".." resolution, no normalisation, no length limit.
template <class Char>
std::basic_string<Char> make_native_form(const std::basic_string<Char>& text, bool tilde_expansion)
{
    if (text.empty())
        return std::basic_string<Char>();
    if (tilde_expansion && text[0] == Char('~')) {
        std::basic_string<Char> work;
        if constexpr (std::is_same<Char, char>::value)
            work = replace_home_directory(text);
        else
            work = pathname_traits<Char>::replace_tilde_with_home_dir(text);
        if (work.empty())
            return work;
        return path_text::collapse_separators(work);
    }
    return path_text::collapse_separators(text);
}

// Appends tail to base as a further element. An absolute tail cannot be appended and leaves
// base unchanged; this includes a tail that tilde expansion made absolute.
template <class Char>
void concatenate_pathname(
    std::basic_string<Char>& base, const std::basic_string<Char>& tail, bool tilde_expansion)
{
    std::basic_string<Char> native = make_native_form(tail, tilde_expansion);
    if (base.empty()) {
        base.swap(native);
        return;
    }
    if (native.empty())
        return;
    if (native[0] == Char('/'))
        throw fl::i18n::MakeException(InvalidArgument());
    if (base[base.size() - 1] != Char('/'))
        base += Char('/');
    base += native;
}

template <class Char> std::basic_string<Char> extract_parent_path(const std::basic_string<Char>& p)
{
    const auto i = p.rfind(Char('/'));
    if (i == std::basic_string<Char>::npos)
        return std::basic_string<Char>();
    if (i == 0)
        return p.size() > 1 ? std::basic_string<Char>(1, Char('/')) : std::basic_string<Char>();
    return p.substr(0, i);
}

template <class Char> std::basic_string<Char> extract_filename(const std::basic_string<Char>& p)
{
    if (p.empty())
        return std::basic_string<Char>();
    const auto i = p.rfind(Char('/'));
    if (i != std::basic_string<Char>::npos && p.size() > 1)
        return p.substr(i + 1);
    return p;
}

template <class Char> void remove_filename(std::basic_string<Char>& p)
{
    if (p.empty())
        return;
    const auto i = p.rfind(Char('/'));
    if (i == std::basic_string<Char>::npos || p.size() == 1)
        p.clear();
    else if (i == 0)
        p.resize(1);
    else
        p.resize(i);
}

template <class Char> std::basic_string<Char> extract_stem(const std::basic_string<Char>& p)
{
    std::basic_string<Char> name = extract_filename(p);
    if (name.empty() || path_text::is_dot_or_dot_dot(name.data(), name.size()))
        return name;
    const auto dot = name.rfind(Char('.'));
    if (dot != std::basic_string<Char>::npos)
        name.resize(dot);
    return name;
}

// The extension without its dot: "a.txt" gives "txt", "a." gives "".
template <class Char> std::basic_string<Char> extract_extension(const std::basic_string<Char>& p)
{
    const std::basic_string<Char> name = extract_filename(p);
    if (name.empty() || path_text::is_dot_or_dot_dot(name.data(), name.size()))
        return std::basic_string<Char>();
    const auto dot = name.rfind(Char('.'));
    if (dot == std::basic_string<Char>::npos)
        return std::basic_string<Char>();
    return name.substr(dot + 1);
}

template <class Char>
std::basic_string<Char> extract_first_element(const std::basic_string<Char>& p, unsigned long root_length)
{
    if (p.empty())
        return std::basic_string<Char>();
    if (root_length != 0)
        return p.substr(0, root_length);
    return p.substr(0, p.find(Char('/')));
}

// Steps an element iterator forward; pos == p.size() with an empty element is the end.
template <class Char>
void move_down(const std::basic_string<Char>& p, unsigned long root_length, unsigned long& pos,
    std::basic_string<Char>& element)
{
    const unsigned long size = p.size();
    if (pos >= size) {
        element.clear();
        return;
    }
    if (pos + element.size() >= size) {
        pos = size;
        element.clear();
        return;
    }
    // The root element has no separator behind it.
    if (pos == 0 && root_length != 0)
        pos += root_length;
    else
        pos += element.size() + 1;
    const auto next = p.find(Char('/'), pos);
    element.assign(
        p, pos, next == std::basic_string<Char>::npos ? std::basic_string<Char>::npos : next - pos);
}

template <class Char>
void move_up(const std::basic_string<Char>& p, unsigned long root_length, unsigned long& pos,
    std::basic_string<Char>& element)
{
    if (pos == 0)
        return;
    if (pos == root_length) {
        pos = 0;
        element.assign(1, Char('/'));
        return;
    }
    const unsigned long limit = pos == p.size() ? pos : pos - 1;
    const auto slash = limit == 0 ? std::basic_string<Char>::npos : p.rfind(Char('/'), limit - 1);
    pos = slash == std::basic_string<Char>::npos ? 0 : slash + 1;
    element.assign(p, pos, limit - pos);
}

} // namespace posix

// Replaces the extension of the last element. A name that ends in a dot keeps that dot, so
// "a." with "dat" gives "a..dat". ext may carry one leading dot; more, a lone ".", or a
// separator is refused with InvalidArgument and p is left unchanged.
template <class Char> void replace_extension(std::basic_string<Char>& p, const std::basic_string<Char>& ext)
{
    typedef std::basic_string<Char> string_type;
    const Char dot = Char('.');
    if (p.empty() || ext.empty() || p[p.size() - 1] == Char('/'))
        return;
    const auto slash = p.rfind(Char('/'));
    const typename string_type::size_type start = slash == string_type::npos ? 0 : slash + 1;
    if (posix::path_text::is_dot_or_dot_dot(p.data() + start, p.size() - start))
        return;

    auto found = p.rfind(dot);
    if (found != string_type::npos && found < start)
        found = string_type::npos;
    const bool has_dot = found != string_type::npos && found != p.size() - 1;
    const typename string_type::size_type keep = has_dot ? found + 1 : p.size();

    typename string_type::size_type leading = 0;
    while (leading < ext.size() && ext[leading] == dot)
        ++leading;
    if (leading > 1 || (leading == 1 && ext.size() == 1) || ext.find(Char('/')) != string_type::npos)
        throw fl::i18n::MakeException(InvalidArgument());

    string_type result;
    result.reserve(keep + 1 + ext.size());
    result.assign(p, 0, keep);
    if (!has_dot && leading == 0)
        result += dot;
    result.append(ext, has_dot ? leading : 0, string_type::npos);
    p.swap(result);
}

} // namespace filesystem
} // namespace fl

#endif
