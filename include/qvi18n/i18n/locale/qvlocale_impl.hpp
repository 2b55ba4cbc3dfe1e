#ifndef QVI18N_I18N_LOCALE_QVLOCALE_IMPL_HPP
#define QVI18N_I18N_LOCALE_QVLOCALE_IMPL_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>

#include <string>

namespace fl {
namespace i18n {

class LcData;

/// The one implementation of QvLocale. Set up by its maker, then never changed once published.
class QVI18N_API QvLocaleImpl : public QvLocale {
public:
    /// All names and encodings empty, reading `data` (not owned).
    explicit QvLocaleImpl(LcData const& data);
    /// Looks `name` up in the context's database; throws QvLcInvLcName.
    explicit QvLocaleImpl(std::string const& name);
    /// Copies names, modifiers and encoding; the terminal encoding comes from
    /// source.getLcOptData(LcTermEncoding), so it falls back on the encoding.
    explicit QvLocaleImpl(QvLocale const& source);
    QvLocaleImpl(QvLocaleImpl const& source);
    QvLocaleImpl& operator=(QvLocaleImpl const&) = delete;
    ~QvLocaleImpl() override;

    bool operator==(QvLocale const& other) const override;
    std::string shortName(LcCategory category) const override;
    std::string language(LcCategory category) const override;
    std::string territory(LcCategory category) const override;
    std::string modifier(LcCategory category) const override;
    std::string encoding() const override;
    LcOptData getLcOptData(QvLcOptDataCtx::LcOptDataType type) const override;

    /// All six categories, in category order. A messages name of "en_US_POSIX" is stored as "en_US".
    void setLcName(std::string const& name, std::string const& modifier);
    void setLcName(std::string const& name, std::string const& modifier, LcCategory category);
    void setEncoding(std::string const& encoding);
    void setTerminalEncoding(std::string const& encoding);

    /// The stored terminal encoding, possibly empty (getLcOptData falls back on the encoding).
    std::string const& getTerminalEncoding() const { return termEncoding_; }
    LcData const& getLcData() const { return *lcData_; }

    /// 1 if the LcTime locale uses A4 paper (falling back on "en_US_POSIX"), else 0.
    QvLcOptDataCtx::PaperSizeType getPaperSizeType() const;
    /// 1 if the LcTime locale measures in metric units (falling back on "en_US_POSIX"), else 0.
    QvLcOptDataCtx::UnitType getUnitType() const;

private:
    struct CategoryName {
        std::string shortName;
        std::string modifier;
    };
    static constexpr int categoryCount = 6;

    void copyFrom(QvLocale const& source);

    LcData const* lcData_;
    CategoryName names_[categoryCount];
    std::string encoding_;
    std::string termEncoding_;
};

} // namespace i18n
} // namespace fl

#endif
