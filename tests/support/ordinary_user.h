#pragma once
// Running a check as an ordinary user: root reads every folder and passes every permission
// test, so a test of what an unreadable folder does runs its check in a child that drops to
// nobody when the suite runs as root.

#include <functional>
#include <string>

namespace sondrel::test {

/// Runs `check` as an ordinary user and returns its verdict: in this process when it is not
/// root; else `tree` (a test's TempDir) is given to nobody and `check` runs in a forked child
/// that switches to nobody (false when the switch fails). Blocking.
bool runAsOrdinaryUser(const std::string& tree, const std::function<bool()>& check);

} // namespace sondrel::test
