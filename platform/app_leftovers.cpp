#include "platform/app_leftovers.h"

#include "core/apps/app_file_access.h"
#include "core/apps/dpkg_database.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string_view>

namespace sondrel {

namespace {

// Names of the macOS Library that belong to the system or to vendors whose folders are shared.
constexpr std::string_view kExclusionWords[] = {
    "apple",    "com.apple",       "google",      "microsoft",        "adobe",
    "icloud",   "clouddocs",       "addressbook", "calendars",        "callhistorydb",
    "coredata", "fontcollections", "accounts",    "identityservices", "messages",
    "mail",     "safari",          "quick look",  "spotlight",        "cloudkit"};
static_assert(std::size(kExclusionWords) == 20);

// Linux names that belong to the toolkits, the desktop, shells, version control and the
// user's own tools: their folders are never offered as orphans.
constexpr std::string_view kKeepWords[] = {
    "gtk",           "dconf",        "pulse",       "fontconfig",    "systemd",    "kde",
    "gnome",         "xdg",          "qtproject",   "qt5",           "qt6",        "ibus",
    "fcitx",         "mesa",         "nvidia",      "dbus",          "session",    "autostart",
    "mime",          "applications", "icons",       "themes",        "fonts",      "trash",
    "recently-used", "keyring",      "user-dirs",   "menus",         "desktop",    "sounds",
    "gvfs",          "tracker",      "evolution",   "nautilus",      "thumbnails", "flatpak",
    "snap",          "pipewire",     "wireplumber", "xfce",          "xsettings",  "lxqt",
    "mate",          "cinnamon",     "kwin",        "plasma",        "akonadi",    "baloo",
    "bash",          "zsh",          "fish",        "git",           "vim",        "emacs",
    "ssh",           "gnupg",        "gpg",         "pki",           "nss",        "python",
    "pip",           "npm",          "node",        "cargo",         "rust",       "go-build",
    "java",          "ccache",       "sondrel",     "environment.d", "containers"};

std::string lower(std::string_view text) {
    return asciiLower(text);
}

bool insideHome(const Locations& locations, const std::string& path) {
    return startsWith(path, locations.home + "/") && path.size() > locations.home.size() + 1;
}

// Appends the candidate when its path is new, it exists and it has a size.
void consider(const Locations& locations, std::set<std::string>& seen,
              std::vector<AssociatedItem>& items, const std::string& path, AssociatedFileType type,
              const CancelToken& cancel) {
    if (!seen.insert(path).second || !insideHome(locations, path)) {
        return;
    }
    const std::int64_t size = appItemSize(path, locations.layout, cancel);
    if (size <= 0) {
        return;
    }
    AssociatedItem item;
    item.id = newItemId();
    item.path = path;
    item.type = type;
    item.size = size;
    items.push_back(std::move(item));
}

std::vector<AssociatedItem> macosAssociatedFiles(const Locations& locations, const AppInfo& app,
                                                 const CancelToken& cancel) {
    const std::string library = joinPath(locations.home, "Library");
    const std::string& name = app.name;
    const std::string& id = app.identifier;
    const std::array<std::pair<std::string, AssociatedFileType>, 10> candidates{{
        {"Application Support/" + name, AssociatedFileType::appSupport},
        {"Application Support/" + id, AssociatedFileType::appSupport},
        {"Caches/" + id, AssociatedFileType::caches},
        {"Caches/" + name, AssociatedFileType::caches},
        {"Containers/" + id, AssociatedFileType::container},
        {"Preferences/" + id + ".plist", AssociatedFileType::preferences},
        {"Saved Application State/" + id + ".savedState", AssociatedFileType::savedState},
        {"WebKit/" + id, AssociatedFileType::webkit},
        {"Logs/" + name, AssociatedFileType::logs},
        {"Logs/" + id, AssociatedFileType::logs},
    }};
    std::set<std::string> seen;
    std::vector<AssociatedItem> items;
    for (const auto& [relative, type] : candidates) {
        consider(locations, seen, items, joinPath(library, relative), type, cancel);
    }
    return items;
}

// A name usable as one path component.
bool usableName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

std::vector<AssociatedItem> linuxAssociatedFiles(const Locations& locations, const AppInfo& app,
                                                 const CancelToken& cancel) {
    std::vector<std::string> names;
    for (const std::string& name : {app.name, app.identifier, app.package}) {
        if (usableName(name) && std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    const std::array<std::pair<std::string, AssociatedFileType>, 4> folders{{
        {locations.configHome, AssociatedFileType::preferences},
        {locations.dataHome, AssociatedFileType::appSupport},
        {locations.cacheHome, AssociatedFileType::caches},
        {locations.stateHome, AssociatedFileType::savedState},
    }};
    std::set<std::string> seen;
    std::vector<AssociatedItem> items;
    for (const auto& [folder, type] : folders) {
        for (const std::string& name : names) {
            consider(locations, seen, items, joinPath(folder, name), type, cancel);
        }
    }
    if (app.kind == AppKind::flatpak && usableName(app.identifier)) {
        consider(locations, seen, items, joinPath(locations.home, ".var/app/" + app.identifier),
                 AssociatedFileType::container, cancel);
    }
    if (app.kind == AppKind::snap && usableName(app.package)) {
        consider(locations, seen, items, joinPath(locations.home, "snap/" + app.package),
                 AssociatedFileType::container, cancel);
    }
    if (usableName(app.identifier)) {
        consider(locations, seen, items,
                 joinPath(locations.configHome, "autostart/" + app.identifier + ".desktop"),
                 AssociatedFileType::preferences, cancel);
    }
    return items;
}

void sortLargestFirst(std::vector<AssociatedItem>& items) {
    std::stable_sort(
        items.begin(), items.end(),
        [](const AssociatedItem& a, const AssociatedItem& b) { return a.size > b.size; });
}

std::vector<AssociatedItem> macosOrphans(const Locations& locations,
                                         const std::vector<AppInfo>& apps,
                                         const CancelToken& cancel) {
    std::set<std::string> knownNames;
    std::set<std::string> knownIds;
    for (const AppInfo& app : apps) {
        knownNames.insert(lower(app.name));
        knownIds.insert(lower(app.identifier));
    }
    const std::string library = joinPath(locations.home, "Library");
    const std::string trash = joinPath(locations.dataHome, "Trash"); // where this layout trashes
    const std::array<std::pair<std::string, AssociatedFileType>, 3> folders{{
        {"Application Support", AssociatedFileType::appSupport},
        {"Caches", AssociatedFileType::caches},
        {"Saved Application State", AssociatedFileType::savedState},
    }};
    std::vector<AssociatedItem> items;
    for (const auto& [relative, type] : folders) {
        const std::string folder = joinPath(library, relative);
        for (const FolderEntry& entry : listFolder(folder)) {
            if (cancel.isCancelled()) {
                return items;
            }
            const std::string n = lower(entry.name);
            const auto containsAny = [&n](const auto& words) {
                return std::any_of(words.begin(), words.end(),
                                   [&n](const auto& word) { return contains(n, word); });
            };
            if (entry.name.front() == '.' || joinPath(folder, entry.name) == trash ||
                containsAny(std::span(kExclusionWords)) || containsAny(knownNames) ||
                containsAny(knownIds)) {
                continue;
            }
            const std::string path = joinPath(folder, entry.name);
            const std::int64_t size = appItemSize(path, locations.layout, cancel);
            if (size > kOrphanMinimumBytes) {
                items.push_back(AssociatedItem{newItemId(), path, type, size, true});
            }
        }
    }
    sortLargestFirst(items);
    return items;
}

// The names Linux orphans are matched against.
struct KnownLinuxNames {
    std::vector<std::string> appWords; ///< lower-cased app names and identifiers (3+ bytes)
    std::set<std::string> exact;       ///< packages, executables on the path, snap names
    std::set<std::string> flatpaks;    ///< installed Flatpak ids
};

KnownLinuxNames knownLinuxNames(const Locations& locations, const std::vector<AppInfo>& apps,
                                const SystemRoots& roots) {
    KnownLinuxNames known;
    const auto addWord = [&known](const std::string& word) {
        if (word.size() >= 3) {
            known.appWords.push_back(lower(word));
        }
    };
    for (const AppInfo& app : apps) {
        addWord(app.name);
        addWord(app.identifier);
        addWord(app.package);
        if (const auto dot = app.identifier.rfind('.'); dot != std::string::npos) {
            addWord(app.identifier.substr(dot + 1)); // org.example.Editor -> editor
        }
        if (app.kind == AppKind::flatpak) {
            known.flatpaks.insert(app.identifier);
        }
        for (const std::string& executable : app.executables) {
            known.exact.insert(lower(lastPathComponent(executable)));
        }
    }
    if (!roots.dpkgAdminDir.empty()) {
        const DpkgDatabase dpkg = DpkgDatabase::load(roots.dpkgAdminDir, {});
        for (const std::string& name : dpkg.packageNames()) {
            known.exact.insert(lower(name));
        }
    }
    std::vector<std::string> pathDirs = roots.pathDirs;
    pathDirs.push_back(joinPath(locations.home, ".local/bin"));
    pathDirs.push_back(joinPath(locations.home, "bin"));
    for (const std::string& dir : pathDirs) {
        for (const FolderEntry& entry : listFolder(dir)) {
            known.exact.insert(lower(entry.name));
        }
    }
    return known;
}

// Whether a lower-cased name is claimed by something installed: it contains an application's
// name or identifier, or it or one of its words (split at . - _ and spaces) is a package or a
// program on the path.
bool claimedOnLinux(const std::string& n, const KnownLinuxNames& known) {
    for (const std::string& word : known.appWords) {
        if (contains(n, word)) {
            return true;
        }
    }
    if (known.exact.count(n) != 0) {
        return true;
    }
    std::size_t start = 0;
    while (start <= n.size()) {
        const auto end = n.find_first_of(".-_ ", start);
        const std::string token = n.substr(start, end == std::string::npos ? end : end - start);
        if (token.size() >= 2 && known.exact.count(token) != 0) {
            return true;
        }
        if (end == std::string::npos) {
            break;
        }
        start = end + 1;
    }
    return false;
}

std::vector<AssociatedItem> linuxOrphans(const Locations& locations,
                                         const std::vector<AppInfo>& apps, const SystemRoots& roots,
                                         std::int64_t now, const CancelToken& cancel) {
    const KnownLinuxNames known = knownLinuxNames(locations, apps, roots);
    std::vector<AssociatedItem> items;
    const auto keepIfQuietAndLarge = [&](const std::string& path, AssociatedFileType type) {
        if (!insideHome(locations, path)) {
            return;
        }
        const auto changed = newestChange(path, cancel);
        if (!changed || *changed > now - kOrphanQuietSeconds) {
            return;
        }
        const std::int64_t size = appItemSize(path, locations.layout, cancel);
        if (size > kOrphanMinimumBytes) {
            items.push_back(AssociatedItem{newItemId(), path, type, size, true});
        }
    };
    const std::string varApp = joinPath(locations.home, ".var/app");
    for (const FolderEntry& entry : listFolder(varApp)) {
        if (!cancel.isCancelled() && entry.name.front() != '.' &&
            known.flatpaks.count(entry.name) == 0) {
            keepIfQuietAndLarge(joinPath(varApp, entry.name), AssociatedFileType::container);
        }
    }
    const std::array<std::pair<std::string, AssociatedFileType>, 3> folders{{
        {locations.configHome, AssociatedFileType::preferences},
        {locations.dataHome, AssociatedFileType::appSupport},
        {locations.cacheHome, AssociatedFileType::caches},
    }};
    for (const auto& [folder, type] : folders) {
        for (const FolderEntry& entry : listFolder(folder)) {
            if (cancel.isCancelled()) {
                return items;
            }
            const std::string n = lower(entry.name);
            if (entry.name.front() == '.' || hasKeepWord(n) || claimedOnLinux(n, known)) {
                continue;
            }
            keepIfQuietAndLarge(joinPath(folder, entry.name), type);
        }
    }
    sortLargestFirst(items);
    return items;
}

} // namespace

bool hasKeepWord(const std::string& name) {
    const auto has = [&name](std::string_view word) { return contains(name, word); };
    return std::any_of(std::begin(kKeepWords), std::end(kKeepWords), has) ||
           std::any_of(std::begin(kExclusionWords), std::end(kExclusionWords), has);
}

std::vector<AssociatedItem> findAssociatedFiles(const Locations& locations, const AppInfo& app,
                                                const CancelToken& cancel) {
    return locations.layout == HomeLayout::macos ? macosAssociatedFiles(locations, app, cancel)
                                                 : linuxAssociatedFiles(locations, app, cancel);
}

std::vector<AssociatedItem> findOrphanedLeftovers(const Locations& locations,
                                                  const std::vector<AppInfo>& apps,
                                                  const SystemRoots& roots, std::int64_t now,
                                                  const CancelToken& cancel) {
    return locations.layout == HomeLayout::macos
               ? macosOrphans(locations, apps, cancel)
               : linuxOrphans(locations, apps, roots, now, cancel);
}

} // namespace sondrel
