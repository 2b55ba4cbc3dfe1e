// Catalog and message identifiers, and the outward/internal catalog name mapping.
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>
#include <qvi18n/resource_core/resource_core.hpp>

#include <gtest/gtest.h>

#include <string>

using fl::i18n::CatalogID;
using fl::i18n::isValidCompositeID;
using fl::i18n::MessageID;

TEST(CompositeIdGrammar, AcceptsSegmentsOfLettersUnderscoresAndLaterDigits)
{
    for (const char* id : {"fl:i18n", "a:b:c", "_x:_1", "A9:b_8:Z", "fl:i18n:date_time:QvDtBad", "__:__"}) {
        EXPECT_TRUE(isValidCompositeID(id)) << id;
    }
}

TEST(CompositeIdGrammar, RefusesEmptySegmentsBadCharactersAndSingleSegments)
{
    for (const char* id : {"", "a", ":", ":a", "a:", "a::b", "1a:b", "a:1b", "a:b-c", "a:b c", "a b:c",
             "a:b:", "a:\xc3\xa9", "\xc3\xa9:a", "a:b\x80"}) {
        EXPECT_FALSE(isValidCompositeID(id)) << id;
    }
    // A NUL inside the text is a byte like any other, not an end.
    EXPECT_FALSE(isValidCompositeID(std::string("a:b\0c", 5)));
}

TEST(CatalogIDTest, SplitsAtTheFirstColonAndKeepsInnerColons)
{
    CatalogID two("fl:i18n");
    EXPECT_EQ("fl:i18n", two.getCatalogID());
    EXPECT_STREQ("fl:i18n", two.getCatalogIDStr());
    EXPECT_EQ("fl", two.getComponentName());
    EXPECT_EQ("i18n", two.getSubComponentsNames());

    CatalogID three("a:b:c");
    EXPECT_EQ("a", three.getComponentName());
    EXPECT_EQ("b:c", three.getSubComponentsNames());

    CatalogID none;
    EXPECT_EQ("", none.getCatalogID());
    EXPECT_EQ("", none.getComponentName());
    EXPECT_EQ("", none.getSubComponentsNames());
}

TEST(CatalogIDTest, MalformedIdentifiersThrowAndSettersLeaveTheObjectAlone)
{
    for (const char* bad : {"", "a", "a:", "a::b", "1a:b", "a:b-c"}) {
        EXPECT_THROW(CatalogID {bad}, CatalogID::badCatalogIDException) << bad;
    }

    CatalogID id("x:y");
    EXPECT_THROW(id.setCatalogID("not valid"), CatalogID::badCatalogIDException);
    EXPECT_EQ("x:y", id.getCatalogID());
    EXPECT_EQ("x", id.getComponentName());
    EXPECT_EQ("y", id.getSubComponentsNames());

    id.setCatalogID("p:q:r");
    EXPECT_EQ("p:q:r", id.getCatalogID());
    EXPECT_EQ("q:r", id.getSubComponentsNames());

    // The empty text is refused even where it equals what is stored.
    CatalogID empty;
    EXPECT_THROW(empty.setCatalogID(""), CatalogID::badCatalogIDException);
}

TEST(MessageIDTest, SplitsAtTheLastColon)
{
    MessageID id("a:b:c");
    EXPECT_EQ("a:b:c", id.getCompositeID());
    EXPECT_STREQ("a:b:c", id.getCompositeIDstr());
    EXPECT_EQ("a:b", id.getCatalogID());
    EXPECT_EQ("c", id.getMsgKey());

    MessageID deep("fl:i18n:date_time:QvDtBad");
    EXPECT_EQ("fl:i18n:date_time", deep.getCatalogID());
    EXPECT_EQ("QvDtBad", deep.getMsgKey());
}

TEST(MessageIDTest, NeedsACatalogOfTwoSegmentsAndAlwaysThrowsItsOwnException)
{
    // "a:b" is a valid composite, but its catalog "a" has one segment.
    EXPECT_TRUE(isValidCompositeID("a:b"));
    for (const char* bad : {"a:b", "", "a", "a:b:", "a::c", "a:b:1c", "a:b:c d"}) {
        try {
            MessageID id(bad);
            ADD_FAILURE() << "accepted " << bad;
        } catch (const MessageID::badMessageIDException& e) {
            EXPECT_STREQ("Bad Message ID", e.what());
        } catch (const std::exception& e) {
            ADD_FAILURE() << bad << " threw " << e.what();
        }
    }
}

TEST(MessageIDTest, SetterReplacesOrLeavesTheIdentifierAsItWas)
{
    MessageID id("a:b:c");
    EXPECT_THROW(id.setCompositeMsgID("a:b"), MessageID::badMessageIDException);
    EXPECT_EQ("a:b:c", id.getCompositeID());
    EXPECT_EQ("a:b", id.getCatalogID());
    EXPECT_EQ("c", id.getMsgKey());

    id.setCompositeMsgID("x:y:z:k");
    EXPECT_EQ("x:y:z", id.getCatalogID());
    EXPECT_EQ("k", id.getMsgKey());

    EXPECT_THROW(id.setCompositeMsgID(""), MessageID::badMessageIDException);
}

TEST(MessageIDTest, BuildingFromPartsValidatesOnlyTheKeysPresence)
{
    MessageID loose(CatalogID(), "k");
    EXPECT_EQ("::k", loose.getCompositeID());
    EXPECT_EQ("", loose.getCatalogID());
    EXPECT_EQ("k", loose.getMsgKey());

    MessageID odd(CatalogID("a:b"), "not valid!");
    EXPECT_EQ("a:b:not valid!", odd.getCompositeID());
    EXPECT_THROW(MessageID {odd.getCompositeID()}, MessageID::badMessageIDException);

    MessageID deep(CatalogID("a:b:c"), "key");
    EXPECT_EQ("a:b:c:key", deep.getCompositeID());
    EXPECT_EQ("a:b:c", deep.getCatalogID());

    EXPECT_THROW(MessageID(CatalogID("a:b"), ""), MessageID::badMessageIDException);
}

TEST(CatalogNameMapping, ExternalNameDropsOnlyTheExactReservedSegment)
{
    using resource_core::makeExternalCatalogName;
    EXPECT_EQ("ZORBEL", makeExternalCatalogName("ZORBEL:legacy_two_part"));
    for (const char* same : {"ZORBEL:legacy_two_part:x", "other:legacy_two_part", "ZORBEL",
             "zorbel:legacy_two_part", "xZORBEL:legacy_two_part", "fl:i18n", ""}) {
        EXPECT_EQ(same, makeExternalCatalogName(same)) << same;
    }
}

TEST(CatalogNameMapping, InternalNameIsTheInverse)
{
    using resource_core::makeExternalCatalogName;
    using resource_core::makeInternalCatalogName;
    EXPECT_EQ("ZORBEL:legacy_two_part", makeInternalCatalogName("ZORBEL"));
    for (const char* internal : {"ZORBEL:legacy_two_part", "ZORBEL:legacy_two_part:x",
             "other:legacy_two_part", "fl:i18n", "fl:i18n:date_time", "zorbel:legacy_two_part"}) {
        EXPECT_EQ(internal, makeInternalCatalogName(makeExternalCatalogName(internal))) << internal;
    }
    for (const char* external : {"ZORBEL", "fl:i18n", "a:b:c"}) {
        EXPECT_EQ(external, makeExternalCatalogName(makeInternalCatalogName(external))) << external;
    }
}
