#include <qvi18n/filesystem/detail/pattern.hpp>
#include <qvi18n/i18n/ctype/facet.hpp>

#include <locale>
#include <sstream>

namespace fl {
namespace filesystem {
namespace posix {

namespace {

bool is_special(char16_t unit)
{
    switch (unit) {
    case u'$': case u'(': case u')': case u'*': case u'+': case u'.': case u'?':
    case u'[': case u'\\': case u'^': case u'{': case u'|': case u'}':
        return true;
    default:
        return false;
    }
}

} // namespace

fl::i18n::ustring gen_pattern(const fl::i18n::ustring& name)
{
    // The library's global standard locale carries the char16_t facets that any formatting
    // on this stream would need; the units themselves go in by put().
    std::basic_ostringstream<char16_t> out;
    out.imbue(fl::i18n::facet::get_global_std_locale());
    out.put(u'^');
    bool pending_star = false;
    for (char16_t const unit : name) {
        if (unit == u'*') {
            pending_star = true; // a run of stars is one wildcard
            continue;
        }
        if (pending_star) {
            out.put(u'.').put(u'*');
            pending_star = false;
        }
        // "?" has no wildcard meaning here and is escaped like any other special; "]" alone
        // is literal already.
        if (is_special(unit))
            out.put(u'\\');
        out.put(unit);
    }
    if (pending_star)
        out.put(u'.').put(u'*');
    out.put(u'$');
    return out.str();
}

} // namespace posix
} // namespace filesystem
} // namespace fl
