#include <qvi18n/i18n/ctype/facet.hpp>

#include "facet_support.hpp"

#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/ctype/classification.hpp>
#include <qvi18n/i18n/locale/ascii_text.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <boost/thread/once.hpp>

#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace fl {
namespace i18n {
namespace facet {

namespace support {

namespace {

struct class_pair {
    std::ctype_base::mask standard;
    unsigned int library;
};

// The standard class constants are the C library's; mapping by name keeps this right whatever
// their values.
const class_pair classes[] = {
    {std::ctype_base::alpha, ctype_mask::alpha},
    {std::ctype_base::cntrl, ctype_mask::cntrl},
    {std::ctype_base::space, ctype_mask::space},
    {std::ctype_base::digit, ctype_mask::digit},
    {std::ctype_base::punct, ctype_mask::punct},
    {std::ctype_base::lower, ctype_mask::lower},
    {std::ctype_base::upper, ctype_mask::upper},
    {std::ctype_base::xdigit, ctype_mask::xdigit},
    {std::ctype_base::print, ctype_mask::print},
};

// The classes classify() fills in: all but print.
const std::size_t classified = sizeof classes / sizeof classes[0] - 1;

std::ctype_base::mask standard_mask(char32_t c)
{
    std::ctype_base::mask m = 0;
    for (std::size_t i = 0; i < classified; ++i)
        if (is_ctype(classes[i].library, c))
            m = static_cast<std::ctype_base::mask>(m | classes[i].standard);
    return m;
}

template <char32_t (*Map)(char32_t)> const char16_t* map_case(char16_t* low, const char16_t* high)
{
    for (char16_t* p = low; p < high; ++p) {
        if (U16_IS_LEAD(*p) && p + 1 < high && U16_IS_TRAIL(p[1])) {
            const char32_t mapped = Map(U16_GET_SUPPLEMENTARY(p[0], p[1]));
            // A pair stays a pair; simple case mapping never leaves the supplementary planes.
            if (mapped > 0xFFFF) {
                p[0] = U16_LEAD(mapped);
                p[1] = U16_TRAIL(mapped);
            }
            ++p;
        } else {
            *p = static_cast<char16_t>(Map(*p));
        }
    }
    return high;
}

} // namespace

unsigned int library_mask(std::ctype_base::mask m)
{
    unsigned int result = 0;
    for (const class_pair& c : classes)
        if (m & c.standard)
            result |= c.library;
    return result;
}

bool is(std::ctype_base::mask m, char16_t c)
{
    return is_ctype(library_mask(m), c);
}

const char16_t* classify(const char16_t* low, const char16_t* high, std::ctype_base::mask* vec)
{
    for (const char16_t* p = low; p < high; ++p, ++vec) {
        if (U16_IS_LEAD(*p) && p + 1 < high && U16_IS_TRAIL(p[1])) {
            const std::ctype_base::mask m = standard_mask(U16_GET_SUPPLEMENTARY(p[0], p[1]));
            *vec++ = m;
            *vec = m;
            ++p;
        } else {
            *vec = standard_mask(*p);
        }
    }
    return high;
}

const char16_t* scan_is(std::ctype_base::mask m, const char16_t* low, const char16_t* high)
{
    return lcctype::scan(library_mask(m), low, high, is_posix());
}

const char16_t* scan_not(std::ctype_base::mask m, const char16_t* low, const char16_t* high)
{
    return lcctype::scan(library_mask(m), low, high, is_not_posix());
}

char16_t to_upper(char16_t c)
{
    return static_cast<char16_t>(lcctype::toupper(c));
}

char16_t to_lower(char16_t c)
{
    return static_cast<char16_t>(lcctype::tolower(c));
}

const char16_t* to_upper(char16_t* low, const char16_t* high)
{
    return map_case<lcctype::toupper>(low, high);
}

const char16_t* to_lower(char16_t* low, const char16_t* high)
{
    return map_case<lcctype::tolower>(low, high);
}

} // namespace support

ctype_byname_base<char16_t>::ctype_byname_base(const char*, std::size_t refs)
    : std::ctype<char16_t>(refs)
{ }

ctype_byname_base<char16_t>::~ctype_byname_base() { }

numpunct_byname_base<char16_t>::numpunct_byname_base(const char*, std::size_t refs)
    : std::numpunct<char16_t>(refs)
{ }

numpunct_byname_base<char16_t>::~numpunct_byname_base() { }

ctype_facet<char16_t>::ctype_facet(const QvLocale& locale, unsigned long refs)
    : ctype_byname_base<char16_t>("", refs)
    , encoding(locale.encoding())
{ }

ctype_facet<char16_t>::~ctype_facet() { }

bool ctype_facet<char16_t>::do_is(mask m, char_type c) const
{
    return support::is(m, c);
}

const char16_t* ctype_facet<char16_t>::do_is(const char_type* low, const char_type* high, mask* vec) const
{
    return support::classify(low, high, vec);
}

const char16_t* ctype_facet<char16_t>::do_scan_is(mask m, const char_type* low, const char_type* high) const
{
    return support::scan_is(m, low, high);
}

const char16_t* ctype_facet<char16_t>::do_scan_not(mask m, const char_type* low, const char_type* high) const
{
    return support::scan_not(m, low, high);
}

char16_t ctype_facet<char16_t>::do_toupper(char_type c) const
{
    return support::to_upper(c);
}

const char16_t* ctype_facet<char16_t>::do_toupper(char_type* low, const char_type* high) const
{
    return support::to_upper(low, high);
}

char16_t ctype_facet<char16_t>::do_tolower(char_type c) const
{
    return support::to_lower(c);
}

const char16_t* ctype_facet<char16_t>::do_tolower(char_type* low, const char_type* high) const
{
    return support::to_lower(low, high);
}

namespace {

template <typename To, typename From>
using whole_conversion = int32_t (*)(UConverter*, To*, int32_t, const From*, int32_t, UErrorCode*);

// One character through a converter of its own; the first unit of the result, 0 if none.
template <typename To, typename From>
To convert_one(const std::string& encoding, From c, whole_conversion<To, From> convert)
{
    CvtCtx ctx(encoding);
    UErrorCode status = U_ZERO_ERROR;
    To out[16];
    const int32_t n = convert(ctx.get_converter(), out, 16, &c, 1, &status);
    lcctype::num_cast<unsigned long, int>(n);
    lcctype::map_codecvt_exception<From>(status, 1);
    return n > 0 ? out[0] : To(0);
}

// A range into the caller's buffer of one unit per source unit: measured first, then converted
// with at most that room, so a longer result is cut at the buffer's end; a shorter one is padded
// with zeros.
template <typename To, typename From>
void convert_range(
    const std::string& encoding, const From* low, const From* high, To* dest, whole_conversion<To, From> convert)
{
    CvtCtx ctx(encoding);
    const unsigned long length = static_cast<unsigned long>(high - low);
    const int32_t n = lcctype::num_cast<int, unsigned long>(length);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t needed = convert(ctx.get_converter(), nullptr, 0, low, n, &status);
    lcctype::map_codecvt_exception<From>(status, length);
    status = U_ZERO_ERROR;
    const int32_t written = convert(ctx.get_converter(), dest, std::min(needed, n), low, n, &status);
    lcctype::map_codecvt_exception<From>(status, length);
    std::fill(dest + std::min(std::max(written, 0), n), dest + n, To(0));
}

} // namespace

char16_t ctype_facet<char16_t>::do_widen(char c) const
{
    return convert_one<char16_t, char>(encoding, c, &ucnv_toUChars);
}

const char* ctype_facet<char16_t>::do_widen(const char* low, const char* high, char_type* dest) const
{
    convert_range<char16_t, char>(encoding, low, high, dest, &ucnv_toUChars);
    return high;
}

// The default character is not used: what the encoding cannot hold becomes its substitution.
char ctype_facet<char16_t>::do_narrow(char_type c, char) const
{
    return convert_one<char, char16_t>(encoding, c, &ucnv_fromUChars);
}

const char16_t* ctype_facet<char16_t>::do_narrow(
    const char_type* low, const char_type* high, char, char* dest) const
{
    convert_range<char, char16_t>(encoding, low, high, dest, &ucnv_fromUChars);
    return high;
}

numpunct_cache<char16_t>::numpunct_cache(const QvLocale&)
{
    const std::numpunct<char>& classic = std::use_facet<std::numpunct<char>>(std::locale::classic());
    decimal_point = static_cast<unsigned char>(classic.decimal_point());
    thousands_sep = static_cast<unsigned char>(classic.thousands_sep());
    grouping = classic.grouping();
    truename = fl::i18n::detail::widen_ascii(classic.truename());
    falsename = fl::i18n::detail::widen_ascii(classic.falsename());
}

numpunct_facet<char16_t>::numpunct_facet(const QvLocale& locale, unsigned long refs)
    : numpunct_byname_base<char16_t>("C", refs)
    , cache(locale)
{ }

numpunct_facet<char16_t>::~numpunct_facet() { }

char16_t numpunct_facet<char16_t>::do_decimal_point() const
{
    return cache.decimal_point;
}

char16_t numpunct_facet<char16_t>::do_thousands_sep() const
{
    return cache.thousands_sep;
}

std::string numpunct_facet<char16_t>::do_grouping() const
{
    return cache.grouping;
}

ustring numpunct_facet<char16_t>::do_truename() const
{
    return cache.truename;
}

ustring numpunct_facet<char16_t>::do_falsename() const
{
    return cache.falsename;
}

namespace {

// Bits of the categories argument.
const unsigned int numpunct_categories = 0x14;
const unsigned int num_put_category = 0x10;

// Made on first use and never destroyed, so that they outlive static destruction.
boost::once_flag holder_once = BOOST_ONCE_INIT;
global_std_locale_ctx* holder = nullptr;
boost::once_flag mutex_once = BOOST_ONCE_INIT;
boost::mutex* mutex = nullptr;

void make_holder()
{
    holder = new global_std_locale_ctx;
}

void make_mutex()
{
    mutex = new boost::mutex;
}

global_std_locale_ctx& get_holder()
{
    boost::call_once(holder_once, &make_holder);
    return *holder;
}

} // namespace

std::unique_ptr<std::locale> create_std_locale(unsigned int categories, const QvLocale& locale)
{
    std::unique_ptr<std::locale> result(new std::locale(std::locale::classic(), new ctype_facet<char16_t>(locale, 0)));
    if (categories & numpunct_categories)
        result.reset(new std::locale(*result, new numpunct_facet<char16_t>(locale, 0)));
    if (categories & num_put_category)
        result.reset(new std::locale(*result, new std::num_put<char16_t>(0)));
    return result;
}

global_std_locale_ctx::global_std_locale_ctx()
    : locale(new std::locale(std::locale::classic()))
    , initialized(false)
{ }

void global_std_locale_ctx::init(unsigned int categories)
{
    if (initialized)
        return;
    // Assigned in place: references handed out by get_global_std_locale() stay valid.
    *locale = *create_std_locale(categories, QvLocale::global());
    initialized = true;
}

void init_global_std_locale(unsigned int categories)
{
    boost::mutex::scoped_lock lock(get_mutex());
    get_holder().init(categories);
}

std::locale& get_global_std_locale()
{
    return get_holder().get_locale();
}

boost::mutex& get_mutex()
{
    boost::call_once(mutex_once, &make_mutex);
    return *mutex;
}

} // namespace facet
} // namespace i18n
} // namespace fl
