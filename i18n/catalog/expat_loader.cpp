#include <qvi18n/i18n/catalog/expat_loader.hpp>

#include <qvi18n/filesystem/fstream.hpp>

#include "i18n/catalog/checked_length.hpp"

#include <boost/exception/exception.hpp>

#include <cstring>
#include <exception>
#include <istream>
#include <memory>
#include <string>
#include <utility>

namespace fl {
namespace i18n {

ExpatEventHandler::ExpatEventHandler(const std::string& enc)
    : parse_ok(true)
    , encoding(enc)
{ }

ExpatEventHandler::~ExpatEventHandler() = default;

bool ExpatEventHandler::elementStart(const char* name, const char** attributes)
{
    if (!parse_ok) {
        return false;
    }
    parse_ok = doElementStart(name, attributes);
    return parse_ok;
}

bool ExpatEventHandler::elementData(const char* text, int length, bool first_in_line)
{
    if (!parse_ok) {
        return false;
    }
    parse_ok = doElementData(text, length, first_in_line);
    return parse_ok;
}

bool ExpatEventHandler::elementEnd(const char* name)
{
    if (!parse_ok) {
        return false;
    }
    parse_ok = doElementEnd(name);
    return parse_ok;
}

ExpatLoader::XML_Parser_Guard::XML_Parser_Guard(const char* encoding)
    : parser(XML_ParserCreate(encoding))
{ }

ExpatLoader::XML_Parser_Guard::~XML_Parser_Guard()
{
    if (parser) {
        XML_ParserFree(parser);
    }
}

ExpatLoader::XML_Parser_User_Data::XML_Parser_User_Data(
    XML_Parser p, const boost::shared_ptr<ExpatEventHandler>& h)
    : parser(p)
    , handler(h)
    , new_line(true)
{ }

namespace {

// The user data holds the handler for the loader's whole life, so the callbacks borrow it rather
// than take a counted reference on every event.

// Runs one handler call for a callback. A refusal stops the parser; so does an exception, which
// must not unwind through Expat's frames: it is kept and thrown again once XML_Parse has returned.
// Once stopped, no further event reaches the handler.
template <class Call> void deliver(void* data, Call call)
{
    ExpatLoader::XML_Parser_User_Data* user = static_cast<ExpatLoader::XML_Parser_User_Data*>(data);
    if (user->error) {
        return;
    }
    bool ok = false;
    try {
        ok = call(*user->handler);
    } catch (...) {
        user->error = std::current_exception();
    }
    if (!ok) {
        XML_StopParser(user->parser, XML_FALSE);
    }
}

void XMLCALL on_element_start(void* data, const XML_Char* name, const XML_Char** attributes)
{
    deliver(data, [&](ExpatEventHandler& handler) { return handler.elementStart(name, attributes); });
}

void XMLCALL on_element_end(void* data, const XML_Char* name)
{
    deliver(data, [&](ExpatEventHandler& handler) { return handler.elementEnd(name); });
}

void XMLCALL on_character_data(void* data, const XML_Char* text, int length)
{
    bool& new_line = static_cast<ExpatLoader::XML_Parser_User_Data*>(data)->new_line;
    deliver(data, [&](ExpatEventHandler& handler) {
        const bool ok = handler.elementData(text, length, new_line);
        // Only the first run of a line opens it; Expat splits a line's text around entities.
        new_line = false;
        return ok;
    });
}

} // namespace

ExpatLoader::ExpatLoader(const fl::filesystem::upath& file, boost::shared_ptr<ExpatEventHandler> h)
    : file_path(file)
    , parser(h->getEncoding().c_str())
    , handler(std::move(h))
    , user_data(new XML_Parser_User_Data(parser.get(), handler))
{
    // Expat gives no parser only when memory runs out; load_file then fails.
    if (parser.get() != nullptr) {
        XML_SetElementHandler(parser.get(), on_element_start, on_element_end);
        XML_SetCharacterDataHandler(parser.get(), on_character_data);
        XML_SetUserData(parser.get(), user_data.get());
    }
}

ExpatLoader::~ExpatLoader() = default;

bool ExpatLoader::load_file()
{
    if (parser.get() == nullptr) {
        return false;
    }
    fl::filesystem::basic_ifstream<char> in(file_path);
    if (in.rdstate() != std::ios_base::goodbit) {
        return false;
    }
    // Line endings never reach the parser. Only a last line without a line break is parsed as
    // final, so a document cut off after a complete line is not checked for completeness.
    // The file is read in large blocks and each line is handed to the parser where it lies in the
    // block; only a line that straddles two blocks is gathered in `pending` first.
    const char newline = in.widen('\n');
    const std::streamsize block_size = 64 * 1024;
    std::unique_ptr<char[]> block(new char[block_size]);
    std::string pending;
    bool ok = true;
    auto parse_line = [this](const char* text, std::string::size_type size, bool last) {
        user_data->new_line = true;
        const int length = detail::checked_length(size);
        const bool parsed = XML_Parse(parser.get(), text, length, last ? XML_TRUE : XML_FALSE) != XML_STATUS_ERROR;
        if (user_data->error) {
            std::rethrow_exception(user_data->error);
        }
        return parsed;
    };
    while (ok) {
        // read() turns a failing device into badbit, as line-wise reading did.
        in.read(block.get(), block_size);
        const char* next = block.get();
        const char* const end = next + in.gcount();
        while (ok) {
            const char* stop = static_cast<const char*>(
                std::memchr(next, newline, static_cast<std::size_t>(end - next)));
            if (stop == nullptr) {
                break;
            }
            const std::string::size_type size = static_cast<std::string::size_type>(stop - next);
            if (pending.empty()) {
                ok = parse_line(next, size, false);
            } else {
                pending.append(next, size);
                ok = parse_line(pending.data(), pending.size(), false);
                pending.clear();
            }
            next = stop + 1;
        }
        if (!ok) {
            break;
        }
        pending.append(next, static_cast<std::string::size_type>(end - next));
        if (!in) {
            break;
        }
    }
    // A read error (a directory, a failing device) is no end of file: nothing says the document
    // was read to a line boundary, and its unfinished last line is not parsed.
    if (!ok || in.bad()) {
        return false;
    }
    if (!pending.empty()) {
        ok = parse_line(pending.data(), pending.size(), true);
    }
    return ok;
}

} // namespace i18n
} // namespace fl
