// The locale database reader: the Expat driver and the exceptions of its family.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>

#include <qvi18n/filesystem/fstream.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml_parser.hpp>

#include <boost/exception/exception.hpp>

#include <expat.h>

#include <exception>
#include <sstream>

namespace fl {
namespace i18n {

namespace {

// Paths go into exception texts that callers may show: only printable ASCII is kept,
// anything else becomes its byte value in hexadecimal.
std::string escapePath(std::string const& path)
{
    static char const digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(path.size());
    for (char c : path) {
        unsigned char byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte <= 0x7E) {
            out += c;
        } else {
            if (byte >= 0x10)
                out += digits[byte >> 4];
            out += digits[byte & 0x0F];
        }
    }
    return out;
}

std::string composeXmlError(int code, unsigned line, unsigned column)
{
    std::ostringstream text;
    text << "XML Parse error detected with " << code << " at column, " << column << ", on line, " << line
         << " in resource file.";
    return text.str();
}

// What the Expat call-backs reach through XML_SetUserData.
struct ParseState {
    EventHandler* handler;
    XML_Parser parser;
    int result;
    // An exception a handler threw. It must not unwind through Expat's frames, so the call-back
    // keeps it, stops the parser, and the driver throws it again once Expat has returned.
    std::exception_ptr error;
};

// Runs one handler call for a call-back: a refusal or an exception stops the parser, and once
// stopped no further event reaches the handler.
template <class Call> void deliver(void* data, Call call)
{
    auto* state = static_cast<ParseState*>(data);
    if (state->error || state->result != 0)
        return;
    try {
        state->result = call(*state->handler);
    } catch (...) {
        state->error = std::current_exception();
    }
    if (state->error || state->result != 0)
        XML_StopParser(state->parser, XML_FALSE);
}

void onXmlDecl(void* data, XML_Char const* version, XML_Char const* encoding, int standalone)
{
    deliver(data, [&](EventHandler& handler) { return handler.checkXMLDoc(version, encoding, standalone); });
}

void onStart(void* data, XML_Char const* name, XML_Char const** attributes)
{
    deliver(data, [&](EventHandler& handler) { return handler.startEntry(name, attributes); });
}

void onEnd(void* data, XML_Char const* name)
{
    deliver(data, [&](EventHandler& handler) { return handler.endEntry(name); });
}

void onText(void* data, XML_Char const* text, int length)
{
    deliver(data, [&](EventHandler& handler) { return handler.entryData(text, length); });
}

[[noreturn]] void throwParseError(XML_Parser parser)
{
    XML_Error const code = XML_GetErrorCode(parser);
    XML_LChar const* text = XML_ErrorString(code);
    throw boost::enable_current_exception(LcRscInvalidXmlDoc(static_cast<int>(code),
        static_cast<unsigned>(XML_GetCurrentLineNumber(parser)),
        static_cast<unsigned>(XML_GetCurrentColumnNumber(parser)), text ? text : ""));
}

} // namespace

LcRscOpenFileFailure::LcRscOpenFileFailure(std::string const& path)
    : QvLcMgmtExceptionBase("fl:i18n:LcRscOpenFileFailure", ("Failed to open file " + path + ".").c_str())
    , path_(path)
{ }

LcRscOpenFileFailure::~LcRscOpenFileFailure() = default;

LcRscFileReadFailure::LcRscFileReadFailure(std::string const& path)
    : QvLcMgmtExceptionBase("fl:i18n:LcRscFileReadFailure", ("Failed to read file " + path + ".").c_str())
    , path_(path)
{ }

LcRscFileReadFailure::~LcRscFileReadFailure() = default;

LcRscParserCreationFailure::LcRscParserCreationFailure()
    : QvLcMgmtExceptionBase("fl:i18n:LcRscParserCreationFailure", "Failed to create XML parser.")
{ }

LcRscParserCreationFailure::~LcRscParserCreationFailure() = default;

LcRscInvalidXmlDoc::LcRscInvalidXmlDoc(int code, unsigned line, unsigned column, std::string const& text)
    : QvLcMgmtExceptionBase("fl:i18n:LcRscInvalidXmlDoc", composeXmlError(code, line, column).c_str())
    , code_(code)
    , line_(line)
    , column_(column)
    , text_(text)
{ }

LcRscInvalidXmlDoc::~LcRscInvalidXmlDoc() = default;

LcRscInavlidPathName::LcRscInavlidPathName(std::string const& path)
    : QvLcMgmtExceptionBase("fl:i18n:LcRscInavlidPathName", ("Invalid path name " + path + ".").c_str())
    , path_(path)
{ }

LcRscInavlidPathName::~LcRscInavlidPathName() = default;

EventHandler::~EventHandler() = default;

ParserCtx::ParserCtx(std::string const& encoding)
    : parser_(XML_ParserCreate(encoding.c_str()))
{ }

ParserCtx::~ParserCtx()
{
    if (parser_)
        XML_ParserFree(parser_);
}

void parseXmlDocument(EventHandler& handler, fl::filesystem::native_path const& file)
{
    std::string const& name = file.get_path_name();
    fl::filesystem::basic_ifstream<char> in(file);
    if (!in.is_open())
        throw boost::enable_current_exception(LcRscOpenFileFailure(escapePath(name)));

    ParserCtx ctx(handler.getEncoding());
    XML_Parser parser = ctx.get_parser();
    if (!parser)
        throw boost::enable_current_exception(LcRscParserCreationFailure());

    ParseState state {&handler, parser, 0, nullptr};
    XML_SetUserData(parser, &state);
    XML_SetXmlDeclHandler(parser, onXmlDecl);
    XML_SetElementHandler(parser, onStart, onEnd);
    XML_SetCharacterDataHandler(parser, onText);

    // The database is streamed in small pieces and never held whole. Each piece is read straight
    // into Expat's own buffer, which saves copying it there from one of ours.
    int const pieceSize = 1024;
    for (;;) {
        char* buffer = static_cast<char*>(XML_GetBuffer(parser, pieceSize));
        if (!buffer)
            throwParseError(parser);
        in.read(buffer, pieceSize);
        if (in.bad())
            throw boost::enable_current_exception(LcRscFileReadFailure(escapePath(name)));
        // failbit without eofbit cannot follow a read that was not bad; it ends the loop all the
        // same, so that a stream in an odd state can never spin here.
        bool const last = in.eof() || in.fail();
        XML_Status const status
            = XML_ParseBuffer(parser, static_cast<int>(in.gcount()), last ? XML_TRUE : XML_FALSE);
        // A handler's own exception wins over the "aborted" that stopping the parser leaves.
        if (state.error)
            std::rethrow_exception(state.error);
        if (status == XML_STATUS_ERROR)
            throwParseError(parser);
        if (last)
            break;
    }
}

void parseLcData(LcData& data, fl::filesystem::native_path const& file)
{
    LcdbEventHandler handler(data);
    parseXmlDocument(handler, file);
}

} // namespace i18n
} // namespace fl
