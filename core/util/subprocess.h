#pragma once
// Running another program: from an argument vector, never through a shell, with bytes for its
// stdin, its stdout and stderr captured, an environment and a time limit. The pipes are
// close-on-exec and pumped with poll, so a program that writes a lot to both streams while
// its input is still being written cannot deadlock either side.

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sondrel {

/// What to run and how.
struct SubprocessRequest {
    std::vector<std::string> argv; ///< argv[0] is the program; must not be empty
    std::string input;             ///< written to the program's stdin, which is then closed
    /// Search argv[0] on PATH when it has no '/' (execvp); otherwise it is taken as a path.
    bool searchPath = true;
    /// Start from the caller's environment (true) or from an empty one (false).
    bool inheritEnvironment = true;
    /// Variables set on top of the starting environment (replacing same-named ones).
    std::map<std::string, std::string> environment;
    /// Capture stderr (true) or let the program write to the caller's stderr (false).
    bool captureError = true;
    /// Killed (SIGKILL) when still running after this long; zero means no limit.
    std::chrono::milliseconds timeout{0};
};

/// What became of it.
struct SubprocessResult {
    bool started = false;   ///< the program was found and started
    std::string startError; ///< why not, when it was not started (strerror text)
    int exitCode = -1;      ///< its exit status when it exited, else -1
    int signal = 0;         ///< the signal that ended it, else 0
    bool timedOut = false;  ///< it was killed for running past the time limit
    std::string out;        ///< everything it wrote to stdout (until it ended or was killed)
    std::string err;        ///< everything it wrote to stderr, when captured

    /// exitCode when it exited, 128 + signal when a signal ended it, -1 when not started.
    int status() const { return signal != 0 ? 128 + signal : exitCode; }
    /// Exited by itself with status 0.
    bool succeeded() const { return started && !timedOut && signal == 0 && exitCode == 0; }
};

/// Runs `request` and waits for the program to end (or to be killed at the time limit). Never
/// uses a shell; the child gets default signal dispositions and the caller's signal mask
/// without SIGPIPE blocked. A program that exits without reading all of its input is fine: the
/// rest of the input is dropped and the caller gets no SIGPIPE. Blocking; safe on any thread.
SubprocessResult runSubprocess(const SubprocessRequest& request);

} // namespace sondrel
