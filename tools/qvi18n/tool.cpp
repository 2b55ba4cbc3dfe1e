#include "tool.hpp"

#include <qvi18n/qvi18n_internals.hpp>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <sstream>

namespace po = boost::program_options;
namespace fi = fl::i18n;

namespace qvtool {

std::string utf8(const fi::ustring& text)
{
    // Lone surrogates in a file name become U+FFFD rather than a failure of the report.
    fi::codecvt_ustring_to_string cvt("UTF-8", true);
    return cvt.convert(text.data(), text.size());
}

fi::ustring from_utf8(const std::string& text)
{
    fi::codecvt_string_to_ustring cvt("UTF-8", true);
    return cvt.convert(text.data(), text.size());
}

std::string json_quote(const std::string& text)
{
    std::string out = "\"";
    for (unsigned char c : text) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (c < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", c);
                out += buf;
            } else {
                out += static_cast<char>(c);
            }
        }
    }
    return out + "\"";
}

std::string installation_root()
{
    try {
        return utf8(fl::filesystem::get_install_path());
    } catch (const std::exception&) {
        return std::string();
    }
}

void start_up()
{
    fi::initialize();
    const std::string root = installation_root();
    try {
        if (!root.empty()) {
            fi::MessageCatalog::MessageCatalogInit(root);
        }
    } catch (const std::exception&) {
        // An installation without resources/: the look-ups that need it say so themselves.
    }
}

std::string say(const std::string& key, const std::vector<std::string>& holes)
{
    fi::hole_values values;
    for (const std::string& hole : holes) {
        values.push_back(from_utf8(hole));
    }
    const resource_core::BaseMsgID id("fl:tools:qvi18n", key, values);
    // A translation that lacks the key still leaves the English text.
    for (const fi::QvLocale* locale : {&fi::QvLocale::global(), &fi::QvLocale::classic()}) {
        try {
            return utf8(fi::MessageCatalog::get_message(id, *locale));
        } catch (const std::exception&) {
        }
    }
    std::string text = key;
    for (const std::string& hole : holes) {
        text += " " + hole;
    }
    return text;
}

int report_failure(const std::string& command, const std::string& text)
{
    std::cerr << "qvi18n " << command << ": " << text << std::endl;
    return exit_failure;
}

int report_failure(const std::string& command, const std::exception& failure)
{
    return report_failure(command, utf8(fi::describe_failure(failure, fi::QvLocale::global())));
}

usage_fault::usage_fault(const std::string& text_key, const std::vector<std::string>& text_holes)
    : boost::program_options::error(text_key)
    , key(text_key)
    , holes(text_holes)
{ }

namespace {

std::string upper(const std::string& name)
{
    std::string out = name;
    for (char& c : out) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return out;
}

// The names the positional arguments stand for, in order.
std::vector<std::string> positional_names(const po::positional_options_description& positional)
{
    std::vector<std::string> names;
    const unsigned count = std::min(positional.max_total_count(), 64u);
    for (unsigned i = 0; i < count; ++i) {
        const std::string& name = positional.name_for_position(i);
        if (names.empty() || names.back() != name) {
            names.push_back(name);
        }
    }
    return names;
}

void print_help(const std::string& command, const std::string& synopsis, const po::options_description& options,
    const std::vector<std::string>& arguments)
{
    typedef std::pair<std::string, std::string> row;
    std::vector<row> named;
    std::vector<row> unnamed;
    std::size_t width = 0;
    for (const auto& option : options.options()) {
        const std::string& name = option->long_name();
        std::string left;
        if (std::find(arguments.begin(), arguments.end(), name) != arguments.end()) {
            left = upper(name);
            unnamed.emplace_back(left, option->description());
        } else {
            const std::string brief = option->canonical_display_name(po::command_line_style::allow_dash_for_short);
            left = (brief.size() == 2 && brief[0] == '-' ? brief + ", " : std::string()) + "--" + name;
            if (option->semantic()->max_tokens() > 0) {
                const std::string value = option->semantic()->name();
                left += " " + (value == po::arg ? upper(name) : value);
            }
            named.emplace_back(left, option->description());
        }
        width = std::max(width, left.size());
    }
    std::cout << say("Usage", {"qvi18n " + command + " " + synopsis}) << "\n";
    const std::pair<const char*, const std::vector<row>*> sections[] = {{"Arguments", &unnamed}, {"Options", &named}};
    for (const auto& section : sections) {
        if (section.second->empty()) {
            continue;
        }
        std::cout << "\n" << say(section.first) << "\n";
        for (const row& r : *section.second) {
            // A description of several lines keeps its own line breaks, each under the first.
            std::string text = r.second;
            for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
                text.insert(at + 1, width + 4, ' ');
            }
            std::cout << "  " << r.first << std::string(width + 2 - r.first.size(), ' ') << text << "\n";
        }
    }
}

// Boost's own words for a faulty command line, as a sentence of the command's catalog.
std::string usage_error(const po::error& e, const std::vector<std::string>& arguments)
{
    if (const auto* own = dynamic_cast<const usage_fault*>(&e)) {
        return say(own->key, own->holes);
    }
    if (dynamic_cast<const po::too_many_positional_options_error*>(&e)) {
        return say("TooManyArguments");
    }
    const auto* named = dynamic_cast<const po::error_with_option_name*>(&e);
    if (named == nullptr) {
        return say("BadCommandLine", {e.what()});
    }
    const std::string option = named->get_option_name();
    if (dynamic_cast<const po::unknown_option*>(&e)) {
        return say("UnknownOption", {option});
    }
    if (dynamic_cast<const po::ambiguous_option*>(&e)) {
        return say("AmbiguousOption", {option});
    }
    if (dynamic_cast<const po::required_option*>(&e)) {
        const std::string bare = option.substr(std::min(option.find_first_not_of('-'), option.size()));
        if (std::find(arguments.begin(), arguments.end(), bare) != arguments.end()) {
            return say("MissingArgument", {upper(bare)});
        }
        return say("MissingOption", {option});
    }
    if (dynamic_cast<const po::multiple_occurrences*>(&e) || dynamic_cast<const po::multiple_values*>(&e)) {
        return say("RepeatedOption", {option});
    }
    if (const auto* syntax = dynamic_cast<const po::invalid_syntax*>(&e)) {
        return say(syntax->kind() == po::invalid_syntax::missing_parameter ? "MissingValue"
                : syntax->kind() == po::invalid_syntax::extra_parameter    ? "ExtraValue"
                                                                          : "BadOptionSyntax",
            {option});
    }
    if (const auto* validation = dynamic_cast<const po::validation_error*>(&e)) {
        switch (validation->kind()) {
        case po::validation_error::multiple_values_not_allowed: return say("RepeatedOption", {option});
        case po::validation_error::at_least_one_value_required: return say("MissingValue", {option});
        default: {
            // The value is kept only for Boost's own template: read it through one.
            po::error_with_option_name value = *named;
            value.m_error_template = "%value%";
            return say("InvalidValue", {option, value.what()});
        }
        }
    }
    return say("BadOptionSyntax", {option});
}

} // namespace

int parse_arguments(const std::string& command, const std::string& synopsis, const arguments& args,
    po::options_description& options, const po::positional_options_description& positional,
    po::variables_map& values)
{
    options.add_options()("help,h", say("HelpHelp").c_str());
    const std::vector<std::string> names = positional_names(positional);
    try {
        po::store(po::command_line_parser(args).options(options).positional(positional).run(), values);
        if (values.count("help") != 0) {
            print_help(command, synopsis, options, names);
            return exit_ok;
        }
        po::notify(values);
    } catch (const po::error& e) {
        report_failure(command, usage_error(e, names));
        std::cerr << say("Usage", {"qvi18n " + command + " " + synopsis}) << "\n";
        return exit_failure;
    }
    return -1;
}

} // namespace qvtool
