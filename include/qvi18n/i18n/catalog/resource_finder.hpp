#ifndef QVI18N_I18N_CATALOG_RESOURCE_FINDER_HPP
#define QVI18N_I18N_CATALOG_RESOURCE_FINDER_HPP

// Finds the file that best suits a locale. A pattern such as "help_%S.txt" names the file with a
// placeholder for the locale; the locale's names are tried from the most specific to the most
// general (outer loop), each in every base directory in order (inner loop), and the first path
// that exists wins. An empty name in the list stands for the file without a locale, and takes an
// underscore in front of the placeholder away with it ("help_%S.txt" gives "help.txt").

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <string>
#include <vector>

namespace fl {
namespace i18n {

// One object serves one thread at a time: its const operations change the remembered match and
// the base paths. The static forms are safe from any thread.
class QVI18N_API resource_finder {
public:
    typedef fl::filesystem::upath upath;

    // The placeholder used when none is given: "%S".
    static const char16_t* default_formatter;

    // The locale's names are fixed here; a later change of the global locale isn't seen. With
    // `use_default_locale` the classic locale's language ("en") is the last resort, else the
    // file without a locale is. An empty `placeholder` means "%S".
    resource_finder(const std::vector<upath>& base_paths, const QvLocale& locale,
        bool use_default_locale = true, const ustring& placeholder = ustring());

    // Searches with the object's locale names; get_locale() then tells which one matched.
    upath find(const ustring& pattern) const;
    // The same with another placeholder, taken as it stands (an empty one matches at the start).
    upath find(const ustring& pattern, const ustring& placeholder) const;
    // Searches with the names of `locale`; `found_locale` is the name that matched, or empty.
    upath find(const ustring& pattern, const QvLocale& locale, std::string& found_locale) const;
    // Kept as it always behaved: on a match `found_locale` is the requested locale's own name even
    // when a fall-back matched, and the search counts on in the object's match index without
    // resetting it, so get_locale() means nothing after this call.
    upath find(const ustring& pattern, const QvLocale& locale, const ustring& placeholder,
        std::string& found_locale) const;

    // The name that matched in the last search over the object's own names; empty if none.
    std::string get_locale() const;

    // Appends `path` unless a base path of exactly the same text is present.
    bool add_base_path(const upath& path) const;
    // Removes the first base path of exactly the same text; false if there is none.
    bool remove_base_path(const upath& path) const;
    std::vector<upath> get_base_path_list() const { return base_paths; }
    std::string get_current_locale() const { return current_locale; }

    // The names tried, in order.
    const std::vector<ustring>& get_locale_chain() const { return locale_chain; }
    int get_found_index() const { return found_index; }
    const ustring& get_placeholder() const { return placeholder; }
    bool get_use_default_locale() const { return use_default_locale; }

    static upath find_resource(const std::vector<upath>& base_paths, const ustring& pattern,
        const QvLocale& locale, bool use_default_locale = true, const ustring& placeholder = ustring());
    static upath find_resource(const std::vector<upath>& base_paths, const ustring& pattern,
        std::string& found_locale, const QvLocale& locale, bool use_default_locale = true,
        const ustring& placeholder = ustring());
    // These two take the pattern as a whole path, with no base directories.
    static upath find_resource(const ustring& pattern, const QvLocale& locale, bool use_default_locale = true,
        const ustring& placeholder = ustring());
    static upath find_resource(const ustring& pattern, std::string& found_locale, const QvLocale& locale,
        bool use_default_locale = true, const ustring& placeholder = ustring());

private:
    ustring placeholder;
    mutable std::vector<upath> base_paths;
    std::string current_locale;
    std::vector<ustring> locale_chain;
    mutable int found_index;
    bool use_default_locale;
};

} // namespace i18n
} // namespace fl

#endif
