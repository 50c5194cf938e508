#pragma once
// The client of sondrel-helper, the small program run through pkexec for removals that need
// administrator rights. The helper gets argv only (its path and one verb) and the roots and
// paths NUL-separated on stdin; nothing is ever put into a shell or script text. The command is
// run through an injectable runner so tests can start the helper directly, without pkexec.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// What the helper is asked to do with each path.
enum class HelperVerb : unsigned char {
    remove, ///< "remove": permanent removal
    trash,  ///< "trash": move into the calling user's Trash and give it back to the user
};

/// The verb's word on the helper's command line.
std::string_view helperVerbName(HelperVerb verb);

/// The outcome of running a program.
struct CommandOutcome {
    bool started = false; ///< the program could be started at all
    int exitStatus = -1;  ///< its exit status (128 + signal when killed)
    std::string output;   ///< everything it wrote to stdout
};

/// Runs `argv` (argv[0] searched on PATH) with `input` on its stdin and collects its stdout.
/// Blocking; must not use a shell.
using CommandRunner =
    std::function<CommandOutcome(const std::vector<std::string>& argv, const std::string& input)>;

/// The default runner (runSubprocess): argv[0] searched on PATH, no shell, stdin from `input`,
/// stdout collected, stderr inherited, no time limit (a password dialog waits for the user).
/// A program that cannot be started gives `started == false`. Blocking on the caller's thread.
CommandOutcome runCommand(const std::vector<std::string>& argv, const std::string& input);

/// The helper's answer for one path.
struct HelperPathResult {
    std::string path;
    bool ok = false;     ///< the helper reports the path handled (and nothing remains there)
    std::string message; ///< why not ("cancelled", a refusal or an error text)
};

/// Encodes the helper's stdin: each root as 'R' + path + NUL, then each path as 'P' + path +
/// NUL. Paths are raw bytes; a path containing NUL cannot be represented and is sent empty (the
/// helper refuses it).
std::string encodeHelperInput(const std::vector<std::string>& roots,
                              const std::vector<std::string>& paths);

/// Decodes the helper's stdin; false when malformed (a record without its tag or terminator,
/// or a root after the first path).
bool decodeHelperInput(std::string_view input, std::vector<std::string>& roots,
                       std::vector<std::string>& paths);

/// One line of the helper's stdout: "<index> ok" or "<index> fail <message>" (the message has
/// no newline: control bytes are replaced by spaces).
std::string formatHelperResultLine(std::size_t index, bool ok, std::string_view message);

/// Parses the helper's stdout into one result per path (paths the output does not mention come
/// back not ok, "no answer from the helper").
std::vector<HelperPathResult> parseHelperOutput(std::string_view output,
                                                const std::vector<std::string>& paths);

/// Runs the privileged helper for a batch of paths.
class PrivilegedHelperClient {
public:
    /// `helperPath` is the installed helper (the path its polkit policy names); `runner` starts
    /// it. With `usePkexec` the command is {"pkexec", helperPath, verb}; without it (tests) it
    /// is {helperPath, verb} + `extraArguments` (for the helper's test mode: --home DIR ...).
    PrivilegedHelperClient(std::string helperPath, CommandRunner runner = runCommand,
                           bool usePkexec = true, std::vector<std::string> extraArguments = {});

    /// Asks the helper to apply `verb` to each of `paths`, allowing only what lies inside
    /// `roots` (the helper narrows them further to the calling user's home). pkexec's exit
    /// status 126 or 127 (the password dialog was dismissed, or no authorisation) means
    /// cancelled: every result is false with "cancelled". Blocking; may show the system's
    /// password dialog; call off the GUI thread.
    std::vector<HelperPathResult> run(HelperVerb verb, const std::vector<std::string>& paths,
                                      const std::vector<std::string>& roots) const;

    /// The argv that `run` uses for `verb`.
    std::vector<std::string> commandLine(HelperVerb verb) const;

private:
    std::string m_helperPath;
    CommandRunner m_runner;
    bool m_usePkexec;
    std::vector<std::string> m_extraArguments;
};

} // namespace sondrel
