// The reader on damaged copies of the shipped database: every run either loads or raises one of
// the reader's own exceptions. Run under the sanitizers, this also shows no crash and no leak.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <expat.h>

#include <fstream>
#include <random>
#include <string>

using fl::i18n::LcData;

namespace {

enum class Outcome { loaded, refused };

class DamagedDatabase : public ::testing::Test {
protected:
    void SetUp() override
    {
        original_ = qvtest::read_file(QVI18N_TEST_LCDATA);
        ASSERT_GT(original_.size(), 4096u);
    }

    // Parses `xml` into a fresh LcData. Only the reader's exceptions may leave the parse.
    Outcome parse(std::string const& xml, std::string const& what)
    {
        std::string file = dir_.write_file("damaged.xml", xml);
        LcData data;
        try {
            fl::i18n::parseLcData(data, fl::filesystem::native_path(file));
            return Outcome::loaded;
        } catch (fl::i18n::LcRscInvalidXmlDoc const& e) {
            lastCode_ = e.get_code();
            return Outcome::refused;
        } catch (fl::i18n::LcRscFileReadFailure const&) {
            return Outcome::refused;
        } catch (std::exception const& e) {
            ADD_FAILURE() << what << ": unexpected exception " << e.what();
        } catch (...) {
            ADD_FAILURE() << what << ": unexpected non-standard exception";
        }
        return Outcome::refused;
    }

    // The text of the n-th element `<tag ...>...</tag>` (or `<tag .../>`), and where it starts.
    std::string element(std::string const& tag, std::size_t n, std::size_t& at) const
    {
        at = 0;
        for (std::size_t i = 0;; ++i) {
            at = original_.find("<" + tag + " ", at);
            if (at == std::string::npos)
                return std::string();
            if (i == n)
                break;
            at += 1;
        }
        std::size_t tagEnd = original_.find('>', at);
        std::size_t end = original_[tagEnd - 1] == '/'
            ? tagEnd + 1
            : original_.find("</" + tag + ">", at) + tag.size() + 3;
        return original_.substr(at, end - at);
    }

    std::string original_;
    int lastCode_ = 0;
    qvtest::scoped_temp_dir dir_ {"lcdata-damaged"};
};

} // namespace

TEST_F(DamagedDatabase, TheUndamagedFileLoads)
{
    EXPECT_EQ(parse(original_, "original"), Outcome::loaded);
}

TEST_F(DamagedDatabase, TruncatedAnywhereIsRefused)
{
    std::size_t const rootEnd = original_.rfind("</lcdata>");
    std::vector<std::size_t> offsets;
    for (std::size_t off = 0; off < original_.size(); off += 509)
        offsets.push_back(off);
    // Around the reader's buffer boundaries and the last tag.
    for (std::size_t k = 1; k <= 4; ++k) {
        offsets.push_back(1024 * k - 1);
        offsets.push_back(1024 * k);
        offsets.push_back(1024 * k + 1);
    }
    offsets.push_back(rootEnd);
    offsets.push_back(rootEnd + 8);
    for (std::size_t off : offsets) {
        if (off > rootEnd + 8)
            continue;
        EXPECT_EQ(parse(original_.substr(0, off), "truncated at " + std::to_string(off)), Outcome::refused)
            << "truncated at " << off;
    }
}

TEST_F(DamagedDatabase, FlippedBytesLoadOrAreRefused)
{
    std::mt19937 random(20261122); // fixed seed: every run damages the same bytes
    int refused = 0;
    for (int run = 0; run < 200; ++run) {
        std::string damaged = original_;
        int const flips = 1 + static_cast<int>(random() % 4);
        for (int f = 0; f < flips; ++f) {
            std::size_t pos = random() % damaged.size();
            damaged[pos] = static_cast<char>(damaged[pos] ^ static_cast<char>(1 + random() % 255));
        }
        if (parse(damaged, "flip run " + std::to_string(run)) == Outcome::refused)
            ++refused;
    }
    EXPECT_GT(refused, 0);
}

TEST_F(DamagedDatabase, ElementsMovedOutOfPlaceAreRefused)
{
    std::size_t at = 0;
    std::string locale = element("locale", 5, at);
    ASSERT_FALSE(locale.empty());
    std::size_t codeset = original_.find("<codeset>");
    ASSERT_NE(codeset, std::string::npos);

    // A locale inside the codeset.
    std::string moved = original_;
    moved.erase(at, locale.size());
    moved.insert(moved.find("<codeset>") + 9, locale);
    EXPECT_EQ(parse(moved, "locale in codeset"), Outcome::refused);
    EXPECT_EQ(lastCode_, XML_ERROR_ABORTED);

    // An encoding alias inside a locale.
    std::string alias = element("encoding_alias", 3, at);
    ASSERT_FALSE(alias.empty());
    moved = original_;
    moved.erase(at, alias.size());
    moved.insert(original_.find("<alias "), alias);
    EXPECT_EQ(parse(moved, "encoding_alias in locale"), Outcome::refused);

    // The codeset outside the root.
    std::size_t codesetEnd = original_.find("</codeset>") + 10;
    moved = original_.substr(0, codeset) + original_.substr(codesetEnd);
    moved += original_.substr(codeset, codesetEnd - codeset);
    EXPECT_EQ(parse(moved, "codeset after the root"), Outcome::refused);

    // Every alias of a locale lifted out of it, to the root.
    std::string lifted = original_;
    std::size_t localeEnd = lifted.find("</locale>");
    std::size_t firstAlias = lifted.find("<alias ");
    std::string aliases = lifted.substr(firstAlias, localeEnd - firstAlias);
    lifted.erase(firstAlias, aliases.size());
    lifted.insert(lifted.find("<lcdata>") + 8, aliases);
    EXPECT_EQ(parse(lifted, "alias under the root"), Outcome::refused);
}

TEST_F(DamagedDatabase, DuplicatedElementsLoad)
{
    std::size_t at = 0;
    std::string locale = element("locale", 7, at);
    std::string twice = original_;
    twice.insert(at, locale);
    EXPECT_EQ(parse(twice, "locale twice"), Outcome::loaded);

    std::size_t codeset = original_.find("<codeset>");
    std::size_t codesetEnd = original_.find("</codeset>") + 10;
    twice = original_;
    twice.insert(codesetEnd, original_.substr(codeset, codesetEnd - codeset));
    EXPECT_EQ(parse(twice, "codeset twice"), Outcome::loaded);

    std::string encoding = element("encoding", 2, at);
    twice = original_;
    twice.insert(at + encoding.size(), encoding);
    EXPECT_EQ(parse(twice, "encoding twice"), Outcome::loaded);

    // A second root is not XML.
    std::size_t body = original_.find("<lcdata>");
    EXPECT_EQ(parse(original_ + original_.substr(body), "root twice"), Outcome::refused);
    EXPECT_EQ(lastCode_, XML_ERROR_JUNK_AFTER_DOC_ELEMENT);
}

TEST_F(DamagedDatabase, DeclarationOfAnotherEncodingIsRefused)
{
    std::string const declared = "encoding=\"UTF-8\"";
    std::size_t decl = original_.find(declared);
    ASSERT_LT(decl, original_.find("<lcdata>"));
    for (std::string other : {"encoding=\"ISO-8859-1\"", "encoding=\"US-ASCII\"", "standalone=\"yes\""}) {
        std::string changed = original_;
        changed.replace(decl, declared.size(), other);
        EXPECT_EQ(parse(changed, other), Outcome::refused) << other;
        EXPECT_EQ(lastCode_, XML_ERROR_ABORTED) << other;
    }
}
