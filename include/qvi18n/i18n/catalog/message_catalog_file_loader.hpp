#ifndef QVI18N_I18N_CATALOG_MESSAGE_CATALOG_FILE_LOADER_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_CATALOG_FILE_LOADER_HPP

// Reading a catalog file into a data store. The XML form is
//   <rsccat version=".." locale=".."><message><entry key="k">text</entry>...</message></rsccat>
// and an entry's text is rebuilt from its lines: each line trimmed, lines joined by one space.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/catalog/expat_loader.hpp>
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>

#include <string>

namespace fl {
namespace i18n {

class QVI18N_API MessageCatalogFileLoader {
public:
    // Fills `store` from the file at `path`; false when the file can't be read or isn't a
    // catalog. Entries read before a failure stay in the store.
    virtual bool loadFile(const fl::filesystem::upath& path, MessageCatalogDataStore& store) = 0;
    virtual ~MessageCatalogFileLoader();
};

class QVI18N_API XMLCatalogFileLoader : public MessageCatalogFileLoader {
public:
    bool loadFile(const fl::filesystem::upath& path, MessageCatalogDataStore& store) override;
    ~XMLCatalogFileLoader() override;
};

// Understands the catalog elements and hands each finished entry to the store.
class QVI18N_API MessageCatalogExpatEventHandler : public ExpatEventHandler {
public:
    // Where the parse stands.
    enum {
        in_category = 0, // inside rsccat, message expected
        in_message = 1, // inside message, no entry seen
        in_entry = 2, // inside or behind an entry
        expect_root = 3 // nothing read yet
    };

    explicit MessageCatalogExpatEventHandler(MessageCatalogDataStore* store);
    ~MessageCatalogExpatEventHandler() override;

    static const char* getCategoryTag() { return "rsccat"; }
    static const char* getMessageTag() { return "message"; }
    static const char* getEntryTag() { return "entry"; }
    static const char* getVersionAttribute() { return "version"; }
    static const char* getLocaleAttribute() { return "locale"; }
    static const char* getEntryKeyStr() { return "key"; }

    bool processCatTag(const char** attributes);
    bool processMsgTag(const char** attributes);
    bool processEntryTag(const char** attributes);
    void addEntry(const std::string& key, const std::string& value);

    int getState() const { return state; }

    bool doElementStart(const char* name, const char** attributes) override;
    bool doElementData(const char* text, int length, bool first_in_line) override;
    bool doElementEnd(const char* name) override;

private:
    MessageCatalogDataStore* store;
    std::string current_key;
    std::string current_line;
    std::string current_value;
    int state;
};

} // namespace i18n
} // namespace fl

#endif
