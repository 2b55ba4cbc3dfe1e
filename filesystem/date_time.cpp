#include <qvi18n/filesystem/date_time.hpp>
#include <qvi18n/filesystem/detail/date_time.hpp>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/exception/exception.hpp>

#include <cstdint>
#include <utility>

namespace fl {
namespace i18n {
namespace date_time {

date_time_exception_base::date_time_exception_base(std::string identifier, int code)
    : identifier_(std::move(identifier))
    , code_(code)
{ }

date_time_exception_base::~date_time_exception_base() = default;

char const* date_time_exception_base::what() const noexcept
{
    return identifier_.c_str();
}

invalid_data_error::invalid_data_error()
    : date_time_exception_base("fl:i18n:date_time:invalid_data_error", 1)
{ }

invalid_data_error::~invalid_data_error() = default;

std::time_t detail::ptime_to_time_t(boost::posix_time::ptime const& t)
{
    // Infinities have no second count either; refuse them with not-a-date-time rather than
    // hand out the raw sentinel.
    if (t.is_special())
        throw boost::enable_current_exception(invalid_data_error());
    static boost::posix_time::ptime const epoch(boost::gregorian::date(1970, 1, 1));
    // total_seconds() divides, so a fraction before the epoch truncates toward zero.
    std::int64_t const seconds = (t - epoch).total_seconds();
    return static_cast<std::time_t>(static_cast<std::int32_t>(static_cast<std::uint32_t>(seconds)));
}

std::time_t ptime_to_time_t(boost::posix_time::ptime const& t)
{
    return detail::ptime_to_time_t(t);
}

} // namespace date_time
} // namespace i18n
} // namespace fl
