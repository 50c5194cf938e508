#pragma once
// Runs a program with an argument vector (never through a shell; see core/util/subprocess.h) and
// captures what it printed, for tests that drive sondrel-cli or the helper from outside.

#include <map>
#include <string>
#include <vector>

namespace sondrel::test {

/// What a finished process left behind.
struct ProcessResult {
    int exitCode = -1; ///< exit status, or 128 + signal number when killed by a signal
    std::string out;   ///< everything written to stdout
    std::string err;   ///< everything written to stderr
};

/// Runs `argv[0]` with `argv`, feeding `input` on stdin; `environment` entries are added to (or
/// replace) the inherited environment. Blocks until the program ends. A program that cannot be
/// started gives exit code 127 with the reason in `err`.
ProcessResult runProcess(const std::vector<std::string>& argv, const std::string& input = {},
                         const std::map<std::string, std::string>& environment = {});

} // namespace sondrel::test
