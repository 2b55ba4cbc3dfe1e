#ifndef QVTEST_CHILD_HPP
#define QVTEST_CHILD_HPP

#include <functional>
#include <vector>

namespace qvtest {

// Each check returns true when it holds.
typedef std::function<bool()> check;

// What run_in_child returns when `prepare` failed: the case cannot run here and is skipped.
constexpr int child_not_prepared = 77;

// Runs `prepare` and then `checks` in a forked child, for what the test process must not do to
// itself (drop privileges, mount, set limits). Returns 0 when all hold, child_not_prepared when
// `prepare` returned false, else the number (from 1) of the first check that did not hold, or 128
// plus the signal that ended the child.
int run_in_child(std::function<bool()> const& prepare, std::vector<check> const& checks);

// Becomes the unprivileged user 65534 when root (root passes every permission check); true when
// the process is now an ordinary user.
bool become_ordinary_user();

} // namespace qvtest

#endif
