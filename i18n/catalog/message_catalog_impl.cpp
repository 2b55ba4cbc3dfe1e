#include <qvi18n/i18n/catalog/message_catalog_impl.hpp>

#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include "i18n/catalog/checked_length.hpp"

#include <boost/exception/exception.hpp>
#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <unicode/fieldpos.h>
#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/msgfmt.h>
#include <unicode/strenum.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string_view>

namespace fl {
namespace i18n {

namespace {

[[noreturn]] void throw_format_incorrect()
{
    throw boost::enable_current_exception(MessageCatalog::MessageFormatIncorrect());
}

struct to_formattable : boost::static_visitor<icu::Formattable> {
    icu::Formattable operator()(long long value) const
    {
        return icu::Formattable(static_cast<int64_t>(value));
    }
    icu::Formattable operator()(const std::string& value) const
    {
        // ICU's default codepage, not this library's converters.
        return icu::Formattable(
            icu::UnicodeString(value.c_str(), detail::checked_length(value.size())));
    }
    icu::Formattable operator()(const ustring& value) const
    {
        return icu::Formattable(icu::UnicodeString(value.data(), detail::checked_length(value.size())));
    }
};

// The number of distinct top-level arguments of the pattern: "{0} and {0}" has one.
unsigned long count_holes(icu::MessageFormat& format)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::StringEnumeration> names(format.getFormatNames(status));
    if (U_FAILURE(status) || !names) {
        throw_format_incorrect();
    }
    const int32_t count = names->count(status);
    if (U_FAILURE(status)) {
        throw_format_incorrect();
    }
    if (count == 0) {
        return 0;
    }
    std::vector<icu::UnicodeString> distinct;
    distinct.reserve(static_cast<std::size_t>(count));
    for (const icu::UnicodeString* name = names->snext(status); name && U_SUCCESS(status);
         name = names->snext(status)) {
        distinct.push_back(*name);
    }
    if (U_FAILURE(status)) {
        throw_format_incorrect();
    }
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    return distinct.size();
}

} // namespace

MessageCatalogImpl::MessageCatalogImpl(
    const std::string& catalog, const fl::filesystem::upath& path, const std::string& locale)
    : catalog_name(catalog)
    , file_path(path)
    , locale_name(locale)
{
    initializeXMLCatalog();
}

MessageCatalogImpl::~MessageCatalogImpl() = default;

void MessageCatalogImpl::initializeXMLCatalog()
{
    // The loader lives for the load only; it sizes the store from the file.
    bool loaded = false;
    try {
        loaded = XMLCatalogFileLoader().loadFile(file_path, store);
    } catch (const std::exception&) {
        loaded = false;
    }
    if (!loaded) {
        // A catalog is whole or absent: what was read before the failure goes with the object.
        throw boost::enable_current_exception(MessageCatalogLoadFailed(catalog_name));
    }
}

ustring MessageCatalogImpl::get_message_for_key(const std::string& key) const
{
    std::u16string_view text;
    if (!store.find(key, text)) {
        throw boost::enable_current_exception(MessageNotFound(catalog_name, key));
    }
    return ustring(text);
}

ustring MessageCatalogImpl::get_message_for_key(const resource_core::BaseMsgID& id) const
{
    if (id.catalog_name != catalog_name) {
        throw boost::enable_current_exception(MessageNotFound(catalog_name, id.key));
    }
    return GetFormattedMessageImpl(get_message_for_key(id.key), id.holes, false);
}

std::vector<std::string> MessageCatalogImpl::get_all_keys() const
{
    std::vector<std::string> keys;
    keys.reserve(store.size());
    for (std::size_t i = 0; i < store.size(); ++i) {
        keys.emplace_back(store.key_at(i));
    }
    return keys;
}

ustring MessageCatalogImpl::getFormattedMessage(const ustring& pattern, const hole_values& holes)
{
    return GetFormattedMessageImpl(pattern, holes, false);
}

ustring MessageCatalogImpl::GetFormattedMessageImpl(
    const ustring& pattern, const hole_values& holes, bool check_hole_count)
{
    const icu::UnicodeString source(pattern.data(), detail::checked_length(pattern.size()));

    // Catalog authors write a single apostrophe as plain text ("It's {0}").
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString quoted = icu::MessageFormat::autoQuoteApostrophe(source, status);
    if (U_FAILURE(status)) {
        throw_format_incorrect();
    }

    // Numbers and dates in holes format the same whatever the catalog's locale.
    const icu::Locale neutral("en", "US", "POSIX");
    icu::MessageFormat format(quoted, neutral, status);
    if (U_FAILURE(status)) {
        throw_format_incorrect();
    }

    if (check_hole_count) {
        const unsigned long found = count_holes(format);
        if (holes.size() != found) {
            throw boost::enable_current_exception(IncorrectHoleCount(holes.size(), found));
        }
    }

    std::vector<icu::Formattable> arguments;
    arguments.reserve(holes.size());
    for (const hole_value& hole : holes) {
        arguments.push_back(boost::apply_visitor(to_formattable(), hole));
    }

    icu::UnicodeString result;
    icu::FieldPosition position(0);
    format.format(arguments.empty() ? nullptr : arguments.data(), static_cast<int32_t>(arguments.size()),
        result, position, status);
    if (U_FAILURE(status)) {
        throw_format_incorrect();
    }
    return ustring(result.getBuffer(), static_cast<std::size_t>(result.length()));
}

} // namespace i18n
} // namespace fl
