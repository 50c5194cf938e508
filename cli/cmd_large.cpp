// `sondrel-cli large [FOLDER] [--drive] [--min SIZE] [--name TEXT] [--category NAME] [--json]`:
// the files of 20 MiB and more. Without FOLDER it searches the usual user folders (Downloads,
// Documents, Desktop, Videos, Music, Pictures); FOLDER the home folder adds the cloud folders;
// any other FOLDER is searched alone; --drive searches "/" without leaving its file system.
// --min, --name and --category narrow the list like the page's filters. Ctrl-C ends the search
// early and prints what was found so far.

#include "cli/command_registry.h"
#include "cli/interrupt_scope.h"
#include "core/model/byte_format.h"
#include "core/search/large_file_filter.h"
#include "core/search/large_file_search.h"
#include "core/search/search_texts.h"
#include "core/util/json_writer.h"
#include "core/util/path_text.h"
#include "core/util/text_escape.h"
#include "platform/search_roots.h"

#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstring>
#include <ctime>
#include <mutex>
#include <ostream>
#include <unistd.h>

namespace sondrel::cli {

namespace {

// "123", "100K", "100M", "1.5G", "2T" (binary units, as the page's size menu; an optional "B"
// or "iB" after the unit).
std::int64_t parseSize(const std::string& text) {
    std::size_t used = 0;
    double value = -1;
    try {
        value = std::stod(text, &used);
    } catch (const std::exception&) {
        used = 0;
    }
    std::string unit = asciiLower(text.substr(used));
    if (unit == "b" || unit.empty()) {
        unit.clear();
    } else if (unit.size() == 3 && unit.substr(1) == "ib") {
        unit.resize(1);
    } else if (unit.size() == 2 && unit[1] == 'b') {
        unit.resize(1);
    }
    double factor = 0;
    if (unit.empty()) {
        factor = 1;
    } else if (unit == "k") {
        factor = 1024.0;
    } else if (unit == "m") {
        factor = 1024.0 * 1024;
    } else if (unit == "g") {
        factor = 1024.0 * 1024 * 1024;
    } else if (unit == "t") {
        factor = 1024.0 * 1024 * 1024 * 1024;
    }
    // NaN passes every comparison, so finiteness is checked first.
    if (used == 0 || factor == 0 || !std::isfinite(value) || value < 0 || value * factor > 9.0e18) {
        throw UsageError("--min needs a size like 100M or 1G, not '" + text + "'");
    }
    return static_cast<std::int64_t>(value * factor);
}

FileCategory parseCategory(const std::string& text) {
    const std::string wanted = asciiLower(text);
    for (FileCategory category : kAllFileCategories) {
        if (asciiLower(displayName(category)) == wanted) {
            return category;
        }
    }
    std::string names;
    for (FileCategory category : kAllFileCategories) {
        names += (names.empty() ? "" : ", ") + std::string(displayName(category));
    }
    throw UsageError("--category must be one of " + names + ", not '" + text + "'");
}

std::string dateText(std::time_t when) {
    std::tm local{};
    localtime_r(&when, &local);
    char buffer[32];
    std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M", &local);
    return buffer;
}

void writeJson(std::ostream& out, const LargeSearchResult& result, const LargeFileList& list,
               const FilteredFiles& filtered) {
    JsonWriter json(out);
    json.beginObject().key("roots").beginArray();
    for (const SearchRootOutcome& root : result.roots) {
        json.beginObject().key("path").value(root.path).key("walked").value(root.walked);
        if (!root.walked && root.error != 0) {
            json.key("error").value(std::strerror(root.error));
        }
        json.endObject();
    }
    json.endArray()
        .key("filesChecked")
        .value(result.filesChecked)
        .key("cancelled")
        .value(result.cancelled)
        .key("totalBytes")
        .value(filtered.totalBytes)
        .key("files")
        .beginArray();
    for (std::size_t row : filtered.rows) {
        const LargeFile& file = list.files()[row];
        json.beginObject()
            .key("path")
            .value(file.path)
            .key("name")
            .value(file.name)
            .key("size")
            .value(file.size)
            .key("modified")
            .value(static_cast<std::int64_t>(file.modified))
            .key("category")
            .value(displayName(file.category))
            .endObject();
    }
    json.endArray().endObject();
}

void writeText(std::ostream& out, const LargeFileList& list, const FilteredFiles& filtered) {
    for (std::size_t row : filtered.rows) {
        const LargeFile& file = list.files()[row];
        std::string size = formatBytes(file.size);
        if (size.size() < 10) {
            size.insert(0, 10 - size.size(), ' ');
        }
        std::string category(displayName(file.category));
        category.resize(12, ' ');
        out << size << "  " << dateText(file.modified) << "  " << category
            << terminalText(file.path) << '\n';
    }
    out << searchFooterText(filtered.rows.size(), filtered.rows.size(), filtered.totalBytes)
        << '\n';
}

int runLarge(CommandContext& context) {
    const bool drive = context.args.takeFlag("--drive");
    const std::optional<std::string> minimum = context.args.takeOption("--min");
    const std::optional<std::string> name = context.args.takeOption("--name");
    const std::optional<std::string> category = context.args.takeOption("--category");
    const std::vector<std::string> folders = context.args.positionals();
    if (folders.size() > 1 || (drive && !folders.empty())) {
        throw UsageError("large takes one FOLDER, or --drive");
    }
    SearchFilter filter;
    if (minimum) {
        filter.minimumSize = parseSize(*minimum);
    }
    if (name) {
        std::setlocale(LC_CTYPE, ""); // the name matches case-insensitively in the user's locale
        filter.query = *name;
    }
    if (category) {
        filter.category = parseCategory(*category);
    }

    std::optional<std::string> target;
    if (drive) {
        target = "/";
    } else if (!folders.empty()) {
        target = folders.front();
        if (target->empty() || target->front() != '/') {
            char buffer[4096];
            if (getcwd(buffer, sizeof buffer) == nullptr) {
                return fail(context.err, "cannot read the working folder");
            }
            target = joinPath(buffer, *target);
        }
    }
    const bool home = target && isHomeFolder(context.locations, *target);
    const std::vector<std::string> roots = largeSearchRoots(
        context.locations, target,
        home ? cloudFolderPathsForCurrentUser(context.locations) : std::vector<std::string>{});

    LargeSearchOptions options;
    options.oneFilesystem = drive;
    std::mutex progressMutex;
    if (context.stderrIsTerminal) {
        options.onProgress = [&](const LargeSearchProgress& progress) {
            std::lock_guard lock(progressMutex);
            context.err << "\r\033[K"
                        << searchProgressText(progress.filesChecked, progress.filesFound)
                        << std::flush;
        };
    }

    CancelToken cancel;
    LargeSearchResult result = [&] {
        InterruptScope interrupt(cancel);
        return searchLargeFiles(roots, options, cancel);
    }();
    if (context.stderrIsTerminal) {
        context.err << "\r\033[K" << std::flush;
    }

    std::size_t walked = 0;
    for (const SearchRootOutcome& root : result.roots) {
        walked += root.walked ? 1 : 0;
    }
    if (target && !home && !result.roots.front().walked) {
        return fail(context.err, searchRootFailedText(*target, result.roots.front().error));
    }
    if (walked == 0) {
        return fail(context.err,
                    searchRootsMissingText(roots.empty() ? "" : roots.front(), roots.size()));
    }

    const LargeFileList list(std::move(result.files));
    const FilteredFiles filtered = list.filter(filter);
    if (context.json) {
        writeJson(context.out, result, list, filtered);
    } else {
        writeText(context.out, list, filtered);
    }
    if (result.cancelled) {
        context.err << searchCancelledText(list.files().size()) << '\n';
    }
    return context.out ? kExitOk : kExitFailure;
}

const CommandRegistration registration{{
    "large",
    "list the files of 20 MiB and more in the user folders, a folder or the drive",
    "large [--json] [--drive] [--min SIZE] [--name TEXT] [--category NAME] [FOLDER]",
    runLarge,
}};

} // namespace

} // namespace sondrel::cli
