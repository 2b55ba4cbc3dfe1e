#include <qvi18n/i18n/conversion/conversion_primitives.hpp>
#include <qvi18n/i18n/conversion/terminal_codecvt.hpp>
#include <qvi18n/i18n/locale/qvlocale.hpp>
#include <qvi18n/i18n/locale/qvlocale_ctx.hpp>
#include <qvi18n/i18n/locale/lcmgmt.hpp>

#include <boost/variant/get.hpp>

#include <unicode/ucnv.h>

namespace fl {
namespace i18n {

std::string get_standard_encoding_name(const std::string& name)
{
    const std::string known = lcmgmt::get_qv_standard_encoding_name_from_alias(name);
    if (!known.empty())
        return known;
    // A name the database lacks: ICU's standard name for it, if ICU can open it at all.
    std::string standard;
    UErrorCode status = U_ZERO_ERROR;
    const lcctype::unique_converter converter(ucnv_open(name.c_str(), &status));
    if (status <= U_ZERO_ERROR && converter) {
        UErrorCode name_status = U_ZERO_ERROR;
        const char* const icu_name = ucnv_getName(converter.get(), &name_status);
        standard = lcctype::get_standard_encoding_name_from_converter_name(
            icu_name && name_status <= U_ZERO_ERROR ? std::string(icu_name) : std::string());
    }
    // The database still has the last word on the spelling.
    return lcmgmt::get_encoding_name_from_alias(standard);
}

namespace {

std::string terminal_encoding(QvLcOptDataCtx::LcOptDataType type)
{
    return boost::get<std::string>(QvLocale::global().getLcOptData(type));
}

// The converter is allocated before the name is read, as its construction needs the name.
template <typename Converter>
std::unique_ptr<Converter> create_terminal_converter(QvLcOptDataCtx::LcOptDataType type)
{
    return std::unique_ptr<Converter>(new Converter(terminal_encoding(type), true));
}

} // namespace

std::unique_ptr<codecvt_string_to_ustring> create_codecvt_terminal_to_ustring()
{
    return create_terminal_converter<codecvt_string_to_ustring>(QvLcOptDataCtx::LcTermEncoding);
}

std::unique_ptr<codecvt_ustring_to_string> create_codecvt_ustring_to_terminal()
{
    return create_terminal_converter<codecvt_ustring_to_string>(QvLcOptDataCtx::LcTermEncoding);
}

std::unique_ptr<codecvt_string_to_ustring> create_codecvt_terminal_input_to_ustring()
{
    return create_terminal_converter<codecvt_string_to_ustring>(QvLcOptDataCtx::LcTermInputEncoding);
}

std::unique_ptr<codecvt_ustring_to_string> create_codecvt_ustring_to_terminal_output()
{
    return create_terminal_converter<codecvt_ustring_to_string>(QvLcOptDataCtx::LcTermOutputEncoding);
}

} // namespace i18n
} // namespace fl
