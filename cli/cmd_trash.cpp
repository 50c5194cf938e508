// `sondrel-cli trash PATH...`: moves each path to the Trash the way the duplicate finder does
// (Trash, then a move into the home trash; never a password prompt, never a copy). Only paths
// inside the home, or inside a folder named with --root, are accepted.

#include "cli/command_registry.h"
#include "core/removal/removal_chains.h"
#include "core/util/json_writer.h"
#include "core/util/path_text.h"

#include <ostream>
#include <unistd.h>

namespace sondrel::cli {

namespace {

// An absolute form of a command-line path: relative paths are taken from the working folder,
// with leading "./" dropped; other "." and ".." components are left for the safety rules.
std::string absolutePath(std::string path) {
    if (!path.empty() && path.front() == '/') {
        return path;
    }
    while (path.rfind("./", 0) == 0) {
        path.erase(0, 2);
    }
    char buffer[4096];
    if (getcwd(buffer, sizeof buffer) == nullptr) {
        return path;
    }
    return joinPath(buffer, path);
}

int runTrash(CommandContext& context) {
    std::vector<std::string> roots{context.locations.home};
    while (std::optional<std::string> root = context.args.takeOption("--root")) {
        roots.push_back(absolutePath(*root));
    }
    const std::vector<std::string> paths = context.args.positionals();
    if (paths.empty()) {
        throw UsageError("trash needs at least one PATH");
    }

    const RemovalContext removal = RemovalContext::forUser(context.locations, roots);

    std::size_t failed = 0;
    JsonWriter json(context.out);
    if (context.json) {
        json.beginArray();
    }
    for (const std::string& given : paths) {
        const std::string path = absolutePath(given);
        const RemovalOutcome outcome = moveDuplicateToTrash(path, removal);
        if (!outcome.removed) {
            ++failed;
            context.err << "sondrel-cli: " << toDisplayText(given) << ": "
                        << (outcome.message.empty() ? describe(outcome.step)
                                                    : std::string_view(outcome.message))
                        << '\n';
        }
        if (context.json) {
            json.beginObject()
                .key("path")
                .value(path)
                .key("removed")
                .value(outcome.removed)
                .key("step")
                .value(std::string(describe(outcome.step)))
                .key("message")
                .value(outcome.message)
                .endObject();
        }
    }
    if (context.json) {
        json.endArray();
    }
    return failed == 0 ? kExitOk : kExitFailure;
}

const CommandRegistration registration{{
    "trash",
    "move each path to the Trash (no password prompt, never a copy)",
    "trash [--root DIR]... [--json] PATH...",
    runTrash,
}};

} // namespace

} // namespace sondrel::cli
