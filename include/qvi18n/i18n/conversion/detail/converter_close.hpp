#ifndef QVI18N_I18N_CONVERSION_DETAIL_CONVERTER_CLOSE_HPP
#define QVI18N_I18N_CONVERSION_DETAIL_CONVERTER_CLOSE_HPP

// The owning handle of an ICU converter, shared by the conversion classes.

#include <qvi18n/config.hpp>

#include <unicode/ucnv.h>

#include <memory>

namespace fl {
namespace i18n {
namespace lcctype {

/// Deleter of an owned UConverter.
struct QVI18N_API converter_close {
    void operator()(UConverter* converter) const noexcept
    {
        if (converter)
            ucnv_close(converter);
    }
};

typedef std::unique_ptr<UConverter, converter_close> unique_converter;

} // namespace lcctype
} // namespace i18n
} // namespace fl

#endif
