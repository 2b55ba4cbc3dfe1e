#ifndef QVI18N_TESTS_CATALOG_CACHE_TEST_SUPPORT_HPP
#define QVI18N_TESTS_CATALOG_CACHE_TEST_SUPPORT_HPP

// Helpers for the catalog tests: a locale that answers only by its messages name (no database
// needed), and writers of catalog trees.

#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <qvtest/scoped_temp_dir.hpp>
#include <qvtest/text.hpp>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

// Compares UTF-16 texts through UTF-8, which reads well in a failure.
#define EXPECT_USTR(actual, expected)                                                                        \
    EXPECT_EQ(catalog_test::utf8(fl::i18n::ustring(actual)), catalog_test::utf8(fl::i18n::ustring(expected)))

namespace catalog_test {

inline std::string utf8(const fl::i18n::ustring& text)
{
    return qvtest::utf16_to_utf8(text);
}

using qvtest::u;

// A locale whose every category has the one name given, such as "de_AT".
class test_locale : public fl::i18n::QvLocale {
public:
    explicit test_locale(std::string name)
        : name_(std::move(name))
    { }

    bool operator==(const fl::i18n::QvLocale& other) const override
    {
        return name_ == other.shortName(LcMessages);
    }
    std::string shortName(LcCategory) const override { return name_; }
    std::string language(LcCategory) const override { return name_.substr(0, name_.find('_')); }
    std::string territory(LcCategory) const override
    {
        const std::string::size_type u = name_.find('_');
        return u == std::string::npos ? std::string() : name_.substr(u + 1);
    }
    std::string modifier(LcCategory) const override { return std::string(); }
    std::string encoding() const override { return "UTF-8"; }
    fl::i18n::LcOptData getLcOptData(fl::i18n::QvLcOptDataCtx::LcOptDataType) const override
    {
        return fl::i18n::LcOptData(std::string("UTF-8"));
    }

private:
    std::string name_;
};

typedef std::vector<std::pair<std::string, std::string>> entries;

// A catalog document with one entry per line; texts are written as they are given (XML-escape
// them yourself).
inline std::string catalog_xml(const entries& list)
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rsccat version=\"1.0\">\n  <message>\n";
    for (const auto& e : list) {
        xml += "    <entry key=\"" + e.first + "\">" + e.second + "</entry>\n";
    }
    xml += "  </message>\n</rsccat>\n";
    return xml;
}

// Writes catalog `catalog` ("a:b:c") for `locale` under <dir>/<root>/resources; returns the file.
inline std::string write_catalog(const qvtest::scoped_temp_dir& dir, const std::string& root,
    const std::string& catalog, const std::string& locale, const std::string& content)
{
    std::string rel = root + "/resources/";
    const std::string::size_type colon = catalog.find(':');
    rel += catalog.substr(0, colon) + "/" + locale + "/";
    std::string rest = catalog.substr(colon + 1);
    for (char& c : rest) {
        if (c == ':') {
            c = '/';
        }
    }
    return dir.write_file(rel + rest + ".xml", content);
}

inline std::string message_text(
    const std::string& catalog, const std::string& key, const fl::i18n::QvLocale& locale)
{
    return utf8(fl::i18n::MessageCatalog::get_message(fl::i18n::MessageID(catalog + ":" + key), locale));
}

// The texts of the roots in force, in order.
inline std::vector<std::string> root_texts()
{
    std::vector<std::string> out;
    for (const auto& p : fl::i18n::MessageCatalogImpl::getTopLevelResourceLocations()) {
        out.push_back(utf8(p.get_path_name()));
    }
    return out;
}

} // namespace catalog_test

#endif
