#ifndef QVTEST_SCOPED_ENV_HPP
#define QVTEST_SCOPED_ENV_HPP

#include <optional>
#include <string>

namespace qvtest {

// Sets (or unsets) one environment variable for a scope and restores it afterwards.
class scoped_env {
public:
    scoped_env(std::string name, std::string const& value); // setenv
    explicit scoped_env(std::string name); // unsetenv
    ~scoped_env();
    scoped_env(scoped_env const&) = delete;
    scoped_env& operator=(scoped_env const&) = delete;

private:
    std::string name_;
    std::optional<std::string> saved_;
};

} // namespace qvtest

#endif
