// `sondrel-cli scan [PATH] [--depth N] [--json] [--apparent-size] [--export-ncdu FILE]`: the size
// tree of a folder (the home folder when PATH is left out). Sizes are bytes on disk (allocated
// blocks, as du counts) unless --apparent-size asks for file lengths. Prints the summary line and
// the largest children, or the whole tree as JSON; --export-ncdu also writes the tree in ncdu's
// export format, which ncdu and gdu open with -f. Progress goes to stderr only when stderr is a
// terminal. Ctrl-C ends the walk early and prints what was read so far.

#include "cli/command_registry.h"
#include "cli/interrupt_scope.h"
#include "core/model/byte_format.h"
#include "core/scan/scan_texts.h"
#include "core/scan/tree_export.h"
#include "core/scan/tree_scan.h"
#include "core/util/text_escape.h"

#include <cerrno>
#include <ctime>
#include <fstream>
#include <mutex>
#include <ostream>
#include <sys/stat.h>

namespace sondrel::cli {

namespace {

constexpr std::size_t kLargestShown = 20;

void printSummary(std::ostream& out, const ScanResult& result) {
    out << scanSummaryText(result.items, result.bytes, result.elapsedSeconds) << '\n';
    const FileItem root = result.rootItem();
    out << terminalText(root.url()) << "  " << formatBytes(root.size()) << ", " << root.fileCount()
        << (root.fileCount() == 1 ? " file" : " files") << '\n';
    std::size_t shown = 0;
    for (const FileItem& child : root.children()) {
        if (shown++ == kLargestShown) {
            out << "  ... " << root.childCount() - kLargestShown << " more\n";
            break;
        }
        std::string size = formatBytes(child.size());
        if (size.size() < 10) {
            size.insert(0, 10 - size.size(), ' ');
        }
        out << "  " << size << "  " << terminalText(child.name())
            << (child.isDirectory() ? "/" : "") << '\n';
    }
}

int runScan(CommandContext& context) {
    const std::optional<long long> depth = context.args.takeInteger("--depth");
    const std::optional<std::string> exportPath = context.args.takeOption("--export-ncdu");
    const bool apparentSize = context.args.takeFlag("--apparent-size");
    const std::vector<std::string> paths = context.args.positionals();
    if (paths.size() > 1) {
        throw UsageError("scan takes one PATH");
    }
    if (depth && (*depth < 1 || *depth > 4096)) {
        throw UsageError("--depth must be between 1 and 4096");
    }
    const std::string target = paths.empty() ? context.locations.home : paths.front();

    ScanOptions options;
    options.maxDepth = static_cast<int>(depth.value_or(4));
    options.measure = apparentSize ? SizeMeasure::apparent : SizeMeasure::allocated;
    std::mutex progressMutex;
    if (context.stderrIsTerminal) {
        options.onProgress = [&](const ScanProgress& progress) {
            std::lock_guard lock(progressMutex);
            context.err << "\r\033[K" << scanProgressText(progress.items, progress.bytes)
                        << std::flush;
        };
    }

    CancelToken cancel;
    const ScanResult result = [&] {
        InterruptScope interrupt(cancel);
        return scanTree(target, options, cancel);
    }();
    if (context.stderrIsTerminal) {
        context.err << "\r\033[K" << std::flush;
    }

    if (result.accessDenied) {
        struct stat info {};
        if (stat(target.c_str(), &info) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
            return fail(context.err, "'" + target + "' does not exist");
        }
        return fail(context.err, accessDeniedText(scanTargetName(target)));
    }
    if (exportPath) {
        std::ofstream file(*exportPath, std::ios::binary | std::ios::trunc);
        if (!file || !writeNcduExport(file, result.rootItem(), std::time(nullptr))) {
            return fail(context.err, "cannot write '" + *exportPath + "'");
        }
    }
    if (context.json) {
        writeTreeJson(context.out, result.rootItem());
    } else {
        printSummary(context.out, result);
    }
    if (result.cancelled) {
        context.err << kScanCancelledText << '\n';
    }
    return context.out ? kExitOk : kExitFailure;
}

const CommandRegistration registration{{
    "scan",
    "scan a folder (the home folder by default) into a size tree",
    "scan [--json] [--depth N] [--apparent-size] [--export-ncdu FILE] [PATH]",
    runScan,
}};

} // namespace

} // namespace sondrel::cli
