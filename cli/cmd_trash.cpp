// `sondrel-cli trash PATH...`: moves each path to the Trash the way the duplicate finder does
// (Trash, then a move into the home trash; never a password prompt, never a copy). Only paths
// inside the home, or inside a folder named with --root, are accepted. Each item moved gets one
// line saying where it went; each path that is refused, fails or names nothing gets one line on
// stderr. An argument that names the working folder or its parent by an empty, "." or ".."
// component is a usage error, and nothing at all is moved then.

#include "cli/command_registry.h"
#include "core/removal/removal_chains.h"
#include "core/util/json_writer.h"
#include "core/util/path_text.h"
#include "core/util/text_escape.h"

#include <ostream>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel::cli {

namespace {

// Throws UsageError for an argument that names no item of its own: "" (which would be the
// working folder itself once joined to it) and anything whose last component is "." or "..",
// such as "./", "a/.." or "/home/u/." - the working folder or a parent reached by accident.
void checkNamesAnItem(const std::string& path) {
    std::string_view trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/') {
        trimmed.remove_suffix(1);
    }
    const std::string_view last = lastPathComponent(trimmed);
    if (path.empty() || last == "." || last == "..") {
        throw UsageError("'" + path + "' names the working folder or a parent of it, not an item" +
                         " (nothing was moved)");
    }
}

bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

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

    for (const std::string& given : paths) {
        checkNamesAnItem(given);
    }

    std::size_t failed = 0;
    JsonWriter json(context.out);
    if (context.json) {
        json.beginArray();
    }
    for (const std::string& given : paths) {
        const std::string path = absolutePath(given);
        RemovalOutcome outcome;
        if (exists(path)) {
            outcome = moveDuplicateToTrash(path, removal);
        } else {
            outcome.step = RemovalStep::alreadyGone;
        }
        // Something that vanished while being moved was not moved by us: it counts as missing.
        const bool missing = outcome.step == RemovalStep::alreadyGone;
        if (missing) {
            outcome.removed = false;
            outcome.message = "nothing there";
        }
        if (!outcome.removed) {
            ++failed;
            fail(context.err,
                 missing ? "nothing at " + given
                         : given + ": " +
                               (outcome.message.empty() ? std::string(describe(outcome.step))
                                                        : outcome.message));
        } else if (!context.json) {
            context.out << "Moved " << terminalText(given) << " to the Trash: "
                        << terminalText(outcome.trashedPath.empty() ? std::string("(unknown)")
                                                                    : outcome.trashedPath)
                        << '\n';
        }
        if (context.json) {
            json.beginObject()
                .key("path")
                .value(path)
                .key("removed")
                .value(outcome.removed)
                .key("step")
                .value(describe(outcome.step))
                .key("message")
                .value(outcome.message)
                .key("trashedPath")
                .value(outcome.trashedPath)
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
