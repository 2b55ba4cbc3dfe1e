#ifndef QVI18N_I18N_CTYPE_PATTERN_MATCH_HPP
#define QVI18N_I18N_CTYPE_PATTERN_MATCH_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/noncopyable.hpp>

#include <unicode/uregex.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace fl {
namespace i18n {

/// Outcome of a regular-expression operation; also the code of the matching exception.
enum regex_excp_id {
    regex_not_opened = 0,
    regex_success = 1,
    regex_invalid_argument = 2,
    regex_invalid_object = 3,
    regex_failed_object_creation = 4,
    regex_failed_match_operation = 5,
    regex_failed_normalization = 6
};

/// Base of the pattern-matching failures; `get_code()` is the regex_excp_id value.
class QVI18N_API RegexExceptionBase : public std::exception {
public:
    ~RegexExceptionBase() override;
    const char* what() const noexcept override;
    std::int32_t get_code() const noexcept { return code; }

protected:
    RegexExceptionBase(const std::string& message, std::int32_t code);

private:
    std::string message;
    std::int32_t code;
};

/// "fl:i18n:RegexInvalidArgument": an empty pattern.
class QVI18N_API RegexInvalidArgument : public RegexExceptionBase {
public:
    RegexInvalidArgument();
};

/// "fl:i18n:RegexInvalidObject": matching with no usable expression.
class QVI18N_API RegexInvalidObject : public RegexExceptionBase {
public:
    RegexInvalidObject();
};

/// "fl:i18n:RegexFailedObjectCreation": ICU refused the pattern.
class QVI18N_API RegexFailedObjectCreation : public RegexExceptionBase {
public:
    RegexFailedObjectCreation();
};

/// "fl:i18n:RegexFailedMatchOperation".
class QVI18N_API RegexFailedMatchOperation : public RegexExceptionBase {
public:
    RegexFailedMatchOperation();
};

/// "fl:i18n:RegexFailedNormalization".
class QVI18N_API RegexFailedNormalization : public RegexExceptionBase {
public:
    RegexFailedNormalization();
};

/// Owner of one compiled ICU expression.
class QVI18N_API regex_core : private boost::noncopyable {
public:
    /// No expression yet; see open().
    regex_core();
    /// Compiles `pattern` with uregex_open `flags`: RegexInvalidArgument for an empty pattern,
    /// RegexFailedObjectCreation when ICU refuses it.
    regex_core(const ustring& pattern, unsigned int flags);
    ~regex_core();

    /// The same without exceptions: false with `id` 2 or 4 on failure, true with `id` 1.
    bool open(const ustring& pattern, unsigned int flags, regex_excp_id& id);

    URegularExpression* get_regex() const { return regex; }
    bool is_usable() const { return usable; }

private:
    bool compile(const ustring& pattern, unsigned int flags);

    URegularExpression* regex;
    bool usable;
};

/// Whole-string match of a pattern, with the case and normalisation treatment of a mode; failures
/// are exceptions. One thread at a time: match() drives the compiled expression.
class QVI18N_API pattern_match : private boost::noncopyable {
public:
    pattern_match(const ustring& pattern, const character_handling_mode_context& mode);
    ~pattern_match();

    /// Whether the whole of `text` matches.
    bool match(const ustring& text) const;

private:
    std::unique_ptr<regex_core> core;
    int normalization;
};

/// pattern_match that reports failures by regex_excp_id and throws nothing of its own. Opened
/// once: a second open() returns the first outcome.
class QVI18N_API simple_pattern_match : private boost::noncopyable {
public:
    simple_pattern_match();

    regex_excp_id open(const ustring& pattern, const character_handling_mode_context& mode);
    /// Whether the whole of `text` matches; `id` tells whether the answer is one.
    bool match(const ustring& text, regex_excp_id& id) const;

private:
    regex_core core;
    int normalization;
    regex_excp_id state;
};

} // namespace i18n
} // namespace fl

#endif
