// One failure per family, raised by a real call on a worker thread and rethrown on this one:
// an exception_ptr must carry the exact class and its data, not a slice of the base.
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/filesystem/date_time.hpp>
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ctype/pattern_match.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <boost/exception_ptr.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace fs = fl::filesystem;
using fl::i18n::CatalogID;
using fl::i18n::MessageCatalog;

namespace {

boost::exception_ptr fail_on_a_thread(const std::function<void()>& call)
{
    boost::exception_ptr carried;
    std::thread([&] {
        try {
            call();
        } catch (...) {
            carried = boost::current_exception();
        }
    }).join();
    return carried;
}

} // namespace

TEST(ExceptionsAcrossThreads, EachFamilyKeepsItsClassAndData)
{
    boost::exception_ptr carried
        = fail_on_a_thread([] { fl::i18n::codecvt_string_to_ustring cvt("no-such-encoding-xyz", true); });
    ASSERT_TRUE(carried);
    try {
        boost::rethrow_exception(carried);
    } catch (const fl::i18n::CvtInvalidEncodingName& e) {
        EXPECT_EQ(e.get_encoding_name(), "no-such-encoding-xyz");
        EXPECT_EQ(e.get_code(), 2);
        EXPECT_STREQ(e.what(), "Invalid encoding name specified.");
    }

    carried = fail_on_a_thread([] { fs::access(fl::i18n::ustring(u"/no/such/\u00e9t\u00e9"), 1); });
    ASSERT_TRUE(carried);
    try {
        boost::rethrow_exception(carried);
    } catch (const fs::PathNotFound& e) {
        EXPECT_EQ(e.get_id(), fs::fsys_path_not_found);
        EXPECT_STREQ(e.what(), "fl:filesystem:PathNotFound");
    }

    carried = fail_on_a_thread([] { CatalogID id("bad"); });
    ASSERT_TRUE(carried);
    try {
        boost::rethrow_exception(carried);
    } catch (const CatalogID::badCatalogIDException& e) {
        EXPECT_STREQ(e.what(), "Bad Catalog ID");
    }

    carried = fail_on_a_thread([] { MessageCatalog::GetFormattedMessage(u"{0", resource_core::HoleValues {}); });
    EXPECT_THROW(boost::rethrow_exception(carried), MessageCatalog::MessageFormatIncorrect);

    // Asked before any root was set up.
    carried = fail_on_a_thread([] { MessageCatalog::GetMessageCatalog(CatalogID("a:b"), fl::i18n::QvLocale::global()); });
    EXPECT_THROW(boost::rethrow_exception(carried), MessageCatalog::MessageCatalogNotInitialized);
}

TEST(ExceptionsAcrossThreads, DatabaseTimeAndCharacterFailuresKeepTheirClass)
{
    boost::exception_ptr carried = fail_on_a_thread([] {
        fl::i18n::LcData data;
        fl::i18n::parseLcData(data, fs::native_path("/no/such/lcdata.xml"));
    });
    try {
        boost::rethrow_exception(carried);
    } catch (const fl::i18n::LcRscOpenFileFailure& e) {
        EXPECT_EQ(e.get_path(), "/no/such/lcdata.xml");
    }

    carried = fail_on_a_thread([] { fl::i18n::date_time::ptime_to_time_t(boost::posix_time::ptime()); });
    EXPECT_THROW(boost::rethrow_exception(carried), fl::i18n::date_time::invalid_data_error);

    carried = fail_on_a_thread([] { fl::i18n::character_handling_mode_context mode(16); });
    EXPECT_THROW(boost::rethrow_exception(carried), fl::i18n::CtypeInvalidArgument);

    carried = fail_on_a_thread([] { fl::i18n::pattern_match(u"[", fl::i18n::character_handling_mode_context(0)); });
    EXPECT_THROW(boost::rethrow_exception(carried), fl::i18n::RegexFailedObjectCreation);
}
