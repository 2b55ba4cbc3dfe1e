// qvi18n convert: standard input to standard output through the library's stream converters,
// in fixed buffers whatever the size of the input.

#include "tool.hpp"

#include <qvi18n/qvi18n_internals.hpp>

#include <cerrno>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace po = boost::program_options;
namespace fi = fl::i18n;

namespace qvtool {

namespace {

const std::size_t buffer_units = 1 << 16;
const std::size_t hold_limit = 1 << 20;

bool write_all(const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(STDOUT_FILENO, data, size);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

const struct {
    const char* name;
    fi::codecvt_call_back_mode mode;
    const char* form; // for --help
} escape_modes[] = {
    {"icu", fi::call_back_escape_icu, "%UXXXX"},
    {"java", fi::call_back_escape_java, "\\uXXXX"},
    {"c", fi::call_back_escape_c, "\\uXXXX, \\UXXXXXXXX"},
    {"xml-dec", fi::call_back_escape_xml_dec, "&#DDDD;"},
    {"xml-hex", fi::call_back_escape_xml_hex, "&#xXXXX;"},
    {"unicode", fi::call_back_escape_unicode, "{U+XXXX}"},
    {"css2", fi::call_back_escape_css2, "\\XXXX"},
};

// The help of --escape: the sentence, the modes with their forms, what else to know.
std::string escape_help()
{
    std::string text = say("HelpEscape");
    for (const auto& m : escape_modes) {
        text += "\n  " + std::string(m.name) + std::string(9 - std::strlen(m.name), ' ') + m.form;
    }
    return text + "\n" + say("HelpEscapeNotes");
}

} // namespace

int run_convert(const arguments& args)
{
    po::options_description options;
    po::variables_map values;
    // What the output encoding cannot carry: substituted unless --strict or --escape says otherwise.
    fi::codecvt_call_back_mode unmappable = fi::call_back_default;
    // Checked while the options are stored, so that a bad MODE is reported as any usage error.
    auto choose_escape = [&values, &unmappable](const std::string& name) {
        if (values.count("strict") != 0) {
            throw usage_fault("ConflictingOptions", {"--strict", "--escape"});
        }
        for (const auto& m : escape_modes) {
            if (name == m.name) {
                unmappable = m.mode;
                return;
            }
        }
        po::invalid_option_value unknown(name);
        unknown.set_option_name("escape");
        unknown.set_prefix(po::command_line_style::allow_long);
        throw unknown;
    };
    options.add_options()("from,f", po::value<std::string>()->required()->value_name("ENC"), say("HelpFrom").c_str())(
        "to,t", po::value<std::string>()->required()->value_name("ENC"), say("HelpTo").c_str())(
        "strict", say("HelpStrict").c_str())(
        "escape", po::value<std::string>()->value_name("MODE")->notifier(choose_escape), escape_help().c_str());
    po::positional_options_description positional;
    const int parsed = parse_arguments(
        "convert", "--from ENC --to ENC [--strict|--escape MODE]", args, options, positional, values);
    if (parsed >= 0) {
        return parsed;
    }
    const bool substitute = values.count("strict") == 0;
    if (!substitute) {
        unmappable = fi::call_back_invalid_check;
    }
    // Both ends are opened before anything is read: an unknown name fails with no output.
    // The stream converters do not name the encoding they refuse; the report does.
    std::unique_ptr<fi::stream_codecvt_string_to_ustring> decoder_owner;
    std::unique_ptr<fi::stream_codecvt_ustring_to_string> encoder_owner;
    const std::string* opening = &values["from"].as<std::string>();
    try {
        decoder_owner.reset(new fi::stream_codecvt_string_to_ustring(*opening, substitute));
        opening = &values["to"].as<std::string>();
        encoder_owner.reset(new fi::stream_codecvt_ustring_to_string(*opening, unmappable));
    } catch (const fi::CvtInvalidEncodingName& e) {
        if (!e.get_encoding_name().empty()) {
            throw;
        }
        return report_failure("convert", fi::CvtInvalidEncodingName(*opening));
    }
    const fi::stream_codecvt_string_to_ustring& decoder = *decoder_owner;
    const fi::stream_codecvt_ustring_to_string& encoder = *encoder_owner;

    // The output is held back up to a bound before the first write, so that a conversion that
    // fails on a small input writes nothing at all; past the bound it streams.
    std::string held;
    bool streaming = false;
    auto emit = [&held, &streaming](const char* data, std::size_t size) {
        if (streaming) {
            return write_all(data, size);
        }
        held.append(data, size);
        if (held.size() < hold_limit) {
            return true;
        }
        streaming = true;
        const bool written = write_all(held.data(), held.size());
        // From here on the output goes straight through: the held megabyte goes now, not at exit.
        std::string().swap(held);
        return written;
    };
    std::vector<char> input(buffer_units);
    std::vector<char16_t> middle(buffer_units);
    std::vector<char> output(buffer_units * 4);
    for (;;) {
        ssize_t read = ::read(STDIN_FILENO, input.data(), input.size());
        if (read < 0 && errno == EINTR) {
            continue;
        }
        if (read < 0) {
            return report_failure("convert", say("StdinUnreadable"));
        }
        const bool end = read == 0;
        const char* source = input.data();
        const char* source_limit = source + read;
        int decoding;
        do {
            char16_t* wide = middle.data();
            try {
                decoding = decoder.convert(&wide, middle.data() + middle.size(), &source, source_limit, end);
            } catch (const fi::CvtConversionFailure&) {
                // The one failure of the last call that the earlier ones can't have: a character
                // begun and never finished.
                if (!end) {
                    throw;
                }
                return report_failure("convert", say("InputEndsInCharacter", {values["from"].as<std::string>()}));
            }
            const char16_t* pending = middle.data();
            int encoding;
            do {
                char* bytes = output.data();
                encoding = encoder.convert(&bytes, output.data() + output.size(), &pending, wide, end && decoding == 0);
                if (!emit(output.data(), static_cast<std::size_t>(bytes - output.data()))) {
                    return report_failure("convert", say("StdoutUnwritable"));
                }
            } while (encoding == 1);
        } while (decoding == 1);
        if (end) {
            if (!streaming && !write_all(held.data(), held.size())) {
                return report_failure("convert", say("StdoutUnwritable"));
            }
            return exit_ok;
        }
    }
}

} // namespace qvtool
