#ifndef QVI18N_I18N_CTYPE_FACET_HPP
#define QVI18N_I18N_CTYPE_FACET_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/noncopyable.hpp>
#include <boost/thread/mutex.hpp>

#include <cstddef>
#include <locale>
#include <memory>
#include <string>

namespace fl {
namespace i18n {

class QvLocale;

namespace facet {

// Bases for the library's char16_t facets. The standard library offers no by-name ctype or
// numpunct for char16_t; these have their shape (a name and a reference count), answer as the
// classic locale does, and leave the rest to the facets below.
template <typename CharT> class ctype_byname_base;
template <typename CharT> class numpunct_byname_base;

template <> class QVI18N_API ctype_byname_base<char16_t> : public std::ctype<char16_t> {
public:
    /// `name` only keeps the standard shape: the classification is Unicode's whatever the locale.
    ctype_byname_base(const char* name, std::size_t refs);

protected:
    ~ctype_byname_base() override;
};

template <> class QVI18N_API numpunct_byname_base<char16_t> : public std::numpunct<char16_t> {
public:
    /// `name` only keeps the standard shape: the punctuation is the classic one.
    numpunct_byname_base(const char* name, std::size_t refs);

protected:
    ~numpunct_byname_base() override;
};

template <typename CharT> class ctype_facet;
template <typename CharT> struct numpunct_cache;
template <typename CharT> class numpunct_facet;

/// Unicode classification and case mapping of UTF-16 units for standard streams, and widening and
/// narrowing through the encoding of the locale it was made with. Each conversion opens its own
/// converter, so the facet has no mutable state; a bad encoding throws CvtInvalidEncodingName at
/// the first conversion, not here.
template <> class QVI18N_API ctype_facet<char16_t> : public ctype_byname_base<char16_t> {
public:
    ctype_facet(const QvLocale& locale, unsigned long refs);

    const std::string& get_encoding() const { return encoding; }

protected:
    ~ctype_facet() override;

    bool do_is(mask m, char_type c) const override;
    const char_type* do_is(const char_type* low, const char_type* high, mask* vec) const override;
    const char_type* do_scan_is(mask m, const char_type* low, const char_type* high) const override;
    const char_type* do_scan_not(mask m, const char_type* low, const char_type* high) const override;
    char_type do_toupper(char_type c) const override;
    const char_type* do_toupper(char_type* low, const char_type* high) const override;
    char_type do_tolower(char_type c) const override;
    const char_type* do_tolower(char_type* low, const char_type* high) const override;
    char_type do_widen(char c) const override;
    const char* do_widen(const char* low, const char* high, char_type* dest) const override;
    char do_narrow(char_type c, char dfault) const override;
    const char_type* do_narrow(const char_type* low, const char_type* high, char dfault, char* dest) const override;

private:
    std::string encoding;
};

/// Number punctuation for char16_t streams. Always the classic locale's, whatever the locale given:
/// "." and no grouping, "true" and "false".
template <> struct QVI18N_API numpunct_cache<char16_t> {
    explicit numpunct_cache(const QvLocale& locale);

    char16_t decimal_point;
    char16_t thousands_sep;
    std::string grouping;
    ustring truename;
    ustring falsename;
};

template <> class QVI18N_API numpunct_facet<char16_t> : public numpunct_byname_base<char16_t> {
public:
    numpunct_facet(const QvLocale& locale, unsigned long refs);

protected:
    ~numpunct_facet() override;

    char_type do_decimal_point() const override;
    char_type do_thousands_sep() const override;
    std::string do_grouping() const override;
    string_type do_truename() const override;
    string_type do_falsename() const override;

private:
    numpunct_cache<char16_t> cache;
};

/// A new locale: the classic one with ctype_facet<char16_t> always, numpunct_facet<char16_t> when
/// `categories` has a bit of 0x14, and num_put<char16_t> when it has 0x10. No num_get.
QVI18N_API std::unique_ptr<std::locale> create_std_locale(unsigned int categories, const QvLocale& locale);

/// Holder of the library's global standard locale: the classic locale until init() runs, once.
class QVI18N_API global_std_locale_ctx : private boost::noncopyable {
public:
    global_std_locale_ctx();

    /// Builds the locale for `categories` from the global QvLocale; later calls do nothing.
    void init(unsigned int categories);

    std::locale& get_locale() const { return *locale; }
    bool is_initialized() const { return initialized; }

private:
    std::unique_ptr<std::locale> locale;
    bool initialized;
};

/// Builds the global standard locale under get_mutex(); the first call decides it for good.
/// fl::i18n::initialize calls it with 0x15.
QVI18N_API void init_global_std_locale(unsigned int categories);
/// The global standard locale: classic until init_global_std_locale has run. Takes no lock.
QVI18N_API std::locale& get_global_std_locale();
/// The mutex that serialises building the global standard locale.
QVI18N_API boost::mutex& get_mutex();

} // namespace facet
} // namespace i18n
} // namespace fl

#endif
