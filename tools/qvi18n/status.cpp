// qvi18n status: what start-up decided, as people or programs read it.

#include "tool.hpp"

#include <qvi18n/qvi18n_internals.hpp>

#include <cstdlib>
#include <iostream>
#include <utility>

namespace po = boost::program_options;
namespace fi = fl::i18n;

namespace qvtool {

namespace {

typedef std::vector<std::pair<std::string, std::string>> fields;

std::string encoding_option(const fi::QvLocale& locale, fi::QvLcOptDataCtx::LcOptDataType type)
{
    try {
        const fi::LcOptData value = locale.getLcOptData(type);
        const std::string* text = boost::get<std::string>(&value);
        return text != nullptr ? *text : std::string();
    } catch (const std::exception&) {
        return std::string();
    }
}

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

int run_status(const arguments& args)
{
    po::options_description options;
    options.add_options()("json", say("HelpJson").c_str());
    po::positional_options_description positional;
    po::variables_map values;
    const int parsed = parse_arguments("status", "[--json]", args, options, positional, values);
    if (parsed >= 0) {
        return parsed;
    }

    const fi::QvLocale& global = fi::QvLocale::global();
    fields locale;
    for (int c = fi::QvLocale::LcCtype; c <= fi::QvLocale::LcMessages; ++c) {
        const fi::QvLocale::LcCategory category = static_cast<fi::QvLocale::LcCategory>(c);
        locale.emplace_back(fi::QvLocale::getLcCategoryName(category), global.shortName(category));
    }
    fields encodings = {
        {"encoding", global.encoding()},
        {"terminal", encoding_option(global, fi::QvLcOptDataCtx::LcTermEncoding)},
        {"terminal_input", encoding_option(global, fi::QvLcOptDataCtx::LcTermInputEncoding)},
        {"terminal_output", encoding_option(global, fi::QvLcOptDataCtx::LcTermOutputEncoding)},
    };
    const fi::QvLcMgmtExceptionBase* failure = fi::QvLcUtil::getInitException();
    const std::string root = installation_root();
    fields general = {
        {"status", std::to_string(fi::QvLcUtil::getLcStatus())},
        {"status_message", fi::QvLcUtil::getInitStatusMsg()},
        {"exception", failure != nullptr ? failure->get_identifier() : std::string()},
        {"exception_text", failure != nullptr ? utf8(fi::describe_failure(*failure, global)) : std::string()},
        {"localisation", fi::get_l10n_resource_status() ? "on" : "off"},
        {"system_locale", fi::QvLocale::system().shortName(fi::QvLocale::LcCtype)},
        {"install_path", root},
        {"database_path", fi::get_database_path()},
        {"database_path_variable", environment("QVLOCALE_LCDATA_PATH")},
        {"database_file_variable", environment("QVLOCALE_LCDATA_FILENAME")},
    };
    std::vector<std::string> roots;
    try {
        for (const fl::filesystem::upath& r : fi::MessageCatalogImpl::getTopLevelResourceLocations()) {
            roots.push_back(utf8(r.get_path_name()));
        }
    } catch (const std::exception&) {
        // No roots were given: the list stays empty.
    }

    if (values.count("json") != 0) {
        auto object = [](const fields& f) {
            std::string out = "{";
            for (std::size_t i = 0; i < f.size(); ++i) {
                out += (i ? ", " : "") + json_quote(f[i].first) + ": " + json_quote(f[i].second);
            }
            return out + "}";
        };
        std::cout << "{\n  \"locale\": " << object(locale) << ",\n  \"encodings\": " << object(encodings);
        for (const auto& field : general) {
            std::cout << ",\n  " << json_quote(field.first) << ": " << json_quote(field.second);
        }
        std::cout << ",\n  \"resource_roots\": [";
        for (std::size_t i = 0; i < roots.size(); ++i) {
            std::cout << (i ? ", " : "") << json_quote(roots[i]);
        }
        std::cout << "]\n}\n";
        return exit_ok;
    }
    auto print = [](const fields& f, const char* indent) {
        for (const auto& field : f) {
            std::cout << indent << field.first << ": " << (field.second.empty() ? "-" : field.second) << "\n";
        }
    };
    std::cout << "locale:\n";
    print(locale, "  ");
    std::cout << "encodings:\n";
    print(encodings, "  ");
    print(general, "");
    std::cout << "resource roots:\n";
    for (const std::string& r : roots) {
        std::cout << "  " << r << "\n";
    }
    return exit_ok;
}

} // namespace qvtool
