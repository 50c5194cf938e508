#pragma once
// The large-file search: every regular file of 20 MiB (20,971,520 bytes) and more below a set
// of root folders, found with the shared parallel walk.
//
// What it walks and what it leaves out:
// - names beginning with '.' (files and folders) are skipped;
// - folders named exactly as in kSearchPruneNames (build, dependency and cache folders) are
//   never entered, at any depth; neither are application bundles (a folder whose name ends in
//   ".app", any case);
// - symbolic links are never followed; only regular files count;
// - each root is itself walked in parallel by the walk's pool, one root after the other;
// - a file is listed once, however many roots or hard links reach it: results are compared by
//   device and inode, never by path text. The path kept is the one reached from the earliest
//   root, and within one root the smallest path, so two searches of the same disk agree.

#include "core/model/file_category.h"
#include "core/util/cancel_token.h"

#include <array>
#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// The smallest size (bytes) a file needs to be found: 20 MiB.
inline constexpr std::int64_t kLargeFileMinimum = 20971520;

/// Folder names the search never enters (exact, case-sensitive).
inline constexpr std::array<std::string_view, 16> kSearchPruneNames = {
    "node_modules", ".git",  ".build",         "DerivedData", "Pods",    "Caches",
    "vendor",       ".venv", "venv",           ".cargo",      ".rustup", "build",
    "dist",         "Cache", "TemporaryItems", "Containers",
};

/// One file the search found. Plain value.
struct LargeFile {
    std::string path;                            ///< absolute path (bytes)
    std::string name;                            ///< last path component (bytes)
    std::int64_t size = 0;                       ///< apparent size, st_size
    std::time_t modified = 0;                    ///< content modification time (st_mtime)
    FileCategory category = FileCategory::other; ///< categoryFrom(path, false)
    std::uint64_t device = 0;                    ///< st_dev
    std::uint64_t inode = 0;                     ///< st_ino
};

/// How one root fared.
struct SearchRootOutcome {
    std::string path;
    bool walked = false; ///< the root could be opened and was walked
    int error = 0;       ///< errno of the failed open when not walked (ENOENT: missing)
};

/// A progress report, from a worker thread.
struct LargeSearchProgress {
    std::int64_t filesChecked = 0; ///< regular files whose size was read, over all roots so far
    std::int64_t filesFound = 0;   ///< of those, at or above the minimum (before de-duplication)
    std::string currentPath;       ///< a folder read recently (bytes)
};

/// How to search.
struct LargeSearchOptions {
    /// Files smaller than this are left out.
    std::int64_t minimumSize = kLargeFileMinimum;
    /// Enter no mount point below a root (the whole-drive search walks "/" this way).
    bool oneFilesystem = false;
    /// Walk worker threads (0: from the machine).
    unsigned threads = 0;
    /// Called on a worker thread at most once per `progressIntervalSeconds`; thread-safe and
    /// quick; may be empty.
    std::function<void(const LargeSearchProgress&)> onProgress;
    double progressIntervalSeconds = 0.1;
};

/// What a search returns.
struct LargeSearchResult {
    /// Every file found, each (device, inode) once, largest first (equal sizes by path).
    std::vector<LargeFile> files;
    /// One entry per root asked for, in the order given (a root that is the same folder as an
    /// earlier one is walked once and reported as walked).
    std::vector<SearchRootOutcome> roots;
    std::int64_t filesChecked = 0;
    bool cancelled = false; ///< the cancel token stopped it; `files` holds what was found
};

/// Searches `roots` (absolute paths; a link given as a root is followed) for large files.
/// Missing or unreadable roots are reported in the result and skipped. Blocks the calling
/// thread, which takes part in the walk; any thread. Never throws for file-system errors.
LargeSearchResult searchLargeFiles(const std::vector<std::string>& roots,
                                   const LargeSearchOptions& options, const CancelToken& cancel);

/// True when the search never enters a folder called `name`: a pruned name, or an
/// application bundle ("*.app", any case).
bool isSearchExcludedFolder(std::string_view name);

} // namespace sondrel
