#ifndef QVI18N_I18N_LOCALE_STARTUP_JVM_CONTEXT_HPP
#define QVI18N_I18N_LOCALE_STARTUP_JVM_CONTEXT_HPP

// The locale settings for a Java virtual machine started in this process, and the process
// environment in ustring terms.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <string>

namespace fl {
namespace i18n {

// What a JVM needs to start in the process's locale. The classic pair is filled only when
// localisation is off, and the global pair only when it differs from the system's messages
// locale, so a JVM is told just what it cannot work out by itself.
struct QVI18N_API qvlc_java_context {
    qvlc_java_context(std::string const& system_language, std::string const& system_territory,
        std::string const& classic_language, std::string const& classic_territory,
        std::string const& global_language, std::string const& global_territory,
        std::string const& jvm_encoding);

    std::string system_language;
    std::string system_territory;
    std::string classic_language;
    std::string classic_territory;
    std::string global_language;
    std::string global_territory;
    std::string jvm_encoding;
};

// Reads the locales without a lock: call it after start-up.
QVI18N_API qvlc_java_context get_javavm_init_context();

// Environment values are UTF-8. None of these takes a lock: like the C library's, they must not
// race with each other or with initialize(), which rewrites the locale variables.

// The value of name, or an empty text when it is unset (or name is empty: then errno is EINVAL).
QVI18N_API ustring getenv(std::string const& name);
// Sets name to value unless overwrite is 0 and name is set. An empty value is refused (-1,
// EINVAL) unless allow_empty; so is an empty name. Otherwise the C library's result.
QVI18N_API int setenv(std::string const& name, ustring const& value, int overwrite, bool allow_empty);
// -1 and EINVAL for an empty name, otherwise the C library's result.
QVI18N_API int unsetenv(std::string const& name);

} // namespace i18n
} // namespace fl

#endif
