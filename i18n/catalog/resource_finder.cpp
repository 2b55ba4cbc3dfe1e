#include <qvi18n/i18n/catalog/resource_finder.hpp>

#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>

#include <qvi18n/i18n/locale/ascii_text.hpp>

namespace fl {
namespace i18n {

namespace {

typedef fl::filesystem::upath upath;

const char16_t default_placeholder[] = u"%S";

std::string narrow(const ustring& s)
{
    std::string out;
    out.reserve(s.size());
    for (char16_t c : s) {
        out.push_back(static_cast<char>(c & 0xFF));
    }
    return out;
}

std::vector<ustring> build_chain(const QvLocale& locale, bool use_default_locale)
{
    std::vector<ustring> chain;
    make_locale_fallback_list(chain, detail::widen_ascii(locale.shortName(QvLocale::LcMessages)),
        use_default_locale ? detail::classic_messages_language() : ustring());
    return chain;
}

// Walks the names (outer) and the base paths (inner). `bases` null means the candidate is a
// whole path. `index` ends on the matching name, counted from where it stood, or -1.
upath search(const std::vector<upath>* bases, const ustring& pattern, const std::vector<ustring>& chain,
    int& index, const ustring& placeholder)
{
    if (pattern.empty()) {
        return upath();
    }
    const ustring::size_type at = pattern.find(placeholder);
    if (at == ustring::npos) {
        return upath();
    }
    const bool underscore_before = at > 0 && pattern[at - 1] == u'_';
    const ustring head = pattern.substr(0, at);
    const ustring tail = pattern.substr(at + placeholder.size());
    const ustring bare = (underscore_before ? pattern.substr(0, at - 1) : head) + tail;

    ustring candidate;
    ustring full;
    for (const ustring& name : chain) {
        if (name.empty()) {
            candidate = bare;
        } else {
            candidate = head;
            candidate += name;
            candidate += tail;
        }
        if (bases == nullptr) {
            upath path(candidate);
            if (fl::filesystem::exists(path)) {
                return path;
            }
        } else {
            for (const upath& base : *bases) {
                full = base.get_path_name();
                full += fl::filesystem::upath_constant::PATHNAME_SEPARATOR;
                full += candidate;
                upath path(full);
                if (fl::filesystem::exists(path)) {
                    return path;
                }
            }
        }
        ++index;
    }
    index = -1;
    return upath();
}

ustring placeholder_or_default(const ustring& placeholder)
{
    return placeholder.empty() ? ustring(default_placeholder) : placeholder;
}

upath find_with_report(const std::vector<upath>* bases, const ustring& pattern, std::string& found_locale,
    const QvLocale& locale, bool use_default_locale, const ustring& placeholder)
{
    const std::vector<ustring> chain = build_chain(locale, use_default_locale);
    int index = 0;
    upath result = search(bases, pattern, chain, index, placeholder);
    found_locale
        = (!result.empty() && index >= 0) ? narrow(chain[static_cast<std::size_t>(index)]) : std::string();
    return result;
}

} // namespace

const char16_t* resource_finder::default_formatter = default_placeholder;

resource_finder::resource_finder(
    const std::vector<upath>& paths, const QvLocale& locale, bool use_default, const ustring& ph)
    : placeholder(placeholder_or_default(ph))
    , base_paths(paths)
    , current_locale(locale.shortName(QvLocale::LcMessages))
    , locale_chain(build_chain(locale, use_default))
    , found_index(-1)
    , use_default_locale(use_default)
{ }

upath resource_finder::find(const ustring& pattern) const
{
    found_index = 0;
    return search(&base_paths, pattern, locale_chain, found_index, placeholder);
}

upath resource_finder::find(const ustring& pattern, const ustring& ph) const
{
    found_index = 0;
    return search(&base_paths, pattern, locale_chain, found_index, ph);
}

upath resource_finder::find(const ustring& pattern, const QvLocale& locale, std::string& found_locale) const
{
    return find_with_report(&base_paths, pattern, found_locale, locale, use_default_locale, placeholder);
}

upath resource_finder::find(
    const ustring& pattern, const QvLocale& locale, const ustring& ph, std::string& found_locale) const
{
    const std::vector<ustring> chain = build_chain(locale, use_default_locale);
    upath result = search(&base_paths, pattern, chain, found_index, ph);
    found_locale = (!result.empty() && !chain.empty()) ? narrow(chain.front()) : std::string();
    return result;
}

std::string resource_finder::get_locale() const
{
    // The index may have been moved by the four-argument find; never read outside the list.
    if (found_index < 0 || static_cast<std::size_t>(found_index) >= locale_chain.size()) {
        return std::string();
    }
    return narrow(locale_chain[static_cast<std::size_t>(found_index)]);
}

bool resource_finder::add_base_path(const upath& path) const
{
    for (const upath& base : base_paths) {
        if (base.get_path_name() == path.get_path_name()) {
            return false;
        }
    }
    base_paths.push_back(path);
    return true;
}

bool resource_finder::remove_base_path(const upath& path) const
{
    for (std::vector<upath>::iterator it = base_paths.begin(); it != base_paths.end(); ++it) {
        if (it->get_path_name() == path.get_path_name()) {
            base_paths.erase(it);
            return true;
        }
    }
    return false;
}

upath resource_finder::find_resource(const std::vector<upath>& bases, const ustring& pattern,
    const QvLocale& locale, bool use_default, const ustring& ph)
{
    std::string ignored;
    return find_with_report(&bases, pattern, ignored, locale, use_default, placeholder_or_default(ph));
}

upath resource_finder::find_resource(const std::vector<upath>& bases, const ustring& pattern,
    std::string& found_locale, const QvLocale& locale, bool use_default, const ustring& ph)
{
    return find_with_report(&bases, pattern, found_locale, locale, use_default, placeholder_or_default(ph));
}

upath resource_finder::find_resource(
    const ustring& pattern, const QvLocale& locale, bool use_default, const ustring& ph)
{
    std::string ignored;
    return find_with_report(nullptr, pattern, ignored, locale, use_default, placeholder_or_default(ph));
}

upath resource_finder::find_resource(const ustring& pattern, std::string& found_locale,
    const QvLocale& locale, bool use_default, const ustring& ph)
{
    return find_with_report(nullptr, pattern, found_locale, locale, use_default, placeholder_or_default(ph));
}

} // namespace i18n
} // namespace fl
