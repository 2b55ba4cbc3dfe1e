#include <qvi18n/i18n/locale/startup/failure_text.hpp>

#include <qvi18n/filesystem/date_time.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/install_path.hpp>
#include <qvi18n/i18n/catalog/catalog_id.hpp>
#include <qvi18n/i18n/catalog/message_catalog.hpp>
#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>
#include <qvi18n/i18n/catalog/message_id.hpp>
#include <qvi18n/i18n/catalog/resource_finder.hpp>
#include <qvi18n/i18n/conversion/codecvt_fixed.hpp>
#include <qvi18n/i18n/conversion/converter.hpp>
#include <qvi18n/i18n/ctype/ctype_exceptions.hpp>
#include <qvi18n/i18n/ctype/pattern_match.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/startup/time_zone.hpp>
#include <qvi18n/resource_core/resource_core.hpp>

#include <boost/numeric/conversion/cast.hpp>

#include <string>

namespace fl {
namespace i18n {

namespace {

using resource_core::HoleValues;

// The catalogs of the texts. Built from parts: a literal identifier in the sources names a message.
const std::string i18n_catalog = "fl:i18n";
const std::string filesystem_catalog = "fl:filesystem";
const std::string catalog_catalog = i18n_catalog + ":catalog";
const std::string time_zone_catalog = i18n_catalog + ":time_zone";

struct failure_message {
    std::string catalog;
    std::string key;
    HoleValues holes;
};

ustring from_utf8(const std::string& text)
{
    ustring out(text.size(), u'\0');
    out.resize(lcctype::conversion_from_utf8(&out[0], out.size(), text.data(), text.size()));
    return out;
}

// The text behind the last colon of an identifier.
std::string last_segment(const std::string& identifier)
{
    const std::string::size_type colon = identifier.rfind(':');
    return colon == std::string::npos ? identifier : identifier.substr(colon + 1);
}

// The text of `what` between `before` and `after` (to the end when `after` is empty).
std::string between(const std::string& what, const std::string& before, const std::string& after)
{
    if (what.compare(0, before.size(), before) != 0) {
        return std::string();
    }
    const std::string::size_type end = after.empty() ? what.size() : what.rfind(after);
    return end == std::string::npos || end < before.size() ? std::string() : what.substr(before.size(), end - before.size());
}

const char* const conversion_keys[] = {nullptr, "CvtInvalidArgument", "CvtInvalidEncodingName",
    "CvtCallBackSettingFailure", "CvtNonSupportedMode", "CvtInvalidCharacter", "CvtSizeTooLarge",
    "CvtConversionFailure"};

bool classify_catalog(const std::exception& e, failure_message& m)
{
    typedef MessageCatalog C;
    m.catalog = catalog_catalog;
    const std::string what = e.what();
    if (dynamic_cast<const C::MessageCatalogLoadFailed*>(&e)) {
        m.key = "MessageCatalogLoadFailed";
        m.holes.push_back(from_utf8(between(what, "Message Catalog ", " was not loaded from the file.")));
    } else if (dynamic_cast<const C::MessageNotFound*>(&e)) {
        m.key = "MessageNotFound";
        const std::string middle = " was not found in the catalog ";
        m.holes.push_back(from_utf8(what.substr(std::min(what.size(), what.rfind(middle) + middle.size()))));
        m.holes.push_back(from_utf8(between(what, "Message Key ", middle)));
    } else if (const auto* holes = dynamic_cast<const C::IncorrectHoleCount*>(&e)) {
        m.key = "IncorrectHoleCount";
        m.holes = {static_cast<long long>(holes->get_expected()), static_cast<long long>(holes->get_found())};
    } else if (dynamic_cast<const C::ResPathRemovalUnknownError*>(&e)) {
        m.key = "ResPathRemovalUnknownError";
        m.holes.push_back(from_utf8(between(what, "Unknown error while removal of path! Error : ", "")));
    } else if (dynamic_cast<const C::MessageCatalogIncorrectRoot*>(&e)) {
        m.key = "MessageCatalogIncorrectRoot";
    } else if (dynamic_cast<const C::MessageCatalogNotInitialized*>(&e)) {
        m.key = "MessageCatalogNotInitialized";
    } else if (dynamic_cast<const C::MessageFormatIncorrect*>(&e)) {
        m.key = "MessageFormatIncorrect";
    } else if (dynamic_cast<const C::InvalidPathSupplied*>(&e)) {
        m.key = "InvalidPathSupplied";
    } else if (dynamic_cast<const C::ResDirNotPresent*>(&e)) {
        m.key = "ResDirNotPresent";
    } else if (dynamic_cast<const C::ResourcePathNotFound*>(&e)) {
        m.key = "ResourcePathNotFound";
    } else if (dynamic_cast<const CatalogID::badCatalogIDException*>(&e)) {
        m.key = "BadCatalogID";
    } else if (dynamic_cast<const MessageID::badMessageIDException*>(&e)) {
        m.key = "BadMessageID";
    } else {
        return false;
    }
    return true;
}

bool classify_locale(const std::exception& e, failure_message& m)
{
    const auto* base = dynamic_cast<const QvLcMgmtExceptionBase*>(&e);
    if (!base) {
        return false;
    }
    m.catalog = i18n_catalog;
    m.key = last_segment(base->get_identifier());
    if (const auto* open = dynamic_cast<const LcRscOpenFileFailure*>(&e)) {
        m.holes.push_back(from_utf8(open->get_path()));
    } else if (const auto* read = dynamic_cast<const LcRscFileReadFailure*>(&e)) {
        m.holes.push_back(from_utf8(read->get_path()));
    } else if (const auto* path = dynamic_cast<const LcRscInavlidPathName*>(&e)) {
        m.holes.push_back(from_utf8(path->get_path()));
    } else if (const auto* xml = dynamic_cast<const LcRscInvalidXmlDoc*>(&e)) {
        m.holes = {static_cast<long long>(xml->get_code()), static_cast<long long>(xml->get_line()),
            static_cast<long long>(xml->get_column())};
    }
    return true;
}

// The catalog, key and holes of a failure the library raises; false for any other.
bool classify(const std::exception& e, failure_message& m)
{
    if (const auto* fs = dynamic_cast<const fl::filesystem::FsysExceptionBase*>(&e)) {
        m.catalog = filesystem_catalog;
        m.key = last_segment(fs->what());
        if (dynamic_cast<const fl::filesystem::SystemError*>(&e)) {
            m.holes = {fs->get_path(), static_cast<long long>(fs->get_error_number())};
        }
        return true;
    }
    if (const auto* cvt = dynamic_cast<const CvtExceptionBase*>(&e)) {
        const std::int32_t code = cvt->get_code();
        if (code < 1 || code > 7) {
            return false;
        }
        m.catalog = i18n_catalog;
        m.key = conversion_keys[code];
        if (const auto* encoding = dynamic_cast<const CvtInvalidEncodingName*>(&e)) {
            if (encoding->get_encoding_name().empty()) {
                m.key = "CvtUnknownEncoding";
            } else {
                m.holes.push_back(from_utf8(encoding->get_encoding_name()));
            }
        }
        return true;
    }
    if (dynamic_cast<const CtypeExceptionBase*>(&e)) {
        m.catalog = i18n_catalog;
        m.key = dynamic_cast<const CtypeInvalidArgument*>(&e) ? "CtypeInvalidArgument"
            : dynamic_cast<const CtypeInvalidCharacter*>(&e)  ? "CtypeInvalidCharacter"
            : dynamic_cast<const CtypeSizeTooLarge*>(&e)      ? "CtypeSizeTooLarge"
            : dynamic_cast<const CtypeTransformFailure*>(&e)  ? "CtypeTransformFailure"
                                                               : "CtypeStrCompFailure";
        return true;
    }
    if (const auto* regex = dynamic_cast<const RegexExceptionBase*>(&e)) {
        m.catalog = i18n_catalog;
        m.key = last_segment(regex->what());
        return true;
    }
    if (const auto* date = dynamic_cast<const date_time::date_time_exception_base*>(&e)) {
        const std::string& id = date->get_identifier();
        m.catalog = id.substr(0, id.rfind(':'));
        m.key = last_segment(id);
        return true;
    }
    if (const auto* zone = dynamic_cast<const time_zone::timezone_exception_base*>(&e)) {
        m.catalog = time_zone_catalog;
        m.key = last_segment(zone->get_identifier());
        return true;
    }
    if (dynamic_cast<const boost::numeric::bad_numeric_cast*>(&e)) {
        m.catalog = i18n_catalog;
        m.key = "NumericOverflow";
        return true;
    }
    return classify_catalog(e, m) || classify_locale(e, m);
}

// The text from the catalogs of the roots in force, else from those installed with the library;
// each search falls back by the locale as catalogs do.
bool look_up(const failure_message& m, const QvLocale& locale, ustring& text)
{
    const resource_core::BaseMsgID id(m.catalog, m.key, m.holes);
    try {
        text = MessageCatalog::get_message(id, locale);
        return true;
    } catch (...) {
    }
    try {
        const ustring install = fl::filesystem::get_install_path();
        if (install.empty()) {
            return false;
        }
        fl::filesystem::upath resources(install);
        resources /= u"resources";
        std::string found;
        const fl::filesystem::upath file = resource_finder::find_resource(std::vector<fl::filesystem::upath>(1, resources),
            MessageCatalogUtility::obtainXMLFilePathPattern(m.catalog), found, locale, true, ustring());
        if (file.empty() || found.empty()) {
            return false;
        }
        const MessageCatalogImpl catalog(m.catalog, file, found);
        text = catalog.get_message_for_key(id);
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace

ustring describe_failure(const std::exception& failure, const QvLocale& locale) noexcept
{
    try {
        failure_message m;
        ustring text;
        if (classify(failure, m) && look_up(m, locale, text)) {
            return text;
        }
        return from_utf8(failure.what());
    } catch (...) {
        return ustring();
    }
}

ustring describe_failure(const std::exception_ptr& failure, const QvLocale& locale) noexcept
{
    try {
        if (failure) {
            std::rethrow_exception(failure);
        }
    } catch (const std::exception& e) {
        return describe_failure(e, locale);
    } catch (...) {
    }
    try {
        ustring text;
        if (look_up(failure_message {i18n_catalog, "UnknownFailure", HoleValues()}, locale, text)) {
            return text;
        }
        return u"An unknown failure occurred.";
    } catch (...) {
        return ustring();
    }
}

} // namespace i18n
} // namespace fl
