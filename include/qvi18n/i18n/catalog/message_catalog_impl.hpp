#ifndef QVI18N_I18N_CATALOG_MESSAGE_CATALOG_IMPL_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_CATALOG_IMPL_HPP

// The catalog loaded from one XML file. Made only by the catalog cache; fully loaded or never made.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>

#include <string>
#include <vector>

namespace fl {
namespace i18n {

class QVI18N_API MessageCatalogImpl : public MessageCatalog {
public:
    // Loads `path` at once; MessageCatalogLoadFailed(catalog) when it doesn't load. `locale` is the
    // directory name the file was found under.
    MessageCatalogImpl(
        const std::string& catalog, const fl::filesystem::upath& path, const std::string& locale);
    ~MessageCatalogImpl() override;

    MessageCatalogImpl(const MessageCatalogImpl&) = delete;
    MessageCatalogImpl& operator=(const MessageCatalogImpl&) = delete;

    ustring get_message_for_key(const std::string& key) const override;
    std::vector<std::string> get_all_keys() const override;
    std::string get_locale_name() const override { return locale_name; }
    ustring get_message_for_key(const resource_core::BaseMsgID& id) const override;
    std::string get_catalog_name() const override { return catalog_name; }

    const fl::filesystem::upath& get_file_path() const { return file_path; }

    // The roots in force, in search order; MessageCatalogNotInitialized when there are none.
    static std::vector<fl::filesystem::upath> getTopLevelResourceLocations();

    // Fills the holes without checking their number.
    static ustring getFormattedMessage(const ustring& pattern, const hole_values& holes);
    // The formatter behind both: ICU MessageFormat over the pattern with single apostrophes made
    // literal, in the locale "en_US_POSIX" whatever the catalog's is.
    static ustring GetFormattedMessageImpl(
        const ustring& pattern, const hole_values& holes, bool check_hole_count);

private:
    // Loads the file into the store, or throws MessageCatalogLoadFailed.
    void initializeXMLCatalog();

    std::string catalog_name;
    fl::filesystem::upath file_path;
    std::string locale_name;
    XMLCatalogDataStore store;
};

} // namespace i18n
} // namespace fl

#endif
