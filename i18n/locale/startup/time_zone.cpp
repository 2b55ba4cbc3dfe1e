#include <qvi18n/i18n/locale/startup/time_zone.hpp>

#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/exception/exception.hpp>
#include <boost/numeric/conversion/cast.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/thread/once.hpp>

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cmath>
#include <cstdint>
#include <utility>

namespace fl {
namespace i18n {
namespace time_zone {

timezone_exception_base::timezone_exception_base(std::string identifier, std::string message)
    : identifier_(std::move(identifier))
    , message_(std::move(message))
{ }

timezone_exception_base::~timezone_exception_base() { }

const char* timezone_exception_base::what() const noexcept
{
    return message_.c_str();
}

invalid_time_data::invalid_time_data()
    : timezone_exception_base("fl::i18n::timezone::invalid_time_data", "Invalid time data.")
{ }

invalid_time_data::~invalid_time_data() { }

invalid_timezone_id::invalid_timezone_id()
    : timezone_exception_base("fl::i18n::timezone::invalid_timezone_id", "Invalid timezone id.")
{ }

invalid_timezone_id::~invalid_timezone_id() { }

namespace {

typedef boost::shared_ptr<const icu::TimeZone> zone_ptr;

// Process-wide, made once and never freed, so that they outlive every static caller.
const boost::posix_time::ptime* epoch_time = nullptr;
boost::once_flag epoch_once = BOOST_ONCE_INIT;
const codecvt_ascii_to_ustring* ascii_widener = nullptr;
boost::once_flag ascii_widener_once = BOOST_ONCE_INIT;

void make_epoch()
{
    epoch_time = new boost::posix_time::ptime(boost::gregorian::date(1970, 1, 1));
}

void make_ascii_widener()
{
    ascii_widener = new codecvt_ascii_to_ustring;
}

const boost::posix_time::ptime& epoch()
{
    boost::call_once(epoch_once, &make_epoch);
    return *epoch_time;
}

// ICU answers an unknown name with its unknown zone rather than a failure; that answer is the
// test.
zone_ptr checked(icu::TimeZone* made)
{
    zone_ptr zone(made);
    if (!zone || *zone == icu::TimeZone::getUnknown())
        throw boost::enable_current_exception(invalid_timezone_id());
    return zone;
}

zone_ptr create_zone(const ustring& id)
{
    return checked(icu::TimeZone::createTimeZone(
        icu::UnicodeString(id.data(), static_cast<int32_t>(id.size()))));
}

const icu::TimeZone& icu_zone(const timezone& zone)
{
    const zone_ptr* held = boost::any_cast<zone_ptr>(&zone.get_zone());
    if (held == nullptr || !*held)
        throw boost::enable_current_exception(invalid_timezone_id());
    return **held;
}

ustring icu_id(const icu::TimeZone& zone)
{
    icu::UnicodeString text;
    zone.getID(text);
    ustring id(text.getBuffer(), static_cast<ustring::size_type>(text.length()));
    const ustring::size_type nul = id.find(u'\0');
    if (nul != ustring::npos)
        id.resize(nul);
    return id;
}

// The one conversion of both directions: local_input says whether t is local time.
boost::posix_time::ptime shift(const boost::posix_time::ptime& t, const timezone& zone, bool local_input)
{
    const icu::TimeZone& icu = icu_zone(zone);
    if (t.is_special())
        throw boost::enable_current_exception(invalid_time_data());
    const boost::posix_time::time_duration since = t - epoch();
    // Offsets apply to whole seconds held in 32 bits, as the zone's callers always had them.
    const auto seconds = static_cast<std::int32_t>(since.total_seconds());
    if (seconds < 0)
        throw boost::enable_current_exception(invalid_time_data());

    double milliseconds = static_cast<double>(seconds) * 1000.0;
    std::int32_t raw = 0;
    std::int32_t dst = 0;
    UErrorCode status = U_ZERO_ERROR;
    icu.getOffset(milliseconds, static_cast<UBool>(local_input), raw, dst, status);
    if (U_FAILURE(status))
        throw boost::enable_current_exception(invalid_time_data());
    const std::int32_t offset = raw + (zone.get_ignore_dst() ? 0 : dst);
    milliseconds = local_input ? milliseconds - offset : milliseconds + offset;

    const auto whole = boost::numeric_cast<std::int64_t>(
        milliseconds >= 0 ? std::floor(milliseconds) : std::ceil(milliseconds));
    return epoch() + boost::posix_time::milliseconds(whole)
        + boost::posix_time::microseconds(since.total_microseconds() % 1000000);
}

} // namespace

timezone::timezone(const std::string& id)
    : ignore_dst(false)
{
    if (id.empty()) {
        create_default();
        return;
    }
    boost::call_once(ascii_widener_once, &make_ascii_widener);
    zone = create_zone(ascii_widener->convert(id.data(), id.size()));
}

timezone::timezone(const ustring& id)
    : ignore_dst(false)
{
    if (id.empty()) {
        create_default();
        return;
    }
    zone = create_zone(id);
}

timezone::timezone(const timezone& other)
    : ignore_dst(false)
{
    assign_from(other);
}

timezone& timezone::operator=(const timezone& other)
{
    if (this != &other)
        assign_from(other);
    return *this;
}

timezone::~timezone() { }

// A copy is a zone made anew from the other's name, never a share or a clone of its object.
void timezone::assign_from(const timezone& other)
{
    zone_ptr made = create_zone(icu_id(icu_zone(other)));
    zone = made;
    id = other.id;
    ignore_dst = other.ignore_dst;
}

void timezone::create_default()
{
    zone_ptr made = checked(icu::TimeZone::createDefault());
    zone = made;
    id.clear();
    ignore_dst = false;
}

ustring timezone::get_id() const
{
    if (!id.empty())
        return id;
    return icu_id(icu_zone(*this));
}

bool timezone::operator==(const timezone& other) const
{
    return icu_zone(*this) == icu_zone(other) && get_id() == other.get_id() && ignore_dst == other.ignore_dst;
}

boost::posix_time::ptime to_utc(const boost::posix_time::ptime& t, const timezone& zone)
{
    return shift(t, zone, true);
}

boost::posix_time::ptime from_utc(const boost::posix_time::ptime& t, const timezone& zone)
{
    return shift(t, zone, false);
}

} // namespace time_zone
} // namespace i18n
} // namespace fl
