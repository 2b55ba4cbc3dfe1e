#ifndef QVI18N_I18N_CATALOG_MESSAGE_CATALOG_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_CATALOG_HPP

// Translated messages by identifier and locale. A caller gives the resource roots once with
// MessageCatalogInit, then asks from any thread:
//
//     MessageCatalog::get_message(MessageID("fl:i18n:QvLcInvLcName"), locale);
//
// Catalog "a:b:c" for locale directory L is the file <root>/resources/a/L/b/c.xml. The file is
// chosen by the locale's fall-backs ("de_AT", "de", "en") over all roots, parsed once and kept for
// the life of the process. Fall-back is by whole file: a key missing from the file chosen is
// MessageNotFound, never a look-up in another locale.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <qvi18n/resource_core/resource_core.hpp>

#include <boost/shared_ptr.hpp>
#include <boost/variant.hpp>

#include <exception>
#include <string>
#include <vector>

namespace fl {
namespace i18n {

// A value for one hole of a message: a number, narrow text (read in ICU's default codepage) or
// UTF-16 text. A message takes them in the order of its argument numbers.
typedef resource_core::HoleValue hole_value;
typedef resource_core::HoleValues hole_values;

// A loaded catalog: immutable, shared, and read from any thread without a lock.
class QVI18N_API MessageCatalog {
public:
    // "Incorrect Message Root Set": no usable root was given.
    class QVI18N_API MessageCatalogIncorrectRoot : public std::exception {
    public:
        const char* what() const noexcept override;
    };

    // A catalog was asked for, or a root added, before a successful MessageCatalogInit.
    class QVI18N_API MessageCatalogNotInitialized : public std::exception {
    public:
        const char* what() const noexcept override;
    };

    // The catalog's file is missing, unreadable or malformed.
    class QVI18N_API MessageCatalogLoadFailed : public std::exception {
    public:
        explicit MessageCatalogLoadFailed(const std::string& catalog);
        ~MessageCatalogLoadFailed() override;
        const char* what() const noexcept override;

    private:
        std::string message;
    };

    // The catalog has no entry for the key.
    class QVI18N_API MessageNotFound : public std::exception {
    public:
        MessageNotFound(const std::string& catalog, const std::string& key);
        ~MessageNotFound() override;
        const char* what() const noexcept override;

    private:
        std::string message;
    };

    // The pattern isn't a valid message pattern, or formatting it failed.
    class QVI18N_API MessageFormatIncorrect : public std::exception {
    public:
        const char* what() const noexcept override;
    };

    // The number of values differs from the number of distinct holes. The text reads
    // "Expected : <values given> Found : <holes in the message>".
    class QVI18N_API IncorrectHoleCount : public std::exception {
    public:
        IncorrectHoleCount(unsigned long expected, unsigned long found);
        ~IncorrectHoleCount() override;
        const char* what() const noexcept override;
        unsigned long get_expected() const noexcept { return expected; }
        unsigned long get_found() const noexcept { return found; }

    private:
        std::string message;
        unsigned long expected;
        unsigned long found;
    };

    // The failures of removing an added root.
    class QVI18N_API InvalidPathSupplied : public std::exception {
    public:
        InvalidPathSupplied();
        ~InvalidPathSupplied() override;
        const char* what() const noexcept override;

    private:
        std::string message;
    };

    class QVI18N_API ResDirNotPresent : public std::exception {
    public:
        ResDirNotPresent();
        ~ResDirNotPresent() override;
        const char* what() const noexcept override;

    private:
        std::string message;
    };

    class QVI18N_API ResourcePathNotFound : public std::exception {
    public:
        ResourcePathNotFound();
        ~ResourcePathNotFound() override;
        const char* what() const noexcept override;

    private:
        std::string message;
    };

    class QVI18N_API ResPathRemovalUnknownError : public std::exception {
    public:
        explicit ResPathRemovalUnknownError(const std::string& detail);
        ~ResPathRemovalUnknownError() override;
        const char* what() const noexcept override;

    private:
        std::string message;
    };

    // The text stored for `key`, as it stands: holes and apostrophes untouched.
    virtual ustring get_message_for_key(const std::string& key) const = 0;
    // Every key, in no particular order.
    virtual std::vector<std::string> get_all_keys() const = 0;
    // The locale directory the file was found in, which may be a fall-back of the one asked for.
    virtual std::string get_locale_name() const = 0;
    // The text for the record's key with the record's holes filled; the record must name this
    // catalog, else MessageNotFound.
    virtual ustring get_message_for_key(const resource_core::BaseMsgID& id) const = 0;
    virtual std::string get_catalog_name() const = 0;
    virtual ~MessageCatalog();

    // Gives the resource roots: each entry's "resources" subdirectory, where it is a directory;
    // the others are dropped. The first call that keeps a root fixes the roots for the life of the
    // process. A later call changes nothing and tells by its result whether it asked for exactly
    // the roots in force. MessageCatalogIncorrectRoot when no root is usable on a first call.
    static bool MessageCatalogInit(const std::string& root);
    static bool MessageCatalogInit(const ustring& root);
    static bool MessageCatalogInit(const std::vector<std::string>& roots);
    static bool MessageCatalogInit(const std::vector<ustring>& roots);

    // Appends further roots behind those in force, all or nothing: one entry without a
    // "resources" directory throws MessageCatalogIncorrectRoot and adds none. Catalogs cached
    // already stay as they were found.
    static void set_additional_resource_locations(const std::vector<ustring>& roots);

    // Takes back a root added by set_additional_resource_locations (every entry of it). Catalogs
    // the root's English tree names are flushed first, unless the same directory also serves as a
    // root given to MessageCatalogInit. InvalidPathSupplied for an empty root,
    // MessageCatalogNotInitialized before any root, ResourcePathNotFound for a root that wasn't
    // added, ResDirNotPresent when its "resources" directory is gone, ResPathRemovalUnknownError
    // when walking it fails; the root then stays.
    static void remove_additional_resource_location(const ustring& root);

    // The catalog for the locale's messages name, loaded on first request. Two locales that fall
    // back to one file share one object.
    static boost::shared_ptr<const MessageCatalog> GetMessageCatalog(
        const CatalogID& id, const QvLocale& locale);
    static boost::shared_ptr<const MessageCatalog> openCatalog(
        const resource_core::BaseCatalogID& id, const QvLocale& locale);

    // Drops every cached locale of the catalog, so that the next request reads the file again.
    // Catalogs that callers hold stay usable.
    static void FlushCatalogFromCache(const CatalogID& id);

    // The stored text, unformatted.
    static ustring get_message(const MessageID& id, const QvLocale& locale);
    // The stored text with the record's holes filled; the number of values isn't checked.
    static ustring get_message(const resource_core::BaseMsgID& id, const QvLocale& locale);
    // get_message(id, QvLocale::classic()).
    static ustring get_default_locale_message(const resource_core::BaseMsgID& id);

    // Fills the holes of `pattern`; IncorrectHoleCount unless there is one value per distinct
    // hole. A single apostrophe is plain text; numbers format in the neutral locale.
    static ustring GetFormattedMessage(const ustring& pattern, const hole_values& holes);
};

typedef boost::shared_ptr<const MessageCatalog> MessageCatalogPtr;

// One entry of the process-wide catalog cache.
struct QVI18N_API CatalogCacheEntry {
    boost::shared_ptr<const MessageCatalog> catalog;
    // Counts the hits; informative only.
    int use_count;
};

class QVI18N_API MessageCatalogUtility {
public:
    // The file of catalog "a:b:c" relative to a root, with "%S" for the locale: "a/%S/b/c.xml".
    // Empty for a name without a colon or ending in one.
    static ustring obtainXMLFilePathPattern(const std::string& catalog);
};

} // namespace i18n
} // namespace fl

#endif
