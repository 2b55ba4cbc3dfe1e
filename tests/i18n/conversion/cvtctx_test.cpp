// Call-back modes of CvtCtx and of the named-encoding converters built on it.
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/conversion/cvtctx.hpp>

#include <gtest/gtest.h>

#include <string>

using namespace fl::i18n;

namespace {

std::string latin1_with(codecvt_call_back_mode mode, const ustring& text)
{
    codecvt_ustring_to_string cvt(mode, "ISO-8859-1");
    return cvt.convert(text.data(), text.size());
}

} // namespace

TEST(CvtCtxEscapes, EachModeWritesItsForm)
{
    const ustring bmp = u"a\u65E5b";
    const ustring astral = u"a\U0001F600b";
    EXPECT_EQ(latin1_with(call_back_escape_icu, bmp), "a%U65E5b");
    EXPECT_EQ(latin1_with(call_back_escape_icu, astral), "a%UD83D%UDE00b");
    EXPECT_EQ(latin1_with(call_back_escape_java, bmp), "a\\u65E5b");
    EXPECT_EQ(latin1_with(call_back_escape_java, astral), "a\\uD83D\\uDE00b");
    EXPECT_EQ(latin1_with(call_back_escape_c, bmp), "a\\u65E5b");
    EXPECT_EQ(latin1_with(call_back_escape_c, astral), "a\\U0001F600b");
    EXPECT_EQ(latin1_with(call_back_escape_xml_dec, bmp), "a&#26085;b");
    EXPECT_EQ(latin1_with(call_back_escape_xml_hex, astral), "a&#x1F600;b");
    EXPECT_EQ(latin1_with(call_back_escape_unicode, bmp), "a{U+65E5}b");
    EXPECT_EQ(latin1_with(call_back_escape_css2, bmp), "a\\65E5 b");
    // A combination of escape bits escapes with no option, and the mode is kept as given.
    codecvt_ustring_to_string combined(static_cast<codecvt_call_back_mode>(0x300), "ISO-8859-1");
    EXPECT_EQ(combined.get_call_back_mode(), 0x300);
    EXPECT_EQ(combined.convert(bmp.data(), bmp.size()), "a%U65E5b");
}

TEST(CvtCtxEscapes, InvisibleCharactersAreNeverDroppedSilently)
{
    // A zero-width space has no place in Latin-1. ICU's own stop call-back lets it vanish...
    UErrorCode status = U_ZERO_ERROR;
    UConverter* raw = ucnv_open("ISO-8859-1", &status);
    ASSERT_TRUE(U_SUCCESS(status));
    ucnv_setFromUCallBack(raw, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    char out[16];
    const ustring text = u"a\u200Bb";
    const int32_t n = ucnv_fromUChars(raw, out, sizeof out, text.data(), 3, &status);
    EXPECT_TRUE(U_SUCCESS(status));
    EXPECT_EQ(std::string(out, n), "ab");
    ucnv_close(raw);

    // ...while ours refuse or escape it like any other unmappable character.
    codecvt_ustring_to_string strict("ISO-8859-1", false);
    EXPECT_THROW(strict.convert(text.data(), text.size()), CvtInvalidCharacter);
    EXPECT_EQ(latin1_with(call_back_escape_java, text), "a\\u200Bb");
    EXPECT_EQ(latin1_with(call_back_escape_icu, u"\uFEFF"), "%UFEFF");
}

TEST(CvtCtxModes, ResetRestoresWhatTheChangeReplaced)
{
    codecvt_ustring_to_string cvt("ISO-8859-1", true);
    const ustring text = u"x\u65E5";
    cvt.change_call_back(call_back_escape_java, "");
    EXPECT_EQ(cvt.get_call_back_mode(), call_back_escape_java);
    EXPECT_EQ(cvt.convert(text.data(), text.size()), "x\\u65E5");
    // Moving to another mode goes through a reset: a later reset brings back the default.
    cvt.change_call_back(call_back_invalid_check, "");
    EXPECT_THROW(cvt.convert(text.data(), text.size()), CvtInvalidCharacter);
    cvt.reset_call_back();
    EXPECT_EQ(cvt.get_call_back_mode(), call_back_default);
    EXPECT_EQ(cvt.convert(text.data(), text.size()), "x\x1A");
    cvt.reset_call_back(); // nothing to restore
    EXPECT_EQ(cvt.convert(text.data(), text.size()), "x\x1A");
}

TEST(CvtCtxModes, SubstitutionStaysForGoodWithModeZero)
{
    codecvt_ustring_to_string cvt(call_back_substitution, "ISO-8859-1", "?");
    EXPECT_EQ(cvt.get_call_back_mode(), call_back_default);
    const ustring text = u"a\u65E5";
    EXPECT_EQ(cvt.convert(text.data(), text.size()), "a?");
    cvt.reset_call_back();
    EXPECT_EQ(cvt.convert(text.data(), text.size()), "a?");
    // The bytes are in the target encoding; two bytes are no character of Latin-1.
    EXPECT_THROW(
        codecvt_ustring_to_string(call_back_substitution, "ISO-8859-1", "?!"), CvtCallBackSettingFailure);
    codecvt_ustring_to_string sjis(call_back_substitution, "Shift_JIS", "\x81\x48"); // full-width '?'
    EXPECT_EQ(sjis.convert(u"\u00E9", 1), "\x81\x48");

    CvtCtx ctx("ISO-8859-1");
    EXPECT_THROW(ctx.change_from_call_back(call_back_substitution, ""), CvtInvalidArgument);
    EXPECT_THROW(ctx.change_from_substitution(std::string(128, '?')), CvtSizeTooLarge);
    EXPECT_NO_THROW(ctx.change_from_substitution(std::string(1, '?')));
    // Not while another mode is in force.
    ctx.enable_from_invalid_check();
    EXPECT_THROW(ctx.change_from_substitution("?"), CvtInvalidArgument);
}

TEST(CvtCtxModes, RefusedModesLeaveTheDefault)
{
    CvtCtx ctx("UTF-8");
    ctx.change_from_call_back(call_back_invalid_check, "");
    EXPECT_EQ(ctx.get_from_call_back_mode(), call_back_invalid_check);
    EXPECT_THROW(ctx.change_from_call_back(call_back_unsupported, ""), CvtNonSupportedMode);
    EXPECT_EQ(ctx.get_from_call_back_mode(), call_back_default);
    EXPECT_THROW(ctx.change_from_call_back(static_cast<codecvt_call_back_mode>(2), ""), CvtInvalidArgument);

    // Towards UTF-16 only checking is possible.
    ctx.change_to_call_back(call_back_invalid_check);
    EXPECT_EQ(ctx.get_to_call_back_mode(), call_back_invalid_check);
    EXPECT_THROW(ctx.change_to_call_back(call_back_escape_c), CvtNonSupportedMode);
    EXPECT_EQ(ctx.get_to_call_back_mode(), call_back_default);
    EXPECT_THROW(ctx.change_to_call_back(call_back_substitution), CvtNonSupportedMode);
    EXPECT_THROW(ctx.change_to_call_back(call_back_unsupported), CvtNonSupportedMode);
    EXPECT_THROW(ctx.change_to_call_back(static_cast<codecvt_call_back_mode>(2)), CvtInvalidArgument);
    EXPECT_THROW(codecvt_string_to_ustring(call_back_escape_java, "UTF-8"), CvtNonSupportedMode);
}

TEST(CvtCtxNames, EncodingNamesAndCharacterSizes)
{
    CvtCtx utf8("utf8");
    EXPECT_EQ(utf8.get_encoding(), "UTF-8");
    EXPECT_EQ(utf8.get_max_byte_size(), 4);
    std::string name;
    EXPECT_EQ(utf8.get_cvt_name(name), "UTF-8");

    CvtCtx sjis("Shift_JIS");
    EXPECT_EQ(sjis.get_encoding(), "Shift_JIS");
    EXPECT_EQ(sjis.get_max_byte_size(), 2);
    CvtCtx latin1("latin1");
    EXPECT_EQ(latin1.get_encoding(), "ISO-8859-1");
    EXPECT_EQ(latin1.get_max_byte_size(), 1);
    EXPECT_EQ(latin1.get_std_encoding_name(""), "");

    std::unique_ptr<UConverter, lcctype::converter_close> none;
    CvtCtx empty(none);
    EXPECT_EQ(empty.get_encoding(), "");
    EXPECT_EQ(empty.get_max_byte_size(), 0);
    name = "kept";
    EXPECT_EQ(empty.get_cvt_name(name), "kept");

    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, lcctype::converter_close> given(ucnv_open("GB18030", &status));
    CvtCtx taken(given);
    EXPECT_EQ(given, nullptr);
    EXPECT_EQ(taken.get_encoding(), "GB18030");
}

TEST(CvtCtxNames, UnknownEncodingIsRefusedWithItsName)
{
    try {
        CvtCtx ctx("no-such-charset");
        FAIL();
    } catch (const CvtInvalidEncodingName& e) {
        EXPECT_EQ(e.get_encoding_name(), "no-such-charset");
    }
    EXPECT_THROW(codecvt_ustring_to_string("no-such-charset", true), CvtInvalidEncodingName);
    // A failed re-open leaves no converter, and the converter classes then fail cleanly.
    CvtCtx ctx("UTF-8");
    EXPECT_THROW(ctx.open_converter("no-such-charset"), CvtInvalidEncodingName);
    EXPECT_EQ(ctx.get_converter(), nullptr);
    EXPECT_EQ(ctx.get_max_byte_size(), 0);
}

TEST(NamedEncodingConverters, EmptyEncodingFollowsTheGlobalLocale)
{
    // The built-in global locale is US-ASCII.
    codecvt_string_to_ustring from_default("", true);
    EXPECT_EQ(from_default.convert("a\xE9", 2), u"a\uFFFD");
    codecvt_string_to_ustring strict_default("", false);
    EXPECT_THROW(strict_default.convert("a\xE9", 2), CvtInvalidCharacter);
    EXPECT_EQ(strict_default.get_call_back_mode(), call_back_invalid_check);
    strict_default.reset_call_back();
    EXPECT_EQ(strict_default.convert("a\xE9", 2), u"a\uFFFD");
}
