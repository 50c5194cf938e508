#pragma once
// The command dispatcher of sondrel-cli. Each command lives in its own cmd_<name>.cpp and
// registers itself with a static CommandRegistration, so adding a command touches no other file.

#include "platform/locations.h"

#include <functional>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel::cli {

/// Exit statuses shared by every command.
enum ExitStatus : int { kExitOk = 0, kExitFailure = 1, kExitUsage = 2 };

/// Thrown for bad arguments; the dispatcher prints the message (through terminalText, so it may
/// hold raw argument bytes) and exits with kExitUsage.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A command's arguments after the global options were taken out. Options are taken by name
/// ("--depth 3" or "--depth=3"); after "--" every argument is positional.
class Arguments {
public:
    explicit Arguments(std::vector<std::string> args) : m_args(std::move(args)) {}
    /// Removes `name` if present and reports whether it was.
    bool takeFlag(std::string_view name);
    /// Removes `name` and its value if present; throws UsageError when the value is missing.
    std::optional<std::string> takeOption(std::string_view name);
    /// Like takeOption, parsing a whole number (UsageError otherwise). The sign and range are
    /// the caller's to check, so that it can say what the option needs.
    std::optional<long long> takeInteger(std::string_view name);
    /// Like takeOption, parsing a number (UsageError otherwise; "nan" and "inf" parse). The
    /// sign and range are the caller's to check.
    std::optional<double> takeNumber(std::string_view name);
    /// The remaining arguments; throws UsageError if an unknown option ("-x", "--xyz") remains
    /// before "--".
    std::vector<std::string> positionals() const;

private:
    std::vector<std::string> m_args;
};

/// What a command gets: the analysed home, the output switches and its arguments.
struct CommandContext {
    Locations locations;
    bool json = false;
    Arguments args;
    std::ostream& out;
    std::ostream& err;
    bool stderrIsTerminal = false;
};

/// One command: name, a one-line summary for --help, usage text and the function to run.
/// `usage` follows "Usage: sondrel-cli " on the first line, so it starts with the command's name;
/// further forms are lines of their own, indented under it and starting with "sondrel-cli", and
/// any other line is a note on the forms (the manual page keeps all of them).
struct Command {
    std::string_view name;
    std::string_view summary;
    std::string_view usage;
    std::function<int(CommandContext&)> run;
};

/// All registered commands, sorted by name.
std::vector<const Command*> registeredCommands();

/// Registers a command at static-initialisation time: `static CommandRegistration r{{...}};`.
struct CommandRegistration {
    explicit CommandRegistration(Command command);
};

/// Prints "sondrel-cli: <message>" on `err` and returns kExitFailure (one clear line). The
/// message is shown through terminalText, so names in it may be passed as raw bytes.
int fail(std::ostream& err, std::string_view message);

} // namespace sondrel::cli
