// The qvi18n command end to end: spawned as a process with a clean environment, its output and
// exit status compared.

#include <qvtest/child.hpp>
#include <qvtest/scoped_temp_dir.hpp>

#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>
#include <qvi18n/qvi18n.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct outcome {
    int status;
    std::string out;
    std::string err;
};

class QvI18nCommand : public ::testing::Test {
protected:
    qvtest::scoped_temp_dir home;
    // More NAME=value words for the command's environment.
    std::string environment;
    // Words in front of the command, such as a change of user.
    std::string prefix;

    static std::string tool()
    {
        return std::string(QVI18N_TEST_BUILD_ROOT) + "/bin/" + fl::i18n::platform_tag() + "/qvi18n";
    }

    outcome run(const std::string& args, const std::string& lang = "C.UTF-8", const std::string& input = "")
    {
        const std::string tool = QvI18nCommand::tool();
        const std::string err = home / "stderr";
        const std::string in = home.write_file("stdin", input);
        std::string sanitizers;
        for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
            if (const char* value = std::getenv(name)) {
                sanitizers += std::string(" ") + name + "='" + value + "'";
            }
        }
        const std::string command = prefix + "env -i HOME=" + home.path() + " XDG_CONFIG_HOME=" + home.path()
            + " LANG=" + lang + " " + environment + sanitizers + " " + tool + " " + args + " <" + in + " 2>" + err;
        outcome result{-1, std::string(), std::string()};
        FILE* pipe = ::popen(command.c_str(), "r");
        char buffer[4096];
        std::size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) {
            result.out.append(buffer, n);
        }
        const int raw = ::pclose(pipe);
        result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        result.err = qvtest::read_file(err);
        return result;
    }
};

const char english[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<rsccat version="1.0" locale="en">
  <message>
    <entry key="Hello">Hello {0}.</entry>
    <entry key="Bye">Bye.</entry>
  </message>
</rsccat>
)";

std::string catalog(const std::string& entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rsccat version=\"1.0\" locale=\"x\">\n  <message>\n" + entries
        + "  </message>\n</rsccat>\n";
}

TEST_F(QvI18nCommand, CheckFindsEachFaultOnItsLine)
{
    qvtest::scoped_temp_dir root;
    root.write_file("resources/c/en/a.xml", english);
    root.write_file("resources/c/de/a.xml", catalog("    <entry key=\"Hello\">Hallo {0}.</entry>\n    <entry key=\"Hello\">Nochmal {0}.</entry>\n"));
    root.write_file("resources/c/fr/a.xml", catalog("    <entry key=\"Hello\">Bonjour.</entry>\n"));
    root.write_file("resources/c/it/a.xml", catalog("    <entry key=\"Ciao\">Ciao.</entry>\n"));
    root.write_file("resources/c/es/a.xml", catalog("    <entry key=\"Bye\">Adi\xc3\xb3s {0,nonsense}.</entry>\n"));
    root.write_file("resources/c/pt/a.xml", catalog("    <entry key=\"Bye\">Tchau.</entry\n"));
    root.write_file("resources/c/nl/a.xml", "<?xml version=\"1.0\"?>\n<catalog>\n  <entry key=\"Bye\">Dag.</entry>\n</catalog>\n");
    root.write_file("resources/c/de/b.xml", catalog("    <entry key=\"Only\">Nur.</entry>\n"));
    root.write_file("resources/c/ja/a.xml", catalog("    <entry key=\"Hello\">{0,date}\xe3\x81\x95\xe3\x82\x93</entry>\n"));

    const outcome result = run("check --no-maps " + root.path());
    const std::string r = root.path() + "/resources/c/";
    EXPECT_EQ(result.out,
        r + "de/a.xml:5: duplicate: key \"Hello\" already given on line 4\n"
        + r + "de/b.xml:1: no-english: catalog \"c:b\" has no \"en\" file\n"
        + r + "es/a.xml:4: messageformat: key \"Bye\": not a valid message pattern (U_ILLEGAL_ARGUMENT_ERROR at offset 0)\n"
        + r + "fr/a.xml:4: holes: key \"Hello\" has holes none where \"en\" has {0}\n"
        + r + "it/a.xml:4: extra-key: key \"Ciao\" is not in the \"en\" catalog\n"
        + r + "ja/a.xml:4: hole-type: key \"Hello\": hole {0} is date where \"en\" has none\n"
        + r + "nl/a.xml:2: format: element <catalog> is not allowed as the root\n"
        + r + "pt/a.xml:5: xml: not well-formed XML: not well-formed (invalid token)\n");
    EXPECT_EQ(result.status, 1);

    const outcome json = run("check --no-maps --json " + root.path());
    EXPECT_EQ(json.status, 1);
    EXPECT_NE(json.out.find("{\"file\": \"" + r + "it/a.xml\", \"line\": 4, \"kind\": \"extra-key\""), std::string::npos);
}

// The findings of a check, by file below `base`: "line kind" each.
std::map<std::string, std::vector<std::string>> by_file(const std::string& out, const std::string& base)
{
    std::map<std::string, std::vector<std::string>> found;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(':', base.size());
        const std::size_t kind_end = line.find(':', line.find(':', colon + 1) + 2);
        found[line.substr(base.size(), colon - base.size())].push_back(
            line.substr(colon + 1, line.find(':', colon + 1) - colon - 1) + " "
            + line.substr(line.find(':', colon + 1) + 2, kind_end - line.find(':', colon + 1) - 2));
    }
    return found;
}

bool loader_takes(const std::string& path)
{
    fl::i18n::XMLCatalogDataStore store;
    try {
        return fl::i18n::XMLCatalogFileLoader().loadFile(fl::filesystem::upath(std::u16string(path.begin(), path.end())), store);
    } catch (const std::exception&) {
        return false;
    }
}

// One fault a file, each where the loader meets it; files the loader takes are never a fault of
// their form, and each file the loader refuses is one.
TEST_F(QvI18nCommand, CheckAgreesWithTheLoader)
{
    qvtest::scoped_temp_dir root;
    root.write_file("resources/c/en/a.xml", english);
    const std::string bye = "    <entry key=\"Bye\">Bye.</entry>\n";
    const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const std::map<std::string, std::string> files = {
        {"second_message", head + "<rsccat>\n  <message>\n  </message>\n  <message>\n" + bye + "  </message>\n</rsccat>\n"},
        {"entry_in_root", head + "<rsccat>\n" + bye + "</rsccat>\n"},
        {"entry_after_message", head + "<rsccat>\n  <message>\n  </message>\n" + bye + "</rsccat>\n"},
        {"no_key", catalog("    <entry name=\"Bye\">Bye.</entry>\n")},
        {"empty_key", catalog("    <entry key=\"\">Bye.</entry>\n")},
        {"nested", catalog("    <entry key=\"Bye\">Bye\n      <entry key=\"Hello\">Hi {0}</entry>\n    </entry>\n")},
        {"wrong_root", head + "<catalog>\n  <message>\n" + bye + "  </message>\n</catalog>\n"},
        {"unknown_element", catalog("    <entry key=\"Bye\">Bye <b>now</b></entry>\n")},
        {"break_in_tag", catalog("    <entry\nkey=\"Bye\">Bye.</entry>\n")},
        {"root_attribute", head + "<rsccat note=\"locale\">\n  <message>\n" + bye + "  </message>\n</rsccat>\n"},
        {"zero_bytes", ""},
        {"cut_after_line", catalog(bye).substr(0, catalog(bye).find("  </message>"))},
        {"cut_in_line", catalog(bye).substr(0, catalog(bye).find("</entry>") + 3)},
        {"bad_utf8", catalog("    <entry key=\"Bye\">By\xff.</entry>\n")},
        {"nul", catalog("    <entry key=\"Bye\">By" + std::string(1, '\0') + ".</entry>\n")},
        {"bom", "\xef\xbb\xbf" + catalog(bye)},
        {"crlf", "<?xml version=\"1.0\"?>\r\n<rsccat>\r\n<message>\r\n<entry\r\nkey=\"Bye\">Bye\r\nnow.</entry>\r\n</message>\r\n</rsccat>\r\n"},
        {"break_after_space", catalog("    <entry \n      key=\"Bye\">Bye.</entry>\n")},
    };
    for (const auto& file : files) {
        // Each in a locale of its own, beside the English catalog.
        root.write_file("resources/c/" + file.first + "/a.xml", file.second);
    }
    root.write_file("resources/c/en/d1/d2/d3/d4/d5/d6/deep.xml", english);

    const outcome result = run("check --no-maps " + root.path());
    EXPECT_EQ(result.status, 1);
    const std::string r = root.path() + "/resources/c/";
    const std::map<std::string, std::vector<std::string>> found = by_file(result.out, r);
    typedef std::vector<std::string> v;
    const std::map<std::string, std::vector<std::string>> expected = {
        {"second_message/a.xml", v {"5 format"}},
        {"entry_in_root/a.xml", v {"3 format"}},
        {"entry_after_message/a.xml", v {"5 layout"}},
        {"no_key/a.xml", v {"4 format"}},
        {"empty_key/a.xml", v {"4 format"}},
        {"nested/a.xml", v {"5 format"}},
        {"wrong_root/a.xml", v {"2 format"}},
        {"unknown_element/a.xml", v {"4 format"}},
        {"break_in_tag/a.xml", v {"4 format"}},
        {"root_attribute/a.xml", v {"2 format"}},
        {"zero_bytes/a.xml", v {"1 xml"}},
        {"cut_after_line/a.xml", v {"5 xml"}},
        {"cut_in_line/a.xml", v {"4 xml"}},
        {"bad_utf8/a.xml", v {"4 xml"}},
        {"nul/a.xml", v {"4 xml"}},
    };
    EXPECT_EQ(found, expected) << result.out;

    for (const auto& file : files) {
        const auto faults = found.find(file.first + "/a.xml");
        const bool form_fault = faults != found.end()
            && (faults->second[0].find(" format") != std::string::npos || faults->second[0].find(" xml") != std::string::npos);
        if (!loader_takes(r + file.first + "/a.xml")) {
            EXPECT_TRUE(form_fault) << file.first << " is refused by the loader";
        } else if (faults != found.end()) {
            EXPECT_EQ(faults->second[0].find(" format"), std::string::npos) << file.first << " is taken by the loader";
        }
    }
}

// What the checker can't read is a finding of its own, once; the maps of what can't be listed
// aren't judged. Elsewhere it is a failure. CI runs as root, which reads everything: the command runs as user 65534 there.
TEST_F(QvI18nCommand, CheckReportsWhatItCannotRead)
{
    qvtest::scoped_temp_dir root;
    ASSERT_EQ(0, ::chmod(root.path().c_str(), 0755));
    root.write_file("resources/c/en/a.xml", english);
    root.write_file("resources/c/en/x/b.xml", english);
    root.write_file("resources/c/de/a.xml", catalog("    <entry key=\"Bye\">Tsch\xc3\xbcss.</entry>\n"));
    root.make_dir("resources/empty/en");
    ASSERT_EQ(run("map " + root.path()).status, 0);
    if (::geteuid() == 0) {
        // A build tree under a home directory that only root may enter can't be run as another user.
        const std::string command = tool();
        const qvtest::check runnable = [&] { return ::access(command.c_str(), X_OK) == 0; };
        if (qvtest::run_in_child(qvtest::become_ordinary_user, {runnable}) != 0) {
            GTEST_SKIP() << "user 65534 cannot run " << command;
        }
        prefix = "setpriv --reuid=65534 --regid=65534 --clear-groups ";
    }
    const std::string r = root.path() + "/resources/";
    const std::string map = r + "../derived/share/resources/c/catalog_map.xml";
    // A component without catalogs has no map to miss.
    EXPECT_EQ(run("check " + root.path()).out, "");

    ASSERT_EQ(0, ::chmod((r + "c/de/a.xml").c_str(), 0));
    EXPECT_EQ(run("check " + root.path()).out, r + "c/de/a.xml:0: unreadable: file cannot be read\n");
    ASSERT_EQ(0, ::chmod((r + "c/de/a.xml").c_str(), 0644));

    ASSERT_EQ(0, ::chmod((r + "c/en/x").c_str(), 0));
    const outcome directory = run("check " + root.path());
    EXPECT_EQ(directory.out.rfind(r + "c/en/x:0: unreadable: ", 0), 0u) << directory.out;
    EXPECT_EQ(std::count(directory.out.begin(), directory.out.end(), '\n'), 1) << directory.out;
    EXPECT_EQ(directory.status, 1);
    const outcome listing = run("ls " + r + "c/en/x");
    EXPECT_EQ(listing.status, 2);
    EXPECT_EQ(listing.out, "");
    EXPECT_EQ(listing.err, "qvi18n ls: Permission to access the file was denied.\n");
    ASSERT_EQ(0, ::chmod((r + "c/en/x").c_str(), 0755));

    ASSERT_EQ(0, ::chmod(map.c_str(), 0));
    EXPECT_EQ(run("check " + root.path()).out, map + ":0: unreadable: file cannot be read\n");
    ASSERT_EQ(0, ::chmod(map.c_str(), 0644));
}

TEST_F(QvI18nCommand, MapWritesWhatCheckExpects)
{
    qvtest::scoped_temp_dir root;
    root.write_file("resources/c/en/a.xml", english);
    root.write_file("resources/c/en/x/b.xml", english);
    const std::string map = root.path() + "/resources/../derived/share/resources/c/catalog_map.xml";
    const outcome missing = run("check " + root.path());
    EXPECT_EQ(missing.out, map + ":0: map: no catalog map for component \"c\" (qvi18n map writes it)\n");
    EXPECT_EQ(missing.status, 1);

    const outcome written = run("map " + root.path());
    EXPECT_EQ(written.out, map + "\n");
    EXPECT_EQ(written.status, 0);
    const std::string first = qvtest::read_file(map);
    EXPECT_NE(first.find("<entry key=\"c:x:b\"/>"), std::string::npos) << first;
    EXPECT_EQ(run("check --json " + root.path()).out, "{\"findings\": []}\n");
    EXPECT_EQ(run("map " + root.path() + "/resources").status, 0);
    EXPECT_EQ(qvtest::read_file(map), first);

    // A map the writer doesn't make, which completion would read before the component's own.
    const std::string nested = root.path() + "/resources/../derived/share/resources/c/x/catalog_map.xml";
    root.write_file("derived/share/resources/c/x/catalog_map.xml", first);
    EXPECT_EQ(run("check " + root.path()).out,
        nested + ":0: map: a catalog map that qvi18n map does not write, which completion reads all the same (remove it)\n");
    std::remove(nested.c_str());

    root.write_file("resources/c/en/z.xml", english);
    const outcome stale = run("check " + root.path());
    EXPECT_EQ(stale.out.find(map + ":"), 0u) << stale.out;
    EXPECT_NE(stale.out.find(": map: the catalog map is out of date"), std::string::npos) << stale.out;
    EXPECT_EQ(stale.status, 1);
}

TEST_F(QvI18nCommand, BadInputIsAFailureInTheUsersLanguage)
{
    const outcome missing = run("ls /no/such/directory", "de_DE.UTF-8");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "qvi18n ls: Die Datei oder das Verzeichnis wurde nicht gefunden.\n");

    EXPECT_EQ(run("check /no/such/root").status, 2);
    EXPECT_EQ(run("map /no/such/root").status, 2);
    // A map that can't be put in place leaves nothing of its own behind.
    qvtest::scoped_temp_dir tree;
    tree.write_file("resources/c/en/a.xml", english);
    tree.make_dir("derived/share/resources/c/catalog_map.xml/in_the_way");
    const outcome unplaced = run("map " + tree.path());
    EXPECT_EQ(unplaced.status, 2);
    EXPECT_EQ(unplaced.out, "");
    EXPECT_NE(unplaced.err, "");
    EXPECT_EQ(run("ls --all " + tree.path() + "/derived/share/resources/c").out, "../\n./\ncatalog_map.xml/\n");
    EXPECT_EQ(run("frobnicate").status, 2);
    EXPECT_EQ(run("status --no-such-option").status, 2);
    const outcome holes = run("message fl:filesystem:SystemError only-one");
    EXPECT_EQ(holes.status, 2);
    EXPECT_EQ(holes.out, "");
    EXPECT_NE(holes.err, "");
    EXPECT_EQ(run("message not-an-identifier").status, 2);
    EXPECT_EQ(run("message fl:filesystem:NoSuchKey").status, 2);

    const outcome encoding = run("convert --from UTF-8 --to NO-SUCH-ENCODING", "C.UTF-8", "text");
    EXPECT_EQ(encoding.status, 2);
    EXPECT_EQ(encoding.out, "");
    EXPECT_NE(encoding.err.find("NO-SUCH-ENCODING"), std::string::npos) << encoding.err;
    const outcome binary = run("convert --from UTF-8 --to UTF-16LE --strict", "C.UTF-8", std::string("ab\xff\x00", 4));
    EXPECT_EQ(binary.status, 2);
    EXPECT_EQ(binary.out, "");
    EXPECT_NE(binary.err, "");
    // A character cut off by the end of the input: refused as such under --strict, with nothing
    // written before it; substituted without.
    const outcome cut = run("convert --from UTF-8 --to UTF-16LE --strict", "de_DE.UTF-8", std::string("a\0b\xe2\x82", 5));
    EXPECT_EQ(cut.status, 2);
    EXPECT_EQ(cut.out, "");
    EXPECT_EQ(cut.err, "qvi18n convert: die Eingabe endet mitten in einem Zeichen in UTF-8\n");
    const outcome substituted = run("convert --from UTF-8 --to UTF-16LE", "C.UTF-8", std::string("a\0b\xe2\x82", 5));
    EXPECT_EQ(substituted.status, 0);
    EXPECT_EQ(substituted.out, std::string("a\0\0\0b\0\xfd\xff", 8));
}

TEST_F(QvI18nCommand, OwnTextsFollowTheUsersLanguage)
{
    // Usage errors are Boost's exceptions underneath; the user reads the command's sentence.
    const outcome unknown = run("status --no-such-option", "de_DE.UTF-8");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.out, "");
    EXPECT_EQ(unknown.err, "qvi18n status: unbekannte Option --no-such-option\nAufruf: qvi18n status [--json]\n");
    const outcome missing = run("check", "de_DE.UTF-8");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err.substr(0, missing.err.find('\n')), "qvi18n check: das Argument ROOT fehlt");
    EXPECT_EQ(run("convert --to UTF-8 --from", "fr_FR.UTF-8").err.rfind("qvi18n convert: l\xe2\x80\x99option --from attend une valeur\n", 0), 0u);
    const outcome extra = run("ls /tmp /var", "ja_JP.UTF-8");
    EXPECT_EQ(extra.status, 2);
    EXPECT_EQ(extra.err.rfind("qvi18n ls: \xe5\xbc\x95\xe6\x95\xb0\xe3\x81\x8c", 0), 0u) << extra.err;

    const outcome help = run("convert --help", "de_DE.UTF-8");
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out.rfind("Aufruf: qvi18n convert --from ENC --to ENC", 0), 0u) << help.out;
    EXPECT_NE(help.out.find("\n  -f, --from ENC  die Kodierung der Eingabe\n"), std::string::npos) << help.out;
    EXPECT_NE(run("convert --to UTF-8 --from UTF-8 --strict --escape c", "de_DE.UTF-8")
                  .err.find("die Optionen --strict und --escape k\xc3\xb6nnen nicht zusammen angegeben werden\n"),
        std::string::npos);
    EXPECT_NE(run("convert --to UTF-8 --from UTF-8 --escape frob", "de_DE.UTF-8")
                  .err.find("der Wert \xe2\x80\x9e" "frob\xe2\x80\x9c ist f\xc3\xbcr die Option --escape ung\xc3\xbcltig\n"),
        std::string::npos);
    const outcome overview = run("--help", "de_DE.UTF-8");
    EXPECT_NE(overview.out.find("\n  check     die Kataloge"), std::string::npos) << overview.out;

    const outcome told = run("message --explain fl:filesystem:NoSuchKey", "fr_FR.UTF-8");
    EXPECT_EQ(told.status, 1);
    EXPECT_NE(told.out.find("\ncl\xc3\xa9 trouv\xc3\xa9" "e : non\n"), std::string::npos) << told.out;

    // A language without catalogs reads English; so does one only LC_MESSAGES names elsewhere.
    EXPECT_EQ(run("status --no-such-option", "xx_YY.UTF-8").err,
        "qvi18n status: unknown option --no-such-option\nusage: qvi18n status [--json]\n");
    environment = "LC_MESSAGES=de_DE.UTF-8";
    EXPECT_EQ(run("message").err.rfind("qvi18n message: das Argument ID fehlt\n", 0), 0u);
    environment.clear();

    // Findings are localised; their machine fields are not.
    qvtest::scoped_temp_dir root;
    root.write_file("resources/c/en/a.xml", english);
    root.write_file("resources/c/it/a.xml", catalog("    <entry key=\"Ciao\">Ciao.</entry>\n"));
    const std::string file = root.path() + "/resources/c/it/a.xml";
    const outcome found = run("check --no-maps " + root.path(), "de_DE.UTF-8");
    EXPECT_EQ(found.status, 1);
    EXPECT_EQ(found.out, file + ":4: extra-key: der Schl\xc3\xbcssel \xe2\x80\x9e" "Ciao\xe2\x80\x9c steht nicht im Katalog \xe2\x80\x9e" "en\xe2\x80\x9c\n");
    const outcome json = run("check --no-maps --json " + root.path(), "de_DE.UTF-8");
    EXPECT_NE(json.out.find("{\"file\": \"" + file + "\", \"line\": 4, \"kind\": \"extra-key\", \"message\": \"der Schl"),
        std::string::npos) << json.out;
}

TEST_F(QvI18nCommand, ConvertStreamsThroughAnyBufferBoundary)
{
    // Long enough that characters straddle the command's buffers.
    std::string text;
    for (int i = 0; i < 40000; ++i) {
        text += "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80";
    }
    const outcome wide = run("convert --from UTF-8 --to UTF-16LE", "C.UTF-8", text);
    EXPECT_EQ(wide.status, 0);
    ASSERT_EQ(wide.out.size(), 40000u * 10);
    EXPECT_EQ(wide.out.substr(0, 10), std::string("a\0\xe9\0\xac\x20\x3d\xd8\x00\xde", 10));

    const outcome back = run("convert -f UTF-16LE -t UTF-8 ", "C.UTF-8", wide.out);
    EXPECT_TRUE(back.out == text);

    // Past the megabyte held back before the first write, what was held and what streams after it
    // come out once each and in order; a fault that late leaves the part already written.
    const std::string long_text(700000, 'a');
    std::string long_wide;
    for (char c : long_text) {
        long_wide += std::string {c, '\0'};
    }
    const outcome streamed = run("convert --from UTF-8 --to UTF-16LE --strict", "C.UTF-8", long_text);
    EXPECT_EQ(streamed.status, 0);
    EXPECT_TRUE(streamed.out == long_wide) << streamed.out.size();
    const outcome late = run("convert --from UTF-8 --to UTF-16LE --strict", "C.UTF-8", long_text + "\xff");
    EXPECT_EQ(late.status, 2);
    EXPECT_GE(late.out.size(), std::size_t {1} << 20);
    EXPECT_TRUE(long_wide.compare(0, late.out.size(), late.out) == 0);

    // Without --strict an invalid byte is substituted and the rest goes through.
    const outcome lenient = run("convert --from UTF-8 --to ISO-8859-1", "C.UTF-8", "x\xffy\xc3\xa9");
    EXPECT_EQ(lenient.status, 0);
    EXPECT_EQ(lenient.out.front(), 'x');
    EXPECT_EQ(lenient.out.substr(lenient.out.size() - 2), "y\xe9");
}

TEST_F(QvI18nCommand, ConvertEscapesWhatTheTargetCannotCarry)
{
    // The euro sign and the emoji are not Latin-1; the repeats put both across the command's
    // read buffers, and in UTF-16 the emoji's pair is cut between its halves as well.
    std::string text;
    std::string wide;
    std::string c_form;
    std::string xml_form;
    for (int i = 0; i < 40000; ++i) {
        text += "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80";
        wide += std::string("a\0\xe9\0\xac\x20\x3d\xd8\x00\xde", 10);
        c_form += "a\xe9\\u20AC\\U0001F600";
        xml_form += "a\xe9&#x20AC;&#x1F600;";
    }
    const outcome c = run("convert --from UTF-8 --to ISO-8859-1 --escape c", "C.UTF-8", text);
    EXPECT_EQ(c.status, 0);
    EXPECT_TRUE(c.out == c_form) << c.out.substr(0, 64);
    // Four units ahead put the first read's end (32768 units) after the emoji's high half.
    wide = std::string("w\0x\0y\0z\0", 8) + wide;
    const outcome xml = run("convert --from UTF-16LE --to ISO-8859-1 --escape xml-hex", "C.UTF-8", wide);
    EXPECT_EQ(xml.status, 0);
    EXPECT_TRUE(xml.out == "wxyz" + xml_form) << xml.out.substr(0, 64);

    const outcome unknown = run("convert --from UTF-8 --to ISO-8859-1 --escape frob", "C.UTF-8", "\xe2\x82\xac");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.out, "");
    EXPECT_NE(unknown.err.find("frob"), std::string::npos) << unknown.err;
    const outcome both = run("convert --from UTF-8 --to ISO-8859-1 --escape c --strict", "C.UTF-8", "\xe2\x82\xac");
    EXPECT_EQ(both.status, 2);
    EXPECT_EQ(both.out, "");
}

TEST_F(QvI18nCommand, StatusShowsTheDatabaseStartUpRead)
{
    const std::string installed = std::string(QVI18N_TEST_BUILD_ROOT) + "/bin/lcdata.xml";
    EXPECT_NE(run("status").out.find("\ndatabase_path: " + installed + "\n"), std::string::npos);

    qvtest::scoped_temp_dir copy;
    const std::string path = copy.write_file("lcdata.xml", qvtest::read_file(installed));
    environment = "QVLOCALE_LCDATA_PATH=" + copy.path();
    const outcome text = run("status", "de_DE.UTF-8");
    EXPECT_EQ(text.status, 0);
    EXPECT_NE(text.out.find("\ndatabase_path: " + path + "\n"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("\nstatus: 0\n"), std::string::npos) << text.out;
    EXPECT_NE(run("status --json").out.find("\"database_path\": \"" + path + "\""), std::string::npos);

    // A database that is not there: the path tried, and the failure beside it.
    environment = "QVLOCALE_LCDATA_PATH=" + copy.path() + "/none";
    const outcome missing = run("status");
    EXPECT_NE(missing.out.find("\ndatabase_path: " + copy.path() + "/none/lcdata.xml\n"), std::string::npos)
        << missing.out;
    EXPECT_NE(missing.out.find("\nstatus: 1\n"), std::string::npos) << missing.out;
}

TEST_F(QvI18nCommand, ExplainAgreesWithTheMessage)
{
    const outcome told = run("message --explain --locale de_AT fl:filesystem:PathNotFound");
    EXPECT_EQ(told.status, 0);
    const std::string root = std::string(QVI18N_TEST_BUILD_ROOT) + "/resources";
    EXPECT_NE(told.out.find("  de_AT " + root + "/fl/de_AT/filesystem.xml (missing)\n"), std::string::npos) << told.out;
    EXPECT_NE(told.out.find("* de " + root + "/fl/de/filesystem.xml\n"), std::string::npos) << told.out;
    EXPECT_NE(told.out.find("text: " + run("message --locale de_AT fl:filesystem:PathNotFound").out), std::string::npos)
        << told.out;

    const outcome missing = run("message --explain fl:filesystem:NoSuchKey");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.out.find("key found: no\n"), std::string::npos) << missing.out;
}

TEST_F(QvI18nCommand, SubcommandsPrintWhatTheLibraryAnswers)
{
    const outcome message = run("message fl:filesystem:SystemError --locale de_DE /srv 13");
    EXPECT_EQ(message.out, "Bei /srv ist ein Systemfehler aufgetreten (Fehlernummer 13).\n");
    EXPECT_EQ(message.status, 0);

    const outcome status = run("status --json", "de_DE.UTF-8");
    EXPECT_EQ(status.status, 0);
    EXPECT_NE(status.out.find("\"messages\": \"de_DE\""), std::string::npos) << status.out;
    EXPECT_NE(status.out.find("\"resource_roots\": [\"" + std::string(QVI18N_TEST_BUILD_ROOT) + "/resources\"]"),
        std::string::npos)
        << status.out;

    qvtest::scoped_temp_dir dir;
    dir.write_file("b.xml", "");
    dir.write_file("a.XML", "");
    dir.write_file("c.txt", "");
    dir.make_dir("d.xml");
    EXPECT_EQ(run("ls " + dir.path()).out, "a.XML\nb.xml\nc.txt\nd.xml/\n");
    EXPECT_EQ(run("ls --pattern '*.xml' " + dir.path()).out, "b.xml\nd.xml/\n");
    // "*" is the only wildcard; a pattern that matches nothing lists nothing.
    const outcome none = run("ls --pattern '?.xml' " + dir.path());
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.status, 0);

    const outcome help = run("check --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out.rfind("usage: qvi18n check", 0), 0u);
}

} // namespace
