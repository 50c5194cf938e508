#pragma once
// What a walk (parallel_walk.h) tells the code that walks: the visitor interface, its per-thread
// worker view, and the walk's options. One walk serves every feature that reads a folder tree:
// the storage section's size tree, measureTree, and the feature scans; each is a visitor.
//
// Callbacks run on the walk's worker threads, several at once: a visitor keeps per-worker state
// (indexed by WalkWorker::index(), sized in prepare()) or synchronises what it shares. Callbacks
// must not throw and should be quick; every syscall stays in the walk.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace sondrel {

/// The visitor's own handle on a folder of the walk (a node, a leaf to add to, ...), handed
/// back with every callback about that folder or its entries. Opaque to the walk.
struct FolderToken {
    void* object = nullptr;
    std::uint32_t tag = 0;
};

/// One entry as the listing found it.
struct WalkEntry {
    std::string_view name; ///< bytes, valid during the callback only
    /// DT_DIR, DT_REG, DT_LNK, DT_FIFO, ... Never DT_UNKNOWN: the walk stats such entries (and
    /// passes the result on as `info`); one whose stat failed counts as DT_REG without `info`.
    unsigned char type = 0;
    int depth = 1;                     ///< 1 for the root's own entries
    FolderToken parent;                ///< the folder it was listed in
    const struct stat* info = nullptr; ///< lstat result when the walk already has one
};

/// Why a folder the visitor wanted was not listed.
enum class FolderSkip : unsigned char {
    unreadable, ///< it could not be opened (permissions, vanished, not a folder any more)
    mountPoint, ///< a mount the options leave out (foreign, another file system, a second view)
    cancelled,  ///< the walk was cancelled before it was opened
};

/// A progress report: the sums of what visitors reported, and a recent folder.
struct WalkProgress {
    std::int64_t items = 0;
    std::int64_t bytes = 0;
    std::string currentPath; ///< bytes
};

/// How to walk.
struct WalkOptions {
    /// Leave out every name beginning with '.' (files and folders).
    bool skipHidden = false;
    /// Folder names never listed nor reported (exact, case-sensitive bytes), at any depth.
    std::vector<std::string> pruneNames;
    /// Folders deeper than this below the root are neither reported nor entered (-1: no limit).
    int maxDepth = -1;
    /// Enter no mount point below the root (like du -x; bind mounts of the same disk included).
    bool oneFilesystem = false;
    /// Enter pseudo, network and FUSE file systems below the root (off by default).
    bool enterForeignFilesystems = false;
    /// Stat every folder once opened and pass it to folderOpened() (measureTree needs the
    /// folders' own blocks; the size tree does not pay for it). A folder that cannot be opened
    /// is lstat'ed for unreadableFolderStat() then.
    bool statFolders = false;
    /// Tell files that are mount points themselves (a file bind-mounted over another) to
    /// mountedFileFound(). Checked only when the mount table lists a mount below the root (or
    /// cannot be read), so a walk with no mount below pays nothing for it.
    bool findMountedFiles = false;
    /// Follow a symbolic link given as the root itself (never one below it).
    bool followRootLink = true;
    /// Worker threads; 0 picks a number from the machine (more than the cores: folder reads
    /// block on a cold cache).
    unsigned threads = 0;
    /// Folder descriptors kept open at once for their subfolders; 0 picks a quarter of the
    /// process's limit. Past it, folders are opened by path (slower, never failing for it).
    int descriptorBudget = 0;
    /// Called on a worker thread at most once per `progressIntervalSeconds` (0: at every
    /// internal flush, for tests). Must be thread-safe and quick; may be empty.
    std::function<void(const WalkProgress&)> onProgress;
    double progressIntervalSeconds = 0.08;
};

/// The walk as one worker thread sees it; passed to every callback. Not copyable.
class WalkWorker {
public:
    WalkWorker() = default;
    WalkWorker(const WalkWorker&) = delete;
    WalkWorker& operator=(const WalkWorker&) = delete;

    /// This worker's index, below the count given to prepare().
    unsigned index() const { return m_index; }
    /// The path (bytes) of `name` in the folder this worker is reading now; with an empty name,
    /// of that folder itself. Builds the string on each call.
    std::string pathOf(std::string_view name) const;
    /// Adds to the progress counters (cheap: batched per worker, published throttled).
    void report(std::int64_t items, std::int64_t bytes) {
        m_pendingItems += items;
        m_pendingBytes += bytes;
        ++m_pendingReports;
    }

private:
    friend class ParallelWalk;
    unsigned m_index = 0;
    const void* m_folder = nullptr; // the walk's record of the current folder
    std::int64_t m_pendingItems = 0;
    std::int64_t m_pendingBytes = 0;
    int m_pendingReports = 0;
};

/// The code a walk runs for what it finds. See the file comment for threading.
class WalkVisitor {
public:
    virtual ~WalkVisitor() = default;

    /// Called once before the walk starts, with the number of workers.
    virtual void prepare(unsigned workers) { (void)workers; }
    /// A subfolder was listed (not a link: links are never followed). Return true and set
    /// `child` to have it opened and listed; false to leave it out.
    virtual bool folderFound(WalkWorker& worker, const WalkEntry& entry, FolderToken& child) = 0;
    /// Anything else was listed (file, link, FIFO, socket, device). Return true to have it
    /// lstat'ed: fileStat() follows, maybe on another worker, with `slot` handed back.
    virtual bool fileFound(WalkWorker& worker, const WalkEntry& entry, void*& slot) = 0;
    /// The lstat of an entry that fileFound() asked for; `info` is null when it failed (the
    /// entry vanished). `name` is its name in `parent`.
    virtual void fileStat(WalkWorker& worker, FolderToken parent, void* slot, std::string_view name,
                          const struct stat* info) = 0;
    /// The fileStat() calls of one batch for `folder` on this worker are done (a place to add
    /// per-worker sums to shared totals once per batch instead of once per file).
    virtual void statBatchDone(WalkWorker& worker, FolderToken folder) {
        (void)worker;
        (void)folder;
    }
    /// A folder was opened and is about to be listed; `info` is its stat with
    /// WalkOptions::statFolders (or when the walk stat'ed it anyway), else null. Also called
    /// for the root.
    virtual void folderOpened(WalkWorker& worker, FolderToken folder, const struct stat* info) {
        (void)worker;
        (void)folder;
        (void)info;
    }
    /// A folder that folderFound() accepted will not be listed, and why.
    virtual void folderSkipped(WalkWorker& worker, FolderToken folder, FolderSkip why) {
        (void)worker;
        (void)folder;
        (void)why;
    }
    /// With WalkOptions::statFolders, the lstat of a folder that could not be opened (null when
    /// that failed too), just before its folderSkipped(unreadable): a visitor that counts the
    /// folders' own blocks counts this one's too, as du does.
    virtual void unreadableFolderStat(WalkWorker& worker, FolderToken folder,
                                      const struct stat* info) {
        (void)worker;
        (void)folder;
        (void)info;
    }
    /// The listing of an opened folder failed part way (`error` is the errno): the entries
    /// before were passed on, the rest of the folder was not seen.
    virtual void listingFailed(WalkWorker& worker, FolderToken folder, int error) {
        (void)worker;
        (void)folder;
        (void)error;
    }
    /// With WalkOptions::findMountedFiles, an entry that fileFound() asked to have stat'ed is a
    /// mount point (a bind-mounted file); its fileStat() follows with the mounted file's stat.
    virtual void mountedFileFound(WalkWorker& worker, FolderToken parent, std::string_view name) {
        (void)worker;
        (void)parent;
        (void)name;
    }
};

} // namespace sondrel
