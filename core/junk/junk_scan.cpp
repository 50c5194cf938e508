#include "core/junk/junk_scan.h"

#include "core/fs/folder_listing.h"
#include "core/fs/measure_tree.h"
#include "core/fs/parallel_walk.h"
#include "core/junk/junk_tables.h"
#include "core/model/byte_format.h"
#include "core/model/platform_terms.h"
#include "core/removal/path_safety.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <fnmatch.h>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

std::uint64_t nextId() {
    static std::atomic<std::uint64_t> counter{0};
    return ++counter;
}

// The title and description of each group, in the words of the macOS layout; the Linux layout
// passes them through the platform terms.
struct GroupText {
    JunkType type;
    const char* title;
    const char* description;
};

constexpr GroupText kGroupTexts[] = {
    {JunkType::xcode, "Xcode & Developer Caches",
     "DerivedData, iOS device support logs, and build artifacts that can be safely rebuilt."},
    {JunkType::nodeModules, "Node Modules Packages",
     "Duplicate or unused node_modules directories found across your workspace."},
    {JunkType::userCaches, "User Application Caches",
     "Temporary internet and app caches stored in ~/Library/Caches."},
    {JunkType::logs, "App & Crash Logs",
     "Diagnostic reports, crash dumps, and historical application logs."},
    {JunkType::trash, "macOS Trash",
     "Items currently sitting in your Trash waiting to be permanently removed."},
};

std::string localText(const JunkFolders& folders, std::string_view text) {
    return folders.macosLayout ? std::string(text)
                               : withPlatformTerms(text, TextPlatform::gnuLinux);
}

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? std::string("/") : path.substr(0, slash);
}

std::string lastComponent(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// What one path measures: a folder its allocated bytes, anything else its length.
struct Measured {
    bool exists = false;
    bool isFolder = false;
    bool isLink = false;
    std::int64_t size = 0;
    std::int64_t modifiedSeconds = 0;
};

class Measurer {
public:
    Measurer(const JunkScanOptions& options, const CancelToken& cancel) : m_cancel(cancel) {
        m_options.threads = options.threads;
    }

    Measured measure(const std::string& path) const {
        Measured result;
        struct stat info {};
        if (lstat(path.c_str(), &info) != 0) {
            return result;
        }
        result.exists = true;
        result.isLink = S_ISLNK(info.st_mode);
        result.isFolder = S_ISDIR(info.st_mode);
        result.modifiedSeconds = static_cast<std::int64_t>(info.st_mtim.tv_sec);
        if (result.isFolder) {
            result.size = measureTree(path, m_options, m_cancel).allocated;
        } else {
            result.size = std::max<std::int64_t>(0, info.st_size);
        }
        return result;
    }

private:
    MeasureOptions m_options;
    const CancelToken& m_cancel;
};

// The names in `folder` (bytes), in listing order; hidden names left out with `skipHidden`.
// An unreadable folder gives nothing.
std::vector<std::string> listNames(const std::string& folder, bool skipHidden) {
    std::vector<std::string> names;
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return names;
    }
    auto buffer = std::make_unique<std::byte[]>(kListingBufferBytes);
    forEachEntryAt(fd, buffer.get(), kListingBufferBytes, [&](const ListedEntry& entry) {
        if (!(skipHidden && entry.name.front() == '.')) {
            names.emplace_back(entry.name);
        }
        return true;
    });
    close(fd);
    std::sort(names.begin(), names.end());
    return names;
}

JunkItem makeItem(std::string title, std::string path, const Measured& measured, std::string detail,
                  bool selected, JunkType type, std::string root) {
    JunkItem item;
    item.id = nextId();
    item.title = std::move(title);
    item.path = std::move(path);
    item.size = measured.size;
    item.detail = std::move(detail);
    item.isSelected = selected;
    item.type = type;
    item.root = std::move(root);
    item.isLink = measured.isLink;
    item.modifiedSeconds = measured.modifiedSeconds;
    return item;
}

void sortLargestFirst(std::vector<JunkItem>& items) {
    std::stable_sort(items.begin(), items.end(),
                     [](const JunkItem& a, const JunkItem& b) { return a.size > b.size; });
}

const std::vector<JunkCacheRow>& developerRows(const JunkFolders& folders) {
    return folders.macosLayout ? macosDeveloperCaches() : linuxDeveloperCaches();
}

std::vector<JunkItem> scanDeveloperCaches(const JunkFolders& folders, const Measurer& measurer,
                                          const CancelToken& cancel) {
    std::vector<JunkItem> items;
    for (const JunkCacheRow& row : developerRows(folders)) {
        if (cancel.isCancelled()) {
            break;
        }
        const std::string path = junkPath(folders, row.base, row.relative);
        const Measured measured = measurer.measure(path);
        // A link in place of a cache folder is not the cache: its target may be anywhere.
        if (!measured.exists || measured.isLink || measured.size <= kJunkSmallThreshold) {
            continue;
        }
        items.push_back(makeItem(std::string(row.title), path, measured,
                                 localText(folders, row.detail), true, JunkType::xcode,
                                 parentOf(path)));
    }
    return items;
}

std::vector<std::string> dependencyRoots(const JunkFolders& folders) {
    std::vector<std::string> roots;
    auto add = [&](const std::string& root) {
        if (root.empty() || root == folders.home) {
            return;
        }
        for (const std::string& known : roots) {
            if (known == root) {
                return;
            }
        }
        roots.push_back(root);
    };
    if (folders.macosLayout) {
        for (std::string_view name : macosDependencyRoots()) {
            add(folders.home + "/" + std::string(name));
        }
        return roots;
    }
    for (std::string_view name : linuxDependencyRoots()) {
        add(folders.home + "/" + std::string(name));
    }
    add(folders.desktop);
    add(folders.documents);
    return roots;
}

// Collects the node_modules folders of a tree without entering them or any hidden folder.
class DependencyFinder final : public WalkVisitor {
public:
    void prepare(unsigned workers) override { m_found.assign(workers, {}); }

    bool folderFound(WalkWorker& worker, const WalkEntry& entry, FolderToken&) override {
        if (entry.name == "node_modules") {
            m_found[worker.index()].push_back(worker.pathOf(entry.name));
            return false;
        }
        return true;
    }

    bool fileFound(WalkWorker&, const WalkEntry&, void*&) override { return false; }

    void fileStat(WalkWorker&, FolderToken, void*, std::string_view, const struct stat*) override {}

    std::vector<std::string> found() const {
        std::vector<std::string> all;
        for (const std::vector<std::string>& paths : m_found) {
            all.insert(all.end(), paths.begin(), paths.end());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

private:
    std::vector<std::vector<std::string>> m_found;
};

// True when `root` is a folder (a link to one counts: a home may link ~/projects elsewhere)
// that this process can list.
bool isReadableFolder(const std::string& root) {
    struct stat info {};
    return stat(root.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
           access(root.c_str(), R_OK | X_OK) == 0;
}

std::vector<JunkItem> scanNodeModules(const JunkFolders& folders, const Measurer& measurer,
                                      const JunkScanOptions& options, const CancelToken& cancel) {
    std::vector<JunkItem> items;
    std::set<std::string> seen;
    for (const std::string& root : dependencyRoots(folders)) {
        if (cancel.isCancelled() || !isReadableFolder(root)) {
            continue;
        }
        DependencyFinder finder;
        WalkOptions walk;
        walk.skipHidden = true;
        walk.threads = options.threads;
        walkTree(root, FolderToken{}, walk, finder, cancel);
        for (const std::string& path : finder.found()) {
            if (cancel.isCancelled() || !seen.insert(path).second) {
                continue;
            }
            const Measured measured = measurer.measure(path);
            if (!measured.isFolder || measured.size <= kJunkLargeThreshold) {
                continue;
            }
            const std::string project = lastComponent(parentOf(path));
            items.push_back(makeItem(project + "/node_modules", path, measured,
                                     "Project dependencies", false, JunkType::nodeModules, root));
        }
    }
    return items;
}

std::vector<JunkItem> scanUserCaches(const JunkFolders& folders, const Measurer& measurer,
                                     const JunkScanOptions& options,
                                     const std::vector<std::string>& claimed,
                                     const CancelToken& cancel) {
    std::vector<JunkItem> items;
    const std::string& cache = folders.cacheHome;
    if (!isReadableFolder(cache)) {
        return items;
    }
    for (const std::string& name : listNames(cache, true)) {
        if (cancel.isCancelled()) {
            break;
        }
        if (!folders.macosLayout && isKeptUserCache(name)) {
            continue;
        }
        const std::string path = cache + "/" + name;
        // A developer cache is listed in its own group only: no byte shows twice.
        const bool isClaimed = std::any_of(claimed.begin(), claimed.end(), [&](const auto& c) {
            return isWithinFolder(c, path) || isWithinFolder(path, c);
        });
        if (isClaimed) {
            continue;
        }
        const Measured measured = measurer.measure(path);
        if (!measured.exists || measured.size <= kJunkLargeThreshold) {
            continue;
        }
        const bool writable =
            options.isWritable ? options.isWritable(path) : access(path.c_str(), W_OK) == 0;
        JunkItem item = makeItem(name, path, measured,
                                 writable ? "Application cache data"
                                          : "Root-owned cache (requires admin permissions)",
                                 true, JunkType::userCaches, cache);
        item.isPermissionLocked = !writable;
        items.push_back(std::move(item));
    }
    sortLargestFirst(items);
    if (items.size() > kJunkUserCacheLimit) {
        items.resize(kJunkUserCacheLimit);
    }
    return items;
}

std::vector<JunkItem> scanLogs(const JunkFolders& folders, const Measurer& measurer,
                               const CancelToken& cancel) {
    std::vector<JunkItem> items;
    const auto& sources = folders.macosLayout ? macosLogSources() : linuxLogSources();
    std::set<std::string> seen;
    for (const JunkLogSource& source : sources) {
        const std::string folder = junkPath(folders, source.base, source.relative);
        const std::string pattern(source.pattern);
        // A pattern that names hidden entries lists them; "*" and the like leave them out.
        const bool skipHidden = pattern.front() != '.';
        for (const std::string& name : listNames(folder, skipHidden)) {
            if (cancel.isCancelled()) {
                return items;
            }
            if (fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD) != 0) {
                continue;
            }
            const std::string path = folder + "/" + name;
            if (!seen.insert(path).second) {
                continue;
            }
            const Measured measured = measurer.measure(path);
            if (!measured.exists || measured.isLink || measured.size <= kJunkSmallThreshold) {
                continue;
            }
            items.push_back(makeItem(name, path, measured, "Log files and crash traces", true,
                                     JunkType::logs, folder));
        }
    }
    sortLargestFirst(items);
    return items;
}

std::vector<JunkItem> scanTrash(const JunkFolders& folders, const Measurer& measurer,
                                const CancelToken& cancel) {
    std::vector<JunkItem> items;
    for (const std::string& name : listNames(folders.trashFiles, false)) {
        if (cancel.isCancelled()) {
            break;
        }
        const std::string path = folders.trashFiles + "/" + name;
        const Measured measured = measurer.measure(path);
        if (!measured.exists) {
            continue;
        }
        items.push_back(makeItem(name, path, measured,
                                 localText(folders, "Deleted item in macOS Trash"), true,
                                 JunkType::trash, folders.trashFiles));
    }
    sortLargestFirst(items);
    return items;
}

} // namespace

std::vector<JunkGroup> scanJunk(const JunkFolders& folders, const JunkScanOptions& options,
                                const CancelToken& cancel) {
    const Measurer measurer(options, cancel);
    std::vector<std::vector<JunkItem>> found(5);
    found[0] = scanDeveloperCaches(folders, measurer, cancel);
    found[1] = scanNodeModules(folders, measurer, options, cancel);
    std::vector<std::string> claimed;
    for (const JunkCacheRow& row : developerRows(folders)) {
        claimed.push_back(junkPath(folders, row.base, row.relative));
    }
    found[2] = scanUserCaches(folders, measurer, options, claimed, cancel);
    found[3] = scanLogs(folders, measurer, cancel);
    found[4] = scanTrash(folders, measurer, cancel);

    std::vector<JunkGroup> groups;
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (found[i].empty()) {
            continue;
        }
        JunkGroup group;
        group.id = nextId();
        group.type = kGroupTexts[i].type;
        group.title = localText(folders, kGroupTexts[i].title);
        group.description = localText(folders, kGroupTexts[i].description);
        group.items = std::move(found[i]);
        groups.push_back(std::move(group));
    }
    return groups;
}

std::vector<JunkGroup> scanJunk(const JunkFolders& folders, const CancelToken& cancel) {
    return scanJunk(folders, JunkScanOptions{}, cancel);
}

std::vector<std::string> junkRoots(const JunkFolders& folders) {
    std::vector<std::string> roots;
    auto add = [&](const std::string& root) {
        if (!root.empty() && std::find(roots.begin(), roots.end(), root) == roots.end()) {
            roots.push_back(root);
        }
    };
    for (const JunkCacheRow& row : developerRows(folders)) {
        add(parentOf(junkPath(folders, row.base, row.relative)));
    }
    for (const std::string& root : dependencyRoots(folders)) {
        add(root);
    }
    add(folders.cacheHome);
    for (const JunkLogSource& source :
         folders.macosLayout ? macosLogSources() : linuxLogSources()) {
        add(junkPath(folders, source.base, source.relative));
    }
    add(folders.trashFiles);
    return roots;
}

std::string junkFoundText(const std::vector<JunkGroup>& groups) {
    return "Found " + formatBytes(junkTotalSize(groups)) + " of cleanable space";
}

} // namespace sondrel
