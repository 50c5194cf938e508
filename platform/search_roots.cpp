#include "platform/search_roots.h"

#include "core/fs/folder_listing.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <cstddef>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// /proc/self/mounts escapes space, tab, newline and backslash as \ooo octal.
std::string unescapeMountField(const std::string& field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' &&
            field[i + 1] <= '7' && field[i + 2] >= '0' && field[i + 2] <= '7' &&
            field[i + 3] >= '0' && field[i + 3] <= '7') {
            out.push_back(static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                            (field[i + 3] - '0')));
            i += 3;
            continue;
        }
        out.push_back(field[i]);
    }
    return out;
}

std::vector<std::string> sortedSubfolders(const std::string& folder) {
    std::vector<std::string> names;
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        std::vector<std::byte> buffer(kListingBufferBytes);
        forEachEntryAt(fd, buffer.data(), buffer.size(), [&](const ListedEntry& entry) {
            std::string name(entry.name);
            if (isFolder(joinPath(folder, name))) {
                names.push_back(std::move(name));
            }
            return true;
        });
        ::close(fd);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool isCloudGvfsMount(const std::string& name) {
    const std::string scheme = name.substr(0, name.find(':'));
    return scheme == "google-drive" || scheme == "onedrive" || scheme == "dav" || scheme == "davs";
}

// "/a/./b/../c//" -> "/a/c"; relative paths are returned as they are.
std::string lexicallyNormal(const std::string& path) {
    if (path.empty() || path.front() != '/') {
        return path;
    }
    std::vector<std::string> parts;
    std::istringstream stream(path);
    std::string part;
    while (std::getline(stream, part, '/')) {
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            if (!parts.empty()) {
                parts.pop_back();
            }
            continue;
        }
        parts.push_back(part);
    }
    std::string out;
    for (const std::string& p : parts) {
        out += "/" + p;
    }
    return out.empty() ? "/" : out;
}

} // namespace

std::vector<std::string> cloudFolderPaths(const Locations& locations, const std::string& gvfsDir,
                                          const std::string& mountsText, uid_t uid) {
    std::vector<std::string> found;
    const auto addIfFolder = [&found](const std::string& path) {
        if (isFolder(path)) {
            found.push_back(path);
        }
    };
    if (locations.layout == HomeLayout::macos) {
        addIfFolder(joinPath(locations.home, "Library/CloudStorage"));
        addIfFolder(joinPath(locations.home, "Library/Mobile Documents/com~apple~CloudDocs"));
        return found;
    }
    for (const char* name : {"Dropbox", "Nextcloud", "OneDrive", "pCloudDrive", "Google Drive"}) {
        addIfFolder(joinPath(locations.home, name));
    }
    for (const std::string& name : sortedSubfolders(gvfsDir)) {
        if (isCloudGvfsMount(name)) {
            found.push_back(joinPath(gvfsDir, name));
        }
    }
    std::vector<std::string> rclone;
    std::istringstream lines(mountsText);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string device;
        std::string mountPoint;
        std::string type;
        if (!(fields >> device >> mountPoint >> type) || type != "fuse.rclone") {
            continue;
        }
        mountPoint = unescapeMountField(mountPoint);
        struct stat info {};
        if (::stat(mountPoint.c_str(), &info) == 0 && info.st_uid == uid) {
            rclone.push_back(mountPoint);
        }
    }
    std::sort(rclone.begin(), rclone.end());
    found.insert(found.end(), rclone.begin(), rclone.end());
    return found;
}

std::vector<std::string> cloudFolderPathsForCurrentUser(const Locations& locations) {
    const uid_t uid = ::getuid();
    std::ifstream mounts("/proc/self/mounts");
    std::stringstream text;
    text << mounts.rdbuf();
    return cloudFolderPaths(locations, "/run/user/" + std::to_string(uid) + "/gvfs", text.str(),
                            uid);
}

std::vector<std::string> userSearchFolders(const Locations& locations) {
    const bool mac = locations.layout == HomeLayout::macos;
    std::vector<std::string> folders;
    for (const char* kind :
         {"Downloads", "Documents", "Desktop", mac ? "Movies" : "Videos", "Music", "Pictures"}) {
        folders.push_back(locations.userDir(kind));
    }
    return folders;
}

bool isHomeFolder(const Locations& locations, const std::string& folder) {
    if (lexicallyNormal(folder) == lexicallyNormal(locations.home)) {
        return true;
    }
    struct stat a {};
    struct stat b {};
    return ::stat(folder.c_str(), &a) == 0 && ::stat(locations.home.c_str(), &b) == 0 &&
           a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

std::vector<std::string> largeSearchRoots(const Locations& locations,
                                          const std::optional<std::string>& target,
                                          const std::vector<std::string>& cloudFolders) {
    if (!target) {
        return userSearchFolders(locations);
    }
    if (isHomeFolder(locations, *target)) {
        std::vector<std::string> roots = userSearchFolders(locations);
        roots.insert(roots.end(), cloudFolders.begin(), cloudFolders.end());
        return roots;
    }
    std::string root = *target;
    while (root.size() > 1 && root.back() == '/') {
        root.pop_back();
    }
    return {root};
}

} // namespace sondrel
