#ifndef QVI18N_I18N_CTYPE_CTYPE_THROW_HPP
#define QVI18N_I18N_CTYPE_CTYPE_THROW_HPP

#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>

#include <boost/exception/exception.hpp>

namespace fl {
namespace i18n {
namespace detail {

// Every character-handling failure is thrown in the form that a boost::exception_ptr can carry.
template <typename E> [[noreturn]] void throw_ctype()
{
    throw boost::enable_current_exception(E());
}

// Lengths handed to ICU here must stay below a quarter of the 32-bit range, whatever the call.
const unsigned long ctype_length_limit = 0x40000000UL;

inline int checked_ctype_length(unsigned long length)
{
    if (length >= ctype_length_limit)
        throw_ctype<CtypeSizeTooLarge>();
    return static_cast<int>(length);
}

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
