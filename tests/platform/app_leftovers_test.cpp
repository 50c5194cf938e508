// Leftovers of installed applications and orphaned leftovers, on both layouts.

#include "platform/app_leftovers.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {
namespace {

constexpr std::int64_t kDay = 24 * 3600;

// Sets the modification time of `path` and of everything below it to `when`.
void setAge(const std::string& path, std::int64_t when) {
    const timespec times[2] = {{when, 0}, {when, 0}};
    struct stat info {};
    if (lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
        if (DIR* dir = opendir(path.c_str())) {
            while (const dirent* entry = readdir(dir)) {
                const std::string name = entry->d_name;
                if (name != "." && name != "..") {
                    setAge(path + "/" + name, when);
                }
            }
            closedir(dir);
        }
    }
    utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

std::vector<std::string> pathsOf(const std::vector<AssociatedItem>& items) {
    std::vector<std::string> paths;
    for (const AssociatedItem& item : items) {
        paths.push_back(item.path);
    }
    return paths;
}

AppInfo macApp(const std::string& name, const std::string& identifier) {
    AppInfo app;
    app.name = name;
    app.identifier = identifier;
    app.kind = AppKind::bundle;
    return app;
}

TEST(MacosLeftovers, NameEqualToIdentifierGivesEachFolderOnce) {
    const test::TempDir home;
    home.makeFile("Library/Application Support/Tool/data", 5000);
    home.makeFile("Library/Caches/Tool/c", 5000);
    home.makeFile("Library/Logs/Tool/l", 5000);
    const CancelToken never;
    const auto items =
        findAssociatedFiles(Locations::forMacos(home.path()), macApp("Tool", "Tool"), never);
    EXPECT_EQ(pathsOf(items),
              (std::vector<std::string>{home / "Library/Application Support/Tool",
                                        home / "Library/Caches/Tool", home / "Library/Logs/Tool"}));
    EXPECT_EQ(items[0].type, AssociatedFileType::appSupport);
    EXPECT_EQ(items[2].type, AssociatedFileType::logs);
    EXPECT_TRUE(items[0].isSelected);
}

TEST(MacosLeftovers, PreferencesOnlyByIdentifierAndEmptyFilesDropped) {
    const test::TempDir home;
    home.makeFile("Library/Preferences/com.example.mail.plist", 300);
    home.makeFile("Library/Preferences/com.example.mail.helper.plist", 300);
    home.makeFile("Library/Preferences/Mailer.plist", 300);
    home.makeFile("Library/WebKit/com.example.mail", 0);
    home.makeFile("Library/Containers/com.example.mail/x", 10);
    const CancelToken never;
    const auto items = findAssociatedFiles(Locations::forMacos(home.path()),
                                           macApp("Mailer", "com.example.mail"), never);
    EXPECT_EQ(pathsOf(items),
              (std::vector<std::string>{home / "Library/Containers/com.example.mail",
                                        home / "Library/Preferences/com.example.mail.plist"}));
    EXPECT_EQ(items[1].size, 300); // a single file counts its length on this layout
}

TEST(MacosOrphans, ThresholdExclusionWordsAndInstalledNames) {
    const test::TempDir home;
    home.makeFile("Library/Application Support/Exact", 102400);
    home.makeFile("Library/Application Support/OneMore", 102401);
    home.makeFile("Library/Caches/com.example.mailer/big", 500000);
    home.makeFile("Library/Caches/com.example.editor.cache/big", 500000);
    home.makeFile("Library/Caches/GoneApp/big", 300000);
    home.makeFile("Library/Saved Application State/Old.savedState/w", 200000);
    const CancelToken never;
    const auto orphans = findOrphanedLeftovers(Locations::forMacos(home.path()),
                                               {macApp("Editor", "com.example.editor")},
                                               SystemRoots{}, std::time(nullptr), never);
    EXPECT_EQ(pathsOf(orphans),
              (std::vector<std::string>{home / "Library/Caches/GoneApp",
                                        home / "Library/Saved Application State/Old.savedState",
                                        home / "Library/Application Support/OneMore"}));
    EXPECT_EQ(orphans[0].type, AssociatedFileType::caches);
    EXPECT_EQ(orphans[2].size, 102401);
}

struct LinuxHome {
    test::TempDir dir;
    Locations locations = Locations::forLinux(dir / "home");
    SystemRoots roots;
    LinuxHome() {
        dir.makeDir("home");
        roots.dpkgAdminDir = dir / "dpkg";
        roots.pathDirs = {dir / "bin"};
        dir.writeFile("dpkg/status", "Package: inkpad\nStatus: install ok installed\n");
        dir.makeFile("bin/mytool", 10);
    }
};

TEST(LinuxLeftovers, ExactNamesInEachPlaceOnceAndNeverOutsideTheHome) {
    LinuxHome machine;
    const test::TempDir& dir = machine.dir;
    AppInfo app;
    app.name = "chat";
    app.identifier = "org.example.Chat";
    app.package = "org.example.Chat";
    app.kind = AppKind::flatpak;
    dir.makeFile("home/.config/chat/settings", 100);
    dir.makeFile("home/.local/share/org.example.Chat/db", 100);
    dir.makeFile("home/.cache/org.example.Chat/c", 100);
    dir.makeFile("home/.cache/chat-other/c", 100);
    dir.makeFile("home/.local/state/chat/s", 100);
    dir.makeFile("home/.var/app/org.example.Chat/config/x", 100);
    dir.makeFile("home/.config/autostart/org.example.Chat.desktop", 100);
    symlink("/etc", (dir / "home/.config/org.example.Chat").c_str());
    const CancelToken never;
    const auto items = findAssociatedFiles(machine.locations, app, never);
    EXPECT_EQ(pathsOf(items),
              (std::vector<std::string>{
                  dir / "home/.config/chat", dir / "home/.config/org.example.Chat",
                  dir / "home/.local/share/org.example.Chat", dir / "home/.cache/org.example.Chat",
                  dir / "home/.local/state/chat", dir / "home/.var/app/org.example.Chat",
                  dir / "home/.config/autostart/org.example.Chat.desktop"}));
    EXPECT_EQ(items[5].type, AssociatedFileType::container);
    EXPECT_GT(items[1].size, 0); // a link counts as itself, never as its target

    Locations outside = machine.locations;
    outside.cacheHome = dir / "elsewhere";
    dir.makeFile("elsewhere/chat/c", 100);
    const auto kept = findAssociatedFiles(outside, app, never);
    EXPECT_EQ(std::count_if(
                  kept.begin(), kept.end(),
                  [&](const AssociatedItem& item) { return item.path == dir / "elsewhere/chat"; }),
              0);
}

TEST(LinuxOrphans, ConservativeRulesAndTheSevenDayRule) {
    LinuxHome machine;
    const test::TempDir& dir = machine.dir;
    const std::int64_t now = std::time(nullptr);
    for (const char* name : {".config/OldGame", ".config/gtk-3.0", ".config/inkpad",
                             ".config/mytool", ".config/Editor Pro", ".local/share/recent-old",
                             ".cache/fresh-thing", ".cache/org.gone.Viewer", ".cache/mailbox-x",
                             ".var/app/org.gone.Player", ".var/app/org.example.Editor"}) {
        dir.makeFile(std::string("home/") + name + "/blob", 200000);
        setAge(dir / ("home/" + std::string(name)), now - 30 * kDay);
    }
    dir.makeFile("home/.cache/tiny-old/blob", 1000);
    setAge(dir / "home/.cache/tiny-old", now - 30 * kDay);
    // Something deep inside changed yesterday: the whole folder counts as in use.
    setAge(dir / "home/.local/share/recent-old/blob", now - kDay);
    setAge(dir / "home/.cache/fresh-thing", now - 6 * kDay);
    AppInfo editor;
    editor.name = "Editor Pro";
    editor.identifier = "org.example.Editor";
    editor.kind = AppKind::flatpak;
    const CancelToken never;
    const auto orphans =
        findOrphanedLeftovers(machine.locations, {editor}, machine.roots, now, never);
    std::vector<std::string> paths = pathsOf(orphans);
    std::sort(paths.begin(), paths.end());
    EXPECT_EQ(paths, (std::vector<std::string>{dir / "home/.cache/org.gone.Viewer",
                                               dir / "home/.config/OldGame",
                                               dir / "home/.var/app/org.gone.Player"}));
    for (const AssociatedItem& item : orphans) {
        if (item.path == dir / "home/.var/app/org.gone.Player") {
            EXPECT_EQ(item.type, AssociatedFileType::container);
        }
    }
}

TEST(LinuxOrphans, KeepWordsCoverToolkitsAndTheDesktop) {
    EXPECT_TRUE(hasKeepWord("gtk-4.0"));
    EXPECT_TRUE(hasKeepWord("qtproject.conf"));
    EXPECT_TRUE(hasKeepWord("pulse"));
    EXPECT_TRUE(hasKeepWord("evolution"));
    EXPECT_TRUE(hasKeepWord("mailspring"));
    EXPECT_FALSE(hasKeepWord("oldgame"));
}

} // namespace
} // namespace sondrel
