#ifndef QVI18N_FILESYSTEM_CONVERTERS_HPP
#define QVI18N_FILESYSTEM_CONVERTERS_HPP

// File names are UTF-8 bytes on this platform. Two stacks turn path text into them and back: the
// fixed one (no state, substitutes invalid text, used by every file operation of the library)
// and converter objects that a caller may make strict.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <unicode/ucnv.h>
#include <unicode/utypes.h>

#include <memory>
#include <string>

namespace fl {
namespace filesystem {

// Converter objects for file names, each on its own ICU "UTF-8" converter. Built with
// allow_invalid true they substitute invalid text as ICU does by default; with false they throw
// CvtInvalidCharacter on it. Opening the converter failing throws FileNameConversionFailure
// (cvt_code 2). One object serves one thread at a time.
//
// The file-system and narrow-string pairs behave alike here; they stay separate types so that
// a caller says which bytes it means, file names or the process's narrow text.
#define QVI18N_FSYS_TO_BYTES_CONVERTER(Name)                                                                 \
    class QVI18N_API Name : public fl::i18n::converter<char, char16_t> {                                     \
    public:                                                                                                  \
        explicit Name(bool allow_invalid = true);                                                            \
        ~Name() override;                                                                                    \
        unsigned long do_get_destination_size(const char16_t* source, unsigned long length) const override;  \
        std::string do_convert(const char16_t* source, unsigned long length) const override;                 \
        unsigned long do_convert(char* destination, unsigned long destination_size, const char16_t* source,  \
            unsigned long length) const override;                                                            \
                                                                                                             \
    private:                                                                                                 \
        std::unique_ptr<fl::i18n::CvtCtx> context_;                                                          \
    };

#define QVI18N_FSYS_FROM_BYTES_CONVERTER(Name)                                                               \
    class QVI18N_API Name : public fl::i18n::converter<char16_t, char> {                                     \
    public:                                                                                                  \
        explicit Name(bool allow_invalid = true);                                                            \
        ~Name() override;                                                                                    \
        unsigned long do_get_destination_size(const char* source, unsigned long length) const override;      \
        fl::i18n::ustring do_convert(const char* source, unsigned long length) const override;               \
        unsigned long do_convert(char16_t* destination, unsigned long destination_size, const char* source,  \
            unsigned long length) const override;                                                            \
                                                                                                             \
    private:                                                                                                 \
        std::unique_ptr<fl::i18n::CvtCtx> context_;                                                          \
    };

QVI18N_FSYS_TO_BYTES_CONVERTER(codecvt_ustring_to_filesystem)
QVI18N_FSYS_TO_BYTES_CONVERTER(codecvt_ustring_to_narrow_string)
QVI18N_FSYS_FROM_BYTES_CONVERTER(codecvt_filesystem_to_ustring)
QVI18N_FSYS_FROM_BYTES_CONVERTER(codecvt_narrow_string_to_ustring)

#undef QVI18N_FSYS_TO_BYTES_CONVERTER
#undef QVI18N_FSYS_FROM_BYTES_CONVERTER

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
