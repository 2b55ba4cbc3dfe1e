#ifndef QVI18N_I18N_LOCALE_DATABASE_LCDATA_XML_PARSER_HPP
#define QVI18N_I18N_LOCALE_DATABASE_LCDATA_XML_PARSER_HPP

// The event-driven reader under parseLcData: the handler interface, the Expat parser owner,
// the nesting check and the database handler.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// Expat's parser handle, without pulling <expat.h> into every includer.
struct XML_ParserStruct;

namespace fl {
namespace i18n {

/// The receiving side of parseXmlDocument. Every operation answers 0 to go on; anything else
/// stops the parse, which then fails with LcRscInvalidXmlDoc (Expat's "parsing aborted"). An
/// exception an operation throws also stops the parse and leaves parseXmlDocument unchanged.
class QVI18N_API EventHandler {
public:
    virtual ~EventHandler();
    /// The XML declaration, if the document has one; `encoding` is null when it names none.
    virtual int checkXMLDoc(char const* version, char const* encoding, int standalone) const = 0;
    /// `attributes`: name, value, name, value, ..., null.
    virtual int startEntry(char const* name, char const** attributes) = 0;
    /// Character data, not NUL-terminated.
    virtual int entryData(char const* text, int length) = 0;
    virtual int endEntry(char const* name) = 0;
    /// The encoding the parser is created for.
    virtual std::string getEncoding() const = 0;
};

/// Owns one Expat parser.
class QVI18N_API ParserCtx : private boost::noncopyable {
public:
    /// XML_ParserCreate(encoding); the handle is null if Expat could not make one.
    explicit ParserCtx(std::string const& encoding);
    ~ParserCtx();
    XML_ParserStruct* get_parser() const noexcept { return parser_; }

private:
    XML_ParserStruct* parser_;
};

/// Table-driven nesting check: each known element names the one parent it may appear in.
/// The first element opened may be any known element. An element opened directly inside one of
/// the same name is taken without being stacked, so its end tag closes the outer one.
/// Not copyable: it keeps pointers into its own table.
class QVI18N_API EventValidator {
public:
    EventValidator() = default;
    EventValidator(EventValidator const&) = delete;
    EventValidator& operator=(EventValidator const&) = delete;

    struct EventDesc {
        int id;
        std::string parent;
    };

    /// Enters a row; a row for an element already entered is kept as it was.
    void setEventDesc(std::string const& element, int id, std::string const& parent);
    /// The element's id, or -2 if it is unknown or misplaced.
    int checkStartEvent(std::string const& element);
    int checkStartEvent(char const* element);
    /// 0, or -2 if `element` is not the one open.
    int checkEndEvent(std::string const& element);
    int checkEndEvent(char const* element);

private:
    // Transparent, so that names from the parser are looked up without a string of their own.
    typedef std::map<std::string, boost::shared_ptr<EventDesc>, std::less<>> EventTable;

    int checkStart(std::string_view element);
    int checkEnd(std::string_view element);

    EventTable events_;
    // Rows of events_ (never erased, so their addresses hold); equal names are the same row.
    std::vector<EventTable::value_type const*> stack_;
    // The two rows found last, latest first: a document alternates between few elements (locale
    // and alias, encoding and encoding_alias), so most look-ups skip the table.
    EventTable::value_type const* recentRows_[2] = {nullptr, nullptr};
};

/// Turns the events of lcdata.xml into LcData calls. Records are added as their elements arrive,
/// so a failed parse leaves in `data` what came before the failure; LcData::clear() drops it.
class QVI18N_API LcdbEventHandler : public EventHandler {
public:
    explicit LcdbEventHandler(LcData& data);
    // Not copyable, as its validator is not.
    LcdbEventHandler(LcdbEventHandler const&) = delete;
    LcdbEventHandler& operator=(LcdbEventHandler const&) = delete;
    ~LcdbEventHandler() override;

    /// Accepts a declaration only if it names "UTF-8" (in any ASCII case).
    int checkXMLDoc(char const* version, char const* encoding, int standalone) const override;
    int startEntry(char const* name, char const** attributes) override;
    int entryData(char const* text, int length) override;
    int endEntry(char const* name) override;
    std::string getEncoding() const override;

    /// Forgets the open locale and its attributes.
    void clearDefualtLcCtx();

    // The element handlers; each returns -2 when its required attribute is missing or empty.
    int eventFuncLocale(char const** attributes);
    int eventFuncAlias(char const** attributes);
    int eventFuncL10n(char const** attributes);
    int eventFuncEncoding(char const** attributes);
    int eventFuncEncodingAlias(char const** attributes);

private:
    void setEventDesc();

    LcData& data_;
    std::string encoding_;
    EventValidator validator_;
    LcData::DefaultLcCtxPtr currentLocale_;
    std::string localeName_;
    std::string localeEncoding_;
    std::string localeXpgName_;
    std::string localeReserved_;
    std::string currentEncoding_;
    // Attribute values on their way to LcData; reused so that most elements allocate nothing here.
    std::string attribute_;
    std::string jvmEncoding_;
};

/// Streams `file` through Expat (1,024 bytes at a time) into `handler`. Throws
/// LcRscOpenFileFailure, LcRscFileReadFailure, LcRscParserCreationFailure or LcRscInvalidXmlDoc.
QVI18N_API void parseXmlDocument(EventHandler& handler, fl::filesystem::native_path const& file);

} // namespace i18n
} // namespace fl

#endif
