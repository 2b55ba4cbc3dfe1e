#ifndef QVI18N_TOOLS_LCDATA_GEN_MODEL_HPP
#define QVI18N_TOOLS_LCDATA_GEN_MODEL_HPP

#include <set>
#include <string>
#include <vector>

namespace lcdata_gen {

struct LocaleRecord {
    std::string name;
    std::string encoding;
    std::string xpg_name;
    std::vector<std::string> aliases;
};

struct EncodingRecord {
    std::string name;
    std::string jvm_encoding;
    std::vector<std::string> aliases;
};

struct Database {
    std::vector<LocaleRecord> locales;
    std::vector<EncodingRecord> encodings;
};

// One line of the system's list of supported locales: "de_DE.UTF-8 UTF-8".
struct SupportedEntry {
    std::string name;
    std::string charset;
};

// The library folds keys with ASCII-only lower-casing; the generator has to agree with it to
// keep keys unique.
std::string foldKey(std::string const& text);

// A set of folded keys. insert() answers whether the key was new.
class KeySpace {
public:
    bool insert(std::string const& name) { return keys_.insert(foldKey(name)).second; }
    bool contains(std::string const& name) const { return keys_.count(foldKey(name)) != 0; }

private:
    std::set<std::string> keys_;
};

// The system's spelling of a charset inside a locale name: lower case, letters and digits
// only ("ISO-8859-1" -> "iso88591", "UTF-8" -> "utf8").
std::string normalizedCharset(std::string const& charset);

std::vector<SupportedEntry> readSupportedList(std::string const& path);
// `encodingKeys`: every encoding name and alias of the codeset. A spelling that names a charset
// outside it is left out, since no locale could be made of it.
std::vector<LocaleRecord> buildLocales(
    std::vector<SupportedEntry> const& entries, KeySpace const& encodingKeys);
std::vector<EncodingRecord> buildEncodings();
std::string jvmCharsetFor(std::string const& standardName);
void writeDatabase(std::ostream& out, Database const& db, std::string const& sourceNote);

} // namespace lcdata_gen

#endif
