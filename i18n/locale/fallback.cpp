#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <qvi18n/i18n/locale/ascii_text.hpp>

namespace fl {
namespace i18n {

namespace {

template <typename String>
void append_fallbacks(std::vector<String>& list, String const& name, String const& default_name)
{
    list.push_back(name);
    typename String::size_type underscore = name.rfind(static_cast<typename String::value_type>('_'));
    if (underscore != String::npos) {
        list.push_back(name.substr(0, underscore));
    }
    // Only the entry appended last is compared: callers rely on the default coming last.
    if (list.back() != default_name) {
        list.push_back(default_name);
    }
}

} // namespace

ustring const& detail::classic_messages_language()
{
    static ustring const language = detail::widen_ascii(QvLocale::classic().language(QvLocale::LcMessages));
    return language;
}

void make_locale_fallback_list(
    std::vector<std::string>& list, std::string const& name, std::string const& default_name)
{
    append_fallbacks(list, name, default_name);
}

void make_locale_fallback_list(std::vector<ustring>& list, ustring const& name, ustring const& default_name)
{
    append_fallbacks(list, name, default_name);
}

void make_locale_fallback_list(
    std::vector<std::string>& list, QvLocale const& locale, std::string const& default_name)
{
    append_fallbacks(list, locale.shortName(QvLocale::LcMessages), default_name);
}

void make_locale_fallback_list(
    std::vector<ustring>& list, QvLocale const& locale, ustring const& default_name)
{
    append_fallbacks(list, detail::widen_ascii(locale.shortName(QvLocale::LcMessages)), default_name);
}

std::vector<ustring> get_fallback_locales(QvLocale const& locale)
{
    std::vector<ustring> list;
    make_locale_fallback_list(list, locale, detail::classic_messages_language());
    return list;
}

std::vector<ustring> get_fallback_locales_with_empty_default(QvLocale const& locale)
{
    std::vector<ustring> list;
    make_locale_fallback_list(list, locale, ustring());
    return list;
}

} // namespace i18n
} // namespace fl
