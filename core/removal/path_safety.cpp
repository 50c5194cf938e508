#include "core/removal/path_safety.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>

namespace sondrel {

namespace {

// Names below the home that are never removed, nor anything inside them.
constexpr std::array<std::string_view, 5> kProtectedTrees = {
    ".ssh", ".gnupg", ".pki", ".local/share/keyrings", ".password-store",
};

// Names below the home that may be emptied but are never removed as a whole.
constexpr std::array<std::string_view, 5> kProtectedWholes = {
    ".config", ".local", ".local/share", ".cache", ".local/state",
};

// realpath() as a string, or nothing when the path cannot be resolved.
std::optional<std::string> resolved(const std::string& path) {
    char buffer[PATH_MAX];
    if (realpath(path.c_str(), buffer) == nullptr) {
        return std::nullopt;
    }
    return std::string(buffer);
}

std::string parentOf(const std::string& normalized) {
    const std::size_t slash = normalized.rfind('/');
    return slash == 0 ? std::string("/") : normalized.substr(0, slash);
}

// The lexical rules on normalised inputs.
PathVerdict judge(const std::string& path, const std::string& home,
                  const std::vector<std::string>& roots) {
    if (path == "/") {
        return PathVerdict::isFilesystemRoot;
    }
    if (isWithinFolder(home, path)) {
        return PathVerdict::isHome;
    }
    for (std::string_view tree : kProtectedTrees) {
        if (isWithinFolder(path, home + "/" + std::string(tree))) {
            return PathVerdict::isProtected;
        }
    }
    for (std::string_view whole : kProtectedWholes) {
        if (path == home + "/" + std::string(whole)) {
            return PathVerdict::isProtected;
        }
    }
    bool inside = false;
    for (const std::string& root : roots) {
        if (path == root) {
            return PathVerdict::isAllowedRoot;
        }
        inside = inside || isWithinFolder(path, root);
    }
    return inside ? PathVerdict::allowed : PathVerdict::outsideRoots;
}

} // namespace

std::string_view describe(PathVerdict verdict) {
    switch (verdict) {
    case PathVerdict::allowed:
        return "may be removed";
    case PathVerdict::empty:
        return "no path given";
    case PathVerdict::notAbsolute:
        return "not an absolute path";
    case PathVerdict::dotComponent:
        return "a path with '.' or '..' components is not accepted";
    case PathVerdict::isFilesystemRoot:
        return "the root folder is never removed";
    case PathVerdict::isHome:
        return "the home folder and the folders above it are never removed";
    case PathVerdict::isAllowedRoot:
        return "a top folder itself is never removed, only what is inside it";
    case PathVerdict::isProtected:
        return "a protected folder (keys, keyrings, settings) is never removed";
    case PathVerdict::outsideRoots:
        return "outside the folders this feature may clean";
    case PathVerdict::linkToProtected:
        return "a link to a folder that is never removed";
    }
    return "refused";
}

std::optional<std::string> normalizeAbsolutePath(std::string_view path) {
    if (path.empty() || path.front() != '/') {
        return std::nullopt;
    }
    std::string out;
    std::size_t i = 0;
    while (i < path.size()) {
        while (i < path.size() && path[i] == '/') {
            ++i;
        }
        const std::size_t end = std::min(path.find('/', i), path.size());
        const std::string_view part = path.substr(i, end - i);
        if (part == "." || part == "..") {
            return std::nullopt;
        }
        if (!part.empty()) {
            out += '/';
            out += part;
        }
        i = end;
    }
    return out.empty() ? std::string("/") : out;
}

bool isWithinFolder(std::string_view path, std::string_view folder) {
    if (folder == "/") {
        return !path.empty() && path.front() == '/';
    }
    if (path.size() < folder.size() || path.substr(0, folder.size()) != folder) {
        return false;
    }
    return path.size() == folder.size() || path[folder.size()] == '/';
}

PathVerdict checkRemovablePath(const std::string& path, const std::string& home,
                               const std::vector<std::string>& allowedRoots) {
    if (path.empty()) {
        return PathVerdict::empty;
    }
    if (path.front() != '/') {
        return PathVerdict::notAbsolute;
    }
    const std::optional<std::string> normal = normalizeAbsolutePath(path);
    if (!normal) {
        return PathVerdict::dotComponent;
    }
    // Without a clean home nothing can be judged safe; a root that is not clean allows nothing.
    const std::optional<std::string> cleanHome = normalizeAbsolutePath(home);
    if (!cleanHome || *cleanHome == "/") {
        return PathVerdict::isHome;
    }
    const std::string& homeNormal = *cleanHome;
    std::vector<std::string> roots;
    for (const std::string& root : allowedRoots) {
        if (std::optional<std::string> r = normalizeAbsolutePath(root)) {
            roots.push_back(*r);
        }
    }
    if (const PathVerdict lexical = judge(*normal, homeNormal, roots);
        lexical != PathVerdict::allowed) {
        return lexical;
    }

    // The same rules after resolving links in the folders above the item, so a linked folder
    // cannot carry the removal somewhere else.
    const std::string homeReal = resolved(homeNormal).value_or(homeNormal);
    std::vector<std::string> realRoots;
    for (const std::string& root : roots) {
        realRoots.push_back(resolved(root).value_or(root));
    }
    const std::string parent = parentOf(*normal);
    if (const std::optional<std::string> parentReal = resolved(parent)) {
        const std::string leaf = normal->substr(normal->rfind('/') + 1);
        const std::string real = (*parentReal == "/" ? "" : *parentReal) + "/" + leaf;
        if (const PathVerdict verdict = judge(real, homeReal, realRoots);
            verdict != PathVerdict::allowed) {
            return verdict;
        }
    }

    // The item itself may be a link: removing a link never touches its target, but a link that
    // names "/" or the home is refused all the same, as the user surely did not mean it.
    struct stat info {};
    if (lstat(normal->c_str(), &info) == 0 && S_ISLNK(info.st_mode)) {
        if (const std::optional<std::string> target = resolved(*normal)) {
            const PathVerdict verdict = judge(*target, homeReal, realRoots);
            if (verdict != PathVerdict::allowed && verdict != PathVerdict::outsideRoots) {
                return PathVerdict::linkToProtected;
            }
        }
    }
    return PathVerdict::allowed;
}

} // namespace sondrel
