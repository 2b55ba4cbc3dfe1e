// Failures described in the user's words, raised at the library's own throw sites.

#include "tests/i18n/catalog/cache_test_support.hpp"

#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/operations.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/conversion/codecvt.hpp>
#include <qvi18n/i18n/ctype/transform.hpp>
#include <qvi18n/i18n/locale/startup/failure_text.hpp>
#include <qvi18n/i18n/locale/startup/time_zone.hpp>
#include <qvi18n/filesystem/detail/exceptions.hpp>

#include <qvtest/scoped_temp_dir.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <stdexcept>
#include <string>

using catalog_test::test_locale;
using catalog_test::utf8;
using fl::i18n::describe_failure;

namespace {

// What `site` throws, described for `locale`; a site that doesn't throw fails the test.
std::string described(const std::function<void()>& site, const std::string& locale)
{
    try {
        site();
    } catch (const std::exception& e) {
        return utf8(describe_failure(e, test_locale(locale)));
    }
    ADD_FAILURE() << "nothing was thrown";
    return std::string();
}

void system_error()
{
    fl::filesystem::posix::exception_dispatcher(EIO, "/tmp/x");
}

void unknown_encoding()
{
    fl::i18n::codecvt_ustring_to_string("no-such-encoding", false);
}

void huge_comparison()
{
    const char16_t text[] = u"x";
    fl::i18n::lcctype::compare(text, 0x40000000ul, text, 1, fl::i18n::case_insensitive());
}

void hole_count()
{
    fl::i18n::MessageCatalog::GetFormattedMessage(u"{0} and {1}", resource_core::HoleValues {1LL});
}

void missing_key()
{
    fl::i18n::MessageCatalog::get_message(fl::i18n::MessageID("fl:i18n:NoSuchKey"), test_locale("en"));
}

void unknown_zone()
{
    fl::i18n::time_zone::timezone zone(std::string("No/Such_Zone"));
}

void check_sentences()
{
    qvtest::scoped_temp_dir dir;
    EXPECT_EQ(described([&] { fl::filesystem::remove(fl::filesystem::upath(catalog_test::u(dir / "missing"))); }, "en"),
        "The file or directory was not found.");
    EXPECT_EQ(described(system_error, "de_AT"), "Bei /tmp/x ist ein Systemfehler aufgetreten (Fehlernummer 5).");
    EXPECT_EQ(described(unknown_encoding, "en_US"), "The encoding no-such-encoding is not known to the character converter.");
    EXPECT_EQ(described(huge_comparison, "ja_JP"), "テキストが大きすぎるため、文字処理できません。");
    EXPECT_EQ(described(hole_count, "fr_CA"),
        "Le nombre de valeurs fournies (1) diffère du nombre d’emplacements du message (2).");
    EXPECT_EQ(described(unknown_zone, "de"), "Die Zeitzone ist nicht bekannt.");
    EXPECT_EQ(described([] { fl::i18n::MessageID("bad"); }, "sv"), "The message identifier is not valid.");
}

} // namespace

TEST(FailureText, FromTheInstalledCatalogsBeforeAnyRootIsGiven)
{
    check_sentences();
    // With no roots, the catalogs can't be found by the caller's look-up: that too is described.
    EXPECT_EQ(described(missing_key, "de"),
        "Den Meldungskatalogen wurden noch keine Ressourcenverzeichnisse übergeben.");
}

TEST(FailureText, FromTheRootsInForce)
{
    ASSERT_TRUE(fl::i18n::MessageCatalog::MessageCatalogInit(std::string(QVI18N_TEST_BUILD_ROOT)));
    check_sentences();
    EXPECT_EQ(described(missing_key, "en"), "The message NoSuchKey was not found in the message catalog fl:i18n.");
}

TEST(FailureText, WhatTheLibraryHasNoSentenceForKeepsItsOwnWords)
{
    EXPECT_EQ(utf8(describe_failure(std::runtime_error("plain words"), test_locale("de"))), "plain words");
    EXPECT_EQ(utf8(describe_failure(std::make_exception_ptr(42), test_locale("fr"))), "Une erreur inconnue s’est produite.");
    const std::exception_ptr carried = std::make_exception_ptr(fl::filesystem::AccessDenied());
    EXPECT_EQ(utf8(describe_failure(carried, test_locale("en"))), "Permission to access the file was denied.");
}
