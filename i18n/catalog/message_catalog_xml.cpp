#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include <qvi18n/filesystem/operations.hpp>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cstdint>
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

// Appends one space and then `line` without the white space at its ends, without changing `line`.
void append_trimmed_line(std::string& value, const std::string& line)
{
    const char* begin = line.data();
    const char* end = begin + line.size();
    while (end != begin && is_trimmed(end[-1])) {
        --end;
    }
    while (begin != end && is_trimmed(*begin)) {
        ++begin;
    }
    value += ' ';
    value.append(begin, static_cast<std::string::size_type>(end - begin));
}

// Most catalog text is ASCII, which widens unit by unit far faster than a general UTF-8 decoder.
// The high-bit test runs a word at a time and the searches go to memchr; the copy loop has no
// early exit, so that the compiler can vectorise it.
// False, with `out` untouched, when the text holds a NUL or any byte above ASCII.
bool widen_ascii(const std::string& text, icu::UnicodeString& out, bool& has_backslash)
{
    const std::size_t size = text.size();
    if (size > 0x7fffffff) {
        return false;
    }
    const char* data = text.data();
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(data);
    std::uint64_t high = 0;
    std::size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes + i, sizeof word);
        high |= word;
    }
    for (; i < size; ++i) {
        high |= bytes[i];
    }
    if ((high & 0x8080808080808080ull) != 0 || std::memchr(data, 0, size) != nullptr) {
        return false;
    }
    char16_t* buffer = out.getBuffer(static_cast<int32_t>(size));
    if (buffer == nullptr) {
        return false;
    }
    for (std::size_t k = 0; k < size; ++k) {
        buffer[k] = bytes[k];
    }
    out.releaseBuffer(static_cast<int32_t>(size));
    has_backslash = std::memchr(data, '\\', size) != nullptr;
    return true;
}

// A guess at a file's entry count, from its size: an entry line rarely takes fewer bytes than
// this. Growing the table step by step costs more than the whole parse of a large catalog.
std::size_t expected_entries(const fl::filesystem::upath& path)
{
    const std::uint64_t bytes_per_entry = 48;
    const std::uint64_t most = 1u << 20;
    try {
        const std::uint64_t size = fl::filesystem::status(path).size;
        return static_cast<std::size_t>(std::min(size / bytes_per_entry, most));
    } catch (const std::exception&) {
        // Only a hint: the load itself reports what is wrong with the file.
        return 0;
    }
}

} // namespace

MessageCatalogDataStore::~MessageCatalogDataStore() = default;

XMLCatalogDataStore::~XMLCatalogDataStore() = default;

void XMLCatalogDataStore::reserve(std::size_t expected)
{
    if (expected > entries.size()) {
        entries.reserve(expected);
    }
}

void XMLCatalogDataStore::addEntry(const std::string& key, const std::string& value)
{
    // The text is taken as a C string: it ends at the first NUL.
    icu::UnicodeString decoded;
    bool has_backslash = false;
    if (!widen_ascii(value, decoded, has_backslash)) {
        const char* text = value.c_str();
        const std::size_t length = std::strlen(text);
        decoded = icu::UnicodeString::fromUTF8(icu::StringPiece(text, static_cast<int32_t>(length)));
        has_backslash = value.find('\\') < length;
    }
    // unescape() copies the whole text; most entries have no backslash and need no second pass.
    if (has_backslash) {
        decoded = decoded.unescape();
    }
    // try_emplace builds no node for a duplicate, and keeps the first text.
    entries.try_emplace(key, std::move(decoded));
}

MessageCatalogFileLoader::~MessageCatalogFileLoader() = default;

XMLCatalogFileLoader::~XMLCatalogFileLoader() = default;

bool XMLCatalogFileLoader::loadFile(const fl::filesystem::upath& path, MessageCatalogDataStore& store)
{
    if (XMLCatalogDataStore* table = dynamic_cast<XMLCatalogDataStore*>(&store)) {
        table->reserve(expected_entries(path));
    }
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
    // Entries outnumber everything else, so they are looked for first.
    if (std::strcmp(name, getEntryTag()) == 0) {
        return processEntryTag(attributes);
    }
    if (std::strcmp(name, getCategoryTag()) == 0) {
        return processCatTag(attributes);
    }
    if (std::strcmp(name, getMessageTag()) == 0) {
        return processMsgTag(attributes);
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
    append_trimmed_line(current_value, current_line);
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
    append_trimmed_line(current_value, current_line);
    trim(current_value);
    addEntry(current_key, current_value);
    current_key.clear();
    current_line.clear();
    current_value.clear();
    return true;
}

} // namespace i18n
} // namespace fl
