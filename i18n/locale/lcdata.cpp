#include <qvi18n/i18n/locale/lcdata.hpp>

#include <qvi18n/i18n/locale/ascii_text.hpp>

#include <boost/make_shared.hpp>

namespace fl {
namespace i18n {

namespace {

// The tables start small and grow as the database is read.
constexpr std::size_t initialBuckets = 16;

template <typename Table> void prepare(Table& table)
{
    table.max_load_factor(1.0f);
    table.rehash(initialBuckets);
}

} // namespace

LcData::LcData()
    : platformTag_("I")
{
    prepare(localeTable_);
    prepare(encodingTable_);
    prepare(encodingAliasTable_);
}

LcData::~LcData() = default;

std::string const& LcData::foldForFilling(std::string const& text)
{
    keyBuffer_.resize(text.size());
    char const* from = text.data();
    char* to = &keyBuffer_[0];
    for (std::size_t i = 0, n = text.size(); i < n; ++i) {
        unsigned char c = static_cast<unsigned char>(from[i]);
        // Branch-free: "A".."Z" gain 0x20, every other byte stays.
        to[i] = static_cast<char>(c + (static_cast<unsigned>(c - 'A') < 26u ? 0x20 : 0));
    }
    return keyBuffer_;
}

LcData::DefaultLcCtxPtr LcData::addLcName(
    std::string const& name, std::string const& encoding, std::string const& xpg_name)
{
    // One look-up: the slot is taken first and filled only if it is new.
    std::pair<LocaleTable::iterator, bool> slot = localeTable_.try_emplace(foldForFilling(name));
    if (!slot.second) {
        return slot.first->second;
    }
    try {
        DefaultLcCtxPtr ctx = boost::make_shared<DefaultLcCtx>();
        ctx->name = name;
        ctx->encoding = encoding;
        ctx->xpg_name = xpg_name;
        ctx->l10n = true;
        slot.first->second = ctx;
        return ctx;
    } catch (...) {
        // Readers expect every entry to hold a record.
        localeTable_.erase(slot.first);
        throw;
    }
}

void LcData::addAliasLcName(DefaultLcCtxPtr ctx, std::string const& alias)
{
    localeTable_.try_emplace(foldForFilling(alias), std::move(ctx));
}

void LcData::addL10nFlag(DefaultLcCtxPtr ctx, std::string const& disable)
{
    if (ctx) {
        ctx->l10n = disable.find(platformTag_) == std::string::npos;
    }
}

void LcData::addEncodingName(std::string const& name, std::string const& jvm_encoding)
{
    std::string const& key = foldForFilling(name);
    if (!encodingTable_.try_emplace(key, jvm_encoding).second) {
        return;
    }
    encodingAliasTable_.try_emplace(key, name);
}

void LcData::addEncodingAlias(std::string const& alias, std::string const& encoding)
{
    encodingAliasTable_.try_emplace(foldForFilling(alias), encoding);
}

void LcData::clear()
{
    localeTable_.clear();
    encodingTable_.clear();
    encodingAliasTable_.clear();
}

LcData::DefaultLcCtxPtr LcData::getLcCtx(std::string const& name) const
{
    LocaleTable::const_iterator found = localeTable_.find(detail::ascii_fold(name));
    return found == localeTable_.end() ? DefaultLcCtxPtr() : found->second;
}

// The record outlives the reference: records are only dropped by clear(), during start-up.
std::string const& LcData::getLcName(std::string const& name) const
{
    LocaleTable::const_iterator found = localeTable_.find(detail::ascii_fold(name));
    return found == localeTable_.end() ? emptyName_ : found->second->name;
}

std::string const& LcData::getDefaultEncoding(std::string const& name) const
{
    LocaleTable::const_iterator found = localeTable_.find(detail::ascii_fold(name));
    return found == localeTable_.end() ? emptyName_ : found->second->encoding;
}

std::string const& LcData::getXpgLcName(std::string const& name) const
{
    LocaleTable::const_iterator found = localeTable_.find(detail::ascii_fold(name));
    return found == localeTable_.end() ? emptyName_ : found->second->xpg_name;
}

bool LcData::getL10nFlag(std::string const& name) const
{
    LocaleTable::const_iterator found = localeTable_.find(detail::ascii_fold(name));
    return found == localeTable_.end() ? true : found->second->l10n;
}

bool LcData::checkEncoding(std::string const& name) const
{
    return encodingAliasTable_.find(detail::ascii_fold(name)) != encodingAliasTable_.end();
}

std::string const& LcData::getEncodingFromAlias(std::string const& name) const
{
    NameTable::const_iterator found = encodingAliasTable_.find(detail::ascii_fold(name));
    if (found == encodingAliasTable_.end() || found->second.empty()) {
        return name;
    }
    return found->second;
}

std::string LcData::getQvStandardEncodingName(std::string const& name) const
{
    NameTable::const_iterator found = encodingAliasTable_.find(detail::ascii_fold(name));
    return found == encodingAliasTable_.end() ? std::string() : found->second;
}

std::string const& LcData::getJvmEncoding(std::string const& name) const
{
    std::string key = detail::ascii_fold(name);
    NameTable::const_iterator found = encodingTable_.find(key);
    if (found == encodingTable_.end()) {
        NameTable::const_iterator alias = encodingAliasTable_.find(key);
        if (alias == encodingAliasTable_.end()) {
            return name;
        }
        // Looked up as the database spelled it, without folding: a canonical name with capitals does
        // not lead an alias to its JVM name. Existing databases depend on this.
        found = encodingTable_.find(alias->second);
        if (found == encodingTable_.end()) {
            return name;
        }
    }
    return found->second.empty() ? name : found->second;
}

std::string LcData::get_c_locale()
{
    return "C";
}

std::string LcData::get_posix_locale_short()
{
    return "en_US_POSIX";
}

std::string LcData::get_posix_locale()
{
    return "en_US_POSIX.US-ASCII";
}

std::string LcData::get_default_locale_short()
{
    return "en_US";
}

std::string LcData::get_default_language()
{
    return "en";
}

std::string LcData::get_default_territory()
{
    return "US";
}

std::string LcData::get_default_codeset()
{
    return "US-ASCII";
}

std::string LcData::get_lcdata_file_name()
{
    return "lcdata.xml";
}

namespace {

bool is_builtin_locale_name(std::string const& name)
{
    if (name == "C" || name == "c") {
        return true;
    }
    if (name == "en_US_POSIX" || name == "en_US_POSIX.US-ASCII") {
        return true;
    }
    return detail::ascii_fold(name) == "posix";
}

} // namespace

void LcData::breakLcName(typeLcElement& element, std::string const& name)
{
    if (name.empty()) {
        return;
    }
    if (is_builtin_locale_name(name)) {
        element.shortName = get_posix_locale_short();
        element.language = get_default_language();
        element.territory = get_default_territory();
        element.encoding = get_default_codeset();
        return;
    }

    std::string rest(name);
    // The modifier may itself hold "." and "_", hence the first "@"; the others are taken from the right.
    std::string::size_type at = rest.find('@');
    if (at != std::string::npos) {
        element.modifier = rest.substr(at + 1);
        rest.erase(at);
    }
    std::string::size_type dot = rest.rfind('.');
    if (dot != std::string::npos) {
        element.encoding = rest.substr(dot + 1);
        rest.erase(dot);
    }
    element.shortName = rest;
    std::string::size_type underscore = rest.rfind('_');
    if (underscore != std::string::npos) {
        element.territory = rest.substr(underscore + 1);
        rest.erase(underscore);
    }
    element.language = rest;
}

std::string LcData::buildLcName(std::string const& language, std::string const& territory,
    std::string const& encoding, std::string const& modifier)
{
    if (language.empty()) {
        return std::string();
    }
    std::string name(language);
    if (!territory.empty()) {
        name += '_';
        name += territory;
    }
    if (!encoding.empty()) {
        name += '.';
        name += encoding;
    }
    if (!modifier.empty()) {
        name += '@';
        name += modifier;
    }
    return name;
}

} // namespace i18n
} // namespace fl
