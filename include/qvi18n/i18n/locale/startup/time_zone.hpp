#ifndef QVI18N_I18N_LOCALE_STARTUP_TIME_ZONE_HPP
#define QVI18N_I18N_LOCALE_STARTUP_TIME_ZONE_HPP

// Local time in a named zone to UTC and back, on whole seconds from 1970 on.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/any.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <exception>
#include <string>

namespace fl {
namespace i18n {
namespace time_zone {

// Base of the time-zone failures. Unlike the rest of the library, these carry a sentence as
// well as an identifier, and what() gives the sentence.
class QVI18N_API timezone_exception_base : public std::exception {
public:
    timezone_exception_base(std::string identifier, std::string message);
    ~timezone_exception_base() override;

    const char* what() const noexcept override;
    const std::string& get_identifier() const noexcept { return identifier_; }
    const std::string& get_message() const noexcept { return message_; }

private:
    std::string identifier_;
    std::string message_;
};

// A time before 1970, or one the zone cannot place.
class QVI18N_API invalid_time_data : public timezone_exception_base {
public:
    invalid_time_data();
    ~invalid_time_data() override;
};

// A zone name that the time-zone data does not know.
class QVI18N_API invalid_timezone_id : public timezone_exception_base {
public:
    invalid_timezone_id();
    ~invalid_timezone_id() override;
};

// A named time zone. Each object owns its own zone; copies make a fresh one of the same name.
class QVI18N_API timezone {
public:
    // An empty name is the system's zone. The narrow form takes ASCII only.
    timezone(const std::string& id);
    timezone(const ustring& id);
    timezone(const timezone& other);
    timezone& operator=(const timezone& other);
    ~timezone();

    // Makes this the system's zone.
    void create_default();

    ustring get_id() const;
    // Whether offsets leave daylight-saving time out. Always false on this platform.
    bool get_ignore_dst() const { return ignore_dst; }
    // A boost::shared_ptr<icu::TimeZone const>.
    const boost::any& get_zone() const { return zone; }

    bool operator==(const timezone& other) const;
    bool operator!=(const timezone& other) const { return !(*this == other); }

private:
    void assign_from(const timezone& other);

    boost::any zone;
    ustring id;
    bool ignore_dst;
};

// t as local time in zone, moved to UTC; and the reverse. Microseconds are kept. A time before
// 1970 throws invalid_time_data.
QVI18N_API boost::posix_time::ptime to_utc(const boost::posix_time::ptime& t, const timezone& zone);
QVI18N_API boost::posix_time::ptime from_utc(const boost::posix_time::ptime& t, const timezone& zone);

} // namespace time_zone
} // namespace i18n
} // namespace fl

#endif
