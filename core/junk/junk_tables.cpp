#include "core/junk/junk_tables.h"

#include <fnmatch.h>

namespace sondrel {

const std::vector<JunkCacheRow>& linuxDeveloperCaches() {
    using B = JunkBase;
    static const std::vector<JunkCacheRow> rows = {
        // title                      base          relative path            detail
        {"npm Cache", B::home, ".npm/_cacache", "Downloaded npm package tarballs and metadata"},
        {"Yarn Cache", B::cacheHome, "yarn", "Yarn's offline package mirror"},
        {"pnpm Store", B::dataHome, "pnpm/store", "Content-addressed store of pnpm packages"},
        {"pip Cache", B::cacheHome, "pip", "Downloaded Python wheels and source archives"},
        {"Go Build Cache", B::cacheHome, "go-build", "Compiled Go packages, rebuilt on demand"},
        {"Go Module Cache", B::home, "go/pkg/mod", "Downloaded Go module sources"},
        {"Cargo Registry Cache", B::home, ".cargo/registry/cache", "Downloaded crate archives"},
        {"Cargo Registry Sources", B::home, ".cargo/registry/src", "Unpacked crate sources"},
        {"Cargo Git Checkouts", B::home, ".cargo/git/checkouts", "Checked-out git dependencies"},
        {"Gradle Caches", B::home, ".gradle/caches", "Android and Kotlin Gradle dependency caches"},
        {"Maven Repository", B::home, ".m2/repository", "Downloaded Maven artifacts"},
        {"ccache", B::cacheHome, "ccache", "Cached C and C++ compiler output"},
        {"ccache (legacy folder)", B::home, ".ccache", "Cached C and C++ compiler output"},
        {"sccache", B::cacheHome, "sccache", "Cached compiler output of sccache"},
        {"Bazel Cache", B::cacheHome, "bazel", "Bazel output bases and repository cache"},
        {"JetBrains IDE Caches", B::cacheHome, "JetBrains", "Indexes and caches of JetBrains IDEs"},
        {"Android SDK Cache", B::home, ".android/cache", "Downloaded Android SDK metadata"},
        {"NuGet Packages", B::home, ".nuget/packages", "Downloaded .NET packages"},
        {"node-gyp Headers", B::cacheHome, "node-gyp", "Node.js headers for native add-on builds"},
        {"Playwright Browsers", B::cacheHome, "ms-playwright", "Browsers downloaded by Playwright"},
        {"Conda Packages", B::home, ".conda/pkgs", "Downloaded conda package archives"},
    };
    return rows;
}

const std::vector<JunkCacheRow>& macosDeveloperCaches() {
    using B = JunkBase;
    static const std::vector<JunkCacheRow> rows = {
        {"Xcode DerivedData", B::home, "Library/Developer/Xcode/DerivedData",
         "Intermediate build files and index caches"},
        {"Xcode Archives", B::home, "Library/Developer/Xcode/Archives",
         "Old build archives and dSYMs"},
        {"iOS DeviceSupport", B::home, "Library/Developer/Xcode/iOS DeviceSupport",
         "Symbols from previously connected devices"},
        {"Simulator Caches", B::home, "Library/Developer/CoreSimulator/Caches",
         "Temporary cache files from simulator runs"},
        {"CocoaPods Cache", B::home, "Library/Caches/CocoaPods", "Downloaded pod repo caches"},
        {"Gradle Caches", B::home, ".gradle/caches", "Android and Kotlin Gradle dependency caches"},
    };
    return rows;
}

const std::vector<std::string_view>& linuxDependencyRoots() {
    static const std::vector<std::string_view> roots = {
        "Desktop", "Documents", "Developer", "Projects", "Workspace", "src",
        "code",    "dev",       "git",       "repos",    "projects",  "workspace",
    };
    return roots;
}

const std::vector<std::string_view>& macosDependencyRoots() {
    static const std::vector<std::string_view> roots = {"Desktop", "Documents", "Developer",
                                                        "Projects", "Workspace"};
    return roots;
}

const std::vector<std::string_view>& userCacheKeepList() {
    static const std::vector<std::string_view> names = {
        "doc",  "fontconfig", "mesa_shader_cache*", "qtshadercache-*",
        "ibus", "kwin",       "plasmashell",        "*.kcache",
    };
    return names;
}

bool isKeptUserCache(std::string_view name) {
    const std::string text(name);
    for (std::string_view pattern : userCacheKeepList()) {
        if (fnmatch(std::string(pattern).c_str(), text.c_str(), 0) == 0) {
            return true;
        }
    }
    return false;
}

const std::vector<JunkLogSource>& linuxLogSources() {
    using B = JunkBase;
    static const std::vector<JunkLogSource> sources = {
        {B::home, "", ".xsession-errors*"},
        {B::dataHome, "xorg", "*"},
        {B::stateHome, "", "*.log"},
        {B::cacheHome, "", "*.log"},
    };
    return sources;
}

const std::vector<JunkLogSource>& macosLogSources() {
    static const std::vector<JunkLogSource> sources = {{JunkBase::logsHome, "", "*"}};
    return sources;
}

const std::string& junkBaseFolder(const JunkFolders& folders, JunkBase base) {
    switch (base) {
    case JunkBase::cacheHome:
        return folders.cacheHome;
    case JunkBase::dataHome:
        return folders.dataHome;
    case JunkBase::stateHome:
        return folders.stateHome;
    case JunkBase::logsHome:
        return folders.logsHome;
    case JunkBase::home:
        break;
    }
    return folders.home;
}

std::string junkPath(const JunkFolders& folders, JunkBase base, std::string_view relative) {
    std::string path = junkBaseFolder(folders, base);
    if (!relative.empty()) {
        path += '/';
        path += relative;
    }
    return path;
}

} // namespace sondrel
