#ifndef QVI18N_I18N_CONVERSION_STREAM_CODECVT_HPP
#define QVI18N_I18N_CONVERSION_STREAM_CODECVT_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/noncopyable.hpp>

#include <memory>
#include <string>

namespace fl {
namespace i18n {

/// Conversion of a text that arrives in pieces. Unlike a converter, it keeps the state of a
/// partial character (or a shift state) from one call to the next, lets the caller say when the
/// text ends, and tells when the target is full. The operations are const but change that state:
/// one object serves one stream on one thread.
template <typename To, typename From> class QVI18N_API stream_converter : private boost::noncopyable {
public:
    typedef To to_char_type;
    typedef From from_char_type;

    virtual ~stream_converter() { }

    /// Converts from `*source` up to `source_limit` into `*target` up to `target_limit`, moving
    /// both pointers on. Returns 1 when the target is full and the call is to be repeated, 0 when
    /// all the source given has been taken. Without `flush`, a partial character at the end is
    /// kept for the next call; with it, the text ends here and a partial character is a failure.
    /// After a failure the state is back at the start of a text.
    int convert(
        To** target, To* target_limit, const From** source, const From* source_limit, bool flush) const
    {
        return do_convert(target, target_limit, source, source_limit, flush);
    }

    /// Forgets any partial character: the next call starts a new text.
    void reset_state() const { do_reset_state(); }

    /// The most units of To that one character can take.
    int max_char_size() const { return do_max_char_size(); }

    virtual int do_convert(
        To** target, To* target_limit, const From** source, const From* source_limit, bool flush) const = 0;
    virtual void do_reset_state() const = 0;
    virtual int do_max_char_size() const = 0;

protected:
    stream_converter() { }
};

extern template class stream_converter<char, char16_t>;
extern template class stream_converter<char16_t, char>;

/// UTF-16 in pieces to any encoding ICU can open. An empty encoding means the global locale's
/// encoding at construction; with `allow_invalid` false, unmappable text raises
/// CvtInvalidCharacter, otherwise it is substituted.
class QVI18N_API stream_codecvt_ustring_to_string : public stream_converter<char, char16_t> {
public:
    stream_codecvt_ustring_to_string(const std::string& encoding, bool allow_invalid);
    /// As above, with what to do about unmappable text chosen as CvtCtx::change_from_call_back
    /// takes it: call_back_default substitutes, call_back_invalid_check raises, an escape mode
    /// writes the character's escape (unassigned default-ignorables included). A mode the
    /// context refuses throws what it throws (CvtInvalidArgument, CvtNonSupportedMode).
    stream_codecvt_ustring_to_string(const std::string& encoding, codecvt_call_back_mode mode);
    ~stream_codecvt_ustring_to_string() override;

    int do_convert(char** target, char* target_limit, const char16_t** source, const char16_t* source_limit,
        bool flush) const override;
    void do_reset_state() const override;
    /// 4 for UTF-8, else what ICU says of the encoding.
    int do_max_char_size() const override;

private:
    std::unique_ptr<CvtCtx> ctx;
};

/// Bytes in pieces of any encoding ICU can open to UTF-16; invalid bytes become U+FFFD, or raise
/// CvtInvalidCharacter with `allow_invalid` false.
class QVI18N_API stream_codecvt_string_to_ustring : public stream_converter<char16_t, char> {
public:
    stream_codecvt_string_to_ustring(const std::string& encoding, bool allow_invalid);
    ~stream_codecvt_string_to_ustring() override;

    int do_convert(char16_t** target, char16_t* target_limit, const char** source, const char* source_limit,
        bool flush) const override;
    void do_reset_state() const override;
    /// 2: a character is one or two UTF-16 units.
    int do_max_char_size() const override;

private:
    std::unique_ptr<CvtCtx> ctx;
};

} // namespace i18n
} // namespace fl

#endif
