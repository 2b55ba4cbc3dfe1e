#include <qvi18n/filesystem/date_time.hpp>
#include <qvi18n/filesystem/detail/date_time.hpp>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/date_time/posix_time/posix_time.hpp>
#include <gtest/gtest.h>

#include <cstring>

namespace {

using boost::gregorian::date;
using boost::posix_time::microseconds;
using boost::posix_time::ptime;
using boost::posix_time::seconds;
using fl::i18n::date_time::invalid_data_error;
using fl::i18n::date_time::ptime_to_time_t;

ptime const epoch(date(1970, 1, 1));

TEST(DateTimeConversion, CountsSecondsFromTheEpoch)
{
    EXPECT_EQ(0, ptime_to_time_t(epoch));
    EXPECT_EQ(86400, ptime_to_time_t(ptime(date(1970, 1, 2))));
    EXPECT_EQ(1234567890, ptime_to_time_t(epoch + seconds(1234567890)));
    EXPECT_EQ(-1, ptime_to_time_t(epoch - seconds(1)));
    EXPECT_EQ(ptime_to_time_t(epoch + seconds(42)),
        fl::i18n::date_time::detail::ptime_to_time_t(epoch + seconds(42)));
}

TEST(DateTimeConversion, DropsFractionsTowardZero)
{
    EXPECT_EQ(5, ptime_to_time_t(epoch + seconds(5) + microseconds(999999)));
    EXPECT_EQ(0, ptime_to_time_t(epoch - microseconds(500000)));
    EXPECT_EQ(-5, ptime_to_time_t(epoch - seconds(5) - microseconds(999999)));
}

TEST(DateTimeConversion, WrapsAfterThe32BitRange)
{
    EXPECT_EQ(2147483647, ptime_to_time_t(epoch + seconds(2147483647)));
    // One second later the count wraps to the most negative 32-bit value.
    ptime const past_2038 = epoch + seconds(2147483647) + seconds(1);
    EXPECT_EQ(-2147483647 - 1, ptime_to_time_t(past_2038));
    EXPECT_EQ(-2147483647 - 1 + 3600, ptime_to_time_t(past_2038 + seconds(3600)));
}

TEST(DateTimeConversion, RefusesTimesOffTheTimeLine)
{
    for (ptime const& t : {ptime(boost::posix_time::not_a_date_time), ptime(boost::posix_time::pos_infin),
             ptime(boost::posix_time::neg_infin)}) {
        try {
            ptime_to_time_t(t);
            ADD_FAILURE() << "no exception for " << boost::posix_time::to_simple_string(t);
        } catch (fl::i18n::date_time::date_time_exception_base const& e) {
            EXPECT_NE(nullptr, dynamic_cast<invalid_data_error const*>(&e));
            EXPECT_EQ("fl:i18n:date_time:invalid_data_error", e.get_identifier());
            EXPECT_EQ(1, e.get_code());
            EXPECT_STREQ("fl:i18n:date_time:invalid_data_error", e.what());
        }
    }
}

} // namespace
