#include "i18n/catalog/catalog_cache.hpp"
#include <qvi18n/i18n/locale/ascii_text.hpp>

#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#include <qvi18n/i18n/catalog/resource_finder.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>

#include <boost/exception/exception.hpp>
#include <boost/thread/once.hpp>

#include <atomic>
#include <cstdint>

namespace fl {
namespace i18n {
namespace detail {

namespace {

// Each object is made once under its own flag; the atomic pointer spares the hit path the
// once-flag check after that.
boost::once_flag mutex_once = BOOST_ONCE_INIT;
boost::once_flag cache_once = BOOST_ONCE_INIT;
boost::once_flag roots_once = BOOST_ONCE_INIT;
std::atomic<boost::mutex*> the_mutex {nullptr};
std::atomic<catalog_cache_map*> the_cache {nullptr};
std::atomic<resource_root_list*> the_roots {nullptr};

void make_mutex()
{
    the_mutex.store(new boost::mutex, std::memory_order_release);
}

void make_cache()
{
    the_cache.store(new catalog_cache_map, std::memory_order_release);
}

void make_roots()
{
    the_roots.store(new resource_root_list, std::memory_order_release);
}

template <class T> T& get_or_make(std::atomic<T*>& object, boost::once_flag& flag, void (*make)())
{
    T* p = object.load(std::memory_order_acquire);
    if (!p) {
        boost::call_once(flag, make);
        p = object.load(std::memory_order_acquire);
    }
    return *p;
}

thread_local bool this_thread_holds_lock = false;

// Bumped, under the mutex, whenever an entry leaves the cache. Entries are never replaced, so a
// catalog found under a key stays the one for that key until the generation moves on.
std::atomic<std::uint64_t> cache_generation {1};

// The last catalog this thread asked for. A repeated request for it is answered from here with no
// lock and no look-up, as long as nothing was flushed since; the memo keeps the catalog alive.
struct thread_memo {
    std::string catalog;
    std::string locale;
    std::uint64_t generation = 0;
    boost::shared_ptr<const MessageCatalog> held;
    // The request's key, built here so that a look-up allocates nothing.
    std::string key;
};

// The memo lives on the heap behind a plain pointer and is freed when the thread ends. Requests
// made after that, from destructors that run at exit, go the locked way without a memo: catalogs
// stay usable while static objects are torn down.
thread_local thread_memo* memo_ptr = nullptr;
thread_local bool memo_registered = false;
thread_local bool memo_released = false;

struct memo_release {
    ~memo_release()
    {
        delete memo_ptr;
        memo_ptr = nullptr;
        memo_released = true;
    }
};

thread_local memo_release memo_releaser;

// This thread's memo, or null once the thread is ending.
thread_memo* this_thread_memo()
{
    thread_memo* m = memo_ptr;
    if (!m && !memo_released) {
        if (!memo_registered) {
            // First use of the releaser registers its destructor for this thread's exit.
            memo_registered = true;
            static_cast<void>(&memo_releaser);
        }
        m = new thread_memo;
        memo_ptr = m;
    }
    return m;
}

bool is_directory(const fl::filesystem::upath& p)
{
    return fl::filesystem::status(p).type == fl::filesystem::file_status::directory_file;
}

fl::filesystem::upath resource_directory(const ustring& root)
{
    fl::filesystem::upath p(root);
    p /= u"resources";
    return p;
}

// Finds and loads the file of a catalog that isn't cached under `key`; the caller holds the mutex.
boost::shared_ptr<const MessageCatalog> load_catalog(const std::string& catalog, const QvLocale& locale,
    const std::string& locale_name, const std::string& key)
{
    const std::vector<fl::filesystem::upath> roots = MessageCatalogImpl::getTopLevelResourceLocations();
    const ustring pattern = MessageCatalogUtility::obtainXMLFilePathPattern(catalog);

    resource_finder finder(roots, locale, true, ustring());
    const fl::filesystem::upath path = finder.find(pattern);
    const std::string matched = finder.get_locale();
    if (path.empty() || matched.empty()) {
        throw boost::enable_current_exception(MessageCatalog::MessageCatalogLoadFailed(catalog));
    }

    catalog_cache_map& cache = catalog_cache();
    if (matched == locale_name) {
        boost::shared_ptr<const MessageCatalog> loaded(new MessageCatalogImpl(catalog, path, matched));
        cache.emplace(key, CatalogCacheEntry {loaded, 1});
        return loaded;
    }

    // The file belongs to a fall-back: its own key may be cached already, and a later request for
    // either locale is to hit the same object.
    const std::string fallback_key = catalog + ':' + matched;
    catalog_cache_map::iterator found = cache.find(fallback_key);
    if (found != cache.end()) {
        boost::shared_ptr<const MessageCatalog> shared = found->second.catalog;
        cache.emplace(key, CatalogCacheEntry {shared, 1});
        return shared;
    }
    boost::shared_ptr<const MessageCatalog> loaded(new MessageCatalogImpl(catalog, path, matched));
    cache.emplace(key, CatalogCacheEntry {loaded, 1});
    try {
        cache.emplace(fallback_key, CatalogCacheEntry {loaded, 1});
    } catch (...) {
        cache.erase(key);
        throw;
    }
    return loaded;
}

// The cached or newly loaded catalog for `key`; `generation` tells the cache's state it belongs to.
boost::shared_ptr<const MessageCatalog> locked_lookup(const std::string& catalog, const QvLocale& locale,
    const std::string& locale_name, const std::string& key, std::uint64_t& generation)
{
    catalog_lock lock;
    generation = cache_generation.load(std::memory_order_relaxed);
    catalog_cache_map& cache = catalog_cache();
    catalog_cache_map::iterator hit = cache.find(key);
    if (hit != cache.end()) {
        ++hit->second.use_count;
        return hit->second.catalog;
    }
    return load_catalog(catalog, locale, locale_name, key);
}

} // namespace

boost::mutex& catalog_mutex()
{
    return get_or_make(the_mutex, mutex_once, &make_mutex);
}

catalog_cache_map& catalog_cache()
{
    return get_or_make(the_cache, cache_once, &make_cache);
}

resource_root_list& resource_roots()
{
    return get_or_make(the_roots, roots_once, &make_roots);
}

catalog_lock::catalog_lock()
    : outer(!this_thread_holds_lock)
{
    if (outer) {
        catalog_mutex().lock();
        this_thread_holds_lock = true;
    }
}

catalog_lock::~catalog_lock()
{
    if (outer) {
        this_thread_holds_lock = false;
        catalog_mutex().unlock();
    }
}

bool catalog_lock::held_by_this_thread()
{
    return this_thread_holds_lock;
}

const boost::shared_ptr<const MessageCatalog>& thread_catalog(
    const std::string& catalog, const QvLocale& locale, boost::shared_ptr<const MessageCatalog>& spare)
{
    std::string locale_name = locale.shortName(QvLocale::LcMessages);
    thread_memo* m = this_thread_memo();
    std::uint64_t generation;
    if (!m) {
        spare = locked_lookup(catalog, locale, locale_name, catalog + ':' + locale_name, generation);
        return spare;
    }
    if (m->held && m->generation == cache_generation.load(std::memory_order_acquire) && m->catalog == catalog
        && m->locale == locale_name) {
        return m->held;
    }

    m->key.assign(catalog);
    m->key += ':';
    m->key += locale_name;
    boost::shared_ptr<const MessageCatalog> found
        = locked_lookup(catalog, locale, locale_name, m->key, generation);
    m->held = std::move(found);
    m->catalog = catalog;
    m->locale = std::move(locale_name);
    m->generation = generation;
    return m->held;
}

boost::shared_ptr<const MessageCatalog> get_catalog(const std::string& catalog, const QvLocale& locale)
{
    boost::shared_ptr<const MessageCatalog> spare;
    return thread_catalog(catalog, locale, spare);
}

} // namespace detail

bool MessageCatalog::MessageCatalogInit(const std::string& root)
{
    return MessageCatalogInit(std::vector<ustring>(1, to_ustring(root)));
}

bool MessageCatalog::MessageCatalogInit(const ustring& root)
{
    return MessageCatalogInit(std::vector<ustring>(1, root));
}

bool MessageCatalog::MessageCatalogInit(const std::vector<std::string>& roots)
{
    std::vector<ustring> wide;
    wide.reserve(roots.size());
    for (const std::string& root : roots) {
        wide.push_back(to_ustring(root));
    }
    return MessageCatalogInit(wide);
}

bool MessageCatalog::MessageCatalogInit(const std::vector<ustring>& roots)
{
    detail::catalog_lock lock;
    detail::resource_root_list& stored = detail::resource_roots();
    const bool first = stored.empty();
    if (first && roots.empty()) {
        throw boost::enable_current_exception(MessageCatalogIncorrectRoot());
    }

    // Roots without a "resources" directory are dropped without a word.
    detail::resource_root_list candidates;
    for (const ustring& root : roots) {
        fl::filesystem::upath p = detail::resource_directory(root);
        if (detail::is_directory(p)) {
            candidates.emplace_back(p, false);
        }
    }

    if (first) {
        if (candidates.empty()) {
            throw boost::enable_current_exception(MessageCatalogIncorrectRoot());
        }
        stored.swap(candidates);
        detail::catalog_cache();
        return true;
    }

    // The roots are fixed by the first success; a later call only tells whether it agrees.
    if (candidates.size() != stored.size()) {
        return false;
    }
    for (std::size_t i = 0; i < stored.size(); ++i) {
        if (candidates[i].first.get_path_name() != stored[i].first.get_path_name()
            || candidates[i].second != stored[i].second) {
            return false;
        }
    }
    return true;
}

void MessageCatalog::set_additional_resource_locations(const std::vector<ustring>& roots)
{
    detail::catalog_lock lock;
    detail::resource_root_list& stored = detail::resource_roots();
    if (stored.empty()) {
        throw boost::enable_current_exception(MessageCatalogNotInitialized());
    }
    if (roots.empty()) {
        throw boost::enable_current_exception(MessageCatalogIncorrectRoot());
    }

    detail::resource_root_list next(stored);
    next.reserve(stored.size() + roots.size());
    for (const ustring& root : roots) {
        fl::filesystem::upath p = detail::resource_directory(root);
        if (!detail::is_directory(p)) {
            throw boost::enable_current_exception(MessageCatalogIncorrectRoot());
        }
        next.emplace_back(p, true);
    }
    stored.swap(next);
}

boost::shared_ptr<const MessageCatalog> MessageCatalog::GetMessageCatalog(
    const CatalogID& id, const QvLocale& locale)
{
    return detail::get_catalog(id.getCatalogID(), locale);
}

boost::shared_ptr<const MessageCatalog> MessageCatalog::openCatalog(
    const resource_core::BaseCatalogID& id, const QvLocale& locale)
{
    return GetMessageCatalog(CatalogID(id.catalog_name), locale);
}

void MessageCatalog::FlushCatalogFromCache(const CatalogID& id)
{
    const std::string name = id.getCatalogID();
    detail::catalog_lock lock;
    detail::catalog_cache_map& cache = detail::catalog_cache();
    for (detail::catalog_cache_map::iterator it = cache.begin(); it != cache.end();) {
        // The locale is behind the key's last colon; the whole text in front of it must match, so
        // flushing "a:b" leaves "a:b:c" alone.
        const std::string::size_type colon = it->first.rfind(':');
        if (colon != std::string::npos && colon == name.size() && it->first.compare(0, colon, name) == 0) {
            it = cache.erase(it);
            detail::cache_generation.fetch_add(1, std::memory_order_release);
        } else {
            ++it;
        }
    }
}

std::vector<fl::filesystem::upath> MessageCatalogImpl::getTopLevelResourceLocations()
{
    detail::catalog_lock lock;
    const detail::resource_root_list& stored = detail::resource_roots();
    if (stored.empty()) {
        throw boost::enable_current_exception(MessageCatalog::MessageCatalogNotInitialized());
    }
    std::vector<fl::filesystem::upath> paths;
    paths.reserve(stored.size());
    for (const auto& root : stored) {
        paths.push_back(root.first);
    }
    return paths;
}

ustring MessageCatalogUtility::obtainXMLFilePathPattern(const std::string& catalog)
{
    if (catalog.empty() || catalog.back() == ':') {
        return ustring();
    }
    std::string::size_type colon = catalog.find(':');
    if (colon == std::string::npos) {
        return ustring();
    }

    // The component is a directory, the locale comes second, the remaining segments are
    // directories and the last one the file's stem. Always "/", whatever the platform.
    std::string pattern = catalog.substr(0, colon);
    pattern += "/%S";
    std::string::size_type begin = colon + 1;
    while ((colon = catalog.find(':', begin)) != std::string::npos) {
        pattern += '/';
        pattern.append(catalog, begin, colon - begin);
        begin = colon + 1;
    }
    pattern += '/';
    pattern.append(catalog, begin, std::string::npos);
    pattern += ".xml";

    return detail::widen_ascii(pattern);
}

} // namespace i18n
} // namespace fl
