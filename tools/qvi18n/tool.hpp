#ifndef QVI18N_TOOLS_QVI18N_TOOL_HPP
#define QVI18N_TOOLS_QVI18N_TOOL_HPP

// What the subcommands of the qvi18n command share: output in UTF-8, JSON quoting, the
// command's own texts and the report of a failure, both in the user's language.

#include <qvi18n/i18n/ustring.hpp>

#include <boost/program_options.hpp>

#include <exception>
#include <string>
#include <vector>

namespace qvtool {

enum exit_status { exit_ok = 0, exit_finding = 1, exit_failure = 2 };

typedef std::vector<std::string> arguments;

std::string utf8(const fl::i18n::ustring& text);
fl::i18n::ustring from_utf8(const std::string& text);
// `text` as a JSON string, quotes included.
std::string json_quote(const std::string& text);

// Start-up as every subcommand needs it: the locale decided, the library's own catalogs
// reachable. Failures are kept in the start-up status, never thrown. main() runs it once,
// before anything else: the subcommands' option texts already speak the user's language.
void start_up();

// The command's own text `key` (catalog "fl:tools:qvi18n") in the global locale's language,
// else in English, with `holes` (UTF-8) filled in; UTF-8. Without catalogs at all, the key and
// the holes still say what is meant.
std::string say(const std::string& key, const std::vector<std::string>& holes = std::vector<std::string>());
// The installation root of the library (where bin/ and resources/ lie), UTF-8.
std::string installation_root();

// Prints "qvi18n <command>: <text>" on stderr, the text in the global locale's language when
// the library's catalogs have it, and returns exit_failure.
int report_failure(const std::string& command, const std::exception& failure);
int report_failure(const std::string& command, const std::string& text);

// A usage error the command finds itself (two options that exclude each other, say), thrown
// from a notifier or while parsing: reported as say(key, holes) with exit_failure.
class usage_fault : public boost::program_options::error {
public:
    usage_fault(const std::string& text_key, const std::vector<std::string>& text_holes);
    std::string key;
    std::vector<std::string> holes;
};

// Parses `args` against `options` (plus --help) and `positional`. Returns -1 when the caller
// should go on, else the exit status to return (help printed, or a usage error reported). The
// descriptions of `options` are texts from say(); positional options are listed as arguments.
int parse_arguments(const std::string& command, const std::string& synopsis, const arguments& args,
    boost::program_options::options_description& options,
    const boost::program_options::positional_options_description& positional,
    boost::program_options::variables_map& values);

int run_status(const arguments& args);
int run_message(const arguments& args);
int run_complete(const arguments& args);
int run_convert(const arguments& args);
int run_ls(const arguments& args);
int run_map(const arguments& args);
int run_check(const arguments& args);

} // namespace qvtool

#endif
