#ifndef QVI18N_FILESYSTEM_DATE_TIME_HPP
#define QVI18N_FILESYSTEM_DATE_TIME_HPP

#include <qvi18n/config.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <ctime>
#include <exception>
#include <string>

namespace fl {
namespace i18n {
namespace date_time {

// Base of the date-time failures: an identifier such as "fl:i18n:date_time:invalid_data_error"
// and a numeric code. what() gives the identifier; there is no sentence for people.
class QVI18N_API date_time_exception_base : public std::exception {
public:
    date_time_exception_base(std::string identifier, int code);
    ~date_time_exception_base() override;

    char const* what() const noexcept override;
    std::string const& get_identifier() const noexcept { return identifier_; }
    int get_code() const noexcept { return code_; }

private:
    std::string identifier_;
    int code_;
};

// A time that has no place on the time line (not-a-date-time, the infinities).
class QVI18N_API invalid_data_error : public date_time_exception_base {
public:
    invalid_data_error();
    ~invalid_data_error() override;
};

// Seconds since 1970-01-01 00:00:00, truncated toward zero. The count is held in 32 signed
// bits before widening, so times after January 2038 wrap, as file times do on disk.
QVI18N_API std::time_t ptime_to_time_t(boost::posix_time::ptime const& t);


} // namespace date_time
} // namespace i18n
} // namespace fl

#endif
