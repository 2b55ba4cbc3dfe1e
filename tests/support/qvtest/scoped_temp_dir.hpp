#ifndef QVTEST_SCOPED_TEMP_DIR_HPP
#define QVTEST_SCOPED_TEMP_DIR_HPP

#include <string>

namespace qvtest {

// A fresh directory under $TMPDIR (or /tmp), removed with everything in it on destruction.
class scoped_temp_dir {
public:
    explicit scoped_temp_dir(std::string const& prefix = "qvi18n-test");
    ~scoped_temp_dir();
    scoped_temp_dir(scoped_temp_dir const&) = delete;
    scoped_temp_dir& operator=(scoped_temp_dir const&) = delete;

    // Absolute path of the directory, without a trailing slash.
    std::string const& path() const { return path_; }
    // path() + "/" + relative.
    std::string operator/(std::string const& relative) const { return path_ + "/" + relative; }

    // Writes a file (parents created), returns its absolute path.
    std::string write_file(std::string const& relative, std::string const& content) const;
    // Creates a directory and its parents, returns its absolute path.
    std::string make_dir(std::string const& relative) const;

private:
    std::string path_;
};

// Reads a whole file; fails the current test if it cannot be read.
std::string read_file(std::string const& path);

} // namespace qvtest

#endif
