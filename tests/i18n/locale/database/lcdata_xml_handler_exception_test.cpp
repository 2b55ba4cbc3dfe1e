// A handler that throws from a parser call-back: the exception leaves parseXmlDocument as it was
// thrown, nothing reaches the handler after it, and (under the sanitizers) nothing leaks.
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml_parser.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <type_traits>

using fl::i18n::EventHandler;

namespace {

struct handler_failure {
    std::string where;
};

enum class callback { declaration, start, data, end };

// Throws from the `nth` call of one kind of call-back, and counts every call.
class throwing_handler : public EventHandler {
public:
    throwing_handler(callback which, int nth)
        : which_(which)
        , nth_(nth)
    { }

    int checkXMLDoc(char const*, char const*, int) const override
    {
        ++calls_;
        maybe_throw(callback::declaration, "declaration");
        return 0;
    }
    int startEntry(char const*, char const**) override
    {
        ++calls_;
        maybe_throw(callback::start, "start");
        return 0;
    }
    int entryData(char const*, int) override
    {
        ++calls_;
        maybe_throw(callback::data, "data");
        return 0;
    }
    int endEntry(char const*) override
    {
        ++calls_;
        maybe_throw(callback::end, "end");
        return 0;
    }
    std::string getEncoding() const override { return "UTF-8"; }

    int calls() const { return calls_; }
    int calls_at_throw() const { return calls_at_throw_; }

private:
    void maybe_throw(callback kind, char const* where) const
    {
        if (kind == which_ && ++seen_ == nth_) {
            calls_at_throw_ = calls_;
            throw handler_failure {where};
        }
    }

    callback which_;
    int nth_;
    mutable int seen_ = 0;
    mutable int calls_ = 0;
    mutable int calls_at_throw_ = -1;
};

// Long enough that Expat is fed many pieces and the throws land deep inside the document.
std::string document()
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<lcdata>\n";
    for (int i = 0; i < 400; ++i) {
        const std::string n = std::to_string(i);
        xml += "<locale name=\"l" + n + "\" encoding=\"UTF-8\" xpg_name=\"l" + n + "\">\n<alias name=\"a" + n
            + "\"/>\n</locale>\n";
    }
    return xml + "</lcdata>\n";
}

} // namespace

// Both keep pointers into the validator's own table, which a copy would share with the original.
static_assert(!std::is_copy_constructible<fl::i18n::EventValidator>::value, "");
static_assert(!std::is_copy_assignable<fl::i18n::EventValidator>::value, "");
static_assert(!std::is_copy_constructible<fl::i18n::LcdbEventHandler>::value, "");
static_assert(!std::is_copy_assignable<fl::i18n::LcdbEventHandler>::value, "");

TEST(ReaderHandlerExceptions, EachCallBackRethrownAfterTheParseWithNothingDeliveredLater)
{
    qvtest::scoped_temp_dir dir;
    const fl::filesystem::native_path file(dir.write_file("db.xml", document()));
    const struct {
        callback which;
        int nth;
        const char* where;
    } cases[] = {{callback::declaration, 1, "declaration"}, {callback::start, 1, "start"},
        {callback::start, 700, "start"}, {callback::data, 900, "data"}, {callback::end, 1, "end"},
        {callback::end, 650, "end"}};
    for (const auto& c : cases) {
        throwing_handler handler(c.which, c.nth);
        try {
            fl::i18n::parseXmlDocument(handler, file);
            ADD_FAILURE() << c.where << " " << c.nth << ": no exception";
        } catch (const handler_failure& e) {
            EXPECT_EQ(e.where, c.where);
        }
        EXPECT_EQ(handler.calls(), handler.calls_at_throw()) << c.where << " " << c.nth;
    }
}

TEST(ReaderHandlerExceptions, AllocationFailureInTheDatabaseHandlerKeepsItsType)
{
    // The database's own handler, failing as an insert would when memory runs out.
    class failing_inserts : public fl::i18n::LcdbEventHandler {
    public:
        using LcdbEventHandler::LcdbEventHandler;
        int startEntry(char const* name, char const** attributes) override
        {
            if (++starts_ == 301)
                throw std::bad_alloc();
            return LcdbEventHandler::startEntry(name, attributes);
        }

    private:
        int starts_ = 0;
    };

    qvtest::scoped_temp_dir dir;
    fl::i18n::LcData data;
    failing_inserts handler(data);
    EXPECT_THROW(fl::i18n::parseXmlDocument(handler, fl::filesystem::native_path(dir.write_file("db.xml", document()))),
        std::bad_alloc);
    // Records that arrived before the failure stay, as after any failed parse.
    EXPECT_EQ(data.getLcName("a99"), "l99");
}
