#include "tool.hpp"

#include <qvi18n/qvi18n_internals.hpp>

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
    if (!root.empty()) {
        fi::MessageCatalog::MessageCatalogInit(root);
    }
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

int parse_arguments(const std::string& command, const std::string& synopsis, const arguments& args,
    po::options_description& options, const po::positional_options_description& positional,
    po::variables_map& values)
{
    options.add_options()("help,h", "show this help");
    try {
        po::store(po::command_line_parser(args).options(options).positional(positional).run(), values);
        if (values.count("help") != 0) {
            std::cout << "usage: qvi18n " << command << " " << synopsis << "\n" << options;
            return exit_ok;
        }
        po::notify(values);
    } catch (const po::error& e) {
        report_failure(command, e.what());
        std::cerr << "usage: qvi18n " << command << " " << synopsis << "\n";
        return exit_failure;
    }
    return -1;
}

} // namespace qvtool
