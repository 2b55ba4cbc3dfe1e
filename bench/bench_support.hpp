#ifndef QVI18N_BENCH_SUPPORT_HPP
#define QVI18N_BENCH_SUPPORT_HPP

// What several benchmarks set up the same way: a temporary tree that goes with the process, and
// the shipped locale database.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace qvbench {

// A fresh directory /tmp/qvi18n-<stem>-XXXXXX, removed with all it holds when this goes.
class temp_tree {
public:
    explicit temp_tree(const std::string& stem)
    {
        std::string pattern = "/tmp/qvi18n-" + stem + "-XXXXXX";
        if (::mkdtemp(&pattern[0]) == nullptr)
            throw std::runtime_error("cannot make a temporary directory like " + pattern);
        path_ = pattern;
    }
    ~temp_tree()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    temp_tree(const temp_tree&) = delete;
    temp_tree& operator=(const temp_tree&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// The shipped locale database: the build tree's copy, else the source tree's.
inline std::string database_path()
{
    std::string built = QVI18N_BENCH_BUILD_ROOT "/bin/lcdata.xml";
    if (std::ifstream(built).good())
        return built;
    return QVI18N_BENCH_SOURCE_ROOT "/data/lcdata.xml";
}

} // namespace qvbench

#endif
