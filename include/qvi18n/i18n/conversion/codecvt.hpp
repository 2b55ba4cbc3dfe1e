#ifndef QVI18N_I18N_CONVERSION_CODECVT_HPP
#define QVI18N_I18N_CONVERSION_CODECVT_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>

#include <memory>
#include <string>

namespace fl {
namespace i18n {

/// UTF-16 to any encoding ICU can open. An empty encoding means the global locale's encoding at
/// construction. With `allow_invalid` false, unmappable text raises CvtInvalidCharacter; otherwise
/// it becomes the encoding's substitution character. One thread at a time.
class QVI18N_API codecvt_ustring_to_string : public converter<char, char16_t> {
public:
    codecvt_ustring_to_string(const std::string& encoding, bool allow_invalid);
    codecvt_ustring_to_string(codecvt_call_back_mode mode, const std::string& encoding,
        const std::string& substitution = std::string());
    ~codecvt_ustring_to_string() override;

    void change_call_back(codecvt_call_back_mode mode, const std::string& substitution = std::string());
    void reset_call_back();
    codecvt_call_back_mode get_call_back_mode() const;

    unsigned long do_get_destination_size(const char16_t* source, unsigned long length) const override;
    std::string do_convert(const char16_t* source, unsigned long length) const override;
    /// Fills `destination` as far as it goes and returns the size of the whole result.
    unsigned long do_convert(char* destination, unsigned long destination_size, const char16_t* source,
        unsigned long length) const override;

private:
    std::unique_ptr<CvtCtx> ctx;
};

/// Any encoding ICU can open to UTF-16; the counterpart of codecvt_ustring_to_string. Invalid bytes
/// become U+FFFD, or raise CvtInvalidCharacter with `allow_invalid` false.
class QVI18N_API codecvt_string_to_ustring : public converter<char16_t, char> {
public:
    codecvt_string_to_ustring(const std::string& encoding, bool allow_invalid);
    codecvt_string_to_ustring(codecvt_call_back_mode mode, const std::string& encoding);
    ~codecvt_string_to_ustring() override;

    void change_call_back(codecvt_call_back_mode mode);
    void reset_call_back();
    codecvt_call_back_mode get_call_back_mode() const;

    unsigned long do_get_destination_size(const char* source, unsigned long length) const override;
    ustring do_convert(const char* source, unsigned long length) const override;
    unsigned long do_convert(char16_t* destination, unsigned long destination_size, const char* source,
        unsigned long length) const override;

private:
    std::unique_ptr<CvtCtx> ctx;
};

} // namespace i18n
} // namespace fl

#endif
