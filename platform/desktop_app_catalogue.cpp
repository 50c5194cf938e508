// The Linux catalogue: desktop entries (desktop-file ID rules over the application folders)
// matched to what installed them (a Debian package, an AppImage, or nothing), Flatpak apps of
// the user and system installations, and Snaps with desktop entries.

#include "core/apps/app_file_access.h"
#include "core/apps/desktop_entry.h"
#include "core/apps/dpkg_database.h"
#include "core/util/path_text.h"
#include "platform/app_catalogue.h"

#include <dirent.h>
#include <map>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

constexpr std::size_t kMaxDesktopFileBytes = 1024 * 1024;

// One desktop entry that won its desktop-file ID.
struct FoundEntry {
    std::string id;   ///< desktop-file ID, with ".desktop"
    std::string path; ///< where it lies
    DesktopEntry entry;
};

std::string withoutDesktopSuffix(const std::string& id) {
    return endsWith(id, ".desktop") ? id.substr(0, id.size() - 8) : id;
}

// The visible application entries: the first file of each ID over the folders in order wins
// (a hidden or malformed winner still hides the later ones), then NoDisplay, Hidden and
// non-application entries are dropped.
std::vector<FoundEntry> visibleEntries(const std::vector<std::string>& folders,
                                       const CancelToken& cancel) {
    std::set<std::string> seen;
    std::vector<FoundEntry> found;
    for (const std::string& folder : folders) {
        for (const std::string& relative : findFilesBySuffix(folder, ".desktop", 8)) {
            if (cancel.isCancelled()) {
                return found;
            }
            std::string id = desktopFileId(relative);
            if (!seen.insert(id).second) {
                continue;
            }
            const std::string path = joinPath(folder, relative);
            const auto text = readSmallFile(path, kMaxDesktopFileBytes);
            if (!text) {
                continue;
            }
            auto entry = parseDesktopEntry(*text);
            if (!entry || entry->value("Type") != "Application" || entry->flag("NoDisplay") ||
                entry->flag("Hidden")) {
                continue;
            }
            found.push_back(FoundEntry{std::move(id), path, std::move(*entry)});
        }
    }
    return found;
}

bool isAppImagePath(const std::string& path) {
    return asciiLower(pathExtension(path)) == "appimage" || hasAppImageMagic(path);
}

// Allocated bytes of the regular files and links a package lists, each inode once, and its
// executables (regular files with an execute bit).
struct PackageFiles {
    std::int64_t size = 0;
    std::vector<std::string> executables;
};

PackageFiles measurePackage(const DpkgDatabase& dpkg, const std::string& package) {
    PackageFiles result;
    std::set<std::pair<dev_t, ino_t>> seen;
    for (const std::string& file : dpkg.filesOf(package)) {
        struct stat info {};
        if (lstat(file.c_str(), &info) != 0 || S_ISDIR(info.st_mode)) {
            continue;
        }
        if (!seen.emplace(info.st_dev, info.st_ino).second) {
            continue;
        }
        result.size += static_cast<std::int64_t>(info.st_blocks) * 512;
        if (S_ISREG(info.st_mode) && (info.st_mode & 0111) != 0) {
            result.executables.push_back(file);
        }
    }
    return result;
}

// "version" from the first <release> element of a metainfo file, "" when there is none.
std::string metainfoVersion(const std::string& deploy, const std::string& id) {
    for (const char* name : {".metainfo.xml", ".appdata.xml"}) {
        for (const char* folder : {"files/share/metainfo", "files/share/appdata"}) {
            const auto text =
                readSmallFile(joinPath(joinPath(deploy, folder), id + name), 4 * 1024 * 1024);
            if (!text) {
                continue;
            }
            const auto release = text->find("<release ");
            const auto version =
                text->find("version=\"", release == std::string::npos ? text->size() : release);
            if (release != std::string::npos && version != std::string::npos) {
                const auto end = text->find('"', version + 9);
                if (end != std::string::npos) {
                    return text->substr(version + 9, end - version - 9);
                }
            }
        }
    }
    return "";
}

// A value of "key: value" lines (snap.yaml's top level), "" when absent.
std::string yamlTopLevelValue(const std::string& text, const std::string& key) {
    std::size_t start = 0;
    while (start < text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        const std::string_view line(text.data() + start, end - start);
        start = end + 1;
        if (startsWith(line, key + ":")) {
            std::string value(line.substr(key.size() + 1));
            while (!value.empty() &&
                   (value.front() == ' ' || value.front() == '\'' || value.front() == '"')) {
                value.erase(0, 1);
            }
            while (!value.empty() &&
                   (value.back() == ' ' || value.back() == '\'' || value.back() == '"')) {
                value.pop_back();
            }
            return value;
        }
    }
    return "";
}

void fillFromEntry(AppInfo& app, const FoundEntry& found) {
    app.name = found.entry.value("Name");
    app.icon = found.entry.value("Icon");
    app.desktopFile = found.path;
    app.identifier = withoutDesktopSuffix(found.id);
}

void addFlatpaks(const std::string& installation, bool system, const Locations& locations,
                 const CancelToken& cancel, std::vector<AppInfo>& apps) {
    if (installation.empty()) {
        return;
    }
    const std::string appFolder = joinPath(installation, "app");
    for (const FolderEntry& child : listFolder(appFolder)) {
        if (cancel.isCancelled()) {
            return;
        }
        const std::string base = joinPath(appFolder, child.name);
        const std::string deploy = joinPath(base, "current/active");
        struct stat info {};
        if (child.name.front() == '.' || stat(deploy.c_str(), &info) != 0 ||
            !S_ISDIR(info.st_mode)) {
            continue;
        }
        AppInfo app;
        app.id = newItemId();
        app.kind = AppKind::flatpak;
        app.identifier = child.name;
        app.package = child.name;
        app.systemInstallation = system;
        app.name = child.name;
        app.location = base;
        const std::string entryPath =
            joinPath(joinPath(deploy, "export/share/applications"), child.name + ".desktop");
        if (const auto text = readSmallFile(entryPath, kMaxDesktopFileBytes)) {
            if (const auto entry = parseDesktopEntry(*text)) {
                app.name = entry->value("Name");
                app.icon = entry->value("Icon");
                app.desktopFile = entryPath;
            }
        }
        app.version = metainfoVersion(deploy, child.name);
        if (app.version.empty()) {
            app.version = "1.0";
        }
        app.bundleSize = appItemSize(base, locations.layout, cancel);
        apps.push_back(std::move(app));
    }
}

void addSnaps(const SystemRoots& roots, const Locations& locations, const CancelToken& cancel,
              std::vector<AppInfo>& apps) {
    if (roots.snapDir.empty()) {
        return;
    }
    const std::vector<FolderEntry> desktopFiles = listFolder(roots.snapDesktopDir);
    for (const FolderEntry& child : listFolder(roots.snapDir)) {
        if (cancel.isCancelled()) {
            return;
        }
        const std::string base = joinPath(roots.snapDir, child.name);
        char revision[256];
        const ssize_t length =
            readlink(joinPath(base, "current").c_str(), revision, sizeof revision - 1);
        if (length <= 0) {
            continue;
        }
        revision[length] = '\0';
        const FolderEntry* desktop = nullptr;
        for (const FolderEntry& file : desktopFiles) {
            if (startsWith(file.name, child.name + "_") && endsWith(file.name, ".desktop")) {
                desktop = &file;
                break;
            }
        }
        if (desktop == nullptr) {
            continue; // bases, the core and command-line snaps have no desktop entry
        }
        AppInfo app;
        app.id = newItemId();
        app.kind = AppKind::snap;
        app.identifier = child.name;
        app.package = child.name;
        app.name = child.name;
        app.location = base;
        app.desktopFile = joinPath(roots.snapDesktopDir, desktop->name);
        if (const auto text = readSmallFile(app.desktopFile, kMaxDesktopFileBytes)) {
            if (const auto entry = parseDesktopEntry(*text)) {
                app.name = entry->value("Name");
                app.icon = entry->value("Icon");
            }
        }
        const auto yaml = readSmallFile(joinPath(base, "current/meta/snap.yaml"), 1024 * 1024);
        app.version = yaml ? yamlTopLevelValue(*yaml, "version") : "";
        if (app.version.empty()) {
            app.version = "1.0";
        }
        const std::string snapFile =
            joinPath(roots.snapSnapsDir, child.name + "_" + std::string(revision) + ".snap");
        app.bundleSize = appItemSize(snapFile, locations.layout, cancel);
        app.executables.push_back(base + "/");
        apps.push_back(std::move(app));
    }
}

} // namespace

std::vector<AppInfo> listLinuxApps(const Locations& locations, const SystemRoots& roots,
                                   const CancelToken& cancel) {
    std::vector<AppInfo> apps;
    const DpkgDatabase dpkg = roots.dpkgAdminDir.empty()
                                  ? DpkgDatabase{}
                                  : DpkgDatabase::load(roots.dpkgAdminDir, {".desktop"});
    std::map<std::string, PackageFiles> packageFiles;
    std::set<std::string> appImagePaths;
    std::vector<std::string> appImageFiles;

    // AppImages in the usual folders, whether or not a desktop entry points at them.
    for (const char* folder : {"Applications", ".local/bin", "AppImages"}) {
        const std::string dir = joinPath(locations.home, folder);
        for (const FolderEntry& entry : listFolder(dir)) {
            const std::string path = joinPath(dir, entry.name);
            if ((entry.type == DT_REG || entry.type == DT_UNKNOWN) && isAppImagePath(path)) {
                appImageFiles.push_back(path);
            }
        }
    }

    for (FoundEntry& found : visibleEntries(locations.applicationDirs, cancel)) {
        if (cancel.isCancelled()) {
            return apps;
        }
        if (contains(found.path, "/flatpak/exports/") || !found.entry.value("X-Flatpak").empty() ||
            !found.entry.value("X-SnapInstanceName").empty() ||
            (!roots.snapDesktopDir.empty() && startsWith(found.path, roots.snapDesktopDir + "/"))) {
            continue; // listed by the Flatpak and Snap sources with their own sizes
        }
        AppInfo app;
        app.id = newItemId();
        fillFromEntry(app, found);
        app.version = "1.0";
        const std::string owner = dpkg.ownerOf(found.path);
        const std::string program = found.entry.program();
        if (!owner.empty()) {
            app.kind = AppKind::debian;
            app.package = owner;
            app.location = found.path;
            if (const DpkgPackage* package = dpkg.package(owner); package != nullptr) {
                app.version = package->version;
            }
            auto it = packageFiles.find(owner);
            if (it == packageFiles.end()) {
                it = packageFiles.emplace(owner, measurePackage(dpkg, owner)).first;
            }
            app.bundleSize = it->second.size;
            app.executables = it->second.executables;
        } else if (!program.empty() && program.front() == '/' && isAppImagePath(program)) {
            if (!appImagePaths.insert(program).second) {
                continue; // a second entry for the same AppImage
            }
            app.kind = AppKind::appImage;
            app.location = program;
            app.bundleSize = appItemSize(program, locations.layout, cancel);
            app.executables.push_back(program);
        } else {
            app.kind = AppKind::local;
            app.location = found.path;
            app.bundleSize = appItemSize(found.path, locations.layout, cancel);
            if (!program.empty() && program.front() == '/') {
                app.executables.push_back(program);
            }
        }
        apps.push_back(std::move(app));
    }

    for (const std::string& path : appImageFiles) {
        if (appImagePaths.count(path) != 0) {
            continue;
        }
        AppInfo app;
        app.id = newItemId();
        app.kind = AppKind::appImage;
        std::string stem(lastPathComponent(path));
        if (const auto dot = stem.rfind('.'); dot != std::string::npos && dot > 0) {
            stem.resize(dot);
        }
        app.name = stem;
        app.identifier = stem;
        app.version = "1.0";
        app.location = path;
        app.bundleSize = appItemSize(path, locations.layout, cancel);
        app.executables.push_back(path);
        apps.push_back(std::move(app));
    }

    addFlatpaks(joinPath(locations.dataHome, "flatpak"), false, locations, cancel, apps);
    addFlatpaks(roots.flatpakSystemDir, true, locations, cancel, apps);
    addSnaps(roots, locations, cancel, apps);
    return apps;
}

} // namespace sondrel
