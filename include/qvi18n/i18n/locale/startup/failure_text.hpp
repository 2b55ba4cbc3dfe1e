#ifndef QVI18N_I18N_LOCALE_STARTUP_FAILURE_TEXT_HPP
#define QVI18N_I18N_LOCALE_STARTUP_FAILURE_TEXT_HPP

// Every failure of the library in the user's words: one complete sentence in a given locale, from
// the library's own catalogs, with the failure's details filled in.
//
//     catch (const std::exception& e) {
//         std::cerr << to_string(fl::i18n::describe_failure(e, fl::i18n::QvLocale::global()));
//     }

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <exception>

namespace fl {
namespace i18n {

// The sentence for a failure the library raised: file system (with the path and error number of
// a system error), conversion (with a refused encoding's name), locale and locale database,
// catalogs (with the catalog, key and hole counts), character handling, pattern matching, date
// and time, time zones. The texts come from the catalogs of the roots in force or else from those
// installed with the library, chosen by the locale's fall-backs as catalogs are. A failure the
// library does not know, or one it has no text for, gives its what(). Never throws.
QVI18N_API ustring describe_failure(const std::exception& failure, const QvLocale& locale) noexcept;
// The same for a carried failure; one that isn't a std::exception gives a sentence of its own.
QVI18N_API ustring describe_failure(const std::exception_ptr& failure, const QvLocale& locale) noexcept;

} // namespace i18n
} // namespace fl

#endif
