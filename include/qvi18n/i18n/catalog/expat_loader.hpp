#ifndef QVI18N_I18N_CATALOG_EXPAT_LOADER_HPP
#define QVI18N_I18N_CATALOG_EXPAT_LOADER_HPP

// A small event-driven frame around Expat. The file is fed to the parser one line at a time and
// the handler is told which run of text opens a line, so that handlers can rebuild multi-line
// text line by line.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>
#include <expat.h>

#include <exception>
#include <memory>
#include <string>

namespace fl {
namespace i18n {

class QVI18N_API ExpatEventHandler {
public:
    explicit ExpatEventHandler(const std::string& encoding);
    virtual ~ExpatEventHandler();

    // Each forwards to its do-operation while parsing is still fine and remembers the result;
    // once one has said stop, they all answer false without further work.
    bool elementStart(const char* name, const char** attributes);
    bool elementData(const char* text, int length, bool first_in_line);
    bool elementEnd(const char* name);

    bool parseOk() const { return parse_ok; }
    const std::string& getEncoding() const { return encoding; }

    // False stops the parse.
    virtual bool doElementStart(const char* name, const char** attributes) = 0;
    virtual bool doElementData(const char* text, int length, bool first_in_line) = 0;
    virtual bool doElementEnd(const char* name) = 0;

protected:
    bool parse_ok;
    std::string encoding;

    friend class ExpatLoader;
};

class QVI18N_API ExpatLoader : private boost::noncopyable {
public:
    // Owns one parser for the loader's life.
    class QVI18N_API XML_Parser_Guard : private boost::noncopyable {
    public:
        explicit XML_Parser_Guard(const char* encoding);
        ~XML_Parser_Guard();
        XML_Parser get() const { return parser; }

    private:
        XML_Parser parser;
    };

    // What Expat hands back to the callbacks.
    struct QVI18N_API XML_Parser_User_Data {
        XML_Parser_User_Data(XML_Parser p, const boost::shared_ptr<ExpatEventHandler>& h);

        XML_Parser parser;
        boost::shared_ptr<ExpatEventHandler> handler;
        bool new_line;
        // What a handler threw: it stopped the parser and leaves load_file once Expat returned.
        std::exception_ptr error;
    };

    ExpatLoader(const fl::filesystem::upath& file, boost::shared_ptr<ExpatEventHandler> handler);
    ~ExpatLoader();

    // Reads and parses the whole file; false when it can't be opened, isn't well formed or the
    // handler refused it. An exception from the handler stops the parse and leaves as it was thrown. A file cut off after a complete line is not noticed: what was read
    // stays and the result is true. Call once per loader.
    bool load_file();

    const fl::filesystem::upath& get_file_path() const { return file_path; }

private:
    fl::filesystem::upath file_path;
    XML_Parser_Guard parser;
    boost::shared_ptr<ExpatEventHandler> handler;
    std::unique_ptr<XML_Parser_User_Data> user_data;
};

} // namespace i18n
} // namespace fl

#endif
