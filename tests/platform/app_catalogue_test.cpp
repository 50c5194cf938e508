// The application catalogue on fake homes and fake package roots: the macOS bundle layout and
// the Linux sources (desktop-file IDs, dpkg, AppImage, Flatpak, Snap).

#include "core/util/path_text.h"
#include "platform/app_catalogue.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace sondrel {
namespace {

const AppInfo* findApp(const std::vector<AppInfo>& apps, const std::string& identifier) {
    const auto it = std::find_if(apps.begin(), apps.end(),
                                 [&](const AppInfo& app) { return app.identifier == identifier; });
    return it == apps.end() ? nullptr : &*it;
}

std::string plist(const std::string& body) {
    return "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict>" + body + "</dict></plist>\n";
}

std::string desktopEntry(const std::string& name, const std::string& extra = "") {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\n" + extra;
}

// A bare home with no system package roots.
struct FakeMachine {
    test::TempDir dir;
    Locations locations = Locations::forLinux(dir / "home");
    SystemRoots roots;
    FakeMachine() {
        dir.makeDir("home");
        roots.dpkgAdminDir = dir / "dpkg";
        roots.flatpakSystemDir = dir / "flatpak";
        roots.snapDir = dir / "snap";
        roots.snapDesktopDir = dir / "snapd/desktop/applications";
        roots.snapSnapsDir = dir / "snapd/snaps";
        locations.applicationDirs = {dir / "home/.local/share/applications",
                                     dir / "usr/share/applications"};
        dir.writeFile("dpkg/status", "");
    }
};

TEST(MacosCatalogue, ReadsBundlesOfBothFoldersWithPlistFallbacks) {
    const test::TempDir dir;
    Locations locations = Locations::forMacos(dir / "home");
    locations.applicationDirs = {dir / "Applications", dir / "home/Applications"};
    dir.writeFile("Applications/Editor.app/Contents/Info.plist",
                  plist("<key>CFBundleIdentifier</key><string>com.example.editor</string>"
                        "<key>CFBundleShortVersionString</key><string>4.2</string>"));
    dir.makeFile("Applications/Editor.app/Contents/MacOS/editor", 5000);
    dir.writeFile("home/Applications/Editor.app/Contents/Info.plist", "bplist00\x01\x02");
    dir.writeFile("home/Applications/Plain.APP/Contents/Info.plist",
                  plist("<key>CFBundleShortVersionString</key><integer>3</integer>"));
    dir.makeDir("Applications/Nested/Inner.app");
    dir.makeFile("Applications/notes.txt", 10);
    const CancelToken never;
    const std::vector<AppInfo> apps = listMacosBundles(locations, never);
    ASSERT_EQ(apps.size(), 3U);
    EXPECT_EQ(apps[0].name, "Editor");
    EXPECT_EQ(apps[0].identifier, "com.example.editor");
    EXPECT_EQ(apps[0].version, "4.2");
    EXPECT_GT(apps[0].bundleSize, 5000);
    EXPECT_EQ(apps[0].kind, AppKind::bundle);
    const auto mine = std::find_if(apps.begin() + 1, apps.end(),
                                   [](const AppInfo& app) { return app.name == "Editor"; });
    ASSERT_NE(mine, apps.end()); // the same app in both folders is listed twice
    EXPECT_EQ(mine->identifier, "unknown.editor");
    EXPECT_EQ(mine->version, "1.0");
    EXPECT_NE(mine->id, apps[0].id);
    const auto plain = std::find_if(apps.begin(), apps.end(),
                                    [](const AppInfo& app) { return app.name == "Plain"; });
    ASSERT_NE(plain, apps.end());
    EXPECT_EQ(plain->version, "1.0");
}

TEST(MacosCatalogue, EmptyHomeFindsNothing) {
    const test::TempDir dir;
    Locations locations = Locations::forMacos(dir.path());
    locations.applicationDirs = {dir / "Applications", dir / "home/Applications"};
    const CancelToken never;
    const AppDiscovery found = discoverApps(locations, SystemRoots{}, never, std::time(nullptr));
    EXPECT_TRUE(found.apps.empty());
    EXPECT_TRUE(found.orphans.empty());
    EXPECT_EQ(appScanFoundText(found.apps.size(), found.orphans.size()),
              "Found 0 applications, 0 leftover items");
}

TEST(LinuxCatalogue, FirstDesktopFileIdWinsAndHiddenEntriesAreSkipped) {
    FakeMachine machine;
    const test::TempDir& dir = machine.dir;
    dir.writeFile("home/.local/share/applications/editor.desktop", desktopEntry("My Editor"));
    dir.writeFile("usr/share/applications/editor.desktop", desktopEntry("System Editor"));
    dir.writeFile("usr/share/applications/kde/term.desktop", desktopEntry("Terminal"));
    dir.writeFile("home/.local/share/applications/kde-term.desktop",
                  desktopEntry("Masked", "Hidden=true\n"));
    dir.writeFile("usr/share/applications/helper.desktop", desktopEntry("H", "NoDisplay=true\n"));
    dir.writeFile("usr/share/applications/link.desktop", "[Desktop Entry]\nType=Link\nName=L\n");
    dir.writeFile("usr/share/applications/broken.desktop", "[Desktop Entry]\nName=x\nbad\n");
    dir.writeFile("usr/share/applications/viewer.desktop", desktopEntry("Viewer"));
    const CancelToken never;
    const std::vector<AppInfo> apps = listLinuxApps(machine.locations, machine.roots, never);
    ASSERT_EQ(apps.size(), 2U);
    const AppInfo* editor = findApp(apps, "editor");
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->name, "My Editor");
    EXPECT_EQ(editor->kind, AppKind::local);
    EXPECT_EQ(editor->desktopFile, dir / "home/.local/share/applications/editor.desktop");
    EXPECT_NE(findApp(apps, "viewer"), nullptr);
    EXPECT_EQ(findApp(apps, "kde-term"), nullptr);
}

TEST(LinuxCatalogue, MatchesEntriesToDebianPackages) {
    FakeMachine machine;
    const test::TempDir& dir = machine.dir;
    const std::string entry = dir.writeFile("usr/share/applications/org.example.Paint.desktop",
                                            desktopEntry("Paint", "Icon=paint\nExec=paint %F\n"));
    const std::string binary = dir.makeFile("usr/bin/paint", 40000);
    chmod(binary.c_str(), 0755);
    dir.makeFile("usr/share/paint/brushes.dat", 100000);
    dir.writeFile("dpkg/status", "Package: paint\nStatus: install ok installed\n"
                                 "Version: 2.0-1\nInstalled-Size: 140\n\n"
                                 "Package: bad\nno colon here\n");
    dir.writeFile("dpkg/info/paint:amd64.list", "/.\n" + dir.path() + "/usr\n" + binary + "\n" +
                                                    (dir / "usr/share/paint/brushes.dat") + "\n" +
                                                    entry + "\n");
    const CancelToken never;
    const std::vector<AppInfo> apps = listLinuxApps(machine.locations, machine.roots, never);
    const AppInfo* paint = findApp(apps, "org.example.Paint");
    ASSERT_NE(paint, nullptr);
    EXPECT_EQ(paint->kind, AppKind::debian);
    EXPECT_EQ(paint->package, "paint");
    EXPECT_EQ(paint->version, "2.0-1");
    EXPECT_EQ(paint->icon, "paint");
    EXPECT_GE(paint->bundleSize, 140000);
    EXPECT_EQ(paint->executables, std::vector<std::string>{binary});
}

TEST(LinuxCatalogue, FindsAppImagesInFoldersAndThroughEntries) {
    FakeMachine machine;
    const test::TempDir& dir = machine.dir;
    dir.makeFile("home/Applications/Tool-1.0-x86_64.AppImage", 30000);
    const std::string viewer = dir.makeFile("home/AppImages/viewer.appimage", 20000);
    dir.writeFile("home/.local/share/applications/appimagekit-viewer.desktop",
                  desktopEntry("Image Viewer", "Exec=\"" + viewer + "\" %U\nIcon=viewer-icon\n"));
    dir.writeFile("home/.local/share/applications/viewer-again.desktop",
                  desktopEntry("Viewer again", "Exec=" + viewer + "\n"));
    dir.makeFile("home/.local/bin/script.sh", 100);
    const CancelToken never;
    const std::vector<AppInfo> apps = listLinuxApps(machine.locations, machine.roots, never);
    ASSERT_EQ(apps.size(), 2U);
    const AppInfo* tool = findApp(apps, "Tool-1.0-x86_64");
    ASSERT_NE(tool, nullptr);
    EXPECT_EQ(tool->kind, AppKind::appImage);
    EXPECT_GE(tool->bundleSize, 30000);
    const AppInfo* entryApp = findApp(apps, "appimagekit-viewer");
    ASSERT_NE(entryApp, nullptr);
    EXPECT_EQ(entryApp->kind, AppKind::appImage);
    EXPECT_EQ(entryApp->location, viewer);
    EXPECT_EQ(entryApp->name, "Image Viewer");
}

TEST(LinuxCatalogue, ListsFlatpaksOfBothInstallationsAndSnapsWithEntries) {
    FakeMachine machine;
    const test::TempDir& dir = machine.dir;
    dir.makeFile("home/.local/share/flatpak/app/org.example.Chat/x86_64/stable/abc/files/bin/chat",
                 50000);
    dir.writeFile("home/.local/share/flatpak/app/org.example.Chat/x86_64/stable/abc/export/share/"
                  "applications/org.example.Chat.desktop",
                  desktopEntry("Chat"));
    dir.writeFile("home/.local/share/flatpak/app/org.example.Chat/x86_64/stable/abc/files/share/"
                  "metainfo/org.example.Chat.metainfo.xml",
                  "<component><releases><release version=\"5.1\" date=\"x\"/></releases>");
    symlink("x86_64/stable",
            (dir / "home/.local/share/flatpak/app/org.example.Chat/current").c_str());
    symlink("abc",
            (dir / "home/.local/share/flatpak/app/org.example.Chat/x86_64/stable/active").c_str());
    dir.makeDir("flatpak/app/org.example.Broken"); // no current deploy: not installed
    dir.makeDir("snap/notes/12/meta");
    dir.writeFile("snap/notes/12/meta/snap.yaml", "name: notes\nversion: '3.4'\n");
    symlink("12", (dir / "snap/notes/current").c_str());
    dir.makeDir("snap/core22/5");
    symlink("5", (dir / "snap/core22/current").c_str());
    dir.makeFile("snapd/snaps/notes_12.snap", 70000);
    dir.writeFile("snapd/desktop/applications/notes_notes.desktop",
                  desktopEntry("Notes", "X-SnapInstanceName=notes\n"));
    const CancelToken never;
    const std::vector<AppInfo> apps = listLinuxApps(machine.locations, machine.roots, never);
    ASSERT_EQ(apps.size(), 2U);
    const AppInfo* chat = findApp(apps, "org.example.Chat");
    ASSERT_NE(chat, nullptr);
    EXPECT_EQ(chat->kind, AppKind::flatpak);
    EXPECT_FALSE(chat->systemInstallation);
    EXPECT_EQ(chat->name, "Chat");
    EXPECT_EQ(chat->version, "5.1");
    EXPECT_GE(chat->bundleSize, 50000);
    const AppInfo* notes = findApp(apps, "notes");
    ASSERT_NE(notes, nullptr);
    EXPECT_EQ(notes->kind, AppKind::snap);
    EXPECT_EQ(notes->version, "3.4");
    EXPECT_GE(notes->bundleSize, 70000);
}

} // namespace
} // namespace sondrel
