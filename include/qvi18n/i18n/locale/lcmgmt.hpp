#ifndef QVI18N_I18N_LOCALE_LCMGMT_HPP
#define QVI18N_I18N_LOCALE_LCMGMT_HPP

// Encoding questions the locale core answers for the layers above (lcmgmt, lcctype).

#include <qvi18n/config.hpp>
#include <string>

namespace fl {
namespace i18n {

namespace lcmgmt {

/// Whether the terminal's input encoding may be taken to equal its output encoding.
QVI18N_API bool is_term_encoding_consistent();
/// Whether the database lists `name`, directly or through ICU's standard name for it.
QVI18N_API bool is_supported_encoding(std::string const& name);
/// The database's canonical name for an alias, or `name` itself.
QVI18N_API std::string get_encoding_name_from_alias(std::string const& name);
/// The database's canonical name for an alias, or an empty string.
QVI18N_API std::string get_qv_standard_encoding_name_from_alias(std::string const& name);

} // namespace lcmgmt

namespace lcctype {

/// The MIME, else IANA, else WINDOWS standard name of an ICU converter name; `name` itself when no
/// standard lists it, and empty for an empty name.
QVI18N_API std::string get_standard_encoding_name_from_converter_name(const std::string& name);

} // namespace lcctype

} // namespace i18n
} // namespace fl

#endif
