#include "platform/app_catalogue.h"

#include "core/fs/measure_tree.h"
#include "platform/app_leftovers.h"

#include <algorithm>
#include <cstdlib>
#include <sys/stat.h>

namespace sondrel {

SystemRoots SystemRoots::forThisMachine() {
    SystemRoots roots;
    roots.dpkgAdminDir = "/var/lib/dpkg";
    roots.flatpakSystemDir = "/var/lib/flatpak";
    roots.snapDir = "/snap";
    roots.snapDesktopDir = "/var/lib/snapd/desktop/applications";
    roots.snapSnapsDir = "/var/lib/snapd/snaps";
    const char* path = std::getenv("PATH");
    const std::string text = path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= text.size()) {
        const auto colon = text.find(':', start);
        const std::string dir =
            text.substr(start, colon == std::string::npos ? colon : colon - start);
        if (!dir.empty() && dir.front() == '/') {
            roots.pathDirs.push_back(dir);
        }
        if (colon == std::string::npos) {
            break;
        }
        start = colon + 1;
    }
    return roots;
}

std::int64_t appItemSize(const std::string& path, HomeLayout layout, const CancelToken& cancel) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0) {
        return 0;
    }
    if (layout == HomeLayout::macos && !S_ISDIR(info.st_mode)) {
        return std::max<std::int64_t>(0, info.st_size);
    }
    const TreeSize size = measureTree(path, MeasureOptions{}, cancel);
    // A link or a tiny file may own no blocks; its length still says it is there.
    return size.allocated > 0 ? size.allocated : size.apparent;
}

std::vector<AppInfo> listApplications(const Locations& locations, const SystemRoots& roots,
                                      const CancelToken& cancel) {
    return locations.layout == HomeLayout::macos ? listMacosBundles(locations, cancel)
                                                 : listLinuxApps(locations, roots, cancel);
}

AppDiscovery discoverApps(const Locations& locations, const SystemRoots& roots,
                          const CancelToken& cancel, std::int64_t now,
                          const AppDiscoveryProgress& progress) {
    AppDiscovery result;
    if (progress) {
        progress("Discovering installed applications...");
    }
    result.apps = listApplications(locations, roots, cancel);
    if (progress) {
        progress("Finding leftovers...");
    }
    for (AppInfo& app : result.apps) {
        if (cancel.isCancelled()) {
            break;
        }
        app.associatedItems = findAssociatedFiles(locations, app, cancel);
    }
    std::stable_sort(
        result.apps.begin(), result.apps.end(),
        [](const AppInfo& a, const AppInfo& b) { return a.totalSize() > b.totalSize(); });
    if (progress) {
        progress("Looking for orphaned leftovers...");
    }
    if (!cancel.isCancelled()) {
        result.orphans = findOrphanedLeftovers(locations, result.apps, roots, now, cancel);
    }
    result.cancelled = cancel.isCancelled();
    return result;
}

} // namespace sondrel
