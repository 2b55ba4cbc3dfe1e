#include <qvi18n/i18n/locale/startup/jvm_context.hpp>

#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/filesystem/detail/converters.hpp>

#include <boost/variant/get.hpp>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace fl {
namespace i18n {

qvlc_java_context::qvlc_java_context(std::string const& system_language, std::string const& system_territory,
    std::string const& classic_language, std::string const& classic_territory,
    std::string const& global_language, std::string const& global_territory, std::string const& jvm_encoding)
    : system_language(system_language)
    , system_territory(system_territory)
    , classic_language(classic_language)
    , classic_territory(classic_territory)
    , global_language(global_language)
    , global_territory(global_territory)
    , jvm_encoding(jvm_encoding)
{ }

qvlc_java_context get_javavm_init_context()
{
    QvLocale const& system = QvLocale::system();
    QvLocale const& global = QvLocale::global();
    std::string const system_language = system.language(QvLocale::LcMessages);
    std::string const system_territory = system.territory(QvLocale::LcMessages);
    std::string const global_language = global.language(QvLocale::LcCtype);
    std::string const global_territory = global.territory(QvLocale::LcCtype);

    bool const localised = get_qvlocale_context().getL10nEnabled();
    bool const same = localised && system_language == global_language && system_territory == global_territory;

    std::string classic_language;
    std::string classic_territory;
    if (!localised) {
        QvLocale const& classic = QvLocale::classic();
        classic_language = classic.language(QvLocale::LcMessages);
        classic_territory = classic.territory(QvLocale::LcMessages);
    }
    std::string const jvm_encoding = boost::get<std::string>(global.getLcOptData(QvLcOptDataCtx::LcJvmEncoding));
    return qvlc_java_context(system_language, system_territory, classic_language, classic_territory,
        same ? std::string() : global_language, same ? std::string() : global_territory, jvm_encoding);
}

ustring getenv(std::string const& name)
{
    if (name.empty()) {
        errno = EINVAL;
        return ustring();
    }
    char const* value = std::getenv(name.c_str());
    if (value == nullptr || *value == '\0')
        return ustring();
    return lcctype::convert_to_string_utf<char16_t, char>(value, std::strlen(value), &lcctype::conversion_from_utf8);
}

int setenv(std::string const& name, ustring const& value, int overwrite, bool allow_empty)
{
    if (name.empty() || (value.empty() && !allow_empty)) {
        errno = EINVAL;
        return -1;
    }
    std::string const bytes = value.empty()
        ? std::string()
        : lcctype::convert_to_string_utf<char, char16_t>(value.data(), value.size(), &lcctype::conversion_to_utf8);
    return ::setenv(name.c_str(), bytes.c_str(), overwrite);
}

int unsetenv(std::string const& name)
{
    if (name.empty()) {
        errno = EINVAL;
        return -1;
    }
    return ::unsetenv(name.c_str());
}

} // namespace i18n
} // namespace fl
