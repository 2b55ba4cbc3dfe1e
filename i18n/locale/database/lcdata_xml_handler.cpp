// The nesting check and the handler that turns lcdata.xml into LcData records.
#include <qvi18n/i18n/locale/database/lcdata_xml.hpp>
#include <qvi18n/i18n/locale/database/lcdata_xml_parser.hpp>
#include <qvi18n/i18n/locale/ascii_text.hpp>

#include <boost/make_shared.hpp>

#include <cstring>

namespace fl {
namespace i18n {

namespace {

int const kRefuse = -2;

// Element ids of the database; the handler dispatches on them.
enum ElementId {
    kLcdata = 1,
    kLocale = 2,
    kAlias = 3,
    kL10n = 4,
    kCodeset = 5,
    kEncoding = 6,
    kEncodingAlias = 7
};

// The first non-empty value of attribute `name`; an empty value counts as missing.
char const* attributeValue(char const** attributes, char const* name)
{
    if (!attributes)
        return nullptr;
    for (char const** a = attributes; a[0]; a += 2) {
        if (a[1] && a[1][0] != '\0' && std::strcmp(a[0], name) == 0)
            return a[1];
    }
    return nullptr;
}

// Several attributes in one pass over the array, each taking its first non-empty value; those
// that are missing or empty leave their string empty.
template <std::size_t N>
void readAttributes(char const** attributes, char const* const (&names)[N], std::string* const (&into)[N])
{
    bool seen[N] = {};
    for (std::size_t i = 0; i < N; ++i)
        into[i]->clear();
    if (!attributes)
        return;
    for (char const** a = attributes; a[0]; a += 2) {
        if (!a[1] || a[1][0] == '\0')
            continue;
        for (std::size_t i = 0; i < N; ++i) {
            if (!seen[i] && std::strcmp(a[0], names[i]) == 0) {
                into[i]->assign(a[1]);
                seen[i] = true;
                break;
            }
        }
    }
}

} // namespace

void EventValidator::setEventDesc(std::string const& element, int id, std::string const& parent)
{
    if (events_.count(element) != 0)
        return;
    auto desc = boost::make_shared<EventDesc>();
    desc->id = id;
    desc->parent = parent;
    events_.emplace(element, desc);
}

int EventValidator::checkStartEvent(std::string const& element)
{
    return checkStart(element);
}

int EventValidator::checkStartEvent(char const* element)
{
    return checkStart(element);
}

int EventValidator::checkEndEvent(std::string const& element)
{
    return checkEnd(element);
}

int EventValidator::checkEndEvent(char const* element)
{
    return checkEnd(element);
}

int EventValidator::checkStart(std::string_view element)
{
    EventTable::value_type const* row = recentRows_[0];
    if (!row || row->first != element) {
        row = recentRows_[1];
        if (!row || row->first != element) {
            EventTable::const_iterator found = events_.find(element);
            if (found == events_.end())
                return kRefuse;
            row = &*found;
        }
        recentRows_[1] = recentRows_[0];
        recentRows_[0] = row;
    }
    EventDesc const& desc = *row->second;
    if (stack_.empty()) {
        stack_.push_back(row);
        return desc.id;
    }
    // An element directly inside one of its own name is taken but not stacked.
    if (stack_.back() == row)
        return desc.id;
    if (desc.parent == stack_.back()->first) {
        stack_.push_back(row);
        return desc.id;
    }
    return kRefuse;
}

int EventValidator::checkEnd(std::string_view element)
{
    if (stack_.empty() || stack_.back()->first != element)
        return kRefuse;
    stack_.pop_back();
    return 0;
}

LcdbEventHandler::LcdbEventHandler(LcData& data)
    : data_(data)
    , encoding_("UTF-8")
{
    setEventDesc();
}

LcdbEventHandler::~LcdbEventHandler() = default;

void LcdbEventHandler::setEventDesc()
{
    validator_.setEventDesc("lcdata", kLcdata, "");
    validator_.setEventDesc("locale", kLocale, "lcdata");
    validator_.setEventDesc("alias", kAlias, "locale");
    validator_.setEventDesc("l10n", kL10n, "locale");
    validator_.setEventDesc("codeset", kCodeset, "lcdata");
    validator_.setEventDesc("encoding", kEncoding, "codeset");
    validator_.setEventDesc("encoding_alias", kEncodingAlias, "encoding");
}

int LcdbEventHandler::checkXMLDoc(char const* /*version*/, char const* encoding, int /*standalone*/) const
{
    return detail::ascii_fold(encoding_) == detail::ascii_fold(encoding ? encoding : "") ? 0 : kRefuse;
}

int LcdbEventHandler::startEntry(char const* name, char const** attributes)
{
    switch (validator_.checkStartEvent(name)) {
    case kLcdata:
    case kCodeset:
        return 0;
    case kLocale:
        return eventFuncLocale(attributes);
    case kAlias:
        return eventFuncAlias(attributes);
    case kL10n:
        return eventFuncL10n(attributes);
    case kEncoding:
        return eventFuncEncoding(attributes);
    case kEncodingAlias:
        return eventFuncEncodingAlias(attributes);
    default:
        return kRefuse;
    }
}

int LcdbEventHandler::entryData(char const* /*text*/, int /*length*/)
{
    return 0;
}

int LcdbEventHandler::endEntry(char const* name)
{
    return validator_.checkEndEvent(name) < 0 ? kRefuse : 0;
}

std::string LcdbEventHandler::getEncoding() const
{
    return encoding_;
}

void LcdbEventHandler::clearDefualtLcCtx()
{
    currentLocale_.reset();
    localeName_.clear();
    localeEncoding_.clear();
    localeXpgName_.clear();
    localeReserved_.clear();
}

int LcdbEventHandler::eventFuncLocale(char const** attributes)
{
    clearDefualtLcCtx();
    static char const* const names[] = {"name", "encoding", "xpg_name"};
    std::string* const into[] = {&localeName_, &localeEncoding_, &localeXpgName_};
    readAttributes(attributes, names, into);
    if (localeName_.empty())
        return kRefuse;
    currentLocale_ = data_.addLcName(localeName_, localeEncoding_, localeXpgName_);
    return 0;
}

// An alias or l10n flag opened as the document's root has no locale to belong to; it is
// passed over rather than attached to nothing.
int LcdbEventHandler::eventFuncAlias(char const** attributes)
{
    char const* alias = attributeValue(attributes, "name");
    if (!alias)
        return kRefuse;
    if (currentLocale_) {
        attribute_.assign(alias);
        data_.addAliasLcName(currentLocale_, attribute_);
    }
    return 0;
}

int LcdbEventHandler::eventFuncL10n(char const** attributes)
{
    char const* disable = attributeValue(attributes, "disable");
    if (!disable)
        return kRefuse;
    if (currentLocale_) {
        attribute_.assign(disable);
        data_.addL10nFlag(currentLocale_, attribute_);
    }
    return 0;
}

int LcdbEventHandler::eventFuncEncoding(char const** attributes)
{
    static char const* const names[] = {"name", "jvm_encoding"};
    std::string* const into[] = {&currentEncoding_, &jvmEncoding_};
    readAttributes(attributes, names, into);
    if (currentEncoding_.empty())
        return kRefuse;
    data_.addEncodingName(currentEncoding_, jvmEncoding_);
    return 0;
}

int LcdbEventHandler::eventFuncEncodingAlias(char const** attributes)
{
    char const* alias = attributeValue(attributes, "name");
    if (currentEncoding_.empty() || !alias)
        return kRefuse;
    attribute_.assign(alias);
    data_.addEncodingAlias(attribute_, currentEncoding_);
    return 0;
}

} // namespace i18n
} // namespace fl
