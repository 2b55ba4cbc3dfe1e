#ifndef QVI18N_FILESYSTEM_STDIO_HPP
#define QVI18N_FILESYSTEM_STDIO_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <cstdio>
#include <string>

namespace fl {
namespace i18n {
template <class To, class From> class converter;
} // namespace i18n

namespace filesystem {

// The C library's fopen and freopen by Unicode name. Like their models they report failure by
// a null result and errno instead of the library's exceptions:
//  - an empty name or mode, or a name whose first unit is NUL: EINVAL;
//  - a ustring name ending in "/": EISDIR, without asking the system;
//  - a name that cannot be converted: the errno of convert_filesystem_exception_to_errno().
// A ustring name is cleaned (tilde, separators) first; a upath is used as stored. The forms
// with a converter make the bytes with it instead of UTF-8.
QVI18N_API std::FILE* fopen(const fl::i18n::ustring& p, const std::string& mode);
QVI18N_API std::FILE* fopen(
    const fl::i18n::ustring& p, const std::string& mode, const fl::i18n::converter<char, char16_t>& c);
QVI18N_API std::FILE* fopen(const upath& p, const std::string& mode);
QVI18N_API std::FILE* fopen(
    const upath& p, const std::string& mode, const fl::i18n::converter<char, char16_t>& c);

// As fopen, reopening f; a null f is EINVAL.
QVI18N_API std::FILE* freopen(const fl::i18n::ustring& p, const std::string& mode, std::FILE* f);
QVI18N_API std::FILE* freopen(const fl::i18n::ustring& p, const std::string& mode, std::FILE* f,
    const fl::i18n::converter<char, char16_t>& c);
QVI18N_API std::FILE* freopen(const upath& p, const std::string& mode, std::FILE* f);
QVI18N_API std::FILE* freopen(
    const upath& p, const std::string& mode, std::FILE* f, const fl::i18n::converter<char, char16_t>& c);

// A literal name is text, and is cleaned.
inline std::FILE* fopen(const char16_t* p, const std::string& mode)
{
    return fopen(fl::i18n::ustring(p ? p : u""), mode);
}
inline std::FILE* fopen(
    const char16_t* p, const std::string& mode, const fl::i18n::converter<char, char16_t>& c)
{
    return fopen(fl::i18n::ustring(p ? p : u""), mode, c);
}
inline std::FILE* freopen(const char16_t* p, const std::string& mode, std::FILE* f)
{
    return freopen(fl::i18n::ustring(p ? p : u""), mode, f);
}
inline std::FILE* freopen(
    const char16_t* p, const std::string& mode, std::FILE* f, const fl::i18n::converter<char, char16_t>& c)
{
    return freopen(fl::i18n::ustring(p ? p : u""), mode, f, c);
}

} // namespace filesystem
} // namespace fl

#endif
