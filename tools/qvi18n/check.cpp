// qvi18n check: the catalogs of a resource root as the loader and the formatter will see them,
// and the catalog maps beside it. Every fault is a finding with its file and line; the command
// itself fails only when the root cannot be read at all.

#include "tool.hpp"

#include <qvi18n/qvi18n_internals.hpp>

#include <expat.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace po = boost::program_options;
namespace fi = fl::i18n;
namespace fs = fl::filesystem;

namespace qvtool {

namespace {

struct finding {
    std::string file;
    unsigned long line;
    std::string kind;
    std::string text;
};

typedef std::vector<finding> findings;

// What a catalog file says, as far as the checks need it.
struct catalog_file {
    std::string path;
    std::string locale;
    std::string catalog; // "component:a:b"
    bool readable = true;
    // Key -> line of its first entry, and text as the loader decodes it.
    std::map<std::string, unsigned long> lines;
    std::map<std::string, icu::UnicodeString> texts;
};

bool is_directory(const std::string& path)
{
    try {
        return fs::status(fs::upath(from_utf8(path))).type == fs::file_status::directory_file;
    } catch (const std::exception&) {
        return false;
    }
}

// The names in `dir`, sorted, without "." and "..". Unreadable directories are findings.
std::vector<std::string> list(const std::string& dir, findings& out)
{
    std::vector<std::string> names;
    try {
        for (fs::upath_directory_iterator it(from_utf8(dir)); it != fs::upath_directory_iterator(); ++it) {
            const std::string name = utf8(it->filename());
            if (name != "." && name != "..") {
                names.push_back(name);
            }
        }
    } catch (const std::exception& e) {
        out.push_back({dir, 0, "unreadable", say("DirectoryUnreadable", {utf8(fi::describe_failure(e, fi::QvLocale::global()))})});
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool ends_with(const std::string& text, const std::string& tail)
{
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// The structure the loader accepts, element by element, with the line each entry starts on.
struct structure_scan {
    XML_Parser parser;
    catalog_file* file;
    findings* out;
    std::vector<std::string> open;
    std::map<std::string, unsigned long> seen;
    std::vector<std::pair<std::string, unsigned long>> order;

    void fault(const std::string& kind, const std::string& text)
    {
        out->push_back({file->path, XML_GetCurrentLineNumber(parser), kind, text});
    }
};

void XMLCALL on_start(void* data, const XML_Char* name, const XML_Char** attributes)
{
    structure_scan& scan = *static_cast<structure_scan*>(data);
    const std::string element = name;
    const std::string parent = scan.open.empty() ? std::string() : scan.open.back();
    scan.open.push_back(element);
    const char* expected_parent = element == "rsccat" ? "" : element == "message" ? "rsccat" : element == "entry" ? "message" : nullptr;
    if (expected_parent == nullptr || parent != expected_parent) {
        scan.fault("format", parent.empty() ? say("ElementAsRoot", {element}) : say("ElementInside", {element, parent}));
        return;
    }
    if (element != "entry") {
        return;
    }
    const char* key = nullptr;
    for (const XML_Char** a = attributes; *a != nullptr; a += 2) {
        if (std::string(*a) == "key") {
            key = a[1];
        }
    }
    if (key == nullptr || *key == '\0') {
        scan.fault("format", say("EntryWithoutKey"));
        return;
    }
    const unsigned long line = XML_GetCurrentLineNumber(scan.parser);
    if (!scan.seen.emplace(key, line).second) {
        scan.fault("duplicate", say("DuplicateKey", {key, std::to_string(scan.seen[key])}));
    }
    scan.order.emplace_back(key, line);
}

void XMLCALL on_end(void* data, const XML_Char*)
{
    static_cast<structure_scan*>(data)->open.pop_back();
}

// Collects what the library's loader reads, in the order it reads it.
class collecting_store : public fi::MessageCatalogDataStore {
public:
    void addEntry(const std::string& key, const std::string& value) override { entries.emplace_back(key, value); }
    std::vector<std::pair<std::string, std::string>> entries;
};

void read_catalog(catalog_file& file, findings& out)
{
    std::ifstream in(file.path, std::ios::binary);
    std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof()) {
        file.readable = false;
        out.push_back({file.path, 0, "unreadable", say("FileUnreadable")});
        return;
    }
    structure_scan scan;
    scan.parser = XML_ParserCreate("UTF-8");
    scan.file = &file;
    scan.out = &out;
    XML_SetUserData(scan.parser, &scan);
    XML_SetElementHandler(scan.parser, on_start, on_end);
    const std::size_t before = out.size();
    if (XML_Parse(scan.parser, content.data(), static_cast<int>(content.size()), 1) == XML_STATUS_ERROR) {
        out.push_back({file.path, XML_GetCurrentLineNumber(scan.parser), "xml",
            say("NotWellFormed", {XML_ErrorString(XML_GetErrorCode(scan.parser))})});
    }
    XML_ParserFree(scan.parser);

    collecting_store store;
    bool loaded = false;
    try {
        loaded = fi::XMLCatalogFileLoader().loadFile(fs::upath(from_utf8(file.path)), store);
    } catch (const std::exception&) {
        loaded = false;
    }
    if (!loaded && out.size() == before) {
        out.push_back({file.path, 1, "format", say("LoaderRefuses")});
    }
    if (!loaded) {
        file.readable = false;
        return;
    }
    // The loader reads entries in file order, as the scan does.
    for (std::size_t i = 0; i < store.entries.size() && i < scan.order.size(); ++i) {
        const std::string& key = store.entries[i].first;
        if (file.lines.count(key) != 0) {
            continue;
        }
        fi::XMLCatalogDataStore decoded;
        decoded.addEntry(key, store.entries[i].second);
        file.lines[key] = scan.order[i].second;
        std::u16string_view text;
        decoded.find(key, text);
        file.texts[key] = icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
    }
}

// What a hole is formatted as: ICU's argument type, with a simple argument named by its keyword
// ("number", "date", "spellout"...); "none" for a bare {0}.
std::string hole_type(const icu::MessagePattern& pattern, int32_t start)
{
    switch (pattern.getPart(start).getArgType()) {
    case UMSGPAT_ARG_TYPE_NONE: return "none";
    case UMSGPAT_ARG_TYPE_CHOICE: return "choice";
    case UMSGPAT_ARG_TYPE_PLURAL: return "plural";
    case UMSGPAT_ARG_TYPE_SELECT: return "select";
    case UMSGPAT_ARG_TYPE_SELECTORDINAL: return "selectordinal";
    case UMSGPAT_ARG_TYPE_SIMPLE: break;
    }
    // A simple argument's parts: its start, its name or number, then its type keyword, which ICU
    // takes in any case.
    std::string keyword;
    pattern.getSubstring(pattern.getPart(start + 2)).toLower(icu::Locale::getRoot()).toUTF8String(keyword);
    return keyword;
}

// The holes of a message text, as "{0}" "{name}", each with the types it is used as; false with
// a reason when ICU refuses the text.
bool holes_of(const icu::UnicodeString& text, std::map<std::string, std::set<std::string>>& holes, std::string& reason)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString quoted = icu::MessageFormat::autoQuoteApostrophe(text, status);
    UParseError where;
    icu::MessageFormat format(quoted, icu::Locale("en", "US", "POSIX"), where, status);
    if (U_FAILURE(status)) {
        reason = say("PatternError", {u_errorName(status), std::to_string(where.offset)});
        return false;
    }
    icu::MessagePattern pattern(quoted, nullptr, status);
    for (int32_t i = 0; U_SUCCESS(status) && i + 1 < pattern.countParts(); ++i) {
        if (pattern.getPart(i).getType() != UMSGPAT_PART_TYPE_ARG_START) {
            continue;
        }
        const icu::MessagePattern::Part& id = pattern.getPart(i + 1);
        std::string name;
        if (id.getType() == UMSGPAT_PART_TYPE_ARG_NUMBER) {
            name = std::to_string(id.getValue());
        } else {
            pattern.getSubstring(id).toUTF8String(name);
        }
        holes["{" + name + "}"].insert(hole_type(pattern, i));
    }
    return true;
}

template <typename Items> std::string join(const Items& items, const char* between, const char* empty)
{
    std::string out;
    for (const auto& item : items) {
        out += (out.empty() ? "" : between) + std::string(item);
    }
    return out.empty() ? empty : out;
}

std::vector<std::string> names_of(const std::map<std::string, std::set<std::string>>& holes)
{
    std::vector<std::string> names;
    for (const auto& hole : holes) {
        names.push_back(hole.first);
    }
    return names;
}

// Hole types as a reader sees them: ICU's keywords as they are written, a bare hole in words.
std::vector<std::string> typed(const std::set<std::string>& types)
{
    std::vector<std::string> out;
    for (const std::string& type : types) {
        out.push_back(type == "none" ? say("UntypedHole") : type);
    }
    return out;
}

void check_against_english(const catalog_file& file, const catalog_file* english, findings& out)
{
    for (const auto& entry : file.texts) {
        const unsigned long line = file.lines.at(entry.first);
        std::map<std::string, std::set<std::string>> holes;
        std::string reason;
        if (!holes_of(entry.second, holes, reason)) {
            out.push_back({file.path, line, "messageformat", say("InvalidPattern", {entry.first, reason})});
            continue;
        }
        if (english == nullptr || english == &file || !english->readable) {
            continue;
        }
        auto reference = english->texts.find(entry.first);
        if (reference == english->texts.end()) {
            out.push_back({file.path, line, "extra-key", say("ExtraKey", {entry.first})});
            continue;
        }
        std::map<std::string, std::set<std::string>> expected;
        if (!holes_of(reference->second, expected, reason)) {
            continue;
        }
        if (names_of(expected) != names_of(holes)) {
            const std::string none = say("NoHoles");
            out.push_back({file.path, line, "holes",
                say("HoleMismatch",
                    {entry.first, join(names_of(holes), " ", none.c_str()), join(names_of(expected), " ", none.c_str())})});
            continue;
        }
        // The same holes: each must be formatted as the same kind of value, or the caller's
        // argument is shown as something else in this language (or refused).
        for (const auto& hole : holes) {
            const std::set<std::string>& types = expected[hole.first];
            if (hole.second != types) {
                out.push_back({file.path, line, "hole-type",
                    say("HoleTypeMismatch",
                        {entry.first, hole.first, join(typed(hole.second), "+", ""), join(typed(types), "+", "")})});
            }
        }
    }
}

// A map that is missing or differs from what the writer makes of the catalogs found now; the
// line is the first that differs.
void check_map(const fs::upath& resources, const std::string& component, findings& out)
{
    const std::string path = utf8(fi::catalog_map_path(resources, component).get_path_name());
    const std::string expected = fi::make_catalog_map(fi::list_component_catalogs(resources, component));
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        out.push_back({path, 0, "map", say("NoMap", {component})});
        return;
    }
    const std::string found((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (found == expected) {
        return;
    }
    const std::size_t at = static_cast<std::size_t>(
        std::mismatch(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(std::min(found.size(), expected.size())),
            expected.begin()).first - found.begin());
    const unsigned long line = 1 + static_cast<unsigned long>(std::count(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    out.push_back({path, line, "map", say("StaleMap")});
}

void collect_files(const std::string& dir, const std::string& catalog, const std::string& locale,
    std::vector<catalog_file>& files, findings& out)
{
    for (const std::string& name : list(dir, out)) {
        const std::string path = dir + "/" + name;
        if (is_directory(path)) {
            collect_files(path, catalog + ":" + name, locale, files, out);
        } else if (ends_with(name, ".xml")) {
            catalog_file file;
            file.path = path;
            file.locale = locale;
            file.catalog = catalog + ":" + name.substr(0, name.size() - 4);
            files.push_back(file);
        }
    }
}

} // namespace

int run_check(const arguments& args)
{
    po::options_description options;
    options.add_options()("json", say("HelpCheckJson").c_str())("no-maps", say("HelpNoMaps").c_str())(
        "root", po::value<std::string>()->required(), say("HelpRoot").c_str());
    po::positional_options_description positional;
    positional.add("root", 1);
    po::variables_map values;
    const int parsed = parse_arguments("check", "[--json] [--no-maps] ROOT", args, options, positional, values);
    if (parsed >= 0) {
        return parsed;
    }
    start_up();
    std::string root = values["root"].as<std::string>();
    while (root.size() > 1 && root.back() == '/') {
        root.pop_back();
    }
    // ROOT may name the resource directory itself, as the map writer allows.
    if (!is_directory(root)) {
        return report_failure("check", say("NotADirectory", {root}));
    }
    const std::string resources = utf8(fi::catalog_resource_directory(fs::upath(from_utf8(root))).get_path_name());

    findings out;
    std::vector<catalog_file> files;
    std::vector<std::string> components = list(resources, out);
    for (const std::string& component : components) {
        const std::string dir = resources + "/" + component;
        if (!is_directory(dir)) {
            continue;
        }
        for (const std::string& locale : list(dir, out)) {
            if (is_directory(dir + "/" + locale)) {
                collect_files(dir + "/" + locale, component, locale, files, out);
            }
        }
    }
    for (catalog_file& file : files) {
        read_catalog(file, out);
    }
    std::map<std::string, const catalog_file*> english;
    for (const catalog_file& file : files) {
        if (file.locale == "en") {
            english[file.catalog] = &file;
        }
    }
    for (const catalog_file& file : files) {
        if (!file.readable) {
            continue;
        }
        auto reference = english.find(file.catalog);
        if (reference == english.end()) {
            out.push_back({file.path, 1, "no-english", say("NoEnglish", {file.catalog})});
        }
        check_against_english(file, reference == english.end() ? nullptr : reference->second, out);
    }

    if (values.count("no-maps") == 0) {
        const fs::upath resource_dir(from_utf8(resources));
        for (const std::string& component : fi::list_catalog_components(resource_dir)) {
            check_map(resource_dir, component, out);
        }
    }

    std::stable_sort(out.begin(), out.end(), [](const finding& a, const finding& b) {
        return a.file != b.file ? a.file < b.file : a.line < b.line;
    });
    if (values.count("json") != 0) {
        std::cout << "{\"findings\": [";
        for (std::size_t i = 0; i < out.size(); ++i) {
            std::cout << (i ? ",\n  " : "\n  ") << "{\"file\": " << json_quote(out[i].file) << ", \"line\": " << out[i].line
                      << ", \"kind\": " << json_quote(out[i].kind) << ", \"message\": " << json_quote(out[i].text) << "}";
        }
        std::cout << (out.empty() ? "" : "\n") << "]}\n";
    } else {
        for (const finding& f : out) {
            std::cout << f.file << ":" << f.line << ": " << f.kind << ": " << f.text << "\n";
        }
    }
    return out.empty() ? exit_ok : exit_finding;
}

} // namespace qvtool
