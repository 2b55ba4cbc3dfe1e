// qvi18n ls: one directory's names through the library's iterator, with the wildcard rules of
// the directory's volume.

#include "tool.hpp"

#include <qvi18n/qvi18n_internals.hpp>

#include <algorithm>
#include <iostream>

namespace po = boost::program_options;
namespace fs = fl::filesystem;

namespace qvtool {

int run_ls(const arguments& args)
{
    po::options_description options;
    options.add_options()("pattern,p", po::value<std::string>()->value_name("P"), say("HelpPattern").c_str())(
        "all,a", say("HelpAll").c_str())("dir", po::value<std::string>()->required(), say("HelpDir").c_str());
    po::positional_options_description positional;
    positional.add("dir", 1);
    po::variables_map values;
    const int parsed = parse_arguments("ls", "[--pattern P] [--all] DIR", args, options, positional, values);
    if (parsed >= 0) {
        return parsed;
    }
    const fl::i18n::ustring dir = from_utf8(values["dir"].as<std::string>());
    // Names are collected first so that a failure half-way leaves no partial listing behind.
    std::vector<std::string> names;
    fs::upath_directory_iterator it;
    // A pattern that matches no name leaves the iterator on the last name it read until its first
    // increment; each name is therefore matched again, as the volume compares names.
    fl::i18n::simple_pattern_match matcher;
    const bool filtered = values.count("pattern") != 0;
    if (filtered) {
        const fs::filename_pattern_context pattern(from_utf8(values["pattern"].as<std::string>()));
        it = fs::upath_directory_iterator(dir, pattern);
        matcher.open(pattern.get_pattern(), fs::generate_character_handling_mask_from_volume(fs::upath(dir)));
    } else {
        it = fs::upath_directory_iterator(dir);
    }
    const bool all = values.count("all") != 0;
    for (; it != fs::upath_directory_iterator(); ++it) {
        const std::string name = utf8(it->filename());
        fl::i18n::regex_excp_id matched;
        if ((!all && (name == "." || name == "..")) || (filtered && !matcher.match(it->filename(), matched))) {
            continue;
        }
        names.push_back(name + (it->target_type() == fs::file_status::directory_file ? "/" : ""));
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        std::cout << name << "\n";
    }
    return exit_ok;
}

} // namespace qvtool
