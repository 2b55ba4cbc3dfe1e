#ifndef QVI18N_I18N_CONVERSION_TERMINAL_CODECVT_HPP
#define QVI18N_I18N_CONVERSION_TERMINAL_CODECVT_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/conversion/codecvt.hpp>

#include <memory>
#include <string>

namespace fl {
namespace i18n {

/// The library's standard name for any encoding name or alias: the locale database's name if it
/// knows the alias; otherwise ICU's standard name for it, spelled as the database spells it;
/// empty if neither knows it.
QVI18N_API std::string get_standard_encoding_name(const std::string& name);

// Converters for the process's terminal, on the encodings the global locale holds for it (the
// terminal encoding, and the input and output encodings apart). Terminal text is never refused:
// invalid text is substituted. An encoding ICU cannot open throws CvtInvalidEncodingName; a locale
// answer that is not a name throws boost::bad_get.

/// Terminal bytes to UTF-16, on the terminal encoding.
QVI18N_API std::unique_ptr<codecvt_string_to_ustring> create_codecvt_terminal_to_ustring();
/// UTF-16 to terminal bytes, on the terminal encoding.
QVI18N_API std::unique_ptr<codecvt_ustring_to_string> create_codecvt_ustring_to_terminal();
/// Terminal input to UTF-16, on the terminal input encoding.
QVI18N_API std::unique_ptr<codecvt_string_to_ustring> create_codecvt_terminal_input_to_ustring();
/// UTF-16 to terminal output, on the terminal output encoding.
QVI18N_API std::unique_ptr<codecvt_ustring_to_string> create_codecvt_ustring_to_terminal_output();

} // namespace i18n
} // namespace fl

#endif
