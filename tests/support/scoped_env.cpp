#include "qvtest/scoped_env.hpp"

#include <cstdlib>

namespace qvtest {

scoped_env::scoped_env(std::string name, std::string const& value)
    : name_(std::move(name))
{
    if (char const* old = std::getenv(name_.c_str()))
        saved_ = old;
    ::setenv(name_.c_str(), value.c_str(), 1);
}

scoped_env::scoped_env(std::string name)
    : name_(std::move(name))
{
    if (char const* old = std::getenv(name_.c_str()))
        saved_ = old;
    ::unsetenv(name_.c_str());
}

scoped_env::~scoped_env()
{
    if (saved_)
        ::setenv(name_.c_str(), saved_->c_str(), 1);
    else
        ::unsetenv(name_.c_str());
}

} // namespace qvtest
