#ifndef QVI18N_I18N_LOCALE_QVLOCALE_HPP
#define QVI18N_I18N_LOCALE_QVLOCALE_HPP

#include <qvi18n/config.hpp>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/variant.hpp>

#include <exception>
#include <string>

namespace fl {
namespace i18n {

/// Base of every locale-management failure. `what()` is the message; the identifier has the form
/// "fl:i18n:<Name>". Derived classes are thrown through boost::enable_current_exception.
class QVI18N_API QvLcMgmtExceptionBase : public std::exception {
public:
    QvLcMgmtExceptionBase(char const* identifier, char const* message);
    ~QvLcMgmtExceptionBase() override;

    char const* what() const noexcept override;
    std::string const& get_identifier() const noexcept { return identifier_; }
    std::string const& get_message() const noexcept { return message_; }

private:
    std::string identifier_;
    std::string message_;
};

/// "Invalid locale name.": empty or unknown name, or an encoding that is refused.
class QVI18N_API QvLcInvLcName : public QvLcMgmtExceptionBase {
public:
    QvLcInvLcName();
    ~QvLcInvLcName() override;
};

/// "Locale data not found.": an unknown category or option name.
class QVI18N_API QvLcDataNotFound : public QvLcMgmtExceptionBase {
public:
    QvLcDataNotFound();
    ~QvLcDataNotFound() override;
};

/// "Invalid argument.": getLcOptData given an unknown type.
class QVI18N_API QvLcInvLcArgument : public QvLcMgmtExceptionBase {
public:
    QvLcInvLcArgument();
    ~QvLcInvLcArgument() override;
};

/// The optional data a locale can answer through QvLocale::getLcOptData.
class QVI18N_API QvLcOptDataCtx {
public:
    enum LcOptDataType {
        LcJvmEncoding = 0,
        LcTermEncoding = 1,
        LcTermInputEncoding = 2,
        LcTermOutputEncoding = 3,
        LcPaperSize = 4,
        LcUnitType = 5
    };

    /// 1 for A4, 0 for anything else.
    typedef int PaperSizeType;
    /// 1 for metric, 0 for anything else.
    typedef long UnitType;

    virtual ~QvLcOptDataCtx();

    /// "jvmencoding", "termencoding", ... in any ASCII case; throws QvLcDataNotFound on a miss.
    static LcOptDataType getOptDataType(std::string const& name);
};

/// Result of getLcOptData: which() is 0 for the encoding types, 1 for the paper size, 2 for the unit type.
typedef boost::variant<std::string, QvLcOptDataCtx::PaperSizeType, QvLcOptDataCtx::UnitType> LcOptData;

class QvLocale;
typedef boost::shared_ptr<QvLocale const> QvLocalePtr;

/// An immutable locale: one name and modifier per category, one encoding, optional data.
/// Made only by createLocale (or by the library itself for classic(), system() and global()).
class QVI18N_API QvLocale : private boost::noncopyable {
public:
    enum LcCategory { LcCtype = 0, LcCollate = 1, LcTime = 2, LcNumeric = 3, LcMonetary = 4, LcMessages = 5 };
    typedef fl::i18n::LcOptData LcOptData;

    virtual ~QvLocale();

    /// Names and modifiers of all six categories and the encoding, byte-exact; the terminal encoding
    /// takes no part.
    virtual bool operator==(QvLocale const& other) const = 0;
    virtual bool operator!=(QvLocale const& other) const;

    virtual std::string shortName(LcCategory category) const = 0;
    virtual std::string language(LcCategory category) const = 0;
    virtual std::string territory(LcCategory category) const = 0;
    virtual std::string modifier(LcCategory category) const = 0;
    virtual std::string encoding() const = 0;
    virtual LcOptData getLcOptData(QvLcOptDataCtx::LcOptDataType type) const = 0;

    /// The built-in locale: "en_US_POSIX" ("en_US" for messages), encoding "US-ASCII".
    static QvLocale const& classic();
    /// The locale of the user's settings, as found at start-up (the built-in one before).
    static QvLocale const& system();
    /// The current global locale; a lock-free read, usable from the very first call.
    static QvLocale const& global();

    /// A locale by name ("de_DE", "de_DE.UTF-8@euro", "C", ...). Throws QvLcInvLcName.
    static boost::shared_ptr<QvLocale const> createLocale(std::string const& name);
    /// A copy of `source` (which takes `source`'s terminal encoding, or its encoding if none).
    static boost::shared_ptr<QvLocale const> createLocale(QvLocale const& source);
    /// A copy of `base` with `category` set by name; for LcCtype the name's encoding is required.
    static boost::shared_ptr<QvLocale const> createLocale(
        QvLocale const& base, std::string const& name, LcCategory category);
    /// A copy of `base` with `category` taken from `source` (and, for LcCtype, its encoding).
    static boost::shared_ptr<QvLocale const> createLocale(
        QvLocale const& base, QvLocale const& source, LcCategory category);

    /// "ctype", "collate", "time", "numeric", "monetary", "messages" in any ASCII case;
    /// throws QvLcDataNotFound on a miss.
    static LcCategory getLcCategory(std::string const& name);
    static std::string getLcCategoryName(LcCategory category);

protected:
    QvLocale();
};


} // namespace i18n
} // namespace fl

#endif
