#ifndef QVI18N_I18N_CONVERSION_CTX_OPEN_HPP
#define QVI18N_I18N_CONVERSION_CTX_OPEN_HPP

// How the converter classes on a named encoding open and reach their CvtCtx.

#include <qvi18n/i18n/conversion/cvtctx.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include "i18n/conversion/cvt_throw.hpp"

#include <memory>
#include <string>

namespace fl {
namespace i18n {
namespace detail {

// A converter built with no encoding follows the global locale as it stands now.
inline std::unique_ptr<CvtCtx> open_ctx(const std::string& encoding)
{
    return std::unique_ptr<CvtCtx>(new CvtCtx(encoding.empty() ? QvLocale::global().encoding() : encoding));
}

inline UConverter* converter_of(const std::unique_ptr<CvtCtx>& ctx)
{
    if (!ctx || !ctx->get_converter())
        throw_cvt<CvtConversionFailure>();
    return ctx->get_converter();
}

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
