// qvi18n message and qvi18n complete: look-ups in the catalogs, as a program would make them.

#include "tool.hpp"

#include <qvi18n/qvi18n_internals.hpp>

#include <cerrno>
#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace po = boost::program_options;
namespace fi = fl::i18n;

namespace qvtool {

namespace {

// A hole written as a whole decimal number is a number, anything else is text.
fi::hole_value hole_from_argument(const std::string& text)
{
    if (!text.empty()) {
        char* end = nullptr;
        errno = 0;
        const long long number = std::strtoll(text.c_str(), &end, 10);
        if (errno == 0 && end != nullptr && *end == '\0') {
            return number;
        }
    }
    return from_utf8(text);
}

// Prints the look-up step by step, labelled in the user's language; the status says whether it
// gave a text.
int explain(const fi::MessageLookupExplanation& told)
{
    static const char* const sources[] = {"SourceNoCatalog", "SourceCacheHit", "SourceCacheHitFallback", "SourceLoaded"};
    std::cout << say("ExplainCatalog") << " " << told.catalog << "\n"
              << say("ExplainKey") << " " << told.key << "\n"
              << say("ExplainLocale") << " " << told.requested_locale << "\n"
              << say("ExplainFallbacks");
    for (const std::string& locale : told.fallback_locales) {
        std::cout << " " << (locale.empty() ? "\"\"" : locale);
    }
    std::cout << "\n" << say("ExplainRoots") << "\n";
    for (const fl::filesystem::upath& root : told.roots) {
        std::cout << "  " << utf8(root.get_path_name()) << "\n";
    }
    std::cout << say("ExplainCandidates") << "\n";
    for (std::size_t i = 0; i < told.candidates.size(); ++i) {
        const fi::MessageLookupCandidate& c = told.candidates[i];
        std::cout << (static_cast<int>(i) == told.chosen_index ? "* " : "  ") << c.locale << " "
                  << utf8(c.path.get_path_name()) << (c.exists ? "" : " " + say("ExplainMissing")) << "\n";
    }
    std::cout << say("ExplainSource") << " " << say(sources[told.source]);
    if (!told.cache_key.empty()) {
        std::cout << " " << say("ExplainCacheKey", {told.cache_key});
    }
    std::cout << "\n" << say("ExplainChosen") << " "
              << (told.chosen.get_path_name().empty() ? std::string("-") : utf8(told.chosen.get_path_name())) << "\n"
              << say("ExplainKeyFound") << " " << say(told.key_found ? "Yes" : "No") << "\n";
    if (told.succeeded()) {
        std::cout << say("ExplainText") << " " << utf8(told.text) << "\n";
        return exit_ok;
    }
    std::cout << say("ExplainFailure") << " " << utf8(fi::describe_failure(told.error, fi::QvLocale::global())) << "\n";
    return exit_finding;
}

} // namespace

int run_message(const arguments& args)
{
    po::options_description options;
    options.add_options()("locale,l", po::value<std::string>()->value_name("L"), say("HelpLocale").c_str())(
        "explain", say("HelpExplain").c_str())("id", po::value<std::string>()->required(), say("HelpId").c_str())(
        "hole", po::value<std::vector<std::string>>(), say("HelpHole").c_str());
    po::positional_options_description positional;
    positional.add("id", 1).add("hole", -1);
    po::variables_map values;
    const int parsed
        = parse_arguments("message", "ID [--locale L] [--explain] [HOLE...]", args, options, positional, values);
    if (parsed >= 0) {
        return parsed;
    }
    boost::shared_ptr<const fi::QvLocale> locale = values.count("locale") != 0
        ? fi::QvLocale::createLocale(values["locale"].as<std::string>())
        : fi::QvLocale::createLocale(fi::QvLocale::global());
    const fi::MessageID id(values["id"].as<std::string>());
    fi::hole_values holes;
    if (values.count("hole") != 0) {
        for (const std::string& hole : values["hole"].as<std::vector<std::string>>()) {
            holes.push_back(hole_from_argument(hole));
        }
    }
    if (values.count("explain") != 0) {
        return explain(fi::explainMessageLookup(resource_core::BaseMsgID(id.getCatalogID(), id.getMsgKey(), holes), *locale));
    }
    // Formatted through the checking formatter: a wrong number of holes is an error here.
    const fi::ustring pattern = fi::MessageCatalog::GetMessageCatalog(fi::CatalogID(id.getCatalogID()), *locale)
                                    ->get_message_for_key(id.getMsgKey());
    std::cout << utf8(fi::MessageCatalog::GetFormattedMessage(pattern, holes)) << "\n";
    return exit_ok;
}

int run_complete(const arguments& args)
{
    po::options_description options;
    options.add_options()("prefix", po::value<std::string>()->default_value(""), say("HelpPrefix").c_str());
    po::positional_options_description positional;
    positional.add("prefix", 1);
    po::variables_map values;
    const int parsed = parse_arguments("complete", "PREFIX", args, options, positional, values);
    if (parsed >= 0) {
        return parsed;
    }
    const std::string prefix = values["prefix"].as<std::string>();
    const fi::MessageIdCompletions found = fi::getMessageIdCompletions(from_utf8(prefix));
    // Whole identifiers, so that a shell can offer them as they stand.
    std::vector<std::string> lines;
    for (const fi::ustring& completion : found.completions) {
        lines.push_back(prefix.substr(0, static_cast<std::size_t>(found.offset)) + utf8(completion));
    }
    std::sort(lines.begin(), lines.end());
    for (const std::string& line : lines) {
        std::cout << line << "\n";
    }
    return exit_ok;
}

int run_map(const arguments& args)
{
    po::options_description options;
    options.add_options()("root", po::value<std::string>()->required(), say("HelpRoot").c_str());
    po::positional_options_description positional;
    positional.add("root", 1);
    po::variables_map values;
    const int parsed = parse_arguments("map", "ROOT", args, options, positional, values);
    if (parsed >= 0) {
        return parsed;
    }
    for (const fl::filesystem::upath& map : fi::write_catalog_maps(fl::filesystem::upath(from_utf8(values["root"].as<std::string>())))) {
        std::cout << utf8(map.get_path_name()) << "\n";
    }
    return exit_ok;
}

} // namespace qvtool
