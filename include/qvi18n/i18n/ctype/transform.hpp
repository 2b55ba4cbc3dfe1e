#ifndef QVI18N_I18N_CTYPE_TRANSFORM_HPP
#define QVI18N_I18N_CTYPE_TRANSFORM_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <boost/shared_ptr.hpp>

namespace fl {
namespace i18n {

// Tags of lcctype::transform.
struct to_upper { };
struct to_lower { };
struct to_nfd { };
struct to_nfc { };

/// Case mapping by the rules of a locale's ctype language (Turkish dotted I, ...).
class QVI18N_API to_locale_case_base {
public:
    /// Shares ownership of `locale`.
    explicit to_locale_case_base(const boost::shared_ptr<QvLocale const>& locale);
    /// Borrows `locale`, which must outlive the tag.
    explicit to_locale_case_base(const QvLocale& locale);

    const QvLocale& get_locale() const { return *locale; }

private:
    boost::shared_ptr<QvLocale const> locale;
};

struct QVI18N_API to_upper_locale : to_locale_case_base {
    explicit to_upper_locale(const boost::shared_ptr<QvLocale const>& locale)
        : to_locale_case_base(locale)
    { }
    explicit to_upper_locale(const QvLocale& locale)
        : to_locale_case_base(locale)
    { }
};

struct QVI18N_API to_lower_locale : to_locale_case_base {
    explicit to_lower_locale(const boost::shared_ptr<QvLocale const>& locale)
        : to_locale_case_base(locale)
    { }
    explicit to_lower_locale(const QvLocale& locale)
        : to_locale_case_base(locale)
    { }
};

// Tags of lcctype::compare.
struct case_sensitive { };
struct case_insensitive { };
struct normalized_case_sensitive { };
struct normalized_case_insensitive { };

namespace lcctype {

/// Case-maps or normalises `length` units of `source` into `destination` and returns the size the
/// whole result needs. The function never allocates: a result above `destination_size` means that
/// `destination` holds no complete result, and the caller calls again with a buffer that large
/// (a null `destination` only measures). A null or empty `source` gives 0 and leaves `destination`
/// alone. Throws CtypeSizeTooLarge for a size of 0x40000000 units or more, CtypeTransformFailure if
/// ICU fails (for instance when `destination` overlaps `source`).
/// Case mapping without a locale follows the root locale, not the global one.
QVI18N_API unsigned long transform(char16_t* destination, unsigned long destination_size,
    const char16_t* source, unsigned long length, const to_upper&);
QVI18N_API unsigned long transform(char16_t* destination, unsigned long destination_size,
    const char16_t* source, unsigned long length, const to_lower&);
QVI18N_API unsigned long transform(char16_t* destination, unsigned long destination_size,
    const char16_t* source, unsigned long length, const to_upper_locale& locale);
QVI18N_API unsigned long transform(char16_t* destination, unsigned long destination_size,
    const char16_t* source, unsigned long length, const to_lower_locale& locale);
QVI18N_API unsigned long transform(char16_t* destination, unsigned long destination_size,
    const char16_t* source, unsigned long length, const to_nfd&);
QVI18N_API unsigned long transform(char16_t* destination, unsigned long destination_size,
    const char16_t* source, unsigned long length, const to_nfc&);

/// Negative, zero or positive as `left` sorts before, with or after `right`, in code-unit order.
/// Lengths of 0x40000000 or more throw CtypeSizeTooLarge; the modes other than case_sensitive
/// throw CtypeStrCompFailure when ICU fails (a null text among them).
QVI18N_API int compare(const char16_t* left, unsigned long left_length, const char16_t* right,
    unsigned long right_length, const case_sensitive&);
/// By full case folding.
QVI18N_API int compare(const char16_t* left, unsigned long left_length, const char16_t* right,
    unsigned long right_length, const case_insensitive&);
/// By canonical equivalence.
QVI18N_API int compare(const char16_t* left, unsigned long left_length, const char16_t* right,
    unsigned long right_length, const normalized_case_sensitive&);
/// By canonical equivalence after case folding.
QVI18N_API int compare(const char16_t* left, unsigned long left_length, const char16_t* right,
    unsigned long right_length, const normalized_case_insensitive&);

// Comparisons of null-terminated texts.
QVI18N_API int strcmp(const char16_t* left, const char16_t* right);
/// Compares at most `count` units; a `count` above 0x7FFFFFFF compares nothing and answers -1.
QVI18N_API int strncmp(const char16_t* left, const char16_t* right, unsigned long count);
QVI18N_API int strcasecmp(const char16_t* left, const char16_t* right);
/// Compares at most `count` units; a `count` above 0x7FFFFFFF compares nothing and answers -1.
QVI18N_API int strncasecmp(const char16_t* left, const char16_t* right, unsigned long count);

} // namespace lcctype
} // namespace i18n
} // namespace fl

#endif
