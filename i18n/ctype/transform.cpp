#include <qvi18n/i18n/ctype/transform.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include "i18n/ctype/ctype_throw.hpp"
#include "i18n/ctype/normalized_text.hpp"
#include <qvi18n/i18n/locale/ascii_text.hpp>

#include <boost/function.hpp>
#include <boost/smart_ptr/make_shared.hpp>

#include <unicode/unorm.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>

namespace fl {
namespace i18n {

namespace {

struct borrowed_locale {
    void operator()(const QvLocale*) const { }
};

} // namespace

to_locale_case_base::to_locale_case_base(const boost::shared_ptr<QvLocale const>& locale)
    : locale(locale)
{ }

to_locale_case_base::to_locale_case_base(const QvLocale& locale)
    : locale(&locale, borrowed_locale())
{ }

namespace lcctype {
namespace {

typedef boost::function<std::int32_t(UChar*, std::int32_t, const UChar*, std::int32_t, UErrorCode*)>
    transform_function;

unsigned long transform_with(char16_t* destination, unsigned long destination_size, const char16_t* source,
    unsigned long length, const transform_function& function)
{
    if (!source || length == 0)
        return 0;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t capacity = destination ? i18n::detail::checked_ctype_length(destination_size) : 0;
    const std::int32_t source_length = i18n::detail::checked_ctype_length(length);
    const std::int32_t result = function(destination, capacity, source, source_length, &status);
    if (static_cast<std::uint32_t>(result) >= i18n::detail::ctype_length_limit)
        i18n::detail::throw_ctype<CtypeSizeTooLarge>();
    if (status <= U_ZERO_ERROR || status == U_BUFFER_OVERFLOW_ERROR)
        return static_cast<unsigned long>(result);
    if (length >= i18n::detail::ctype_length_limit)
        i18n::detail::throw_ctype<CtypeSizeTooLarge>();
    i18n::detail::throw_ctype<CtypeTransformFailure>();
}

std::int32_t to_upper_in(const char* locale, UChar* destination, std::int32_t capacity, const UChar* source,
    std::int32_t length, UErrorCode* status)
{
    return u_strToUpper(destination, capacity, source, length, locale, status);
}

std::int32_t to_lower_in(const char* locale, UChar* destination, std::int32_t capacity, const UChar* source,
    std::int32_t length, UErrorCode* status)
{
    return u_strToLower(destination, capacity, source, length, locale, status);
}

// The normaliser of the old unorm_normalize with no options, without its deprecated entry point.
std::int32_t normalize_to(const UNormalizer2* (*instance)(UErrorCode*), UChar* destination,
    std::int32_t capacity, const UChar* source, std::int32_t length, UErrorCode* status)
{
    const UNormalizer2* normalizer = instance(status);
    if (U_FAILURE(*status))
        return 0;
    return unorm2_normalize(normalizer, source, length, destination, capacity, status);
}

inline int compare_status(std::int32_t result, UErrorCode status)
{
    if (U_FAILURE(status))
        i18n::detail::throw_ctype<CtypeStrCompFailure>();
    return result;
}

// Walks the common start of two texts as long as both hold ASCII, folding case if asked. Returns
// true with `result` set when ASCII alone decides; otherwise `position` is where ICU has to take
// over: the first unit that is not ASCII on either side, or the end of the shorter text.
template <bool Fold>
bool ascii_prefix(const char16_t* left, std::int32_t left_length, const char16_t* right,
    std::int32_t right_length, std::int32_t& position, int& result)
{
    const std::int32_t common = std::min(left_length, right_length);
    std::int32_t i = 0;
    for (; i < common; ++i) {
        char16_t a = left[i];
        char16_t b = right[i];
        if ((a | b) >= 0x80)
            break;
        if (a != b) {
            if (Fold) {
                a = fl::i18n::detail::ascii_lower(a);
                b = fl::i18n::detail::ascii_lower(b);
                if (a == b)
                    continue;
            }
            result = static_cast<int>(a) - static_cast<int>(b);
            return true;
        }
    }
    if (i == common && left_length == right_length) {
        result = 0;
        return true;
    }
    position = i;
    return false;
}

// Canonical equivalence in code-unit order, as unorm_compare answers it, from both texts decomposed in
// bulk: on text where many characters differ in form this is much quicker than ICU's comparison
// character by character.
int decomposed_compare(const char16_t* left, std::int32_t left_count, const char16_t* right, std::int32_t right_count)
{
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* nfd = unorm2_getNFDInstance(&status);
    i18n::detail::normalized_text a;
    a.assign(nfd, left, left_count, status);
    i18n::detail::normalized_text b;
    b.assign(nfd, right, right_count, status);
    if (U_FAILURE(status))
        i18n::detail::throw_ctype<CtypeStrCompFailure>();
    const std::int32_t common = std::min(a.length, b.length);
    for (std::int32_t i = 0; i < common; ++i) {
        if (a.text[i] != b.text[i])
            return static_cast<int>(a.text[i]) - static_cast<int>(b.text[i]);
    }
    return a.length == b.length ? 0 : (a.length < b.length ? -1 : 1);
}

// Branch-free, so that the compiler can walk it many units a step: well paired means every lead is
// followed by a trail and every trail follows a lead.
bool well_paired(const char16_t* text, std::int32_t count)
{
    if (count == 0)
        return true;
    unsigned bad = U16_IS_TRAIL(text[0]) | U16_IS_LEAD(text[count - 1]);
    for (std::int32_t i = 0; i + 1 < count; ++i)
        bad |= static_cast<unsigned>(U16_IS_LEAD(text[i])) ^ static_cast<unsigned>(U16_IS_TRAIL(text[i + 1]));
    return bad == 0;
}

int normalized_compare(const char16_t* left, unsigned long left_length, const char16_t* right,
    unsigned long right_length, std::uint32_t options)
{
    std::int32_t left_count = i18n::detail::checked_ctype_length(left_length);
    std::int32_t right_count = i18n::detail::checked_ctype_length(right_length);
    // A null text is ICU's to refuse.
    if (left && right) {
        std::int32_t position = 0;
        int result = 0;
        const bool fold = (options & U_COMPARE_IGNORE_CASE) != 0;
        if (fold ? ascii_prefix<true>(left, left_count, right, right_count, position, result)
                 : ascii_prefix<false>(left, left_count, right, right_count, position, result))
            return result;
        // What follows the prefix may combine with its last character, so ICU starts there: an ASCII
        // character begins a new canonical segment.
        const std::int32_t skip = position > 0 ? position - 1 : 0;
        left += skip;
        right += skip;
        left_count -= skip;
        right_count -= skip;
        // ICU matches a lone lead surrogate against the lead of a pair before it decomposes the
        // pair, which whole-text decomposition cannot reproduce: such text goes to ICU.
        if (options == 0 && well_paired(left, left_count) && well_paired(right, right_count))
            return decomposed_compare(left, left_count, right, right_count);
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t result = unorm_compare(left, left_count, right, right_count, options, &status);
    return compare_status(result, status);
}

} // namespace

unsigned long transform(char16_t* destination, unsigned long destination_size, const char16_t* source,
    unsigned long length, const to_upper&)
{
    using namespace std::placeholders;
    return transform_with(destination, destination_size, source, length, std::bind(to_upper_in, "", _1, _2, _3, _4, _5));
}

unsigned long transform(char16_t* destination, unsigned long destination_size, const char16_t* source,
    unsigned long length, const to_lower&)
{
    using namespace std::placeholders;
    return transform_with(destination, destination_size, source, length, std::bind(to_lower_in, "", _1, _2, _3, _4, _5));
}

unsigned long transform(char16_t* destination, unsigned long destination_size, const char16_t* source,
    unsigned long length, const to_upper_locale& locale)
{
    using namespace std::placeholders;
    const std::string name = locale.get_locale().shortName(QvLocale::LcCtype);
    return transform_with(
        destination, destination_size, source, length, std::bind(to_upper_in, name.c_str(), _1, _2, _3, _4, _5));
}

unsigned long transform(char16_t* destination, unsigned long destination_size, const char16_t* source,
    unsigned long length, const to_lower_locale& locale)
{
    using namespace std::placeholders;
    const std::string name = locale.get_locale().shortName(QvLocale::LcCtype);
    return transform_with(
        destination, destination_size, source, length, std::bind(to_lower_in, name.c_str(), _1, _2, _3, _4, _5));
}

unsigned long transform(char16_t* destination, unsigned long destination_size, const char16_t* source,
    unsigned long length, const to_nfd&)
{
    using namespace std::placeholders;
    return transform_with(
        destination, destination_size, source, length, std::bind(normalize_to, unorm2_getNFDInstance, _1, _2, _3, _4, _5));
}

unsigned long transform(char16_t* destination, unsigned long destination_size, const char16_t* source,
    unsigned long length, const to_nfc&)
{
    using namespace std::placeholders;
    return transform_with(
        destination, destination_size, source, length, std::bind(normalize_to, unorm2_getNFCInstance, _1, _2, _3, _4, _5));
}

int compare(const char16_t* left, unsigned long left_length, const char16_t* right, unsigned long right_length,
    const case_sensitive&)
{
    const std::int32_t left_count = i18n::detail::checked_ctype_length(left_length);
    const std::int32_t right_count = i18n::detail::checked_ctype_length(right_length);
    return u_strCompare(left, left_count, right, right_count, false);
}

int compare(const char16_t* left, unsigned long left_length, const char16_t* right, unsigned long right_length,
    const case_insensitive&)
{
    std::int32_t left_count = i18n::detail::checked_ctype_length(left_length);
    std::int32_t right_count = i18n::detail::checked_ctype_length(right_length);
    // A null text is ICU's to refuse.
    if (left && right) {
        std::int32_t position = 0;
        int result = 0;
        if (ascii_prefix<true>(left, left_count, right, right_count, position, result))
            return result;
        // Case folding maps character by character, so ICU may start where ASCII stopped.
        left += position;
        right += position;
        left_count -= position;
        right_count -= position;
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t result = u_strCaseCompare(left, left_count, right, right_count, 0, &status);
    return compare_status(result, status);
}

int compare(const char16_t* left, unsigned long left_length, const char16_t* right, unsigned long right_length,
    const normalized_case_sensitive&)
{
    return normalized_compare(left, left_length, right, right_length, 0);
}

int compare(const char16_t* left, unsigned long left_length, const char16_t* right, unsigned long right_length,
    const normalized_case_insensitive&)
{
    return normalized_compare(left, left_length, right, right_length, U_COMPARE_IGNORE_CASE);
}

namespace {

const unsigned long count_limit = 0x7FFFFFFFUL;

// ICU reads null-terminated texts without checking for null.
inline void require_texts(const char16_t* left, const char16_t* right)
{
    if (!left || !right)
        i18n::detail::throw_ctype<CtypeInvalidArgument>();
}

} // namespace

int strcmp(const char16_t* left, const char16_t* right)
{
    require_texts(left, right);
    return u_strcmp(left, right);
}

int strncmp(const char16_t* left, const char16_t* right, unsigned long count)
{
    if (count > count_limit)
        return -1;
    require_texts(left, right);
    return u_strncmp(left, right, static_cast<std::int32_t>(count));
}

int strcasecmp(const char16_t* left, const char16_t* right)
{
    require_texts(left, right);
    return u_strcasecmp(left, right, 0);
}

int strncasecmp(const char16_t* left, const char16_t* right, unsigned long count)
{
    if (count > count_limit)
        return -1;
    require_texts(left, right);
    return u_strncasecmp(left, right, static_cast<std::int32_t>(count), 0);
}

} // namespace lcctype
} // namespace i18n
} // namespace fl
