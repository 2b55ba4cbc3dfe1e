// qvi18n: the library's decisions and data, from the command line.

#include "tool.hpp"

#include <cstring>
#include <iostream>

namespace {

struct subcommand {
    const char* name;
    int (*run)(const qvtool::arguments&);
    const char* summary; // the key of its text
};

const subcommand subcommands[] = {
    {"status", qvtool::run_status, "SummaryStatus"},
    {"message", qvtool::run_message, "SummaryMessage"},
    {"complete", qvtool::run_complete, "SummaryComplete"},
    {"convert", qvtool::run_convert, "SummaryConvert"},
    {"ls", qvtool::run_ls, "SummaryLs"},
    {"map", qvtool::run_map, "SummaryMap"},
    {"check", qvtool::run_check, "SummaryCheck"},
};

int usage(std::ostream& out, int status)
{
    out << qvtool::say("Usage", {qvtool::say("MainSynopsis")}) << "\n"
        << qvtool::say("Usage", {qvtool::say("MainHelpSynopsis")}) << "\n\n"
        << qvtool::say("Commands") << "\n";
    for (const subcommand& command : subcommands) {
        out << "  " << command.name << std::string(10 - std::strlen(command.name), ' ') << qvtool::say(command.summary)
            << "\n";
    }
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    qvtool::start_up();
    if (argc < 2) {
        return usage(std::cerr, qvtool::exit_failure);
    }
    const std::string name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        return usage(std::cout, qvtool::exit_ok);
    }
    for (const subcommand& command : subcommands) {
        if (name == command.name) {
            try {
                return command.run(qvtool::arguments(argv + 2, argv + argc));
            } catch (const std::exception& e) {
                return qvtool::report_failure(name, e);
            }
        }
    }
    std::cerr << "qvi18n: " << qvtool::say("UnknownCommand", {name}) << "\n";
    return usage(std::cerr, qvtool::exit_failure);
}
