#ifndef QVI18N_I18N_CONVERSION_CVT_THROW_HPP
#define QVI18N_I18N_CONVERSION_CVT_THROW_HPP

#include <qvi18n/i18n/conversion/converter.hpp>

#include <boost/exception/exception.hpp>

#include <utility>

namespace fl {
namespace i18n {
namespace detail {

// Every conversion failure is thrown in the form that a boost::exception_ptr can carry.
template <typename E, typename... Args> [[noreturn]] void throw_cvt(Args&&... args)
{
    throw boost::enable_current_exception(E(std::forward<Args>(args)...));
}

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
