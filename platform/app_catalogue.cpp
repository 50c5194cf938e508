#include "platform/app_catalogue.h"

#include "core/fs/measure_tree.h"
#include "core/util/path_text.h"
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

std::string findIconFile(const Locations& locations, const std::string& icon) {
    const auto isFile = [](const std::string& path) {
        struct stat info {};
        return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
    };
    if (icon.empty()) {
        return "";
    }
    if (icon.front() == '/') {
        const std::string extension = asciiLower(pathExtension(icon));
        return (extension == "png" || extension == "svg") && isFile(icon) ? icon : "";
    }
    std::vector<std::string> bases{joinPath(locations.dataHome, "icons")};
    for (const std::string& dir : locations.dataDirs) {
        bases.push_back(joinPath(dir, "icons"));
    }
    for (const std::string& base : bases) {
        for (const char* size : {"64x64", "48x48", "128x128", "scalable", "256x256", "32x32"}) {
            for (const char* extension : {".png", ".svg"}) {
                const std::string path =
                    joinPath(base, "hicolor/" + std::string(size) + "/apps/" + icon + extension);
                if (isFile(path)) {
                    return path;
                }
            }
        }
    }
    for (const std::string& dir : locations.dataDirs) {
        for (const char* extension : {".png", ".svg"}) {
            const std::string path = joinPath(dir, "pixmaps/" + icon + extension);
            if (isFile(path)) {
                return path;
            }
        }
    }
    return "";
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
        app.iconFile = findIconFile(locations, app.icon);
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
