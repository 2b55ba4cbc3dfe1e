#include "qvtest/scoped_temp_dir.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace qvtest {

namespace fs = std::filesystem;

scoped_temp_dir::scoped_temp_dir(std::string const& prefix)
{
    char const* tmp = std::getenv("TMPDIR");
    std::string base = (tmp && *tmp) ? tmp : "/tmp";
    std::string pattern = base + "/" + prefix + "-XXXXXX";
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back('\0');
    if (!::mkdtemp(buf.data()))
        throw std::runtime_error("mkdtemp failed for " + pattern);
    path_ = fs::canonical(buf.data()).string();
}

scoped_temp_dir::~scoped_temp_dir()
{
    std::error_code ec;
    // Tests may leave read-only directories behind; make them removable first.
    for (auto it = fs::recursive_directory_iterator(path_, fs::directory_options::skip_permission_denied, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        if (it->is_directory(ec) && !it->is_symlink(ec))
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    }
    fs::remove_all(path_, ec);
}

std::string scoped_temp_dir::write_file(std::string const& relative, std::string const& content) const
{
    fs::path p = fs::path(path_) / relative;
    fs::create_directories(p.parent_path());
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!out)
        throw std::runtime_error("cannot write " + p.string());
    return p.string();
}

std::string scoped_temp_dir::make_dir(std::string const& relative) const
{
    fs::path p = fs::path(path_) / relative;
    fs::create_directories(p);
    return p.string();
}

std::string read_file(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << "cannot read " << path;
    std::ostringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

} // namespace qvtest
