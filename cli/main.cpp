// sondrel-cli: analyse and clean disk space from a terminal. Global options (--home, --layout,
// --json) may stand anywhere; the first other word names the command.

#include "cli/command_registry.h"
#include "platform/locations.h"

#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace sondrel;
using namespace sondrel::cli;

void printHelp(std::ostream& out) {
    out << "Usage: sondrel-cli [--home DIR] [--layout linux|macos] [--json] COMMAND [ARGS...]\n"
           "\n"
           "See and reclaim disk space from the command line.\n"
           "\n"
           "Commands:\n";
    for (const Command* command : registeredCommands()) {
        std::string name(command->name);
        name.resize(12, ' ');
        out << "  " << name << command->summary << '\n';
    }
    out << "\n"
           "Options:\n"
           "  --home DIR      analyse another home folder (a mounted disk, a backup)\n"
           "  --layout NAME   folder layout of that home: linux or macos\n"
           "  --json          print machine-readable JSON\n"
           "  --help          show this help, or a command's usage with COMMAND --help\n"
           "  --version       print the version\n"
           "\n"
           "Exit status: 0 on success, 1 on failure, 2 on bad arguments.\n";
}

int run(std::vector<std::string> args) {
    std::optional<std::string> home;
    std::optional<std::string> layoutName;
    bool json = false;
    bool help = false;
    const Command* command = nullptr;
    std::vector<std::string> rest;

    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        const bool optionsEnded = std::find(rest.begin(), rest.end(), "--") != rest.end();
        if (!optionsEnded && (arg == "--home" || arg == "--layout")) {
            if (i + 1 >= args.size()) {
                throw UsageError(arg + " needs a value");
            }
            (arg == "--home" ? home : layoutName) = args[++i];
        } else if (!optionsEnded && arg.rfind("--home=", 0) == 0) {
            home = arg.substr(7);
        } else if (!optionsEnded && arg.rfind("--layout=", 0) == 0) {
            layoutName = arg.substr(9);
        } else if (!optionsEnded && arg == "--json") {
            json = true;
        } else if (!optionsEnded && (arg == "--help" || arg == "-h")) {
            help = true;
        } else if (!optionsEnded && arg == "--version" && command == nullptr) {
            std::cout << "sondrel-cli " << SONDREL_VERSION << '\n';
            return kExitOk;
        } else if (command == nullptr && arg.front() != '-') {
            for (const Command* candidate : registeredCommands()) {
                if (candidate->name == arg) {
                    command = candidate;
                }
            }
            if (command == nullptr) {
                throw UsageError("unknown command '" + arg + "' (see sondrel-cli --help)");
            }
        } else {
            rest.push_back(arg);
        }
    }

    if (command == nullptr) {
        if (help) {
            printHelp(std::cout);
            return kExitOk;
        }
        printHelp(std::cerr);
        return kExitUsage;
    }
    if (help) {
        std::cout << "Usage: sondrel-cli " << command->usage << "\n\n" << command->summary << '\n';
        return kExitOk;
    }

    HomeLayout layout = Locations::forCurrentUser().layout;
    if (layoutName) {
        const auto parsed = homeLayoutFromName(*layoutName);
        if (!parsed) {
            throw UsageError("--layout must be linux or macos, not '" + *layoutName + "'");
        }
        layout = *parsed;
    }
    Locations locations = home || layoutName
                              ? Locations::forHome(home.value_or(currentUserHome()), layout)
                              : Locations::forCurrentUser();
    if (home && (home->empty() || home->front() != '/')) {
        char buffer[4096];
        if (getcwd(buffer, sizeof buffer) != nullptr && !home->empty()) {
            locations = Locations::forHome(std::string(buffer) + "/" + *home, layout);
        } else {
            throw UsageError("--home needs an absolute folder path");
        }
    }

    CommandContext context{
        std::move(locations),      json, Arguments(std::move(rest)), std::cout, std::cerr,
        isatty(STDERR_FILENO) == 1};
    return command->run(context);
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    try {
        return run(std::move(args));
    } catch (const UsageError& error) {
        fail(std::cerr, error.what());
        return kExitUsage;
    } catch (const std::exception& error) {
        return fail(std::cerr, error.what());
    }
}
