#include <qvtest/child.hpp>

#include <cerrno>
#include <cstdio>

#include <sys/wait.h>
#include <unistd.h>

namespace qvtest {

int run_in_child(std::function<bool()> const& prepare, std::vector<check> const& checks)
{
    // Nothing buffered may be written twice.
    std::fflush(nullptr);
    pid_t const pid = ::fork();
    if (pid < 0)
        return 128;
    if (pid == 0) {
        if (!prepare())
            ::_exit(child_not_prepared);
        for (std::size_t i = 0; i < checks.size(); ++i) {
            if (!checks[i]())
                ::_exit(static_cast<int>(i + 1));
        }
        ::_exit(0);
    }
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) { }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool become_ordinary_user()
{
    return ::geteuid() != 0 || (::setgid(65534) == 0 && ::setuid(65534) == 0);
}

} // namespace qvtest
