#ifndef QVI18N_I18N_CATALOG_CHECKED_LENGTH_HPP
#define QVI18N_I18N_CATALOG_CHECKED_LENGTH_HPP

// Lengths handed to Expat and ICU, which take an int: a longer text is refused the way
// numeric_cast refuses it, in the form that an exception_ptr can carry.

#include <boost/exception/exception.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <cstddef>

namespace fl {
namespace i18n {
namespace detail {

inline int checked_length(std::size_t size)
{
    try {
        return boost::numeric_cast<int>(size);
    } catch (const boost::numeric::positive_overflow& e) {
        throw boost::enable_current_exception(e);
    }
}

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
