#include <qvi18n/i18n/catalog/message_catalog_data_store.hpp>
#include <qvi18n/i18n/catalog/message_catalog_file_loader.hpp>

#include <qvi18n/filesystem/operations.hpp>

#include "i18n/catalog/checked_length.hpp"

#include <boost/exception/exception.hpp>
#include <boost/make_shared.hpp>

#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string_view>

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

// Only a hint for the store: the load itself reports what is wrong with the file.
std::uint64_t file_size(const fl::filesystem::upath& path)
{
    try {
        return fl::filesystem::status(path).size;
    } catch (const std::exception&) {
        return 0;
    }
}

// The key's hash, folded to 32 bits: it places the key in the index and spares most key
// comparisons of a probe.
std::uint32_t tag_of(std::string_view key)
{
    const std::uint64_t hash = std::hash<std::string_view>()(key);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

// Offsets and lengths are kept in 32 bits; a catalog larger than that isn't one.
std::uint32_t narrow_offset(std::size_t value)
{
    if (value > 0xffffffffu) {
        throw boost::enable_current_exception(std::length_error("catalog too large"));
    }
    return static_cast<std::uint32_t>(value);
}

// Most catalog text is ASCII, which widens unit by unit far faster than a general UTF-8 decoder.
// The high-bit test runs a word at a time and the NUL and backslash searches go to memchr; the
// copy loop has no early exit, so that the compiler can vectorise it.
bool is_plain_ascii(const char* data, std::size_t size)
{
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
    return (high & 0x8080808080808080ull) == 0 && std::memchr(data, 0, size) == nullptr
        && std::memchr(data, '\\', size) == nullptr;
}

} // namespace

MessageCatalogDataStore::~MessageCatalogDataStore() = default;

void MessageCatalogDataStore::expect_file_size(std::uint64_t) { }

void MessageCatalogDataStore::finish_load() { }

XMLCatalogDataStore::XMLCatalogDataStore()
    : last_block_used_(0)
    , last_block_size_(0)
    , mask_(15)
{
    slots_.assign(16, slot {0, 0});
}

XMLCatalogDataStore::~XMLCatalogDataStore() = default;

void XMLCatalogDataStore::rehash(std::size_t slot_count)
{
    detail::pod_buffer<slot> fresh;
    fresh.assign(slot_count, slot {0, 0});
    const std::size_t mask = slot_count - 1;
    for (std::size_t k = 0; k < slots_.size(); ++k) {
        const slot& old = slots_[k];
        if (old.index != 0) {
            std::size_t i = old.tag & mask;
            while (fresh[i].index != 0) {
                i = (i + 1) & mask;
            }
            fresh[i] = old;
        }
    }
    slots_.swap(fresh);
    mask_ = mask;
}

namespace {

// The index is at most half full, so that a probe for a missing key ends soon.
std::size_t slots_for(std::size_t entry_count, std::size_t at_least)
{
    std::size_t slot_count = at_least;
    while (slot_count < 2 * entry_count) {
        slot_count *= 2;
    }
    return slot_count;
}

} // namespace

void XMLCatalogDataStore::make_room_for(std::size_t entry_count)
{
    const std::size_t slot_count = slots_for(entry_count, slots_.size());
    if (slot_count != slots_.size()) {
        rehash(slot_count);
    }
}

void XMLCatalogDataStore::expect_file_size(std::uint64_t bytes)
{
    // An entry line rarely takes fewer than 48 bytes of the file, and its key rarely more than a
    // quarter. Growing step by step costs more than the parse of a large catalog; what the guess
    // makes too large, finish_load() gives back.
    const std::uint64_t most = std::uint64_t(1) << 26;
    const std::size_t limit = static_cast<std::size_t>(std::min(bytes, most));
    const std::size_t expected = limit / 48;
    entries_.reserve(expected);
    make_room_for(expected);
    keys_.reserve(limit / 4);
}

void XMLCatalogDataStore::finish_load()
{
    keys_.shrink_to_fit();
    entries_.shrink_to_fit();
    if (last_block_used_ != 0 && last_block_used_ < last_block_size_) {
        // Shrinking a heap block gives its tail back in place.
        char16_t* block = text_blocks_.back().release();
        void* smaller = std::realloc(block, last_block_used_ * sizeof(char16_t));
        text_blocks_.back().reset(smaller != nullptr ? static_cast<char16_t*>(smaller) : block);
        last_block_size_ = last_block_used_;
    }
    const std::size_t slot_count = slots_for(entries_.size(), 16);
    if (slot_count < slots_.size()) {
        rehash(slot_count);
    }
}

std::size_t XMLCatalogDataStore::locate(std::string_view key, std::uint32_t tag) const
{
    for (std::size_t i = tag & mask_;; i = (i + 1) & mask_) {
        const slot& candidate = slots_[i];
        if (candidate.index == 0 || (candidate.tag == tag && key_at(candidate.index - 1) == key)) {
            return i;
        }
    }
}

std::string_view XMLCatalogDataStore::key_at(std::size_t i) const
{
    const entry& e = entries_[i];
    return std::string_view(keys_.data() + e.key_offset, e.key_length);
}

std::u16string_view XMLCatalogDataStore::text_at(std::size_t i) const
{
    const entry& e = entries_[i];
    if (e.text_length == 0) {
        return std::u16string_view();
    }
    const char16_t* block = text_blocks_[e.text_position >> text_block_bits].get();
    return std::u16string_view(block + (e.text_position & (text_block_units - 1)), e.text_length);
}

char16_t* XMLCatalogDataStore::text_room(std::size_t units, std::uint32_t& position)
{
    position = 0;
    if (units == 0) {
        return nullptr;
    }
    const bool own_block = units > text_block_units;
    if (own_block || text_blocks_.empty() || last_block_size_ - last_block_used_ < units) {
        if (text_blocks_.size() >= (std::size_t(1) << (32 - text_block_bits))) {
            throw boost::enable_current_exception(std::length_error("catalog too large"));
        }
        const std::size_t size = own_block ? units : text_block_units;
        void* block = std::malloc(size * sizeof(char16_t));
        if (block == nullptr) {
            throw boost::enable_current_exception(std::bad_alloc());
        }
        text_blocks_.emplace_back(static_cast<char16_t*>(block));
        last_block_used_ = 0;
        last_block_size_ = size;
    }
    position = static_cast<std::uint32_t>(((text_blocks_.size() - 1) << text_block_bits) | last_block_used_);
    char16_t* room = text_blocks_.back().get() + last_block_used_;
    last_block_used_ += units;
    return room;
}

bool XMLCatalogDataStore::find(std::string_view key, std::u16string_view& text) const
{
    const slot& found = slots_[locate(key, tag_of(key))];
    if (found.index == 0) {
        return false;
    }
    text = text_at(found.index - 1);
    return true;
}

std::uint32_t XMLCatalogDataStore::append_text(const std::string& value, std::size_t& units)
{
    const char* data = value.data();
    const std::size_t size = value.size();
    std::uint32_t position = 0;
    if (is_plain_ascii(data, size)) {
        char16_t* out = text_room(size, position);
        const unsigned char* bytes = reinterpret_cast<const unsigned char*>(data);
        for (std::size_t k = 0; k < size; ++k) {
            out[k] = bytes[k];
        }
        units = size;
        return position;
    }
    // The text is taken as a C string: it ends at the first NUL.
    const std::size_t length = std::strlen(data);
    icu::UnicodeString decoded
        = icu::UnicodeString::fromUTF8(icu::StringPiece(data, detail::checked_length(length)));
    // unescape() copies the whole text; only a text with a backslash needs it.
    if (std::memchr(data, '\\', length) != nullptr) {
        decoded = decoded.unescape();
    }
    units = static_cast<std::size_t>(decoded.length());
    if (units != 0) {
        std::memcpy(text_room(units, position), decoded.getBuffer(), units * sizeof(char16_t));
    }
    return position;
}

void XMLCatalogDataStore::addEntry(const std::string& key, const std::string& value)
{
    make_room_for(entries_.size() + 1);
    const std::uint32_t tag = tag_of(key);
    const std::size_t where = locate(key, tag);
    if (slots_[where].index != 0) {
        return;
    }
    entry e {narrow_offset(keys_.size()), narrow_offset(key.size()), 0, 0};
    std::size_t units = 0;
    e.text_position = append_text(value, units);
    e.text_length = narrow_offset(units);
    std::memcpy(keys_.reserve_more(key.size()), key.data(), key.size());
    keys_.grow(key.size());
    *entries_.reserve_more(1) = e;
    entries_.grow(1);
    slots_[where] = slot {tag, narrow_offset(entries_.size())};
}

MessageCatalogFileLoader::~MessageCatalogFileLoader() = default;

XMLCatalogFileLoader::~XMLCatalogFileLoader() = default;

bool XMLCatalogFileLoader::loadFile(const fl::filesystem::upath& path, MessageCatalogDataStore& store)
{
    store.expect_file_size(file_size(path));
    boost::shared_ptr<ExpatEventHandler> handler
        = boost::make_shared<MessageCatalogExpatEventHandler>(&store);
    ExpatLoader loader(path, handler);
    const bool loaded = loader.load_file();
    store.finish_load();
    return loaded;
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
