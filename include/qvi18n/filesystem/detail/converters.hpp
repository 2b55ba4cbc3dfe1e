#ifndef QVI18N_FILESYSTEM_DETAIL_CONVERTERS_HPP
#define QVI18N_FILESYSTEM_DETAIL_CONVERTERS_HPP

// The fixed file-name conversion under every file operation of the library.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <unicode/ucnv.h>
#include <unicode/utypes.h>
#include <string>

namespace fl {
namespace filesystem {

namespace detail {

// Each returns the units the whole result needs, also when d is too small (then nothing is
// thrown and the caller retries with a larger buffer). A d of null with cap 0 measures.
// An unpaired surrogate becomes U+001A.
QVI18N_API unsigned long conversion_to_utf8(char* d, unsigned long cap, const char16_t* s, unsigned long n);
// A malformed byte sequence becomes U+FFFD.
QVI18N_API unsigned long conversion_from_utf8(char16_t* d, unsigned long cap, const char* s, unsigned long n);
// Invalid text is handled as the converter's call-backs say.
QVI18N_API unsigned long conversion_from_uchar(
    UConverter* c, char* d, unsigned long cap, const char16_t* s, unsigned long n);
QVI18N_API unsigned long conversion_to_utf16(
    UConverter* c, char16_t* d, unsigned long cap, const char* s, unsigned long n);

// The file-system reading of an ICU status after a whole-buffer conversion of n units: success
// and buffer overflow return; otherwise FileNameTooLarge for a huge n, CvtInvalidCharacter for an
// invalid or illegal character, FileNameConversionFailure (cvt_code 7) for anything else.
template <class T> QVI18N_API void map_codecvt_exception(UErrorCode e, unsigned long n);

extern template QVI18N_API void map_codecvt_exception<char>(UErrorCode, unsigned long);
extern template QVI18N_API void map_codecvt_exception<char16_t>(UErrorCode, unsigned long);

// The bytes handed to the system for a path. upath text is already clean; a plain ustring is
// cleaned up (tilde, separators) first.
QVI18N_API std::string make_native_access_form(const fl::i18n::ustring& p);
QVI18N_API std::string make_native_access_form(
    const fl::i18n::ustring& p, const fl::i18n::converter<char, char16_t>& cvt);
QVI18N_API std::string make_native_access_form_with_cleanup(const fl::i18n::ustring& p);
QVI18N_API std::string make_native_access_form_with_cleanup(
    const fl::i18n::ustring& p, const fl::i18n::converter<char, char16_t>& cvt);

inline std::string make_native_access_form(const upath& p)
{
    return make_native_access_form(p.get_path_name());
}
inline std::string make_native_access_form(const upath& p, const fl::i18n::converter<char, char16_t>& cvt)
{
    return make_native_access_form(p.get_path_name(), cvt);
}

} // namespace detail

} // namespace filesystem
} // namespace fl

#endif
