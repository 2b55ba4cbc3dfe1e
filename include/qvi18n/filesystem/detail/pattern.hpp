#ifndef QVI18N_FILESYSTEM_DETAIL_PATTERN_HPP
#define QVI18N_FILESYSTEM_DETAIL_PATTERN_HPP

// Wildcard names turned into the regular expressions that directory iteration matches.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/compare.hpp>
#include <qvi18n/i18n/ustring.hpp>

namespace fl {
namespace filesystem {

namespace posix {

// An anchored expression in which "*" matches any run of units and every other unit stands
// for itself: "a*.t?t" gives "^a.*\.t\?t$".
QVI18N_API fl::i18n::ustring gen_pattern(const fl::i18n::ustring& name);

} // namespace posix

namespace detail {

// "" gives "" (no pattern), "." and ".." match every name, anything else is gen_pattern's.
QVI18N_API fl::i18n::ustring generate_pattern_from_filename(
    const fl::i18n::ustring& name, const zorbel_pattern_string_generator& generator);

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
