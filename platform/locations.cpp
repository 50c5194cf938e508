#include "platform/locations.h"

#include "core/util/path_text.h"

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <pwd.h>
#include <unistd.h>

extern char** environ;

namespace sondrel {

namespace {

std::string trimTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string absoluteOr(const std::map<std::string, std::string>& environment,
                       const std::string& name, const std::string& fallback) {
    const auto it = environment.find(name);
    if (it != environment.end() && !it->second.empty() && it->second.front() == '/') {
        return trimTrailingSlashes(it->second);
    }
    return fallback;
}

std::map<std::string, std::string> processXdgEnvironment() {
    std::map<std::string, std::string> values;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        if (!startsWith(text, "XDG_")) {
            continue;
        }
        const auto equals = text.find('=');
        if (equals != std::string_view::npos) {
            values.emplace(std::string(text.substr(0, equals)),
                           std::string(text.substr(equals + 1)));
        }
    }
    return values;
}

} // namespace

std::optional<HomeLayout> homeLayoutFromName(const std::string& name) {
    if (name == "linux") {
        return HomeLayout::xdg;
    }
    if (name == "macos") {
        return HomeLayout::macos;
    }
    return std::nullopt;
}

std::string currentUserHome() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/') {
        return trimTrailingSlashes(home);
    }
    if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir != nullptr) {
        return trimTrailingSlashes(entry->pw_dir);
    }
    return "/";
}

Locations Locations::forLinux(const std::string& rawHome,
                              const std::map<std::string, std::string>& environment) {
    Locations l;
    l.layout = HomeLayout::xdg;
    l.home = trimTrailingSlashes(rawHome);
    l.cacheHome = absoluteOr(environment, "XDG_CACHE_HOME", joinPath(l.home, ".cache"));
    l.configHome = absoluteOr(environment, "XDG_CONFIG_HOME", joinPath(l.home, ".config"));
    l.dataHome = absoluteOr(environment, "XDG_DATA_HOME", joinPath(l.home, ".local/share"));
    l.stateHome = absoluteOr(environment, "XDG_STATE_HOME", joinPath(l.home, ".local/state"));
    l.logsHome = l.stateHome;
    l.trashFiles = joinPath(l.dataHome, "Trash/files");
    l.trashInfo = joinPath(l.dataHome, "Trash/info");
    std::string dataDirs = "/usr/local/share:/usr/share";
    if (const auto it = environment.find("XDG_DATA_DIRS");
        it != environment.end() && !it->second.empty()) {
        dataDirs = it->second;
    }
    std::size_t start = 0;
    while (start <= dataDirs.size()) {
        const auto colon = dataDirs.find(':', start);
        const std::string dir =
            dataDirs.substr(start, colon == std::string::npos ? std::string::npos : colon - start);
        if (!dir.empty() && dir.front() == '/') {
            l.dataDirs.push_back(trimTrailingSlashes(dir));
        }
        if (colon == std::string::npos) {
            break;
        }
        start = colon + 1;
    }
    l.applicationDirs.push_back(joinPath(l.dataHome, "applications"));
    for (const std::string& dir : l.dataDirs) {
        l.applicationDirs.push_back(joinPath(dir, "applications"));
    }
    return l;
}

Locations Locations::forMacos(const std::string& rawHome) {
    Locations l;
    l.layout = HomeLayout::macos;
    l.home = trimTrailingSlashes(rawHome);
    l.cacheHome = joinPath(l.home, "Library/Caches");
    l.configHome = joinPath(l.home, "Library/Preferences");
    l.dataHome = joinPath(l.home, "Library/Application Support");
    l.stateHome = joinPath(l.home, "Library/Saved Application State");
    l.logsHome = joinPath(l.home, "Library/Logs");
    l.trashFiles = joinPath(l.home, ".Trash");
    l.applicationDirs = {"/Applications", joinPath(l.home, "Applications")};
    return l;
}

Locations Locations::forCurrentUser() {
#ifdef __APPLE__
    return forMacos(currentUserHome());
#else
    return forLinux(currentUserHome(), processXdgEnvironment());
#endif
}

Locations Locations::forHome(const std::string& home, HomeLayout layout) {
    return layout == HomeLayout::macos ? forMacos(home) : forLinux(home);
}

std::string Locations::userDir(const std::string& kind) const {
    const std::string fallback = joinPath(home, kind);
    if (layout != HomeLayout::xdg) {
        return fallback;
    }
    // user-dirs.dirs holds lines like XDG_DOWNLOAD_DIR="$HOME/Downloads".
    std::string variable = "XDG_" + kind + "_DIR";
    for (char& c : variable) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    if (variable == "XDG_DOWNLOADS_DIR") {
        variable = "XDG_DOWNLOAD_DIR";
    }
    std::ifstream file(joinPath(configHome, "user-dirs.dirs"));
    std::string line;
    while (std::getline(file, line)) {
        if (!startsWith(line, variable + "=")) {
            continue;
        }
        std::string value = line.substr(variable.size() + 1);
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
            value = value.substr(1, value.size() - 2);
        }
        if (startsWith(value, "$HOME")) {
            value = home + value.substr(5);
        }
        if (!value.empty() && value.front() == '/') {
            return trimTrailingSlashes(value);
        }
    }
    return fallback;
}

} // namespace sondrel
