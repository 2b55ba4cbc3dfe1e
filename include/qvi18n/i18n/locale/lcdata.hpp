#ifndef QVI18N_I18N_LOCALE_LCDATA_HPP
#define QVI18N_I18N_LOCALE_LCDATA_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>

#include <string>
#include <vector>

namespace fl {
namespace i18n {

class QvLocale;

/// The in-memory locale database: locale names with their aliases, default encodings, XPG names and
/// localisation flags, and the known encodings with their aliases and JVM names.
///
/// All keys are folded to ASCII lower case (bytes from 0x80 are left alone), so look-ups ignore ASCII
/// case and do not depend on the process locale. The first definition of a key always wins. Nothing here
/// throws on bad input: a miss is an ordinary result.
///
/// The process's one instance is filled at start-up, then only read; it has no lock of its own.
class QVI18N_API LcData {
public:
    /// One record per locale, shared by the locale's name and all its aliases.
    struct DefaultLcCtx {
        std::string name; ///< as the database spelled it
        std::string encoding; ///< default encoding; may be empty
        std::string xpg_name; ///< name for LC_* and setlocale; may be empty
        bool l10n = true; ///< whether localised resources may be used
    };

    /// The pieces of one locale name, as breakLcName leaves them.
    struct typeLcElement {
        std::string shortName;
        std::string language;
        std::string territory;
        std::string encoding;
        std::string modifier;
    };

    typedef boost::shared_ptr<DefaultLcCtx> DefaultLcCtxPtr;

    LcData();
    ~LcData();
    LcData(LcData const&) = delete;
    LcData& operator=(LcData const&) = delete;

    // Filling, used by the database reader.

    /// Adds a locale, or returns the record already held under the folded name (as name or alias).
    DefaultLcCtxPtr addLcName(
        std::string const& name, std::string const& encoding, std::string const& xpg_name);
    /// Adds `alias` for `ctx`, unless the folded alias is already a name or alias.
    void addAliasLcName(DefaultLcCtxPtr ctx, std::string const& alias);
    /// Localisation stays on unless `disable` contains this platform's tag ("I", case-sensitive).
    void addL10nFlag(DefaultLcCtxPtr ctx, std::string const& disable);
    /// Adds an encoding (and makes it an alias of itself); the first definition wins.
    void addEncodingName(std::string const& name, std::string const& jvm_encoding);
    /// Adds `alias` for the canonical `encoding`, unless the folded alias is already known.
    void addEncodingAlias(std::string const& alias, std::string const& encoding);
    /// Empties all tables; the platform tag stays.
    void clear();

    // Reading.

    DefaultLcCtxPtr getLcCtx(std::string const& name) const;
    std::string const& getLcName(std::string const& name) const;
    std::string const& getDefaultEncoding(std::string const& name) const;
    std::string const& getXpgLcName(std::string const& name) const;
    bool getL10nFlag(std::string const& name) const;
    bool checkEncoding(std::string const& name) const;
    /// The canonical name, or `name` itself (the very reference passed in) on a miss.
    std::string const& getEncodingFromAlias(std::string const& name) const;
    /// The canonical name, or an empty string on a miss.
    std::string getQvStandardEncodingName(std::string const& name) const;
    /// The JVM encoding name, or `name` itself. For an alias, the canonical name is looked up in the
    /// encoding table as spelled, unfolded: only lower-case canonical names reach their JVM name that way.
    std::string const& getJvmEncoding(std::string const& name) const;

    std::string const& getPlatformTag() const { return platformTag_; }

    // The built-in locale's constants.
    static std::string get_c_locale();
    static std::string get_posix_locale_short();
    static std::string get_posix_locale();
    static std::string get_default_locale_short();
    static std::string get_default_language();
    static std::string get_default_territory();
    static std::string get_default_codeset();
    static std::string get_lcdata_file_name();

    /// Splits `name` (language_territory.encoding@modifier) into `element`. Pieces the name lacks are left
    /// as they were; "C", "POSIX" and "en_US_POSIX[.US-ASCII]" give the built-in locale.
    static void breakLcName(typeLcElement& element, std::string const& name);
    /// language[_territory][.encoding][@modifier], or empty if `language` is empty.
    static std::string buildLcName(std::string const& language, std::string const& territory,
        std::string const& encoding, std::string const& modifier);

private:
    typedef boost::unordered_map<std::string, DefaultLcCtxPtr> LocaleTable;
    typedef boost::unordered_map<std::string, std::string> NameTable;

    // Folds `text` into keyBuffer_ and returns it; for the filling side only, which runs on one thread.
    std::string const& foldForFilling(std::string const& text);

    std::string platformTag_;
    LocaleTable localeTable_;
    NameTable encodingTable_;
    NameTable encodingAliasTable_;
    std::string emptyName_;
    // Reused while filling, so that a key is folded without an allocation of its own.
    std::string keyBuffer_;
};

/// Appends `name`, then `name` up to its last "_" (if any), then `default_name` unless it equals the
/// entry appended last. `list` is not cleared.
QVI18N_API void make_locale_fallback_list(
    std::vector<std::string>& list, std::string const& name, std::string const& default_name);
QVI18N_API void make_locale_fallback_list(
    std::vector<ustring>& list, ustring const& name, ustring const& default_name);
/// The same on the locale's messages name.
QVI18N_API void make_locale_fallback_list(
    std::vector<std::string>& list, QvLocale const& locale, std::string const& default_name);
QVI18N_API void make_locale_fallback_list(
    std::vector<ustring>& list, QvLocale const& locale, ustring const& default_name);

/// The messages name of `locale`, its language, then "en" (the classic locale's language).
QVI18N_API std::vector<ustring> get_fallback_locales(QvLocale const& locale);
/// The same with an empty name as the last resort.
QVI18N_API std::vector<ustring> get_fallback_locales_with_empty_default(QvLocale const& locale);

} // namespace i18n
} // namespace fl

#endif
