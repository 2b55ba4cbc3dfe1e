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

#include <unistd.h>

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

// The holes of a message text, each with the types it is used as.
typedef std::map<std::string, std::set<std::string>> hole_map;

// What a catalog file says, as far as the checks need it.
struct catalog_file {
    std::string path;
    std::string locale;
    std::string catalog; // "component:a:b"
    bool readable = true;
    struct message {
        unsigned long line = 0; // of its first entry
        icu::UnicodeString text; // as the loader decodes it
        // The text read as a pattern once, for this file's check and each translation's.
        bool pattern_ok = false;
        hole_map holes;
        std::string pattern_error;
    };
    std::map<std::string, message> messages;
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

// Collects what the library's handler hands over, in the order it does.
class collecting_store : public fi::MessageCatalogDataStore {
public:
    void addEntry(const std::string& key, const std::string& value) override { entries.emplace_back(key, value); }
    std::vector<std::pair<std::string, std::string>> entries;
};

// The file fed to the library's own catalog handler exactly as the loader feeds it: one line at a
// time, without its line end, and the last line final only when no line end follows it. So the
// scan stops where the loader stops, and can tell on which line of the file that is.
struct line_scan {
    XML_Parser parser = nullptr;
    collecting_store store;
    fi::MessageCatalogExpatEventHandler handler {&store};
    // Where each line of the file begins among the bytes given to the parser.
    std::vector<XML_Index> line_starts;
    bool new_line = true;

    struct element {
        std::string name;
        unsigned long line;
        bool has_key;
        unsigned long first_inner_entry;
    };
    std::vector<element> open;
    // The line of the start tag that last named each key, and the line of each stored entry.
    std::map<std::string, unsigned long> key_lines;
    std::vector<unsigned long> entry_lines;
    // Entries the loader takes although they stand outside <message>.
    std::vector<finding> misplaced;

    bool refused = false;
    unsigned long refused_line = 0;
    std::string refused_text;

    unsigned long line_here() const
    {
        const XML_Index at = XML_GetCurrentByteIndex(parser);
        return static_cast<unsigned long>(std::upper_bound(line_starts.begin(), line_starts.end(), at) - line_starts.begin());
    }

    void refuse(unsigned long line, const std::string& text)
    {
        refused = true;
        refused_line = line;
        refused_text = text;
        XML_StopParser(parser, XML_FALSE);
    }
};

// Why the handler refused the start tag `name` below `parent`.
std::string refused_start(const std::string& name, const std::string& parent, const XML_Char** attributes)
{
    if (name == "rsccat" && parent.empty()) {
        // The loader walks the attributes of the root by single words: a value that reads
        // "version" or "locale" is taken for a name, and the last such one has no value.
        std::string attribute;
        std::string value;
        for (const XML_Char** a = attributes; *a != nullptr; a += 2) {
            if (std::string(a[1]) == "version" || std::string(a[1]) == "locale") {
                attribute = a[0];
                value = a[1];
            }
        }
        return say("RootAttributeWithoutValue", {attribute, value});
    }
    if (name == "message" && parent == "rsccat") {
        return say("SecondMessage");
    }
    return parent.empty() ? say("ElementAsRoot", {name}) : say("ElementInside", {name, parent});
}

void XMLCALL on_start(void* data, const XML_Char* name, const XML_Char** attributes)
{
    line_scan& scan = *static_cast<line_scan*>(data);
    const std::string element = name;
    const unsigned long line = scan.line_here();
    const std::string parent = scan.open.empty() ? std::string() : scan.open.back().name;
    bool has_key = false;
    if (element == "entry") {
        for (const XML_Char** a = attributes; *a != nullptr; a += 2) {
            if (std::string(*a) == "key" && *a[1] != '\0') {
                scan.key_lines[a[1]] = line;
                has_key = true;
            }
        }
        if (parent == "entry" && scan.open.back().first_inner_entry == 0) {
            scan.open.back().first_inner_entry = line;
        }
    }
    scan.open.push_back({element, line, has_key, 0});
    if (!scan.handler.elementStart(name, attributes)) {
        scan.refuse(line, refused_start(element, parent, attributes));
    } else if (element == "entry" && parent != "message" && parent != "entry") {
        scan.misplaced.push_back({std::string(), line, "layout", say("ElementInside", {element, parent})});
    }
}

void XMLCALL on_end(void* data, const XML_Char* name)
{
    line_scan& scan = *static_cast<line_scan*>(data);
    const line_scan::element closed = scan.open.back();
    scan.open.pop_back();
    const std::size_t stored = scan.store.entries.size();
    const bool ok = scan.handler.elementEnd(name);
    if (scan.store.entries.size() != stored) {
        scan.entry_lines.push_back(scan.key_lines[scan.store.entries.back().first]);
    }
    if (!ok) {
        // Only an entry is refused at its end: its key is missing, or an entry inside it took it.
        if (closed.has_key && closed.first_inner_entry != 0) {
            scan.refuse(closed.first_inner_entry, say("ElementInside", {"entry", "entry"}));
        } else {
            scan.refuse(closed.line, say("EntryWithoutKey"));
        }
    }
}

void XMLCALL on_text(void* data, const XML_Char* text, int length)
{
    line_scan& scan = *static_cast<line_scan*>(data);
    scan.handler.elementData(text, length, scan.new_line);
    scan.new_line = false;
}

// Expat's complaint about the file as a whole, with its line, or false when it is well formed.
// The loader never gives the parser a final call for a file that ends in a line end, so a file
// cut off after a line, or empty, loads: only this tells.
bool not_well_formed(const std::string& content, unsigned long& line, std::string& text)
{
    const XML_Parser parser = XML_ParserCreate("UTF-8");
    const bool bad = XML_Parse(parser, content.data(), static_cast<int>(content.size()), XML_TRUE) == XML_STATUS_ERROR;
    if (bad) {
        line = static_cast<unsigned long>(XML_GetCurrentLineNumber(parser));
        text = say("NotWellFormed", {XML_ErrorString(XML_GetErrorCode(parser))});
    }
    XML_ParserFree(parser);
    return bad;
}

// One finding for the first fault of the file's form, as the loader meets it.
void scan_catalog(catalog_file& file, const std::string& content, findings& out)
{
    line_scan scan;
    scan.parser = XML_ParserCreate("UTF-8");
    XML_SetUserData(scan.parser, &scan);
    XML_SetElementHandler(scan.parser, on_start, on_end);
    XML_SetCharacterDataHandler(scan.parser, on_text);
    // What the parser is given: the lines without their ends. A line's start is recorded before
    // it is parsed, which is all line_here() needs: no event lies beyond the bytes given so far.
    std::string joined;
    bool parse_error = false;
    for (std::size_t begin = 0; begin < content.size() && !parse_error;) {
        const std::size_t end = content.find('\n', begin);
        const std::size_t stop = end == std::string::npos ? content.size() : end;
        scan.line_starts.push_back(static_cast<XML_Index>(joined.size()));
        joined.append(content, begin, stop - begin);
        scan.new_line = true;
        parse_error = XML_Parse(scan.parser, content.data() + begin, static_cast<int>(stop - begin),
                          end == std::string::npos ? XML_TRUE : XML_FALSE)
            == XML_STATUS_ERROR;
        begin = end == std::string::npos ? content.size() : end + 1;
    }
    unsigned long error_line = 0;
    if (parse_error) {
        // The tag the parser choked on begins at the last "<" before the failure.
        const XML_Index at = XML_GetCurrentByteIndex(scan.parser);
        const std::size_t tag = joined.rfind('<', at < 0 ? 0 : static_cast<std::size_t>(at));
        const XML_Index from = tag == std::string::npos ? at : static_cast<XML_Index>(tag);
        error_line = static_cast<unsigned long>(
            std::upper_bound(scan.line_starts.begin(), scan.line_starts.end(), from) - scan.line_starts.begin());
    }
    XML_ParserFree(scan.parser);

    unsigned long line = 0;
    std::string text;
    const bool malformed = not_well_formed(content, line, text);
    if (scan.refused) {
        out.push_back({file.path, scan.refused_line, "format", scan.refused_text});
    } else if (malformed) {
        out.push_back({file.path, line, "xml", text});
    } else if (parse_error) {
        // Well formed, yet the loader's parser fails: a line end inside a tag, which the loader
        // drops, joined two words into one.
        out.push_back({file.path, error_line, "format", say("LineEndInTag")});
    }
    for (finding& f : scan.misplaced) {
        f.file = file.path;
        out.push_back(f);
    }
    file.readable = !scan.refused && !parse_error && !malformed;
    if (!file.readable) {
        return;
    }
    // The first text of a key is the one the catalog keeps.
    fi::XMLCatalogDataStore decoded;
    for (std::size_t i = 0; i < scan.store.entries.size(); ++i) {
        const auto& entry = scan.store.entries[i];
        const unsigned long at = scan.entry_lines[i];
        const auto first = file.messages.emplace(entry.first, catalog_file::message());
        if (!first.second) {
            out.push_back({file.path, at, "duplicate", say("DuplicateKey", {entry.first, std::to_string(first.first->second.line)})});
            continue;
        }
        first.first->second.line = at;
        decoded.addEntry(entry.first, entry.second);
        std::u16string_view decoded_text;
        decoded.find(entry.first, decoded_text);
        first.first->second.text = icu::UnicodeString(decoded_text.data(), static_cast<int32_t>(decoded_text.size()));
    }
}

// The whole file, or false when it can't be opened or read.
bool read_file(const std::string& path, std::string& content)
{
    std::ifstream in(path, std::ios::binary);
    content.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return in.good() || in.eof();
}

void read_catalog(catalog_file& file, findings& out)
{
    std::string content;
    if (!read_file(file.path, content)) {
        file.readable = false;
        out.push_back({file.path, 0, "unreadable", say("FileUnreadable")});
        return;
    }
    const std::size_t before = out.size();
    scan_catalog(file, content, out);

    // The library's loader has the last word: nothing it refuses passes as fine.
    bool loaded = false;
    try {
        collecting_store ignored;
        loaded = fi::XMLCatalogFileLoader().loadFile(fs::upath(from_utf8(file.path)), ignored);
    } catch (const std::exception&) {
        loaded = false;
    }
    if (!loaded) {
        if (out.size() == before) {
            out.push_back({file.path, 0, "format", say("LoaderRefuses")});
        }
        file.readable = false;
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
bool holes_of(const icu::UnicodeString& text, hole_map& holes, std::string& reason)
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

std::vector<std::string> names_of(const hole_map& holes)
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

void read_patterns(catalog_file& file)
{
    for (auto& entry : file.messages) {
        catalog_file::message& message = entry.second;
        message.pattern_ok = holes_of(message.text, message.holes, message.pattern_error);
    }
}

void check_against_english(const catalog_file& file, const catalog_file* english, findings& out)
{
    for (const auto& entry : file.messages) {
        const unsigned long line = entry.second.line;
        const hole_map& holes = entry.second.holes;
        if (!entry.second.pattern_ok) {
            out.push_back({file.path, line, "messageformat", say("InvalidPattern", {entry.first, entry.second.pattern_error})});
            continue;
        }
        if (english == nullptr || english == &file || !english->readable) {
            continue;
        }
        auto reference = english->messages.find(entry.first);
        if (reference == english->messages.end()) {
            out.push_back({file.path, line, "extra-key", say("ExtraKey", {entry.first})});
            continue;
        }
        if (!reference->second.pattern_ok) {
            continue;
        }
        const hole_map& expected = reference->second.holes;
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
            const std::set<std::string>& types = expected.at(hole.first);
            if (hole.second != types) {
                out.push_back({file.path, line, "hole-type",
                    say("HoleTypeMismatch",
                        {entry.first, hole.first, join(typed(hole.second), "+", ""), join(typed(types), "+", "")})});
            }
        }
    }
}

// A map that is missing or differs from what the writer makes of the catalogs found now; the
// line is the first that differs. A component without catalogs gets no map from the writer, and
// one whose tree can't be read (already a finding) can't be compared.
// The map's path goes to `wanted` unless the writer would make no map there.
void check_map(const fs::upath& resources, const std::string& component, findings& out, std::set<std::string>& wanted)
{
    const std::string path = utf8(fi::catalog_map_path(resources, component).get_path_name());
    std::vector<std::string> catalogs;
    try {
        catalogs = fi::list_component_catalogs(resources, component);
    } catch (const std::exception&) {
        wanted.insert(path);
        return;
    }
    if (catalogs.empty()) {
        return;
    }
    wanted.insert(path);
    const std::string expected = fi::make_catalog_map(catalogs);
    std::string found;
    if (!read_file(path, found)) {
        if (::access(path.c_str(), F_OK) == 0) {
            out.push_back({path, 0, "unreadable", say("FileUnreadable")});
        } else {
            out.push_back({path, 0, "map", say("NoMap", {component})});
        }
        return;
    }
    if (found == expected) {
        return;
    }
    const std::size_t at = static_cast<std::size_t>(
        std::mismatch(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(std::min(found.size(), expected.size())),
            expected.begin()).first - found.begin());
    const unsigned long line = 1 + static_cast<unsigned long>(std::count(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    out.push_back({path, line, "map", say("StaleMap")});
}

// Maps in the tree beside the resources that the writer doesn't make. Completion reads them all
// the same: one below a component before the component's own, one of a component without
// catalogs to offer that component.
void check_extra_maps(const std::string& directory, const std::set<std::string>& wanted, findings& out)
{
    for (const std::string& name : list(directory, out)) {
        const std::string path = directory + "/" + name;
        if (is_directory(path)) {
            check_extra_maps(path, wanted, out);
        } else if (name == utf8(fi::detail::catalog_map_file_name()) && wanted.count(path) == 0) {
            out.push_back({path, 0, "map", say("ExtraMap")});
        }
    }
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
        read_patterns(file);
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
        std::vector<std::string> mapped;
        try {
            mapped = fi::list_catalog_components(resource_dir);
        } catch (const std::exception&) {
            // The resource directory can't be listed: a finding already.
        }
        std::set<std::string> wanted;
        for (const std::string& component : mapped) {
            check_map(resource_dir, component, out, wanted);
        }
        fs::upath map_tree(resource_dir);
        map_tree /= fi::detail::catalog_map_base();
        std::string base = utf8(map_tree.get_path_name());
        while (base.size() > 1 && base.back() == '/') {
            base.pop_back();
        }
        if (is_directory(base)) {
            check_extra_maps(base, wanted, out);
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
