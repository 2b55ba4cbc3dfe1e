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

} // namespace filesystem
} // namespace fl

#endif
