// qvi18n: the library's decisions and data, from the command line.

#include "tool.hpp"

#include <cstring>
#include <iostream>

namespace {

struct subcommand {
    const char* name;
    int (*run)(const qvtool::arguments&);
    const char* summary;
};

const subcommand subcommands[] = {
    {"status", qvtool::run_status, "what start-up decided: locale, encodings, paths, status"},
    {"message", qvtool::run_message, "a message by identifier, formatted with its holes"},
    {"complete", qvtool::run_complete, "how a partly typed message identifier can go on"},
    {"convert", qvtool::run_convert, "standard input to standard output in another encoding"},
    {"ls", qvtool::run_ls, "the names of a directory, optionally matching a wildcard"},
    {"map", qvtool::run_map, "write the catalog maps of a resource root"},
    {"check", qvtool::run_check, "check the catalogs and maps of a resource root"},
};

int usage(std::ostream& out, int status)
{
    out << "usage: qvi18n <command> [options] [arguments]\n"
           "       qvi18n <command> --help\n\ncommands:\n";
    for (const subcommand& command : subcommands) {
        out << "  " << command.name << std::string(10 - std::strlen(command.name), ' ') << command.summary << "\n";
    }
    return status;
}

} // namespace

int main(int argc, char** argv)
{
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
    std::cerr << "qvi18n: unknown command \"" << name << "\"\n";
    return usage(std::cerr, qvtool::exit_failure);
}
