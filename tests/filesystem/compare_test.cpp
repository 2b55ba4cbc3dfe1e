#include <qvi18n/filesystem/compare.hpp>
#include <qvi18n/filesystem/detail/pattern.hpp>
#include <qvi18n/filesystem/exceptions.hpp>

#include "qvtest/scoped_temp_dir.hpp"
#include "qvtest/text.hpp"

#include <gtest/gtest.h>

namespace {

namespace fs = fl::filesystem;
using fl::i18n::character_handling_mode_context;
using fl::i18n::ustring;
using fs::upath;

using qvtest::u;

ustring const composed = u"/x/caf\u00e9";
ustring const decomposed = u"/x/cafe\u0301";

TEST(CompareWithMask, EachMaskAndItsLimits)
{
    EXPECT_EQ(-1, fs::compare_with_mask(u"ab", u"abc", 0));
    EXPECT_EQ(1, fs::compare_with_mask(u"abc", u"ab", 0));
    EXPECT_EQ(0, fs::compare_with_mask(u"", u"", 0));
    // Code units, unsigned, not code points: U+10000 sorts below U+E000.
    EXPECT_EQ(-1, fs::compare_with_mask(u"\xd800\xdc00", u"\xe000", 0));
    EXPECT_EQ(1, fs::compare_with_mask(u"\xff01", u"a", 0));
    EXPECT_EQ(-1, fs::compare_with_mask(u"/A", u"/a", 0));

    EXPECT_EQ(0, fs::compare_with_mask(u"/X/Straße", u"/x/STRASSE", 1)); // full case folding
    EXPECT_NE(0, fs::compare_with_mask(composed, decomposed, 1));
    EXPECT_EQ(0, fs::compare_with_mask(composed, decomposed, 2));
    EXPECT_NE(0, fs::compare_with_mask(u"/A", u"/a", 2));
    EXPECT_EQ(0, fs::compare_with_mask(u"/X/CAF\u00c9", decomposed, 3));
    EXPECT_LT(fs::compare_with_mask(u"/a", u"/B", 3), 0);

    EXPECT_THROW(fs::compare_with_mask(u"a", u"a", 4), fs::InvalidArgument);
}

TEST(Compare, ByModeMapsTheModeOntoTheMask)
{
    auto const by = [](unsigned mask, ustring const& a, ustring const& b) {
        return fs::compare(a, b, character_handling_mode_context(mask));
    };
    EXPECT_NE(0, by(0, u"/A", u"/a"));
    EXPECT_EQ(0, by(1, u"/A", u"/a"));
    EXPECT_EQ(0, by(2, composed, decomposed));
    EXPECT_EQ(0, by(6, composed, decomposed));
    EXPECT_EQ(0, by(4, composed, decomposed));
    EXPECT_EQ(0, by(7, u"/X/CAF\u00c9", decomposed));
    EXPECT_EQ(0, by(8 | 2, composed, decomposed));
    EXPECT_THROW(by(8, u"/a", u"/a"), fs::InvalidArgument);
    EXPECT_THROW(by(9, u"/a", u"/a"), fs::InvalidArgument);
    // No absoluteness test and no volume here; empties sort first.
    EXPECT_EQ(0, by(1, u"rel/A", u"rel/a"));
    EXPECT_EQ(0, fs::compare(upath(u"~nobody-here/a"), upath(u"~nobody-here/A"), character_handling_mode_context(1)));
    EXPECT_EQ(-1, by(3, u"", u"/a"));
    EXPECT_EQ(1, by(3, u"/a", u""));
    EXPECT_EQ(0, by(8, u"", u""));
    // Literals pick the text form rather than being ambiguous between text and path.
    EXPECT_EQ(0, fs::compare(u"/A", u"/a", character_handling_mode_context(1)));
}

TEST(Compare, ByTheVolumeOfTheFirstPath)
{
    qvtest::scoped_temp_dir const dir;
    ustring const base = u(dir.path());
    dir.write_file("A", "");
    dir.write_file("a", "");
    dir.write_file("caf\xc3\xa9", "");
    // Linux file systems here neither fold nor normalise.
    EXPECT_NE(0, fs::compare(base + u"/A", base + u"/a"));
    EXPECT_NE(0, fs::compare(base + u"/caf\u00e9", base + u"/cafe\u0301"));
    EXPECT_EQ(0, fs::compare(base + u"//a/", base + u"/a"));
    EXPECT_NE(0, fs::compare(upath(base + u"/a"), upath(base + u"/b")));
    EXPECT_EQ(0, fs::compare(u"", u""));
    EXPECT_EQ(-1, fs::compare(u"", u"/a"));
    EXPECT_EQ(1, fs::compare(upath(u"/a"), upath()));

    EXPECT_THROW(fs::compare(u"/a", u"a"), fs::InvalidArgument);
    EXPECT_THROW(fs::compare(u"a", u""), fs::InvalidArgument);
    // Only the first path's volume is asked, and it must be reachable.
    EXPECT_THROW(fs::compare(base + u"/missing/x", base), fs::PathNotFound);
    EXPECT_EQ(-1, fs::compare(base, base + u"/missing/a"));

    EXPECT_EQ(0u, fs::generate_character_handling_mask_from_volume(upath(base)).get_mode_mask());
    EXPECT_THROW(fs::generate_character_handling_mask_from_volume(upath()), fs::InvalidArgument);
    EXPECT_THROW(fs::generate_character_handling_mask_from_volume(upath(base + u"/missing")), fs::PathNotFound);
}

TEST(GenPattern, StarIsTheOnlyWildcard)
{
    EXPECT_EQ(u"^a.*\\.t\\?t$", fs::posix::gen_pattern(u"a*.t?t"));
    EXPECT_EQ(u"^.*$", fs::posix::gen_pattern(u"**"));
    EXPECT_EQ(u"^$", fs::posix::gen_pattern(u""));
    EXPECT_EQ(u"^\\$\\(\\)\\+\\[]\\\\\\^\\{\\|\\}$", fs::posix::gen_pattern(u"$()+[]\\^{|}"));
    EXPECT_EQ(u"^.*a.*b.*$", fs::posix::gen_pattern(u"*a***b*"));
    EXPECT_EQ(u"^日本\\.xml$", fs::posix::gen_pattern(u"日本.xml"));

    fs::zorbel_pattern_string_generator const zorbel;
    EXPECT_EQ(u"", fs::detail::generate_pattern_from_filename(u"", zorbel));
    EXPECT_EQ(u"^.*$", fs::detail::generate_pattern_from_filename(u".", zorbel));
    EXPECT_EQ(u"^.*$", fs::detail::generate_pattern_from_filename(u"..", zorbel));
    EXPECT_EQ(u"^\\.\\.\\.$", fs::detail::generate_pattern_from_filename(u"...", zorbel));
}

} // namespace
