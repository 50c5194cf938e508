// `sondrel-cli dups [FOLDER ...]`: finds sets of identical files of 1 MiB or more (equal size
// and equal sampled digest) in the given folders, or in the home's Downloads, Documents,
// Desktop, Videos and Pictures folders, and prints each set with the copy that is kept.
// `sondrel-cli dups trash [--keep newest|oldest] [--yes] [FOLDER ...]` then moves every other
// copy to the Trash, each compared byte for byte with the kept copy first; it prints moved,
// freed and failed counts and exits 1 when a copy could not be removed.

#include "cli/command_registry.h"
#include "cli/interrupt_scope.h"
#include "core/duplicates/duplicate_finder.h"
#include "core/duplicates/duplicate_texts.h"
#include "core/duplicates/duplicate_trash.h"
#include "core/model/byte_format.h"
#include "core/util/json_writer.h"
#include "core/util/path_text.h"
#include "core/util/text_escape.h"
#include "platform/duplicate_folders.h"

#include <csignal>
#include <ctime>
#include <iostream>
#include <mutex>
#include <ostream>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel::cli {

namespace {

// An absolute form of a command-line folder, without trailing slashes.
std::string absoluteFolder(std::string path) {
    if (path.empty() || path.front() != '/') {
        while (path.rfind("./", 0) == 0) {
            path.erase(0, 2);
        }
        char buffer[4096];
        if (getcwd(buffer, sizeof buffer) != nullptr) {
            path = path.empty() || path == "." ? std::string(buffer) : joinPath(buffer, path);
        }
    }
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

// The folders to scan: the given ones (each must be a folder) or the defaults.
std::vector<std::string> scanFolders(const CommandContext& context,
                                     const std::vector<std::string>& given) {
    if (given.empty()) {
        return defaultDuplicateFolders(context.locations);
    }
    std::vector<std::string> folders;
    for (const std::string& folder : given) {
        struct stat info {};
        if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
            throw UsageError("'" + toDisplayText(folder) + "' is not a folder");
        }
        folders.push_back(absoluteFolder(folder));
    }
    return folders;
}

std::string dateText(std::int64_t modifiedNs) {
    const std::time_t seconds = static_cast<std::time_t>(modifiedNs / 1000000000);
    std::tm local{};
    localtime_r(&seconds, &local);
    char buffer[32];
    std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M", &local);
    return buffer;
}

DuplicateScanResult runScan(CommandContext& context, const std::vector<std::string>& folders,
                            CancelToken& cancel) {
    DuplicateScanOptions options;
    options.folders = folders;
    std::mutex progressMutex;
    if (context.stderrIsTerminal) {
        options.onProgress = [&](const DuplicateScanProgress& progress) {
            std::lock_guard lock(progressMutex);
            context.err << "\r\033[K"
                        << (progress.phase == DuplicateScanProgress::Phase::discovering
                                ? std::string(kDuplicateDiscoveringText)
                                : duplicateHashingText(progress.clustersDone,
                                                       progress.clusterCount))
                        << std::flush;
        };
    }
    InterruptScope interrupt(cancel);
    DuplicateScanResult result = findDuplicates(options, cancel);
    if (context.stderrIsTerminal) {
        context.err << "\r\033[K" << std::flush;
    }
    return result;
}

void printGroups(std::ostream& out, const std::vector<DuplicateGroup>& groups) {
    out << duplicateFoundText(groups) << '\n';
    for (const DuplicateGroup& group : groups) {
        out << '\n'
            << duplicateEachFileText(group.size) << ", " << group.files.size() << " copies\n";
        for (const DuplicateFile& file : group.files) {
            out << (file.isSelected ? "  trash  " : "  keep   ") << dateText(file.modifiedNs)
                << "  " << terminalText(file.path) << '\n';
        }
    }
}

void writeGroupsJson(std::ostream& out, const std::vector<DuplicateGroup>& groups) {
    JsonWriter json(out);
    json.beginObject()
        .key("status")
        .value(duplicateFoundText(groups))
        .key("reclaimable")
        .value(totalWastedSize(groups))
        .key("groups")
        .beginArray();
    for (const DuplicateGroup& group : groups) {
        json.beginObject()
            .key("size")
            .value(group.size)
            .key("wasted")
            .value(group.wastedSize())
            .key("digest")
            .value(group.digest)
            .key("files")
            .beginArray();
        for (const DuplicateFile& file : group.files) {
            json.beginObject()
                .key("path")
                .value(file.path)
                .key("modified")
                .value(file.modifiedNs / 1000000000)
                .key("keep")
                .value(!file.isSelected)
                .endObject();
        }
        json.endArray().endObject();
    }
    json.endArray().endObject();
    out << '\n';
}

int runDupsTrash(CommandContext& context, const std::optional<std::string>& keep, bool yes,
                 std::vector<std::string> given) {
    if (keep && *keep != "newest" && *keep != "oldest") {
        throw UsageError("--keep must be newest or oldest, not '" + *keep + "'");
    }
    given.erase(given.begin()); // "trash"
    const std::vector<std::string> folders = scanFolders(context, given);

    CancelToken cancel;
    DuplicateScanResult scan = runScan(context, folders, cancel);
    if (scan.cancelled) {
        return fail(context.err, "cancelled; nothing was moved");
    }
    autoSelect(scan.groups, keep && *keep == "newest");
    const std::size_t selected = totalSelectedCount(scan.groups);
    if (selected == 0) {
        context.out << duplicateFoundText(scan.groups) << '\n';
        return kExitOk;
    }
    if (!yes) {
        context.err << "Move " << selected << " duplicate copies ("
                    << formatBytes(totalWastedSize(scan.groups)) << ") to the Trash, keeping the "
                    << (keep ? *keep : "oldest") << " copy of each set? [y/N] " << std::flush;
        std::string answer;
        if (!std::getline(std::cin, answer) || (answer != "y" && answer != "yes")) {
            return fail(context.err, "not confirmed; nothing was moved (use --yes to skip asking)");
        }
    }

    const RemovalContext removal = RemovalContext::forUser(context.locations, folders);
    DuplicateTrashReport report;
    {
        InterruptScope interrupt(cancel);
        report = trashSelectedDuplicates(std::move(scan.groups), removal, cancel);
    }
    const std::string message =
        duplicateTrashResultText(report.moved, report.freed, report.failures.size());
    for (const DuplicateTrashFailure& failure : report.failures) {
        context.err << "sondrel-cli: " << terminalText(failure.path) << ": " << failure.reason
                    << '\n';
    }
    if (context.json) {
        JsonWriter json(context.out);
        json.beginObject()
            .key("message")
            .value(message)
            .key("moved")
            .value(static_cast<std::uint64_t>(report.moved))
            .key("freed")
            .value(report.freed)
            .key("failed")
            .value(static_cast<std::uint64_t>(report.failures.size()))
            .key("movedPaths")
            .beginArray();
        for (const std::string& path : report.movedPaths) {
            json.value(path);
        }
        json.endArray().key("alreadyGonePaths").beginArray();
        for (const std::string& path : report.alreadyGonePaths) {
            json.value(path);
        }
        json.endArray().key("failures").beginArray();
        for (const DuplicateTrashFailure& failure : report.failures) {
            json.beginObject()
                .key("path")
                .value(failure.path)
                .key("reason")
                .value(failure.reason)
                .endObject();
        }
        json.endArray().key("cancelled").value(report.cancelled).endObject();
        context.out << '\n';
    } else {
        context.out << message << '\n'
                    << "moved " << report.moved << ", freed " << formatBytes(report.freed)
                    << ", failed " << report.failures.size() << '\n';
    }
    return report.failures.empty() && !report.cancelled ? kExitOk : kExitFailure;
}

int runDups(CommandContext& context) {
    const std::optional<std::string> keep = context.args.takeOption("--keep");
    const bool yes = context.args.takeFlag("--yes");
    const std::vector<std::string> positionals = context.args.positionals();
    if (!positionals.empty() && positionals.front() == "trash") {
        return runDupsTrash(context, keep, yes, positionals);
    }
    if (keep || yes) {
        throw UsageError("--keep and --yes belong to `dups trash`");
    }
    const std::vector<std::string> folders = scanFolders(context, positionals);
    CancelToken cancel;
    const DuplicateScanResult scan = runScan(context, folders, cancel);
    if (scan.cancelled) {
        return fail(context.err, "cancelled");
    }
    if (context.json) {
        writeGroupsJson(context.out, scan.groups);
    } else {
        printGroups(context.out, scan.groups);
    }
    return context.out ? kExitOk : kExitFailure;
}

const CommandRegistration registration{{
    "dups",
    "find identical files of 1 MiB or more; `dups trash` moves the extra copies to the Trash",
    "dups [--json] [FOLDER ...]\n"
    "       sondrel-cli dups trash [--keep newest|oldest] [--yes] [--json] [FOLDER ...]\n"
    "(a folder named trash is given as ./trash)",
    runDups,
}};

} // namespace

} // namespace sondrel::cli
