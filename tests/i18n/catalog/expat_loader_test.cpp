// The line-by-line Expat frame and the catalog handler driven directly.
#include <qvi18n/i18n/catalog/expat_loader.hpp>
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <string>
#include <utility>
#include <vector>

namespace {

// Test paths and texts are UTF-8 here; the library takes UTF-16.
inline std::u16string w(const std::string& s)
{
    icu::UnicodeString u = icu::UnicodeString::fromUTF8(s);
    return std::u16string(u.getBuffer(), static_cast<std::size_t>(u.length()));
}

using fl::filesystem::upath;
using fl::i18n::ExpatEventHandler;
using fl::i18n::ExpatLoader;
using fl::i18n::MessageCatalogExpatEventHandler;

// Records every event; refuses the element named `stop_at`.
class Recorder : public ExpatEventHandler {
public:
    explicit Recorder(const std::string& encoding = "UTF-8", const std::string& stop = std::string())
        : ExpatEventHandler(encoding)
        , stop_at(stop)
    { }

    bool doElementStart(const char* name, const char** attributes) override
    {
        std::string e = std::string("<") + name;
        for (const char** a = attributes; *a; a += 2) {
            e += std::string(" ") + a[0] + "=" + a[1];
        }
        events.push_back(e + ">");
        return name != stop_at;
    }
    bool doElementData(const char* text, int length, bool first_in_line) override
    {
        runs.emplace_back(std::string(text, static_cast<std::size_t>(length)), first_in_line);
        return true;
    }
    bool doElementEnd(const char* name) override
    {
        events.push_back(std::string("</") + name + ">");
        return true;
    }

    std::string stop_at;
    std::vector<std::string> events;
    std::vector<std::pair<std::string, bool>> runs;
};

upath path_of(const std::string& s)
{
    return upath(w(s));
}

TEST(ExpatLoaderTest, OnlyTheFirstRunOfEachLineOpensALine)
{
    qvtest::scoped_temp_dir dir;
    const std::string file = dir.write_file("a.xml", "<r>\nab &amp; cd\n  x</r>\n");
    boost::shared_ptr<Recorder> rec = boost::make_shared<Recorder>();
    ExpatLoader loader(path_of(file), rec);
    ASSERT_TRUE(loader.load_file());

    const std::vector<std::pair<std::string, bool>> expected
        = {{"ab ", true}, {"&", false}, {" cd", false}, {"  x", true}};
    EXPECT_EQ(expected, rec->runs);
    EXPECT_EQ((std::vector<std::string> {"<r>", "</r>"}), rec->events);
    EXPECT_TRUE(rec->parseOk());
}

TEST(ExpatLoaderTest, ARefusingHandlerStopsTheParseForGood)
{
    qvtest::scoped_temp_dir dir;
    const std::string file = dir.write_file("a.xml", "<r>\n<a k=\"v\">one</a>\n<stop/>\n<b>two</b>\n</r>\n");
    boost::shared_ptr<Recorder> rec = boost::make_shared<Recorder>("UTF-8", "stop");
    ExpatLoader loader(path_of(file), rec);
    EXPECT_FALSE(loader.load_file());
    EXPECT_EQ((std::vector<std::string> {"<r>", "<a k=v>", "</a>", "<stop>"}), rec->events);
    EXPECT_FALSE(rec->parseOk());

    // Once stopped, the handler answers false without reaching its do-operations.
    EXPECT_FALSE(rec->elementData("x", 1, true));
    const char* none[] = {nullptr};
    EXPECT_FALSE(rec->elementStart("r", none));
    EXPECT_FALSE(rec->elementEnd("r"));
    EXPECT_EQ(4u, rec->events.size());
    EXPECT_EQ(1u, rec->runs.size());
}

class CountingStore : public fl::i18n::MessageCatalogDataStore {
public:
    void addEntry(const std::string& key, const std::string& value) override
    {
        added.emplace_back(key, value);
    }
    std::vector<std::pair<std::string, std::string>> added;
};

TEST(CatalogHandlerTest, StatesFollowTheElements)
{
    CountingStore store;
    MessageCatalogExpatEventHandler h(&store);
    const char* none[] = {nullptr};
    const char* version[] = {"version", "1", "locale", "de", nullptr};
    const char* key[] = {"key", "k", nullptr};

    EXPECT_EQ(MessageCatalogExpatEventHandler::expect_root, h.getState());
    EXPECT_FALSE(h.processMsgTag(none));
    EXPECT_TRUE(h.elementStart("rsccat", version));
    EXPECT_EQ(MessageCatalogExpatEventHandler::in_category, h.getState());
    EXPECT_TRUE(h.elementStart("message", none));
    EXPECT_EQ(MessageCatalogExpatEventHandler::in_message, h.getState());
    EXPECT_TRUE(h.elementStart("entry", key));
    EXPECT_TRUE(h.elementData("\f a \f", 5, true));
    EXPECT_TRUE(h.elementEnd("entry"));
    EXPECT_EQ(MessageCatalogExpatEventHandler::in_entry, h.getState());
    // Form feed isn't trimmed white space.
    ASSERT_EQ(1u, store.added.size());
    EXPECT_EQ("\f a \f", store.added[0].second);

    // A second entry passes, since the state stays at "inside or behind an entry".
    EXPECT_TRUE(h.elementStart("entry", key));
    EXPECT_TRUE(h.elementEnd("entry"));
    EXPECT_EQ(2u, store.added.size());
    EXPECT_EQ("", store.added[1].second);

    EXPECT_TRUE(h.elementEnd("message"));
    EXPECT_TRUE(h.elementEnd("rsccat"));
    EXPECT_FALSE(h.elementStart("rsccat", none));
    EXPECT_EQ(MessageCatalogExpatEventHandler::in_category, h.getState());
    EXPECT_FALSE(h.parseOk());
}

} // namespace
