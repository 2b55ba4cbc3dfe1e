#include <qvi18n/i18n/ctype/pattern_match.hpp>

#include "i18n/ctype/normalized_text.hpp"

#include <boost/exception/exception.hpp>

#include <unicode/unorm2.h>

#include <cstddef>

namespace fl {
namespace i18n {

RegexExceptionBase::RegexExceptionBase(const std::string& message, std::int32_t code)
    : message(message)
    , code(code)
{ }

RegexExceptionBase::~RegexExceptionBase() { }

const char* RegexExceptionBase::what() const noexcept
{
    return message.c_str();
}

RegexInvalidArgument::RegexInvalidArgument()
    : RegexExceptionBase("fl:i18n:RegexInvalidArgument", regex_invalid_argument)
{ }

RegexInvalidObject::RegexInvalidObject()
    : RegexExceptionBase("fl:i18n:RegexInvalidObject", regex_invalid_object)
{ }

RegexFailedObjectCreation::RegexFailedObjectCreation()
    : RegexExceptionBase("fl:i18n:RegexFailedObjectCreation", regex_failed_object_creation)
{ }

RegexFailedMatchOperation::RegexFailedMatchOperation()
    : RegexExceptionBase("fl:i18n:RegexFailedMatchOperation", regex_failed_match_operation)
{ }

RegexFailedNormalization::RegexFailedNormalization()
    : RegexExceptionBase("fl:i18n:RegexFailedNormalization", regex_failed_normalization)
{ }

namespace {

template <typename E> [[noreturn]] void throw_regex()
{
    throw boost::enable_current_exception(E());
}

// ICU takes 32-bit signed lengths.
const unsigned long max_icu_length = 0x7FFFFFFFUL;

// The normalisation flag: bit 1 normalises, bit 2 picks NFD over NFC.
const int normalize_bit = 1;
const int decompose_bit = 2;

int normalization_flag(const character_handling_mode_context& mode)
{
    if (mode.is_normalized_compose_mode())
        return normalize_bit;
    if (mode.is_normalized_decompose_mode())
        return normalize_bit | decompose_bit;
    return 0;
}

unsigned int match_flags(const character_handling_mode_context& mode)
{
    return mode.is_case_sensitive_mode() ? 0U : static_cast<unsigned int>(UREGEX_CASE_INSENSITIVE);
}

// `source` in the normal form `flag` picks, into `out`; false when ICU fails or the text is too
// long for it.
bool normalize(detail::normalized_text& out, const char16_t* source, unsigned long length, int flag)
{
    if (length == 0)
        return true;
    if (length > max_icu_length)
        return false;
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* form
        = (flag & decompose_bit) ? unorm2_getNFDInstance(&status) : unorm2_getNFCInstance(&status);
    if (U_FAILURE(status))
        return false;
    out.assign(form, source, static_cast<int32_t>(length), status);
    return U_SUCCESS(status);
}

ustring str(const detail::normalized_text& text)
{
    return ustring(text.text, static_cast<std::size_t>(text.length));
}

// Whole-text match of [text, text + length): 1 or 0, or -1 when ICU fails. The expression keeps
// a pointer to the text, which must stay put until the match is over.
int run_match(URegularExpression* regex, const char16_t* text, unsigned long length)
{
    if (length > max_icu_length)
        return -1;
    UErrorCode status = U_ZERO_ERROR;
    uregex_setText(regex, text, static_cast<int32_t>(length), &status);
    if (U_FAILURE(status))
        return -1;
    status = U_ZERO_ERROR;
    const UBool matched = uregex_matches(regex, -1, &status);
    if (U_FAILURE(status))
        return -1;
    return matched == 1 ? 1 : 0;
}

// Whole-text match of `text`, put in the pattern's normal form first when the pattern was:
// regex_success with `matched` set, else what failed.
regex_excp_id match_text(URegularExpression* regex, const ustring& text, int normalization, bool& matched)
{
    int result;
    if (normalization & normalize_bit) {
        detail::normalized_text normalized;
        if (!normalize(normalized, text.data(), text.size(), normalization))
            return regex_failed_normalization;
        result = run_match(regex, normalized.text, static_cast<unsigned long>(normalized.length));
    } else {
        result = run_match(regex, text.data(), text.size());
    }
    if (result < 0)
        return regex_failed_match_operation;
    matched = result == 1;
    return regex_success;
}

} // namespace

regex_core::regex_core()
    : regex(nullptr)
    , usable(false)
{ }

regex_core::regex_core(const ustring& pattern, unsigned int flags)
    : regex(nullptr)
    , usable(false)
{
    if (pattern.empty())
        throw_regex<RegexInvalidArgument>();
    if (!compile(pattern, flags))
        throw_regex<RegexFailedObjectCreation>();
}

regex_core::~regex_core()
{
    if (regex)
        uregex_close(regex);
}

bool regex_core::open(const ustring& pattern, unsigned int flags, regex_excp_id& id)
{
    if (pattern.empty()) {
        id = regex_invalid_argument;
        return false;
    }
    if (!compile(pattern, flags)) {
        id = regex_failed_object_creation;
        return false;
    }
    id = regex_success;
    return true;
}

bool regex_core::compile(const ustring& pattern, unsigned int flags)
{
    usable = false;
    if (regex) {
        uregex_close(regex);
        regex = nullptr;
    }
    if (pattern.size() > max_icu_length)
        return false;
    UErrorCode status = U_ZERO_ERROR;
    regex = uregex_open(pattern.data(), static_cast<int32_t>(pattern.size()), flags, nullptr, &status);
    if (U_FAILURE(status)) {
        if (regex) {
            uregex_close(regex);
            regex = nullptr;
        }
        return false;
    }
    usable = true;
    return true;
}

pattern_match::pattern_match(const ustring& pattern, const character_handling_mode_context& mode)
    : normalization(0)
{
    if (pattern.empty())
        throw_regex<RegexInvalidArgument>();
    normalization = normalization_flag(mode);
    if (normalization & normalize_bit) {
        detail::normalized_text normalized;
        if (!normalize(normalized, pattern.data(), pattern.size(), normalization))
            throw_regex<RegexFailedNormalization>();
        core.reset(new regex_core(str(normalized), match_flags(mode)));
    } else {
        core.reset(new regex_core(pattern, match_flags(mode)));
    }
}

pattern_match::~pattern_match() { }

bool pattern_match::match(const ustring& text) const
{
    if (!core || !core->is_usable())
        throw_regex<RegexInvalidObject>();
    bool matched = false;
    const regex_excp_id id = match_text(core->get_regex(), text, normalization, matched);
    if (id == regex_failed_normalization)
        throw_regex<RegexFailedNormalization>();
    if (id != regex_success)
        throw_regex<RegexFailedMatchOperation>();
    return matched;
}

simple_pattern_match::simple_pattern_match()
    : normalization(0)
    , state(regex_not_opened)
{ }

regex_excp_id simple_pattern_match::open(const ustring& pattern, const character_handling_mode_context& mode)
{
    if (state != regex_not_opened)
        return state;
    if (pattern.empty())
        return state = regex_invalid_argument;
    normalization = normalization_flag(mode);
    // Normalised whatever the flag, so that a pattern ICU cannot normalise fails the same way in
    // every mode.
    detail::normalized_text normalized;
    if (!normalize(normalized, pattern.data(), pattern.size(), normalization))
        return state = regex_failed_normalization;
    if (normalization & normalize_bit)
        core.open(str(normalized), match_flags(mode), state);
    else
        core.open(pattern, match_flags(mode), state);
    return state;
}

bool simple_pattern_match::match(const ustring& text, regex_excp_id& id) const
{
    if (state != regex_success) {
        id = regex_invalid_object;
        return false;
    }
    bool matched = false;
    id = match_text(core.get_regex(), text, normalization, matched);
    return matched;
}

} // namespace i18n
} // namespace fl
