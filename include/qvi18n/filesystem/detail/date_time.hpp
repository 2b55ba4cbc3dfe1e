#ifndef QVI18N_FILESYSTEM_DETAIL_DATE_TIME_HPP
#define QVI18N_FILESYSTEM_DETAIL_DATE_TIME_HPP

#include <qvi18n/config.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <ctime>

namespace fl {
namespace i18n {
namespace date_time {

namespace detail {
QVI18N_API std::time_t ptime_to_time_t(boost::posix_time::ptime const& t);
} // namespace detail

} // namespace date_time
} // namespace i18n
} // namespace fl

#endif
