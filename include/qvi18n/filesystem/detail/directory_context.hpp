#ifndef QVI18N_FILESYSTEM_DETAIL_DIRECTORY_CONTEXT_HPP
#define QVI18N_FILESYSTEM_DETAIL_DIRECTORY_CONTEXT_HPP

// The open directory behind an iterator: the stream, the one record names are read into, and
// for a wildcard the matcher set to the volume's rule for names.

#include <qvi18n/config.hpp>
#include <qvi18n/filesystem/directory_iterator.hpp>
#include <qvi18n/i18n/ctype/pattern_match.hpp>
#include <qvi18n/i18n/ustring.hpp>

#include <boost/noncopyable.hpp>

#include <cstdint>
#include <string>

#include <dirent.h>

namespace fl {
namespace filesystem {
namespace detail {

class QVI18N_API directory_entry_context : private boost::noncopyable {
public:
    virtual ~directory_entry_context();

    // Reads the next name into the record; false at the end, when the stream is closed.
    virtual bool read_next() = 0;

    bool is_open() const { return handle_ != nullptr; }
    const fl::i18n::ustring& get_directory() const { return directory_; }
    // The text of the last name matched; kept by the wildcard form only, which needs it.
    const fl::i18n::ustring& get_current_name() const { return current_name_; }
    const std::string& get_native_directory() const { return native_directory_; }
    std::uint32_t get_character_mask() const { return character_mask_; }
    std::int32_t get_open_error() const { return open_error_; }

protected:
    // Opens directory (native text, converted as it stands). A failure is kept in open_error
    // for the derived class to report; file_name is not kept.
    directory_entry_context(
        const fl::i18n::ustring& directory, const fl::i18n::ustring& file_name, struct dirent& entry);

    // One readdir into the record. A failure goes out with failure_path(), made only then.
    bool read_entry();
    // The path a failure to read reports: the directory.
    virtual std::string failure_path() const;

    fl::i18n::ustring directory_;
    fl::i18n::ustring current_name_;
    std::string native_directory_;
    DIR* handle_;
    struct dirent* entry_buffer_;
    std::uint32_t character_mask_;
    std::int32_t open_error_;
    fl::i18n::simple_pattern_match matcher_;
};

class QVI18N_API directory_entry_without_wc_support_context : public directory_entry_context {
public:
    directory_entry_without_wc_support_context(const fl::i18n::ustring& directory, struct dirent& entry);
    ~directory_entry_without_wc_support_context() override;

    bool read_next() override;
};

class QVI18N_API directory_entry_with_wc_support_context : public directory_entry_context {
public:
    directory_entry_with_wc_support_context(const fl::i18n::ustring& directory,
        const pattern_string_context& pattern, struct dirent& entry, bool tolerate_bad_pattern);
    ~directory_entry_with_wc_support_context() override;

    // Reads names until one matches.
    bool read_next() override;
    // Reads the next name, matching or not.
    bool read_next_core();

private:
    // The directory and the name matched last.
    std::string failure_path() const override;
};

} // namespace detail
} // namespace filesystem
} // namespace fl

#endif
