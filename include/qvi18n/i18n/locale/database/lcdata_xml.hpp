#ifndef QVI18N_I18N_LOCALE_DATABASE_LCDATA_XML_HPP
#define QVI18N_I18N_LOCALE_DATABASE_LCDATA_XML_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/locale/lcdata.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <string>

namespace fl {
namespace i18n {

// Failures of the locale database reader. Paths in the texts are escaped: printable ASCII stays,
// every other byte is written as its value in upper-case hexadecimal.

/// "Failed to open file <path>."
class QVI18N_API LcRscOpenFileFailure : public QvLcMgmtExceptionBase {
public:
    explicit LcRscOpenFileFailure(std::string const& path);
    ~LcRscOpenFileFailure() override;
    std::string const& get_path() const noexcept { return path_; }

private:
    std::string path_;
};

/// "Failed to read file <path>."
class QVI18N_API LcRscFileReadFailure : public QvLcMgmtExceptionBase {
public:
    explicit LcRscFileReadFailure(std::string const& path);
    ~LcRscFileReadFailure() override;
    std::string const& get_path() const noexcept { return path_; }

private:
    std::string path_;
};

/// "Failed to create XML parser."
class QVI18N_API LcRscParserCreationFailure : public QvLcMgmtExceptionBase {
public:
    LcRscParserCreationFailure();
    ~LcRscParserCreationFailure() override;
};

/// "XML Parse error detected with <code> at column, <column>, on line, <line> in resource file."
/// `code` is Expat's error code; Expat's text is kept by get_text() but not put in the message.
class QVI18N_API LcRscInvalidXmlDoc : public QvLcMgmtExceptionBase {
public:
    LcRscInvalidXmlDoc(int code, unsigned line, unsigned column, std::string const& text);
    ~LcRscInvalidXmlDoc() override;
    int get_code() const noexcept { return code_; }
    unsigned get_line() const noexcept { return line_; }
    unsigned get_column() const noexcept { return column_; }
    std::string const& get_text() const noexcept { return text_; }

private:
    int code_;
    unsigned line_;
    unsigned column_;
    std::string text_;
};

/// "Invalid path name <path>.": no path to the database could be formed.
class QVI18N_API LcRscInavlidPathName : public QvLcMgmtExceptionBase {
public:
    explicit LcRscInavlidPathName(std::string const& path);
    ~LcRscInavlidPathName() override;
    std::string const& get_path() const noexcept { return path_; }

private:
    std::string path_;
};

/// Reads the locale database `file` into `data`; throws as parseXmlDocument.
QVI18N_API void parseLcData(LcData& data, fl::filesystem::native_path const& file);

} // namespace i18n
} // namespace fl

#endif
