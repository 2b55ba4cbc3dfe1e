#include <qvi18n/i18n/locale/system_locale.hpp>

#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/system_locale_linux.hpp>

#include <qvi18n/i18n/locale/ascii_text.hpp>

#include <unicode/ucnv.h>

#include <clocale>
#include <cstdlib>
#include <langinfo.h>
#include <locale>
#include <memory>

namespace fl {
namespace i18n {
namespace lcmgmt {

namespace platform = linux_os;

namespace {

char const* const env_names[locale_env_count]
    = {"LC_CTYPE", "LC_COLLATE", "LC_TIME", "LC_NUMERIC", "LC_MONETARY", "LC_MESSAGES", "LC_ALL", "LANG"};
int const env_categories[locale_category_count] = {LC_CTYPE, LC_COLLATE, LC_TIME, LC_NUMERIC, LC_MONETARY, LC_MESSAGES};
int const std_masks[locale_category_count] = {std::locale::ctype, std::locale::collate, std::locale::time,
    std::locale::numeric, std::locale::monetary, std::locale::messages};

std::string env_or_empty(char const* name)
{
    char const* value = std::getenv(name);
    return value != nullptr ? value : "";
}

void unset_locale_env()
{
    for (char const* name : env_names) {
        ::unsetenv(name);
    }
}

// Writes LANG and each category that differs from it, as decided in the record.
void put_locale_env(osx::locale_context const& context)
{
    ::setenv("LANG", context.set_value[env_lang].c_str(), 1);
    for (int i = 0; i < locale_category_count; ++i) {
        if (!context.set_value[i].empty()) {
            ::setenv(env_names[i], context.set_value[i].c_str(), 1);
        }
    }
}

// Reads QVLOCALE_L10N_CONTROL into the record; the answer is +1 for "on", -1 for "off", else 0.
int read_l10n_control(osx::locale_context& context)
{
    char const* value = std::getenv("QVLOCALE_L10N_CONTROL");
    if (value == nullptr) {
        context.l10n_control.clear();
        return 0;
    }
    context.l10n_control = detail::ascii_fold(value);
    if (context.l10n_control == "on") {
        return 1;
    }
    return context.l10n_control == "off" ? -1 : 0;
}

} // namespace

char const* locale_env_name(int index)
{
    return index >= 0 && index < locale_env_count ? env_names[index] : "";
}

int locale_env_category(int index)
{
    return index >= 0 && index < locale_category_count ? env_categories[index] : -1;
}

namespace osx {

void get_xpg_locales(locale_context& context)
{
    for (int i = 0; i < locale_category_count; ++i) {
        std::setlocale(env_categories[i], "");
        char const* now = std::setlocale(env_categories[i], nullptr);
        context.xpg_category[i] = now != nullptr ? now : "";
    }
    context.xpg_base = context.xpg_category[env_lc_ctype];
    for (int i = 0; i < locale_category_count; ++i) {
        context.xpg_differs[i] = context.xpg_category[i];
        if (context.xpg_differs[i] == context.xpg_base) {
            context.xpg_differs[i].clear();
        } else {
            context.xpg_uniform = false;
        }
    }
    for (int i = 0; i < locale_env_count; ++i) {
        context.env_value[i] = env_or_empty(env_names[i]);
    }
    context.extra_env = platform::get_extra_category_env();
    char const* codeset = ::nl_langinfo(CODESET);
    context.codeset = codeset != nullptr ? codeset : "";
}

namespace {

void get_system_locales(LcData const& data, locale_context& context)
{
    context.user_locale = platform::get_user_locale(data);
    context.preferred_language = platform::get_preferred_language(data);
    context.app_language = platform::get_app_language();
    get_xpg_locales(context);
}

} // namespace

void get_system_locales(locale_context& context)
{
    get_system_locales(get_qvlocale_context().getLcData(), context);
}

void initialize_with_default(locale_context& context)
{
    get_system_locales(get_qvlocale_context().getLcData(), context);
    for (int i = 0; i < locale_category_count; ++i) {
        context.category_name[i] = {LcData::get_posix_locale_short(), std::string()};
        context.set_differs[i].clear();
    }
    context.category_name[env_lc_messages].first = LcData::get_default_locale_short();
    context.set_base = LcData::get_c_locale();
    context.set_uniform = true;
    for (std::string& value : context.set_value) {
        value.clear();
    }
}

bool get_sysdep_locales(LcData const& data, locale_context& context)
{
    get_system_locales(data, context);

    std::string name = data.getLcName(context.user_locale);
    std::string modifier;
    std::string::size_type at = context.user_locale.find('@');
    if (at != std::string::npos) {
        // The "@" stays in the modifier here.
        modifier = context.user_locale.substr(at);
    }
    if (name.empty()) {
        name = data.getLcName(context.user_locale.substr(0, at));
    }
    bool resolved = true;
    if (name.empty()) {
        name = LcData::get_posix_locale_short();
        modifier.clear();
        resolved = false;
    }
    std::string message_name = data.getLcName(context.preferred_language);
    if (message_name.empty()) {
        message_name = LcData::get_default_locale_short();
        resolved = false;
    }

    // The language list decides the messages, the locale identifier all the rest.
    for (int i = 0; i < locale_category_count; ++i) {
        if (i == env_lc_messages) {
            context.category_name[i].first = message_name;
        } else {
            context.category_name[i] = {name, modifier};
        }
    }
    for (int i = 0; i < locale_category_count; ++i) {
        context.set_differs[i] = data.getXpgLcName(context.category_name[i].first);
    }
    context.set_base = context.set_differs[env_lc_ctype];
    if (name != message_name) {
        context.set_uniform = false;
    }
    for (int i = 0; i < locale_category_count; ++i) {
        if (context.set_differs[i] == context.set_base) {
            context.set_differs[i].clear();
        } else {
            context.set_uniform = false;
        }
    }
    return resolved;
}

std::string get_terminal_encoding(LcData const& data, locale_context const& context)
{
    char const* forced = std::getenv("QVLOCALE_TERMINAL_ENCODING");
    if (forced != nullptr) {
        return forced;
    }
    std::string found;
    if (!context.codeset.empty()) {
        UErrorCode status = U_ZERO_ERROR;
        UConverter* converter = ucnv_open(context.codeset.c_str(), &status);
        if (U_SUCCESS(status)) {
            status = U_ZERO_ERROR;
            char const* name = ucnv_getName(converter, &status);
            if (U_SUCCESS(status) && name != nullptr) {
                found = data.getQvStandardEncodingName(lcctype::get_standard_encoding_name_from_converter_name(name));
            }
        }
        if (converter != nullptr) {
            ucnv_close(converter);
        }
    }
    // A terminal said to be ASCII is more likely one nobody configured.
    if (found.empty() || found == "US-ASCII") {
        return platform::DEFAULT_ENCODING;
    }
    return found;
}

bool set_default_xpg_locale(locale_context& context, unsigned long category)
{
    if (category >= locale_category_count) {
        return true;
    }
    if (context.set_value[env_lang] == LcData::get_c_locale()) {
        context.set_value[category].clear();
        return true;
    }
    context.set_value[category] = LcData::get_c_locale();
    return false;
}

void set_xpg_locale(locale_context& context, bool use_default)
{
    unset_locale_env();
    if (use_default) {
        context.set_base = LcData::get_c_locale();
        context.set_uniform = true;
        for (int i = 0; i < locale_category_count; ++i) {
            context.set_differs[i].clear();
            context.set_value[i].clear();
        }
        context.set_value[env_lang] = LcData::get_c_locale();
        ::setenv("LANG", "C", 1);
        platform::unset_unloadable_extra_categories();
        std::setlocale(LC_ALL, "");
        return;
    }

    // Few machines generate every locale: a name the C library cannot load is written as the C locale
    // in the decided encoding, so that the process still runs in the right codeset. The library's own
    // decision stays as it was.
    context.set_value[env_lang] = platform::loadable_xpg_name(context.set_base, context.encoding);
    for (int i = 0; i < locale_category_count; ++i) {
        std::string value = platform::loadable_xpg_name(context.set_differs[i], context.encoding);
        context.set_value[i] = value == context.set_value[env_lang] ? std::string() : value;
    }
    // Numbers follow "C" in every case.
    set_default_xpg_locale(context, env_lc_numeric);
    if (!context.messages_l10n) {
        set_default_xpg_locale(context, env_lc_messages);
    }
    put_locale_env(context);
    platform::unset_unloadable_extra_categories();
    std::setlocale(LC_ALL, "");
}

std::vector<std::string> wanted_app_languages(locale_context const& context)
{
    std::vector<std::string> names;
    if (context.messages_l10n && !context.preferred_language.empty()) {
        names.push_back(context.preferred_language);
    }
    // The list always ends in English.
    if (names.empty() || names.front() != LcData::get_default_language()) {
        names.push_back(LcData::get_default_language());
    }
    if (!context.app_language.empty() && context.app_language == names.front()) {
        names.clear();
    }
    return names;
}

system_setting_context extract_system_setting_from_locale_context(locale_context const& context)
{
    system_setting_context setting;
    setting.user_locale = context.user_locale;
    setting.preferred_language = context.preferred_language;
    setting.app_language = context.app_language;
    setting.codeset = context.codeset;
    for (int i = 0; i < locale_category_count; ++i) {
        if (!context.xpg_category[i].empty()) {
            setting.categories.push_back({env_categories[i], context.xpg_category[i]});
        }
    }
    for (int i = 0; i < locale_env_count; ++i) {
        if (!context.env_value[i].empty()) {
            setting.env_vars.push_back({env_names[i], context.env_value[i]});
        }
    }
    for (auto const& extra : context.extra_env) {
        setting.env_vars.push_back({extra.first, extra.second});
    }
    return setting;
}

} // namespace osx

namespace darwin {

char const* const DEFAULT_ENCODING = "UTF-8";

std::string get_user_locale()
{
    return platform::get_user_locale();
}

void change_app_lang_setting(osx::locale_context const& context)
{
    platform::change_app_lang_setting(context);
}

void reference_close::operator()(void const* array) const
{
    delete static_cast<std::vector<std::string> const*>(array);
}

void create_array(std::unique_ptr<void const, reference_close>& out, std::vector<std::string> const& names)
{
    out.reset();
    if (names.empty()) {
        return;
    }
    std::unique_ptr<std::vector<std::string>> array(new std::vector<std::string>());
    for (std::string const& name : names) {
        // A name that can't be stored is skipped; the others keep their order.
        bool storable = true;
        for (char c : name) {
            storable = storable && c >= 0x20 && c <= 0x7E;
        }
        if (storable) {
            array->push_back(name);
        }
    }
    out.reset(array.release());
}

} // namespace darwin

locale_initialization_context::locale_initialization_context(
    LcData const& data, QvLocaleImpl& locale, LcStatusCtx& status, osx::locale_context& context)
    : data_(data)
    , locale_(locale)
    , status_(status)
    , context_(context)
{ }

void locale_initialization_context::initialize()
{
    status_.setStatus(LcStatusCtx::initialized);
    int choice = read_l10n_control(context_);
    if (osx::get_sysdep_locales(data_, context_)) {
        context_.encoding = data_.getDefaultEncoding(context_.category_name[env_lc_ctype].first);
        if (context_.encoding.empty()) {
            context_.encoding = LcData::get_default_codeset();
        }
        context_.terminal_encoding = osx::get_terminal_encoding(data_, context_);
        // Only a set but empty QVLOCALE_TERMINAL_ENCODING gets here.
        if (context_.terminal_encoding.empty()) {
            context_.terminal_encoding = platform::DEFAULT_ENCODING;
            status_.setStatus(LcStatusCtx::initialized_warning);
            status_.setException(new QvLcInvLcName());
        }
    } else {
        status_.setStatus(LcStatusCtx::initialized_warning);
        status_.setException(new QvLcInvLcName());
        context_.encoding = LcData::get_default_codeset();
        context_.terminal_encoding = platform::DEFAULT_ENCODING;
    }
    context_.db_l10n = data_.getL10nFlag(context_.category_name[env_lc_messages].first);
    context_.messages_l10n = choice > 0 ? true : choice < 0 ? false : context_.db_l10n;
    set_locale_object();
}

void locale_initialization_context::initialize_with_default()
{
    osx::initialize_with_default(context_);
    context_.encoding = LcData::get_default_codeset();
    context_.terminal_encoding = platform::DEFAULT_ENCODING;
    context_.db_l10n = true;
    context_.messages_l10n = true;
    read_l10n_control(context_);
    set_locale_object();
}

void locale_initialization_context::set_locale_object()
{
    for (int i = 0; i < locale_category_count; ++i) {
        locale_.setLcName(context_.category_name[i].first, context_.category_name[i].second,
            static_cast<QvLocale::LcCategory>(i));
    }
    locale_.setEncoding(context_.encoding);
    locale_.setTerminalEncoding(context_.terminal_encoding);
}

void locale_initialization_context::set_xpg_locale(bool use_default)
{
    osx::set_xpg_locale(context_, use_default);
}

void locale_initialization_context::disable_l10n_resource()
{
    context_.messages_l10n = false;
    ::unsetenv("LC_MESSAGES");
    if (!osx::set_default_xpg_locale(context_, env_lc_messages)) {
        ::setenv("LC_MESSAGES", context_.set_value[env_lc_messages].c_str(), 1);
    }
    std::setlocale(LC_MESSAGES, "");
}

void locale_initialization_context::set_app_lang_setting()
{
    platform::change_app_lang_setting(context_);
}

std::vector<int> check_std_locale_valid()
{
    std::vector<int> failed;
    for (int mask : std_masks) {
        try {
            std::locale probe(std::locale::classic(), "", mask);
        } catch (...) {
            // A report, not an error.
            failed.push_back(mask);
        }
    }
    return failed;
}

void redefine_xpg_locale_env(osx::locale_context const& context)
{
    unset_locale_env();
    put_locale_env(context);
}

system_setting_context extract_system_setting_from_locale_context(osx::locale_context const& context)
{
    return osx::extract_system_setting_from_locale_context(context);
}

} // namespace lcmgmt
} // namespace i18n
} // namespace fl
