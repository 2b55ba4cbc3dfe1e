#include <qvi18n/config.hpp>

#ifdef QVI18N_PLATFORM_TAG_BUILD
namespace {
constexpr bool same_text(char const* a, char const* b)
{
    return *a == *b && (*a == '\0' || same_text(a + 1, b + 1));
}
} // namespace
static_assert(same_text(QVI18N_PLATFORM_TAG_BUILD, QVI18N_PLATFORM_TAG),
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
