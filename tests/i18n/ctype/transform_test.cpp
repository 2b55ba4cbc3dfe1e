#include <qvi18n/i18n/ctype/character_handling_mode_context.hpp>
#include <qvi18n/i18n/ctype/transform.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>

#include <qvtest/text.hpp>

#include <gtest/gtest.h>
#include <unicode/unorm.h>
#include <unicode/ustring.h>

#include <functional>
#include <random>
#include <vector>

// The reference is the normalising call that the library's normal forms are defined by.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

using namespace fl::i18n;
using qvtest::hex_dump;

namespace {

typedef std::function<std::int32_t(UChar*, std::int32_t, const UChar*, std::int32_t, UErrorCode*)> icu_transform;

ustring icu_result(const ustring& text, const icu_transform& call)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t size = call(nullptr, 0, text.data(), static_cast<std::int32_t>(text.size()), &status);
    ustring out(static_cast<std::size_t>(size), u'\0');
    status = U_ZERO_ERROR;
    call(&out[0], size, text.data(), static_cast<std::int32_t>(text.size()), &status);
    EXPECT_TRUE(U_SUCCESS(status));
    return out;
}

// Measures with a null destination, then maps into a buffer of the measured size.
template <typename Tag> ustring ours(const ustring& text, const Tag& tag)
{
    const unsigned long size = lcctype::transform(nullptr, 0, text.data(), text.size(), tag);
    ustring out(size, u'\0');
    EXPECT_EQ(lcctype::transform(&out[0], out.size(), text.data(), text.size(), tag), size);
    return out;
}

boost::shared_ptr<QvLocale const> turkish()
{
    {
        boost::unique_lock<boost::mutex> lock(getLcMutex());
        LcData& data = get_qvlocale_context().getLcDataForUpdate(lock);
        data.addLcName("tr_TR", "UTF-8", "tr_TR.UTF-8");
        data.addEncodingName("UTF-8", "UTF8");
    }
    return QvLocale::createLocale("tr_TR");
}

const std::vector<ustring> multilingual = {
    u"İstanbul'da ılık bir gün; IRMAK ve iğne",
    u"Straße, Fuß, STRASSE, ﬁnal ﬀ",
    u"ΟΔΥΣΣΕΥΣ σοφός ΣΟΦΟΣ ὈΔΥΣΣΕΎΣ",
    u"한국어 텍스트 \u1112\u1161\u11AB\u1100\u1173\u11AF",
    u"e\u0301 a\u0308\u0323 q\u0307\u0323 \u00C5 A\u030A \u212B \u1E9B\u0323",
    u"mixed \U0001D400\U0001F600 and a lone \xD800 lead and \xDC00 trail",
};

std::vector<int> signs(const std::vector<int>& values)
{
    std::vector<int> out;
    for (int v : values)
        out.push_back((v > 0) - (v < 0));
    return out;
}

} // namespace

TEST(CtypeTransform, MultilingualTextMapsAsIcuMapsIt)
{
    using namespace std::placeholders;
    const boost::shared_ptr<QvLocale const> tr = turkish();
    ASSERT_EQ(tr->shortName(QvLocale::LcCtype), "tr_TR");
    for (const ustring& text : multilingual) {
        SCOPED_TRACE(hex_dump(text));
        EXPECT_EQ(ours(text, to_upper()), icu_result(text, std::bind(u_strToUpper, _1, _2, _3, _4, "", _5)));
        EXPECT_EQ(ours(text, to_lower()), icu_result(text, std::bind(u_strToLower, _1, _2, _3, _4, "", _5)));
        EXPECT_EQ(ours(text, to_upper_locale(tr)), icu_result(text, std::bind(u_strToUpper, _1, _2, _3, _4, "tr_TR", _5)));
        EXPECT_EQ(ours(text, to_lower_locale(*tr)), icu_result(text, std::bind(u_strToLower, _1, _2, _3, _4, "tr_TR", _5)));
        EXPECT_EQ(ours(text, to_nfd()), icu_result(text, std::bind(unorm_normalize, _3, _4, UNORM_NFD, 0, _1, _2, _5)));
        EXPECT_EQ(ours(text, to_nfc()), icu_result(text, std::bind(unorm_normalize, _3, _4, UNORM_NFC, 0, _1, _2, _5)));
    }
    // The cases that tell the mappings apart.
    EXPECT_EQ(ours(u"i", to_upper()), u"I");
    EXPECT_EQ(ours(u"i", to_upper_locale(tr)), u"\u0130");
    EXPECT_EQ(ours(u"I", to_lower_locale(tr)), u"\u0131");
    EXPECT_EQ(ours(u"ß", to_upper()), u"SS");
    EXPECT_EQ(ours(u"ΣΟΦΟΣ", to_lower()), u"σοφος");
    EXPECT_EQ(ours(u"\u1112\u1161\u11AB", to_nfc()), u"\uD55C");
    EXPECT_EQ(ours(u"\uD55C", to_nfd()), u"\u1112\u1161\u11AB");
}

TEST(CtypeTransform, SizeContractAndRefusals)
{
    const ustring sharp = u"ß";
    EXPECT_EQ(lcctype::transform(nullptr, 0, u"abcde", 5, to_upper()), 5UL);
    char16_t small[1] = {u'x'};
    EXPECT_EQ(lcctype::transform(small, 1, sharp.data(), 1, to_upper()), 2UL) << "too small is not a failure";
    EXPECT_EQ(lcctype::transform(nullptr, 10, u"e\u0301", 2, to_nfc()), 1UL) << "a null destination measures";

    // Nothing to map leaves the destination alone.
    char16_t untouched[2] = {u'x', u'y'};
    EXPECT_EQ(lcctype::transform(untouched, 2, nullptr, 5, to_lower()), 0UL);
    EXPECT_EQ(lcctype::transform(untouched, 2, u"ab", 0, to_nfd()), 0UL);
    EXPECT_EQ(untouched[0], u'x');

    // ICU maps case in place, but refuses to normalise into the source.
    ustring text = u"abc";
    EXPECT_EQ(lcctype::transform(&text[0], 3, text.data(), 3, to_upper()), 3UL);
    EXPECT_EQ(text, u"ABC");
    EXPECT_THROW(lcctype::transform(&text[0], 3, text.data(), 3, to_nfc()), CtypeTransformFailure);

    // Sizes beyond the limit are refused before ICU reads anything.
    EXPECT_THROW(lcctype::transform(nullptr, 0, text.data(), 0x40000000UL, to_upper()), CtypeSizeTooLarge);
    EXPECT_THROW(lcctype::transform(small, 0x40000000UL, text.data(), 3, to_lower()), CtypeSizeTooLarge);
    EXPECT_EQ(lcctype::transform(nullptr, 0x40000000UL, text.data(), 3, to_lower()), 3UL)
        << "no destination, no capacity to check";
    try {
        lcctype::transform(nullptr, 0, text.data(), ~0UL, to_nfd());
        FAIL();
    } catch (const CtypeExceptionBase& e) {
        EXPECT_STREQ(e.what(), "Data size too large.");
    }
}

TEST(CtypeCompare, PairsDifferingByCaseByNormalisationOrBoth)
{
    struct pair_case {
        ustring left, right;
        std::vector<int> expected; // signs: case_sensitive, case_insensitive, normalised, both
    };
    const std::vector<pair_case> pairs = {
        {u"path/File.TXT", u"path/file.txt", {-1, 0, -1, 0}},
        {u"Straße", u"STRASSE", {1, 0, 1, 0}},
        {u"ΣΟΦΟΣ", u"σοφος", {-1, 0, -1, 0}},
        {u"caf\u00E9", u"cafe\u0301", {1, 1, 0, 0}},
        {u"\uD55C", u"\u1112\u1161\u11AB", {1, 1, 0, 0}},
        {u"\u212B", u"\u00C5", {1, 0, 0, 0}},
        {u"CAF\u00C9", u"cafe\u0301", {-1, 1, -1, 0}},
        {u"A\u030A", u"\u00E5", {-1, -1, -1, 0}},
        {u"same", u"same", {0, 0, 0, 0}},
        {u"abc", u"abcd", {-1, -1, -1, -1}},
        {u"abd", u"ABC", {1, 1, 1, 1}},
        {u"", u"", {0, 0, 0, 0}},
    };
    for (const pair_case& p : pairs) {
        SCOPED_TRACE(hex_dump(p.left) + " | " + hex_dump(p.right));
        const std::vector<int> results = {
            lcctype::compare(p.left.data(), p.left.size(), p.right.data(), p.right.size(), case_sensitive()),
            lcctype::compare(p.left.data(), p.left.size(), p.right.data(), p.right.size(), case_insensitive()),
            lcctype::compare(p.left.data(), p.left.size(), p.right.data(), p.right.size(), normalized_case_sensitive()),
            lcctype::compare(p.left.data(), p.left.size(), p.right.data(), p.right.size(), normalized_case_insensitive()),
        };
        EXPECT_EQ(signs(results), p.expected);
    }
}

TEST(CtypeCompare, EveryModeAnswersExactlyWhatIcuAnswers)
{
    // Texts built from pieces that fold, expand, compose or reorder, mixed with plain ASCII, so
    // that the ASCII walk hands over to ICU at every kind of place.
    const std::vector<ustring> pieces = {u"a", u"A", u"b", u"s", u"S", u"ss", u"ß", u"ẞ", u"e", u"E",
        u"\u0301", u"\u00E9", u"\u00C9", u"\u0323", u"k", u"\u212A", u"\u017F", u"\uFB00", u"ff", u"1",
        u"\u1112", u"\u1161", u"\uD55C", u"\U0001D400", u"\xD800", u"\xDC00", u"~", u"\x7F", u"\x80"};
    std::mt19937 random(2);
    std::uniform_int_distribution<std::size_t> piece(0, pieces.size() - 1);
    std::uniform_int_distribution<int> count(0, 6);
    auto make = [&]() {
        ustring s;
        for (int n = count(random); n > 0; --n)
            s += pieces[piece(random)];
        return s;
    };
    for (int round = 0; round < 20000; ++round) {
        ustring left = make();
        ustring right = round % 3 == 0 ? left : make();
        if (round % 400 == 0) // long enough to leave any buffer on the stack
            for (int doubling = 0; doubling < 8; ++doubling) {
                left += left + u"\u00E9";
                right += right + u"e\u0301";
            }
        if (round % 5 == 0 && !right.empty())
            right[random() % right.size()] ^= 0x20;
        SCOPED_TRACE(hex_dump(left) + " | " + hex_dump(right));
        const std::int32_t l = static_cast<std::int32_t>(left.size());
        const std::int32_t r = static_cast<std::int32_t>(right.size());
        UErrorCode status = U_ZERO_ERROR;
        ASSERT_EQ(lcctype::compare(left.data(), left.size(), right.data(), right.size(), case_sensitive()),
            u_strCompare(left.data(), l, right.data(), r, false));
        ASSERT_EQ(lcctype::compare(left.data(), left.size(), right.data(), right.size(), case_insensitive()),
            u_strCaseCompare(left.data(), l, right.data(), r, 0, &status));
        ASSERT_EQ(lcctype::compare(left.data(), left.size(), right.data(), right.size(), normalized_case_sensitive()),
            unorm_compare(left.data(), l, right.data(), r, 0, &status));
        ASSERT_EQ(lcctype::compare(left.data(), left.size(), right.data(), right.size(), normalized_case_insensitive()),
            unorm_compare(left.data(), l, right.data(), r, U_COMPARE_IGNORE_CASE, &status));
        ASSERT_TRUE(U_SUCCESS(status));
    }
}

TEST(CtypeCompare, LoneLeadAgainstADecomposingPairAnswersAsIcu)
{
    // ICU matches the lone lead with the lead of U+2F8FF before it decomposes the pair (to U+6D16),
    // so decomposing both texts whole would answer with the opposite sign.
    const ustring pairs[][2] = {{u"\uFF01\xD87E", u"\uFF01\U0002F8FF\xDCFF"}, {u"\xD87E", u"\U0002F8FF"},
        {u"x\xD87E\u00E9", u"x\U0002F8FFe\u0301"}};
    for (const auto& p : pairs) {
        SCOPED_TRACE(hex_dump(p[0]) + " | " + hex_dump(p[1]));
        for (int swap = 0; swap < 2; ++swap) {
            const ustring& a = p[swap];
            const ustring& b = p[1 - swap];
            UErrorCode status = U_ZERO_ERROR;
            EXPECT_EQ(lcctype::compare(a.data(), a.size(), b.data(), b.size(), normalized_case_sensitive()),
                unorm_compare(a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                    static_cast<std::int32_t>(b.size()), 0, &status));
        }
    }
}

TEST(CtypeCompare, RefusalsKeptOnEveryPath)
{
    const ustring a = u"abc";
    for (unsigned long huge : {0x40000000UL, ~0UL}) {
        EXPECT_THROW(lcctype::compare(a.data(), huge, a.data(), 3, case_sensitive()), CtypeSizeTooLarge);
        EXPECT_THROW(lcctype::compare(a.data(), 3, a.data(), huge, case_insensitive()), CtypeSizeTooLarge);
        EXPECT_THROW(lcctype::compare(a.data(), huge, a.data(), 3, normalized_case_sensitive()), CtypeSizeTooLarge);
        EXPECT_THROW(lcctype::compare(a.data(), 3, a.data(), huge, normalized_case_insensitive()), CtypeSizeTooLarge);
    }
    // A null text: ICU's plain comparison answers 0, the others fail, even for empty lengths.
    EXPECT_EQ(lcctype::compare(nullptr, 0, a.data(), 3, case_sensitive()), 0);
    EXPECT_THROW(lcctype::compare(nullptr, 0, a.data(), 0, case_insensitive()), CtypeStrCompFailure);
    EXPECT_THROW(lcctype::compare(a.data(), 3, nullptr, 0, normalized_case_sensitive()), CtypeStrCompFailure);
    try {
        lcctype::compare(nullptr, 0, nullptr, 0, normalized_case_insensitive());
        FAIL();
    } catch (const CtypeExceptionBase& e) {
        EXPECT_STREQ(e.what(), "String comparison failure.");
    }
}

TEST(CtypeCompare, NullTerminatedFamily)
{
    const char16_t* upper = u"STRASSE";
    const char16_t* lower = u"straße";
    EXPECT_EQ(lcctype::strcmp(upper, lower), u_strcmp(upper, lower));
    EXPECT_EQ(lcctype::strcasecmp(u"Ab\u00C9", u"aB\u00E9"), 0);
    EXPECT_EQ(lcctype::strcasecmp(upper, lower), u_strcasecmp(upper, lower, 0));
    EXPECT_EQ(lcctype::strncmp(u"abcX", u"abcY", 3), 0);
    EXPECT_LT(lcctype::strncmp(u"abcX", u"abcY", 4), 0);
    EXPECT_EQ(lcctype::strncasecmp(u"ABCx", u"abcy", 3), 0);
    EXPECT_EQ(lcctype::strncmp(u"same", u"same", 0x80000000UL), -1) << "an out-of-range count compares nothing";
    EXPECT_EQ(lcctype::strncasecmp(u"same", u"same", 0x80000000UL), -1);
    EXPECT_EQ(lcctype::strncmp(u"same", u"same", 0x7FFFFFFFUL), 0);
    EXPECT_THROW(lcctype::strcmp(nullptr, lower), CtypeInvalidArgument);
    EXPECT_THROW(lcctype::strncasecmp(upper, nullptr, 2), CtypeInvalidArgument);
}

TEST(CtypeModeContext, QueriesAndRefusal)
{
    const character_handling_mode_context all(15);
    EXPECT_FALSE(all.is_case_sensitive_mode());
    EXPECT_TRUE(all.is_normalized_decompose_mode());
    EXPECT_FALSE(all.is_normalized_compose_mode());
    EXPECT_TRUE(all.is_locale_dependent_mode());
    EXPECT_EQ(all.get_mode_mask(), 15U);

    const character_handling_mode_context decompose_bit_alone(4);
    EXPECT_FALSE(decompose_bit_alone.is_normalized_compose_mode());
    EXPECT_FALSE(decompose_bit_alone.is_normalized_decompose_mode());
    EXPECT_TRUE(decompose_bit_alone.is_case_sensitive_mode());

    const character_handling_mode_context compose(character_handling_mode_context::normalized_compose_mode);
    EXPECT_TRUE(compose.is_normalized_compose_mode());
    EXPECT_FALSE(compose.is_locale_dependent_mode());

    for (unsigned int refused : {16U, 17U, 0xFFFFFFFFU}) {
        try {
            character_handling_mode_context mode(refused);
            FAIL() << refused;
        } catch (const CtypeInvalidArgument& e) {
            EXPECT_STREQ(e.what(), "Invalid argument error.");
        }
    }
}
