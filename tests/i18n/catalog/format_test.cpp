// Filling the holes of a message pattern: the hole-count check and its text, apostrophes, bad
// patterns, and the three kinds of hole value.

#include "cache_test_support.hpp"

#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>

#include "i18n/catalog/checked_length.hpp"

#include <gtest/gtest.h>

#include <unicode/locid.h>

#include <string>

using fl::i18n::MessageCatalog;
using fl::i18n::MessageCatalogImpl;
using fl::i18n::ustring;
using resource_core::HoleValues;

namespace {

std::string hole_count_text(const ustring& pattern, const HoleValues& holes)
{
    try {
        MessageCatalog::GetFormattedMessage(pattern, holes);
    } catch (const MessageCatalog::IncorrectHoleCount& e) {
        return e.what();
    }
    return "no exception";
}

} // namespace

TEST(MessageFormat, HoleCountCountsDistinctHolesAndNamesValuesFirst)
{
    EXPECT_USTR(MessageCatalog::GetFormattedMessage(u"{0} and {0}", HoleValues {ustring(u"x")}), u"x and x");
    EXPECT_USTR(MessageCatalog::GetFormattedMessage(u"no holes", HoleValues {}), u"no holes");
    EXPECT_USTR(MessageCatalog::GetFormattedMessage(u"{1}, {0}", HoleValues {1LL, 2LL}), u"2, 1");

    // "Expected" stands before the number of values given, "Found" before the holes of the text.
    EXPECT_EQ(hole_count_text(u"{0} and {0}", HoleValues {1LL, 2LL}),
        "Incorrect hole count detected. Expected : 2 Found : 1");
    EXPECT_EQ(
        hole_count_text(u"{0}", HoleValues {}), "Incorrect hole count detected. Expected : 0 Found : 1");
    try {
        MessageCatalog::GetFormattedMessage(u"{0} {1} {2}", HoleValues {1LL});
        ADD_FAILURE() << "expected IncorrectHoleCount";
    } catch (const MessageCatalog::IncorrectHoleCount& e) {
        EXPECT_EQ(e.get_expected(), 1u);
        EXPECT_EQ(e.get_found(), 3u);
    }

    // The unchecked formatter takes any number of values.
    EXPECT_USTR(MessageCatalogImpl::getFormattedMessage(u"{0}", HoleValues {1LL, 2LL}), u"1");
    EXPECT_NO_THROW(MessageCatalogImpl::getFormattedMessage(u"{0} {1}", HoleValues {}));
}

TEST(MessageFormat, SingleApostrophesAreText)
{
    EXPECT_USTR(
        MessageCatalog::GetFormattedMessage(u"It's {0}", HoleValues {ustring(u"done")}), u"It's done");
    EXPECT_USTR(MessageCatalog::GetFormattedMessage(u"l'erreur d'E/S", HoleValues {}), u"l'erreur d'E/S");
    // A doubled apostrophe is still one apostrophe, and a quoted brace is literal.
    EXPECT_USTR(MessageCatalog::GetFormattedMessage(u"it''s '{0}'", HoleValues {}), u"it's {0}");
}

TEST(MessageFormat, BadPatternsAreMessageFormatIncorrect)
{
    for (const char16_t* pattern : {u"{0", u"{0}}{", u"{0,number,integer", u"{0,nosuchtype}"}) {
        try {
            MessageCatalogImpl::getFormattedMessage(pattern, HoleValues {1LL});
            ADD_FAILURE() << "pattern " << catalog_test::utf8(pattern) << " was accepted";
        } catch (const MessageCatalog::MessageFormatIncorrect& e) {
            EXPECT_STREQ(e.what(), "Incorrect Message Formatting Attempted");
        }
    }
}

TEST(MessageFormat, ValuesOfEachKindAndNumbersInTheNeutralLocale)
{
    // Whatever ICU's default locale is, numbers format in the neutral one.
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale before = icu::Locale::getDefault();
    icu::Locale::setDefault(icu::Locale("de", "DE"), status);
    const ustring number
        = MessageCatalog::GetFormattedMessage(u"{0}|{0,number,integer}", HoleValues {-1234567LL});
    icu::Locale::setDefault(before, status);
    EXPECT_EQ(number.find(u'.'), ustring::npos) << catalog_test::utf8(number);
    EXPECT_NE(number.find(u"1"), ustring::npos);
    EXPECT_USTR(number.substr(0, 1), u"-");

    const ustring wide = u"\u65e5\u672c\U0001F600";
    EXPECT_USTR(MessageCatalog::GetFormattedMessage(u"<{0}><{1}>", HoleValues {wide, std::string("ascii")}),
        u"<\u65e5\u672c\U0001F600><ascii>");
    // Values are never parsed as patterns.
    EXPECT_USTR(MessageCatalog::GetFormattedMessage(u"{0}", HoleValues {ustring(u"{1} it's")}), u"{1} it's");
}

TEST(MessageFormat, LengthsBeyondIcusIntAreRefused)
{
    // A pattern or value too long for ICU's int lengths is too large to build here: the length
    // check refuses it as numeric_cast would.
    EXPECT_THROW(fl::i18n::detail::checked_length(std::size_t(0x80000000u)), boost::numeric::positive_overflow);
    EXPECT_EQ(fl::i18n::detail::checked_length(0x7FFFFFFFu), 0x7FFFFFFF);
}
