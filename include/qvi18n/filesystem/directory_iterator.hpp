#ifndef QVI18N_FILESYSTEM_DIRECTORY_ITERATOR_HPP
#define QVI18N_FILESYSTEM_DIRECTORY_ITERATOR_HPP

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/exceptions.hpp>
#include <qvi18n/filesystem/file_status.hpp>
#include <qvi18n/filesystem/path.hpp>
#include <qvi18n/i18n/ustring.hpp>
#include <qvi18n/filesystem/detail/exceptions.hpp>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>

#include <dirent.h>

namespace fl {
namespace filesystem {

// Accepted by the iterator implementations for the callers that pass it; both forms always
// read the first name at construction.
enum initialization_mode { initialization_read_first = 0 };

namespace detail {

// What an entry needs to answer: the directory (UTF-8) and the record of the name read last.
struct QVI18N_API file_attribute_context {
    file_attribute_context();

    std::string directory;
    struct dirent entry;
};

class directory_entry_context;

} // namespace detail

// A wildcard name and the regular expression made of it. A derived class may give both to the
// constructor or fill the fields in its own.
class QVI18N_API pattern_string_context {
public:
    virtual ~pattern_string_context() = 0;

    const fl::i18n::ustring& get_file_name() const { return file_name; }
    const fl::i18n::ustring& get_pattern() const { return pattern; }

    // The name a caller gave, and its regular-expression form.
    fl::i18n::ustring file_name;
    fl::i18n::ustring pattern;

protected:
    pattern_string_context();
    pattern_string_context(const fl::i18n::ustring& file_name, const fl::i18n::ustring& pattern);
};

// A file-name wildcard in which "*" is the only wildcard: "*.xml", "a*b". "." and ".." match
// every name.
class QVI18N_API filename_pattern_context : public pattern_string_context {
public:
    explicit filename_pattern_context(const fl::i18n::ustring& file_name);
    ~filename_pattern_context() override;
};

// One name of a directory. Nothing is asked of the system until a getter needs it, and the
// entry shows whatever its iterator read last: copy the texts, not the entry, to keep them.
class QVI18N_API upath_directory_entry {
public:
    upath_directory_entry();

    // The directory being listed.
    fl::i18n::ustring pathname() const;
    // The name read; bytes that are not UTF-8 read as U+FFFD.
    fl::i18n::ustring filename() const;
    // Always empty: there is no second, short name here.
    fl::i18n::ustring alternative_filename() const;
    // pathname() + "/" + filename().
    fl::i18n::ustring full_pathname() const;
    // The file type (file_status constants) of the name itself, and of what a link points to
    // (file_not_found for a dangling link). Taken from the directory record where it tells.
    std::uint32_t type() const;
    std::uint32_t target_type() const;
    std::uint32_t target_type_without_validation() const;
    // A name removed since it was read is a missing-file status, not a failure.
    file_status status() const;
    file_status symlink_status() const;

    detail::file_attribute_context& get_attribute_context() const { return *attributes_; }

private:
    std::string native_full_pathname() const;
    std::uint32_t type_by(bool follow_links) const;

    fl::i18n::ustring alternative_filename_;
    boost::shared_ptr<detail::file_attribute_context> attributes_;
};

namespace detail {

// The state behind an iterator: the open directory and the entry it fills.
class QVI18N_API upath_directory_iterator_impl : private boost::noncopyable {
public:
    // Lists every name of directory (native text, used as it stands).
    explicit upath_directory_iterator_impl(
        const fl::i18n::ustring& directory, initialization_mode mode = initialization_read_first);
    // Lists the names matching pattern by the rule of the directory's volume. A file name that is
    // empty or holds "/", or an empty pattern, is InvalidArgument before the directory is
    // opened; a pattern that does not compile is InvalidArgument too unless tolerated, and then
    // matches nothing.
    upath_directory_iterator_impl(const fl::i18n::ustring& directory, const pattern_string_context& pattern,
        bool tolerate_bad_pattern, initialization_mode mode = initialization_read_first);
    ~upath_directory_iterator_impl();

    void increment();
    bool is_open() const;
    void fill_entry(const directory_entry_context* context);

    const upath_directory_entry& get_entry() const { return entry_; }

private:
    void read_first();

    std::unique_ptr<directory_entry_context> context_;
    upath_directory_entry entry_;
};

} // namespace detail

// Input iterator over the names of one directory, "." and ".." included, in the order the
// system gives them. Not recursive. A default-constructed iterator is the end; copies share
// one position. The first name is read at construction: an iterator over a wildcard that
// matches nothing becomes the end at its first increment.
template <class Impl, class Entry> class basic_directory_iterator {
public:
    typedef std::input_iterator_tag iterator_category;
    typedef Entry value_type;
    typedef std::ptrdiff_t difference_type;
    typedef const Entry* pointer;
    typedef const Entry& reference;

    basic_directory_iterator() { }

    // An empty path gives the end iterator.
    explicit basic_directory_iterator(const upath& directory)
    {
        open(directory.get_path_name());
    }
    explicit basic_directory_iterator(const fl::i18n::ustring& directory)
    {
        open(detail::make_native_form(directory, true));
    }
    explicit basic_directory_iterator(const char16_t* directory)
    {
        open(detail::make_native_form(fl::i18n::ustring(directory ? directory : u""), true));
    }
    basic_directory_iterator(
        const upath& directory, const pattern_string_context& pattern, bool tolerate_bad_pattern = false)
    {
        open(directory.get_path_name(), pattern, tolerate_bad_pattern);
    }
    basic_directory_iterator(const fl::i18n::ustring& directory, const pattern_string_context& pattern,
        bool tolerate_bad_pattern = false)
    {
        open(detail::make_native_form(directory, true), pattern, tolerate_bad_pattern);
    }
    basic_directory_iterator(
        const char16_t* directory, const pattern_string_context& pattern, bool tolerate_bad_pattern = false)
    {
        open(detail::make_native_form(fl::i18n::ustring(directory ? directory : u""), true), pattern,
            tolerate_bad_pattern);
    }

    // Dereferencing the end is InvalidOperation.
    reference operator*() const
    {
        if (!impl_)
            detail::throw_invalid_operation_exception();
        return impl_->get_entry();
    }
    pointer operator->() const { return &**this; }

    void increment()
    {
        if (!impl_)
            return;
        impl_->increment();
        if (!impl_->is_open())
            impl_.reset();
    }
    basic_directory_iterator& operator++()
    {
        increment();
        return *this;
    }
    // Copies share one position and one record, so what `it++` hands back is the entry before
    // the move, copied out: `*it++` reads the name it was on.
    class postincrement_proxy {
    public:
        explicit postincrement_proxy(const basic_directory_iterator& from)
        {
            if (from.impl_)
                entry_.get_attribute_context() = from.impl_->get_entry().get_attribute_context();
        }
        const Entry& operator*() const { return entry_; }
        const Entry* operator->() const { return &entry_; }

    private:
        Entry entry_;
    };
    postincrement_proxy operator++(int)
    {
        postincrement_proxy previous(*this);
        increment();
        return previous;
    }

    bool operator==(const basic_directory_iterator& other) const { return impl_ == other.impl_; }
    bool operator!=(const basic_directory_iterator& other) const { return impl_ != other.impl_; }

private:
    void open(const fl::i18n::ustring& native_directory)
    {
        if (!native_directory.empty())
            impl_.reset(new Impl(native_directory));
    }
    void open(const fl::i18n::ustring& native_directory, const pattern_string_context& pattern,
        bool tolerate_bad_pattern)
    {
        if (!native_directory.empty())
            impl_.reset(new Impl(native_directory, pattern, tolerate_bad_pattern));
    }

    boost::shared_ptr<Impl> impl_;
};

typedef basic_directory_iterator<detail::upath_directory_iterator_impl, upath_directory_entry>
    upath_directory_iterator;

} // namespace filesystem
} // namespace fl

#endif
