#ifndef QVI18N_CONFIG_HPP
#define QVI18N_CONFIG_HPP

// Symbols are hidden by default; the public API is exported explicitly.
#if defined(QVI18N_BUILDING)
#define QVI18N_API __attribute__((visibility("default")))
#else
#define QVI18N_API __attribute__((visibility("default")))
#endif
#define QVI18N_LOCAL __attribute__((visibility("hidden")))

#if defined(QVRESOURCE_CORE_BUILDING)
#define QVRESOURCE_CORE_API __attribute__((visibility("default")))
#else
#define QVRESOURCE_CORE_API __attribute__((visibility("default")))
#endif

// The folder under bin/ that holds the library on this platform.
#if defined(__linux__) && defined(__x86_64__)
#define QVI18N_PLATFORM_TAG "lnxx64"
#elif defined(__linux__) && defined(__aarch64__)
#define QVI18N_PLATFORM_TAG "lnxarm64"
#elif defined(__APPLE__) && defined(__x86_64__)
#define QVI18N_PLATFORM_TAG "darx64"
#else
#error "qvi18n: unsupported platform"
#endif

namespace fl {
namespace i18n {

/// The platform tag this library was built for ("lnxx64", "lnxarm64", "darx64").
QVI18N_API char const* platform_tag() noexcept;

/// The library's version, "major.minor.patch".
QVI18N_API char const* library_version() noexcept;

} // namespace i18n
} // namespace fl

#endif
