// The locale half of the database: the system's list of supported locales, reduced to one
// record per language_TERRITORY[@modifier], with the spellings users and systems write as aliases.
#include "model.hpp"

#include <unicode/locid.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace lcdata_gen {

std::string foldKey(std::string const& text)
{
    std::string key(text);
    for (char& c : key) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return key;
}

std::string normalizedCharset(std::string const& charset)
{
    std::string out;
    for (char c : charset) {
        if (c >= 'A' && c <= 'Z')
            out += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            out += c;
    }
    return out;
}

std::vector<SupportedEntry> readSupportedList(std::string const& path)
{
    std::ifstream in(path);
    if (!in)
        throw std::runtime_error("cannot read the system's locale list " + path
            + " (on Debian it comes with the 'locales' package: apt-get install locales)");
    std::vector<SupportedEntry> entries;
    std::string line;
    unsigned lineNo = 0;
    while (std::getline(in, line)) {
        ++lineNo;
        std::istringstream fields(line);
        SupportedEntry e;
        if (!(fields >> e.name) || e.name[0] == '#')
            continue;
        if (!(fields >> e.charset))
            throw std::runtime_error(
                path + ":" + std::to_string(lineNo) + ": no charset after '" + e.name + "'");
        entries.push_back(e);
    }
    if (entries.empty())
        throw std::runtime_error("the system's locale list " + path + " names no locale");
    return entries;
}

namespace {

struct NameParts {
    std::string base; // language[_TERRITORY]
    std::string codeset;
    std::string modifier;
};

NameParts splitName(std::string const& name)
{
    NameParts p;
    std::string rest = name;
    auto at = rest.find('@');
    if (at != std::string::npos) {
        p.modifier = rest.substr(at + 1);
        rest.erase(at);
    }
    auto dot = rest.find('.');
    if (dot != std::string::npos) {
        p.codeset = rest.substr(dot + 1);
        rest.erase(dot);
    }
    p.base = rest;
    return p;
}

std::string compose(std::string const& base, std::string const& codeset, std::string const& modifier)
{
    std::string s = base;
    if (!codeset.empty())
        s += "." + codeset;
    if (!modifier.empty())
        s += "@" + modifier;
    return s;
}

std::string languageOf(std::string const& base)
{
    return base.substr(0, base.find('_'));
}

std::string territoryOf(std::string const& base)
{
    auto us = base.find('_');
    return us == std::string::npos ? std::string() : base.substr(us + 1);
}

struct Group {
    NameParts canonical; // codeset empty
    std::vector<SupportedEntry> variants;
};

class AliasList {
public:
    AliasList(KeySpace& keys, KeySpace const& encodingKeys, LocaleRecord& rec)
        : keys_(keys)
        , encodingKeys_(encodingKeys)
        , rec_(rec)
    { }
    void add(std::string const& alias)
    {
        std::string const charset = splitName(alias).codeset;
        if (!charset.empty() && !encodingKeys_.contains(charset))
            return;
        if (keys_.insert(alias))
            rec_.aliases.push_back(alias);
    }

private:
    KeySpace& keys_;
    KeySpace const& encodingKeys_;
    LocaleRecord& rec_;
};

// The locale a bare language code stands for: the territory of ICU's likely subtags when the
// system has that locale without a modifier, else the first such locale of the language.
std::string principalLocale(std::string const& language, std::vector<std::string> const& plainLocales)
{
    icu::Locale likely(language.c_str());
    UErrorCode status = U_ZERO_ERROR;
    likely.addLikelySubtags(status);
    if (U_SUCCESS(status) && likely.getCountry()[0] != '\0') {
        std::string wanted = language + "_" + likely.getCountry();
        for (auto const& name : plainLocales) {
            if (name == wanted)
                return name;
        }
    }
    return plainLocales.empty() ? std::string() : plainLocales.front();
}

} // namespace

std::vector<LocaleRecord> buildLocales(
    std::vector<SupportedEntry> const& entries, KeySpace const& encodingKeys)
{
    std::vector<Group> groups;
    std::map<std::string, std::size_t> groupIndex;
    std::vector<std::string> cAliases;
    for (auto const& e : entries) {
        NameParts p = splitName(e.name);
        if (p.base == "C" || p.base == "POSIX") {
            // The C locale in another charset is still the built-in locale.
            cAliases.push_back(e.name);
            continue;
        }
        NameParts key {p.base, std::string(), p.modifier};
        std::string canonical = compose(key.base, "", key.modifier);
        auto found = groupIndex.find(canonical);
        if (found == groupIndex.end()) {
            groupIndex.emplace(canonical, groups.size());
            groups.push_back(Group {key, {}});
            found = groupIndex.find(canonical);
        }
        groups[found->second].variants.push_back(e);
    }

    KeySpace keys;
    std::vector<LocaleRecord> out;

    LocaleRecord posix {"en_US_POSIX", "US-ASCII", "C", {}};
    keys.insert(posix.name);
    // The C locale in UTF-8 is a locale of its own on Linux (it classifies all of Unicode), and a
    // process started with it must keep UTF-8: it gets a record with that encoding and XPG name.
    LocaleRecord cUtf8 {"C.UTF-8", "UTF-8", "C.UTF-8", {}};
    keys.insert(cUtf8.name);
    {
        AliasList aliases(keys, encodingKeys, posix);
        AliasList utf8Aliases(keys, encodingKeys, cUtf8);
        for (char const* a : {"C.utf8", "POSIX.UTF-8", "POSIX.utf8"})
            utf8Aliases.add(a);
        for (char const* a : {"C", "POSIX", "en_US_POSIX.US-ASCII", "C.US-ASCII", "POSIX.US-ASCII"})
            aliases.add(a);
        for (auto const& a : cAliases) {
            NameParts p = splitName(a);
            AliasList& target = normalizedCharset(p.codeset) == "utf8" ? utf8Aliases : aliases;
            target.add(a);
            if (!p.codeset.empty())
                target.add(compose(p.base, normalizedCharset(p.codeset), p.modifier));
        }
    }
    out.push_back(posix);
    out.push_back(cUtf8);

    // The system's UTF-8 name of a locale without a modifier, for modifier locales that the system
    // only has in a legacy charset (de_DE@euro): the UTF-8 locale of the same place serves them.
    std::map<std::string, std::string> utf8NameOfBase;
    for (auto const& g : groups) {
        for (auto const& v : g.variants) {
            if (g.canonical.modifier.empty() && v.charset == "UTF-8")
                utf8NameOfBase.emplace(g.canonical.base, v.name);
        }
    }

    for (auto const& g : groups) {
        LocaleRecord rec;
        rec.name = compose(g.canonical.base, "", g.canonical.modifier);
        rec.encoding = "UTF-8";
        for (auto const& v : g.variants) {
            if (v.charset == "UTF-8") {
                rec.xpg_name = v.name;
                break;
            }
        }
        if (rec.xpg_name.empty()) {
            auto base = utf8NameOfBase.find(g.canonical.base);
            rec.xpg_name = base != utf8NameOfBase.end()
                ? base->second
                : compose(g.canonical.base, "UTF-8", g.canonical.modifier);
        }
        if (!keys.insert(rec.name))
            throw std::runtime_error("locale " + rec.name + " is listed twice");

        AliasList aliases(keys, encodingKeys, rec);
        aliases.add(rec.xpg_name);
        std::vector<std::string> charsets {"UTF-8"};
        for (auto const& v : g.variants) {
            aliases.add(v.name);
            charsets.push_back(v.charset);
        }
        for (auto const& cs : charsets) {
            aliases.add(compose(g.canonical.base, cs, g.canonical.modifier));
            aliases.add(compose(g.canonical.base, normalizedCharset(cs), g.canonical.modifier));
        }
        out.push_back(rec);
    }

    // Bare language codes, in the order the languages first appear.
    std::vector<std::string> languages;
    std::map<std::string, std::vector<std::string>> plainByLanguage;
    for (auto const& g : groups) {
        std::string lang = languageOf(g.canonical.base);
        auto& plain = plainByLanguage[lang];
        if (plain.empty() && std::find(languages.begin(), languages.end(), lang) == languages.end())
            languages.push_back(lang);
        if (g.canonical.modifier.empty() && !territoryOf(g.canonical.base).empty())
            plain.push_back(g.canonical.base);
    }
    for (auto const& lang : languages) {
        if (keys.contains(lang))
            continue;
        std::string target = principalLocale(lang, plainByLanguage[lang]);
        if (target.empty())
            continue;
        for (auto& rec : out) {
            if (rec.name == target) {
                AliasList(keys, encodingKeys, rec).add(lang);
                break;
            }
        }
    }
    return out;
}

} // namespace lcdata_gen
