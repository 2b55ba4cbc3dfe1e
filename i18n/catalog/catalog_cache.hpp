#ifndef QVI18N_I18N_CATALOG_CATALOG_CACHE_HPP
#define QVI18N_I18N_CATALOG_CATALOG_CACHE_HPP

// The process-wide state of the catalogs: the resource roots, the cache of loaded catalogs and the
// one mutex that guards both. Each is made on the heap on first use and never destroyed, so that it
// stays usable while static objects are torn down.

#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>

#include <boost/thread/mutex.hpp>
#include <boost/unordered_map.hpp>

#include <string>
#include <utility>
#include <vector>

namespace fl {
namespace i18n {
namespace detail {

typedef boost::unordered_map<std::string, CatalogCacheEntry> catalog_cache_map;
// A root ends in "resources"; the flag is true for a root added after MessageCatalogInit.
typedef std::vector<std::pair<fl::filesystem::upath, bool>> resource_root_list;

boost::mutex& catalog_mutex();
catalog_cache_map& catalog_cache();
resource_root_list& resource_roots();

// Holds the catalog mutex for a scope and marks it as held by this thread. A catalog_lock made
// while this thread already holds the mutex takes nothing: FlushCatalogFromCache and
// getTopLevelResourceLocations are called both from outside and with the mutex held (by the removal
// of a root), and the mutex isn't recursive.
class catalog_lock {
public:
    catalog_lock();
    ~catalog_lock();
    catalog_lock(const catalog_lock&) = delete;
    catalog_lock& operator=(const catalog_lock&) = delete;

    static bool held_by_this_thread();

private:
    bool outer;
};

// The catalog `catalog` for `locale`, from the cache or loaded into it. `catalog` is the text of a
// valid CatalogID; the callers that hold only text check it first. The result is this thread's
// memo, good until the thread's next request, or `spare` where the thread has no memo any more.
const boost::shared_ptr<const MessageCatalog>& thread_catalog(
    const std::string& catalog, const QvLocale& locale, boost::shared_ptr<const MessageCatalog>& spare);
boost::shared_ptr<const MessageCatalog> get_catalog(const std::string& catalog, const QvLocale& locale);

} // namespace detail
} // namespace i18n
} // namespace fl

#endif
