#include <qvi18n/config.hpp>

#ifdef QVI18N_PLATFORM_TAG_BUILD
static_assert(sizeof(QVI18N_PLATFORM_TAG_BUILD) == sizeof(QVI18N_PLATFORM_TAG),
    "the build system and the compiler disagree on the platform tag");
#endif

namespace fl {
namespace i18n {

char const* platform_tag() noexcept
{
    return QVI18N_PLATFORM_TAG;
}

char const* library_version() noexcept
{
    return QVI18N_VERSION_STRING;
}

} // namespace i18n
} // namespace fl
