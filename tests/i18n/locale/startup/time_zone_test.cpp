#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/locale/startup/time_zone.hpp>

#include "qvtest/scoped_env.hpp"

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/shared_ptr.hpp>
#include <gtest/gtest.h>

#include <unicode/timezone.h>

namespace {

namespace tz = fl::i18n::time_zone;
using boost::posix_time::hours;
using boost::posix_time::microseconds;
using boost::posix_time::ptime;
using boost::posix_time::seconds;

ptime at(int year, int month, int day, int hour)
{
    return ptime(boost::gregorian::date(year, month, day), hours(hour));
}

TEST(TimeZone, NamesAndTheDefaultZone)
{
    // ICU reads the system's zone once per process from TZ; each test is its own process.
    qvtest::scoped_env zone_env("TZ", "Asia/Tokyo");
    EXPECT_EQ(tz::timezone("").get_id(), u"Asia/Tokyo");
    EXPECT_EQ(tz::timezone(fl::i18n::ustring()).get_id(), u"Asia/Tokyo");

    tz::timezone paris("Europe/Paris");
    EXPECT_EQ(paris.get_id(), u"Europe/Paris");
    EXPECT_EQ(tz::timezone(u"Europe/Paris"), paris);
    EXPECT_NE(tz::timezone("Europe/Berlin"), paris);
    EXPECT_FALSE(paris.get_ignore_dst());

    paris.create_default();
    EXPECT_EQ(paris.get_id(), u"Asia/Tokyo");

    try {
        tz::timezone("No/Such_Zone");
        FAIL() << "an unknown zone was accepted";
    } catch (tz::invalid_timezone_id const& e) {
        EXPECT_EQ(e.get_identifier(), "fl::i18n::timezone::invalid_timezone_id");
        EXPECT_STREQ(e.what(), "Invalid timezone id.");
    }
    // The narrow form takes ASCII only.
    EXPECT_THROW(tz::timezone("Europe/Z\xC3\xBCrich"), fl::i18n::CvtExceptionBase);
}

TEST(TimeZone, CopiesAreEqualButIndependent)
{
    tz::timezone ny("America/New_York");
    tz::timezone copy(ny);
    EXPECT_EQ(copy, ny);
    EXPECT_NE(boost::any_cast<boost::shared_ptr<icu::TimeZone const>>(copy.get_zone()).get(),
        boost::any_cast<boost::shared_ptr<icu::TimeZone const>>(ny.get_zone()).get());

    tz::timezone other("UTC");
    other = ny;
    EXPECT_EQ(other.get_id(), u"America/New_York");
    tz::timezone& itself = other;
    other = itself;
    EXPECT_EQ(other, ny);
}

TEST(TimeZone, ConversionsFollowTheZoneAndItsSummerTime)
{
    tz::timezone paris("Europe/Paris");
    const ptime winter = at(2024, 1, 15, 12);
    const ptime summer = at(2024, 7, 15, 12);
    EXPECT_EQ(tz::to_utc(winter, paris), winter - hours(1));
    EXPECT_EQ(tz::to_utc(summer, paris), summer - hours(2));
    EXPECT_EQ(tz::from_utc(summer - hours(2), paris), summer);
    EXPECT_EQ(tz::from_utc(winter, tz::timezone("America/Los_Angeles")), winter - hours(8));

    // Microseconds ride along; a round trip away from a transition is exact.
    const ptime fine = summer + microseconds(123456);
    EXPECT_EQ(tz::to_utc(fine, paris), fine - hours(2));
    EXPECT_EQ(tz::from_utc(tz::to_utc(fine, paris), paris), fine);

    // The first second of 1970 converts, the last of 1969 does not, in either direction.
    const ptime epoch(boost::gregorian::date(1970, 1, 1));
    tz::timezone utc("UTC");
    EXPECT_EQ(tz::to_utc(epoch, utc), epoch);
    EXPECT_EQ(tz::from_utc(epoch, paris), epoch + hours(1));
    try {
        tz::to_utc(epoch - seconds(1), utc);
        FAIL() << "a time before 1970 was converted";
    } catch (tz::invalid_time_data const& e) {
        EXPECT_EQ(e.get_identifier(), "fl::i18n::timezone::invalid_time_data");
        EXPECT_STREQ(e.what(), "Invalid time data.");
    }
    EXPECT_THROW(tz::from_utc(epoch - seconds(1), paris), tz::invalid_time_data);
    // Seconds are held in 32 bits: past January 2038 they turn negative.
    EXPECT_THROW(tz::to_utc(at(2040, 1, 1, 0), utc), tz::invalid_time_data);
    EXPECT_THROW(tz::to_utc(ptime(), utc), tz::invalid_time_data);
}

} // namespace
