// A handler that throws from a parser callback: the exception leaves load_file as it was thrown,
// nothing reaches the handler after it, and (under the sanitizers) nothing leaks. The same for the
// catalog's own handler when its store fails.
#include <qvi18n/i18n/catalog/expat_loader.hpp>
#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <new>
#include <string>

using fl::filesystem::upath;
using fl::i18n::ExpatEventHandler;
using fl::i18n::ExpatLoader;

namespace {

struct handler_failure {
    std::string where;
};

enum class callback { start, data, end };

class throwing_handler : public ExpatEventHandler {
public:
    throwing_handler(callback which, int nth)
        : ExpatEventHandler("UTF-8")
        , which_(which)
        , nth_(nth)
    { }

    bool doElementStart(const char*, const char**) override { return event(callback::start, "start"); }
    bool doElementData(const char*, int, bool) override { return event(callback::data, "data"); }
    bool doElementEnd(const char*) override { return event(callback::end, "end"); }

    int calls = 0;
    int calls_at_throw = -1;

private:
    bool event(callback kind, const char* where)
    {
        ++calls;
        if (kind == which_ && ++seen_ == nth_) {
            calls_at_throw = calls;
            throw handler_failure {where};
        }
        return true;
    }

    callback which_;
    int nth_;
    int seen_ = 0;
};

// One entry a line, and more than one read block, so that throws land deep in the file.
std::string catalog(int entries)
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rsccat version=\"1.0\" locale=\"en\">\n<message>\n";
    for (int i = 0; i < entries; ++i) {
        xml += "<entry key=\"k" + std::to_string(i) + "\">text number " + std::to_string(i) + " &amp; more</entry>\n";
    }
    return xml + "</message>\n</rsccat>\n";
}

upath as_upath(const std::string& ascii)
{
    return upath(std::u16string(ascii.begin(), ascii.end()));
}

// Fails as an insert would when memory runs out.
class failing_store : public fl::i18n::MessageCatalogDataStore {
public:
    void addEntry(const std::string&, const std::string&) override
    {
        if (++added == 2500) {
            throw std::bad_alloc();
        }
    }
    int added = 0;
};

} // namespace

TEST(LoaderHandlerExceptions, EachCallbackRethrownAfterTheParseWithNothingDeliveredLater)
{
    qvtest::scoped_temp_dir dir;
    const upath file = as_upath(dir.write_file("cat.xml", catalog(4000)));
    const struct {
        callback which;
        int nth;
        const char* where;
    } cases[] = {{callback::start, 1, "start"}, {callback::start, 3500, "start"}, {callback::data, 1, "data"},
        {callback::data, 6000, "data"}, {callback::end, 1, "end"}, {callback::end, 3999, "end"}};
    for (const auto& c : cases) {
        auto handler = boost::make_shared<throwing_handler>(c.which, c.nth);
        ExpatLoader loader(file, handler);
        try {
            loader.load_file();
            ADD_FAILURE() << c.where << " " << c.nth << ": no exception";
        } catch (const handler_failure& e) {
            EXPECT_EQ(e.where, c.where);
        }
        EXPECT_EQ(handler->calls, handler->calls_at_throw) << c.where << " " << c.nth;
    }
}

TEST(LoaderHandlerExceptions, AllocationFailureInTheStoreKeepsItsType)
{
    qvtest::scoped_temp_dir dir;
    failing_store store;
    fl::i18n::XMLCatalogFileLoader loader;
    EXPECT_THROW(loader.loadFile(as_upath(dir.write_file("cat.xml", catalog(4000))), store), std::bad_alloc);
    EXPECT_EQ(store.added, 2500);
}
