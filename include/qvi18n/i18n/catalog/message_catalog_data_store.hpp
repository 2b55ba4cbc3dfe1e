#ifndef QVI18N_I18N_CATALOG_MESSAGE_CATALOG_DATA_STORE_HPP
#define QVI18N_I18N_CATALOG_MESSAGE_CATALOG_DATA_STORE_HPP

// Where a catalog file's entries go while it is read. The abstract store keeps the catalog logic
// apart from the storage form; XMLCatalogDataStore is the table that a loaded catalog reads.

#include <qvi18n/config.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/exception/exception.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace fl {
namespace i18n {

class QVI18N_API MessageCatalogDataStore {
public:
    // `value` is the entry's text as it stands in the file, UTF-8.
    virtual void addEntry(const std::string& key, const std::string& value) = 0;
    // The file about to be read has `bytes` bytes; a store may make room for it at once. A hint.
    virtual void expect_file_size(std::uint64_t bytes);
    // The file has been read: a store may give back the room a hint made too large.
    virtual void finish_load();
    virtual ~MessageCatalogDataStore();
};

namespace detail {

// A growable array of plain values in one malloc'ed block: shrinking it after a load is a
// realloc in place, never a copy.
template <typename T> class pod_buffer {
    static_assert(std::is_trivially_copyable<T>::value, "plain values only");

public:
    pod_buffer() = default;
    pod_buffer(const pod_buffer&) = delete;
    pod_buffer& operator=(const pod_buffer&) = delete;
    ~pod_buffer() { std::free(data_); }

    T* data() { return data_; }
    const T* data() const { return data_; }
    std::size_t size() const { return size_; }
    std::size_t capacity() const { return capacity_; }
    T& operator[](std::size_t i) { return data_[i]; }
    const T& operator[](std::size_t i) const { return data_[i]; }

    // Room for `count` more values; returns where they go. The caller commits them with grow().
    T* reserve_more(std::size_t count)
    {
        if (capacity_ - size_ < count) {
            std::size_t wanted = capacity_ < 16 ? 16 : capacity_ * 2;
            if (wanted - size_ < count) {
                wanted = size_ + count;
            }
            reallocate(wanted);
        }
        return data_ + size_;
    }
    void grow(std::size_t count) { size_ += count; }
    void reserve(std::size_t count)
    {
        if (count > capacity_) {
            reallocate(count);
        }
    }
    void shrink_to_fit()
    {
        if (size_ == 0) {
            std::free(data_);
            data_ = nullptr;
            capacity_ = 0;
        } else if (size_ < capacity_) {
            reallocate(size_);
        }
    }
    // All values become `value`, `count` of them.
    void assign(std::size_t count, const T& value)
    {
        size_ = 0;
        if (count > capacity_) {
            std::free(data_);
            data_ = nullptr;
            capacity_ = 0;
            reallocate(count);
        }
        for (std::size_t i = 0; i < count; ++i) {
            data_[i] = value;
        }
        size_ = count;
    }
    void swap(pod_buffer& other)
    {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

private:
    void reallocate(std::size_t count)
    {
        void* fresh = std::realloc(data_, count * sizeof(T));
        if (fresh == nullptr) {
            throw boost::enable_current_exception(std::bad_alloc());
        }
        data_ = static_cast<T*>(fresh);
        capacity_ = count;
    }

    T* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace detail

// One hash table for a catalog. Each text is decoded and unescaped once, into the UTF-16 a look-up
// returns; keys lie in one block and texts in blocks of 64 KiB (a longer text has one of its own),
// so that text never moves while the store grows and its blocks come from the ordinary heap. An
// entry records where its key and text lie, and an open-addressing index (at most half full) of
// 32-bit hash tags points at the entries. A key is hashed once when it is added and once per
// look-up; the index grows from the tags alone.
class QVI18N_API XMLCatalogDataStore : public MessageCatalogDataStore {
public:
    XMLCatalogDataStore();
    ~XMLCatalogDataStore() override;
    XMLCatalogDataStore(const XMLCatalogDataStore&) = delete;
    XMLCatalogDataStore& operator=(const XMLCatalogDataStore&) = delete;

    // Decodes `value` from UTF-8 as a C string (to its first NUL, malformed bytes as U+FFFD),
    // resolves its backslash escapes (\n, \uXXXX, ...) and keeps the first text given for a key;
    // later duplicates are dropped.
    void addEntry(const std::string& key, const std::string& value) override;
    void expect_file_size(std::uint64_t bytes) override;
    void finish_load() override;

    // The text for `key`, or false. Valid until the store is written again.
    bool find(std::string_view key, std::u16string_view& text) const;
    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.size() == 0; }
    // The i-th entry in the order of the file.
    std::string_view key_at(std::size_t i) const;
    std::u16string_view text_at(std::size_t i) const;

private:
    // `text_position` is the text's block number shifted left by text_block_bits, plus its
    // offset in the block.
    struct entry {
        std::uint32_t key_offset;
        std::uint32_t key_length;
        std::uint32_t text_position;
        std::uint32_t text_length;
    };
    struct block_deleter {
        void operator()(char16_t* block) const { std::free(block); }
    };
    typedef std::unique_ptr<char16_t, block_deleter> text_block;
    static const unsigned text_block_bits = 15;
    static const std::size_t text_block_units = std::size_t(1) << text_block_bits;
    // `tag` is the key's hash folded to 32 bits and also places the slot; `index` is the entry's
    // position plus one, 0 for a free slot.
    struct slot {
        std::uint32_t tag;
        std::uint32_t index;
    };

    void rehash(std::size_t slot_count);
    void make_room_for(std::size_t entry_count);
    // The slot holding `key`, or the free slot where its probe ended.
    std::size_t locate(std::string_view key, std::uint32_t tag) const;
    // Room for a text of `units` units; sets `position` to where it lies.
    char16_t* text_room(std::size_t units, std::uint32_t& position);
    // Decodes `value` into the text blocks; returns the position, sets `units`.
    std::uint32_t append_text(const std::string& value, std::size_t& units);

    detail::pod_buffer<char> keys_;
    std::vector<text_block> text_blocks_;
    std::size_t last_block_used_;
    std::size_t last_block_size_;
    detail::pod_buffer<entry> entries_;
    detail::pod_buffer<slot> slots_;
    std::size_t mask_;
};

} // namespace i18n
} // namespace fl

#endif
