#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include <boost/make_shared.hpp>

#include <cstring>

namespace fl {
namespace i18n {

namespace {

inline bool is_trimmed(char c)
{
    // Form feed stays: it isn't line-layout white space in a catalog.
    return c == ' ' || c == '\t' || c == '\v' || c == '\n' || c == '\r';
}

// Trims in place, so that the handler's buffers keep their capacity from entry to entry.
void trim(std::string& s)
{
    std::string::size_type end = s.size();
    while (end > 0 && is_trimmed(s[end - 1])) {
        --end;
    }
    std::string::size_type begin = 0;
    while (begin < end && is_trimmed(s[begin])) {
        ++begin;
    }
    s.erase(end);
    s.erase(0, begin);
}

// Most catalog text is ASCII, which widens unit by unit far faster than a general UTF-8 decoder.
// False, with `out` left empty, when the text holds any other byte (or is too long for ICU).
bool widen_ascii(const char* text, std::size_t length, icu::UnicodeString& out)
{
    if (length > 0x7fffffff) {
        return false;
    }
    const int32_t size = static_cast<int32_t>(length);
    char16_t* buffer = out.getBuffer(size);
    if (buffer == nullptr) {
        return false;
    }
    for (int32_t i = 0; i < size; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c >= 0x80) {
            out.releaseBuffer(0);
            return false;
        }
        buffer[i] = c;
    }
    out.releaseBuffer(size);
    return true;
}

} // namespace

MessageCatalogDataStore::~MessageCatalogDataStore() = default;

XMLCatalogDataStore::~XMLCatalogDataStore() = default;

void XMLCatalogDataStore::addEntry(const std::string& key, const std::string& value)
{
    // The text is taken as a C string: it ends at the first NUL.
    const char* text = value.c_str();
    const std::size_t length = std::strlen(text);
    icu::UnicodeString decoded;
    if (!widen_ascii(text, length, decoded)) {
        decoded = icu::UnicodeString::fromUTF8(icu::StringPiece(text, static_cast<int32_t>(length)));
    }
    // unescape() copies the whole text; most entries have no backslash and need no second pass.
    if (std::memchr(text, '\\', length) != nullptr) {
        decoded = decoded.unescape();
    }
    // try_emplace builds no node for a duplicate, and keeps the first text.
    entries.try_emplace(key, std::move(decoded));
}

MessageCatalogFileLoader::~MessageCatalogFileLoader() = default;

XMLCatalogFileLoader::~XMLCatalogFileLoader() = default;

bool XMLCatalogFileLoader::loadFile(const fl::filesystem::upath& path, MessageCatalogDataStore& store)
{
    boost::shared_ptr<ExpatEventHandler> handler
        = boost::make_shared<MessageCatalogExpatEventHandler>(&store);
    ExpatLoader loader(path, handler);
    return loader.load_file();
}

MessageCatalogExpatEventHandler::MessageCatalogExpatEventHandler(MessageCatalogDataStore* s)
    : ExpatEventHandler("UTF-8")
    , store(s)
    , state(expect_root)
{ }

MessageCatalogExpatEventHandler::~MessageCatalogExpatEventHandler() = default;

bool MessageCatalogExpatEventHandler::processCatTag(const char** attributes)
{
    if (state != expect_root) {
        state = in_category;
        return false;
    }
    state = in_category;
    // Version and locale are read and dropped. Any other word moves the walk on by one only, so
    // an unknown attribute's value is looked at as a name too.
    std::string version;
    std::string locale;
    for (const char** word = attributes; *word != nullptr;) {
        const bool is_version = std::strcmp(*word, getVersionAttribute()) == 0;
        if (is_version || std::strcmp(*word, getLocaleAttribute()) == 0) {
            if (word[1] == nullptr) {
                return false;
            }
            (is_version ? version : locale) = word[1];
            word += 2;
        } else {
            ++word;
        }
    }
    return true;
}

bool MessageCatalogExpatEventHandler::processMsgTag(const char** /*attributes*/)
{
    if (state != in_category) {
        return false;
    }
    state = in_message;
    return true;
}

bool MessageCatalogExpatEventHandler::processEntryTag(const char** attributes)
{
    const int previous = state;
    state = in_entry;
    if (previous != in_message && previous != in_entry) {
        return false;
    }
    for (const char** word = attributes; *word != nullptr; word += 2) {
        if (word[1] == nullptr) {
            return false;
        }
        if (std::strcmp(*word, getEntryKeyStr()) == 0) {
            current_key = word[1];
        }
    }
    return true;
}

void MessageCatalogExpatEventHandler::addEntry(const std::string& key, const std::string& value)
{
    store->addEntry(key, value);
}

bool MessageCatalogExpatEventHandler::doElementStart(const char* name, const char** attributes)
{
    if (std::strcmp(name, getCategoryTag()) == 0) {
        return processCatTag(attributes);
    }
    if (std::strcmp(name, getMessageTag()) == 0) {
        return processMsgTag(attributes);
    }
    if (std::strcmp(name, getEntryTag()) == 0) {
        return processEntryTag(attributes);
    }
    return false;
}

bool MessageCatalogExpatEventHandler::doElementData(const char* text, int length, bool first_in_line)
{
    // White space between entries, and text outside any entry, is dropped here.
    if (state != in_entry || current_key.empty()) {
        return true;
    }
    if (!first_in_line) {
        current_line.append(text, static_cast<std::string::size_type>(length));
        return true;
    }
    // A new line of the file begins: the one before it is complete.
    trim(current_line);
    current_value += ' ';
    current_value += current_line;
    current_line.assign(text, static_cast<std::string::size_type>(length));
    return true;
}

bool MessageCatalogExpatEventHandler::doElementEnd(const char* name)
{
    if (std::strcmp(name, getEntryTag()) != 0) {
        return true;
    }
    if (state != in_entry || current_key.empty()) {
        return false;
    }
    trim(current_line);
    current_value += ' ';
    current_value += current_line;
    trim(current_value);
    addEntry(current_key, current_value);
    current_key.clear();
    current_line.clear();
    current_value.clear();
    return true;
}

} // namespace i18n
} // namespace fl
