// Uninstalling: an AppImage for real into the Trash, a bundle that cannot be removed, package
// removals through a faked command runner, leftovers kept or trashed, and quitting processes.

#include "core/util/path_text.h"
#include "platform/app_processes.h"
#include "platform/app_uninstaller.h"
#include "tests/support/temp_dir.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sondrel {
namespace {

bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

AssociatedItem leftover(const std::string& path, bool selected) {
    AssociatedItem item;
    item.id = newItemId();
    item.path = path;
    item.size = 100;
    item.isSelected = selected;
    return item;
}

// Records every request and answers with a fixed result.
struct FakeRunner {
    std::vector<std::vector<std::string>> calls;
    SubprocessResult answer;
    PackageCommandRunner runner() {
        return [this](const SubprocessRequest& request) {
            calls.push_back(request.argv);
            return answer;
        };
    }
};

SubprocessResult exited(int code, std::string out = "") {
    SubprocessResult result;
    result.started = true;
    result.exitCode = code;
    result.out = std::move(out);
    return result;
}

struct Home {
    test::TempDir dir;
    Locations locations = Locations::forLinux(dir.path());
    UninstallTools tools;
    Home() { tools.terminateProcesses = false; }
    std::string trashed(const std::string& name) const {
        return dir / (".local/share/Trash/files/" + name);
    }
};

TEST(AppUninstall, AppImageGoesToTheTrashWithEntryIconsAndSelectedLeftovers) {
    Home home;
    const test::TempDir& dir = home.dir;
    AppInfo app;
    app.name = "Tool";
    app.identifier = "tool";
    app.kind = AppKind::appImage;
    app.icon = "tool-icon";
    app.location = dir.makeFile("Applications/Tool.AppImage", 5000);
    app.desktopFile = dir.writeFile(".local/share/applications/tool.desktop", "[Desktop Entry]\n");
    dir.makeFile(".local/share/icons/hicolor/48x48/apps/tool-icon.png", 10);
    dir.makeFile(".local/share/icons/hicolor/scalable/apps/tool-icon.svg", 10);
    dir.makeFile(".local/share/icons/hicolor/48x48/apps/tool-icon-extra.png", 10);
    dir.makeFile(".config/Tool/a", 10);
    dir.makeFile(".cache/tool/b", 10);
    app.associatedItems = {leftover(dir / ".config/Tool", true),
                           leftover(dir / ".cache/tool", false)};
    dir.makeDir(".local/state");
    ASSERT_EQ(symlink("/etc", (dir / ".local/state/tool").c_str()), 0);
    app.associatedItems.push_back(leftover(dir / ".local/state/tool", true));

    const UninstallResult result = uninstallApp(app, true, home.locations, home.tools);
    ASSERT_TRUE(result.success) << result.error;
    EXPECT_FALSE(exists(app.location));
    EXPECT_TRUE(exists(home.trashed("Tool.AppImage")));
    EXPECT_TRUE(exists(home.trashed("tool.desktop")));
    EXPECT_TRUE(exists(home.trashed("tool-icon.png")));
    EXPECT_TRUE(exists(home.trashed("tool-icon.svg")));
    EXPECT_TRUE(exists(dir / ".local/share/icons/hicolor/48x48/apps/tool-icon-extra.png"));
    EXPECT_TRUE(exists(home.trashed("Tool")));
    EXPECT_TRUE(exists(dir / ".cache/tool/b")); // deselected: stays
    struct stat info {};
    ASSERT_EQ(lstat(home.trashed("tool").c_str(), &info), 0);
    EXPECT_TRUE(S_ISLNK(info.st_mode)); // the link itself went, not /etc
    EXPECT_TRUE(exists("/etc/passwd"));
    EXPECT_EQ(result.leftovers.removed, 2U);
}

TEST(AppUninstall, KeepLeftoversTrashesOnlyTheApplication) {
    Home home;
    AppInfo app;
    app.name = "Tool";
    app.kind = AppKind::appImage;
    app.location = home.dir.makeFile("Applications/Tool.AppImage", 5000);
    app.associatedItems = {leftover(home.dir.makeFile(".config/Tool/a", 10), true)};
    const UninstallResult result = uninstallApp(app, false, home.locations, home.tools);
    EXPECT_TRUE(result.success);
    EXPECT_FALSE(exists(app.location));
    EXPECT_TRUE(exists(home.dir / ".config/Tool/a"));
}

TEST(AppUninstall, FailedBundleRemovalTouchesNothing) {
    const test::TempDir dir;
    Locations locations = Locations::forMacos(dir / "home");
    locations.applicationDirs = {dir / "Applications"};
    AppInfo app;
    app.name = "Editor";
    app.kind = AppKind::bundle;
    dir.makeFile("Elsewhere/Editor.app/Contents/MacOS/editor", 100);
    app.location = dir / "Elsewhere/Editor.app"; // outside every folder this home may remove from
    app.associatedItems = {leftover(dir.makeFile("home/Library/Caches/Editor/x", 10), true)};
    UninstallTools tools;
    tools.terminateProcesses = false;
    const UninstallResult result = uninstallApp(app, true, locations, tools);
    EXPECT_FALSE(result.success);
    EXPECT_EQ(result.error, "Could not move Editor.app to Trash. Please verify permissions or "
                            "administrator credentials.");
    EXPECT_TRUE(exists(app.location));
    EXPECT_TRUE(exists(dir / "home/Library/Caches/Editor/x"));
    EXPECT_TRUE(result.leftovers.outcomes.empty());
}

TEST(AppUninstall, PackagesGoThroughTheirToolsAndACancelledPromptRemovesNothing) {
    Home home;
    FakeRunner fake;
    CommandPackageRemover remover(fake.runner());
    home.tools.packages = &remover;
    AppInfo app;
    app.name = "Paint";
    app.kind = AppKind::debian;
    app.package = "paint";
    app.associatedItems = {leftover(home.dir.makeFile(".config/paint/x", 10), true)};

    fake.answer = exited(126);
    UninstallResult result = uninstallApp(app, true, home.locations, home.tools);
    EXPECT_FALSE(result.success);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.error, "Uninstalling Paint was cancelled.");
    EXPECT_TRUE(exists(home.dir / ".config/paint/x"));
    ASSERT_EQ(fake.calls.size(), 1U);
    EXPECT_EQ(fake.calls[0],
              (std::vector<std::string>{"pkexec", "/usr/bin/apt-get", "remove", "-y", "paint"}));

    fake.answer = exited(100);
    fake.answer.err = "E: Unable to locate package paint\n";
    result = uninstallApp(app, true, home.locations, home.tools);
    EXPECT_EQ(result.error, "Could not uninstall Paint: E: Unable to locate package paint");
    EXPECT_TRUE(exists(home.dir / ".config/paint/x"));

    fake.answer = exited(0);
    app.kind = AppKind::flatpak;
    app.identifier = "org.example.Paint";
    app.systemInstallation = false;
    result = uninstallApp(app, true, home.locations, home.tools);
    EXPECT_TRUE(result.success);
    EXPECT_EQ(fake.calls.back(),
              (std::vector<std::string>{"flatpak", "uninstall", "--user", "--noninteractive", "-y",
                                        "org.example.Paint"}));
    EXPECT_FALSE(exists(home.dir / ".config/paint/x"));

    app.kind = AppKind::snap;
    app.package = "paint-snap";
    uninstallApp(app, false, home.locations, home.tools);
    EXPECT_EQ(fake.calls.back(),
              (std::vector<std::string>{"pkexec", "/usr/bin/snap", "remove", "paint-snap"}));
}

TEST(AppUninstall, PackageKitClientRemovesDebianPackages) {
    FakeRunner fake;
    CommandPackageRemover remover(fake.runner(), true);
    AppInfo app;
    app.kind = AppKind::debian;
    app.package = "paint";
    fake.answer = exited(0);
    EXPECT_TRUE(remover.remove(app).removed);
    EXPECT_EQ(fake.calls.back(),
              (std::vector<std::string>{"pkcon", "--noninteractive", "remove", "paint"}));
    fake.answer = exited(4, "Resolving\nFatal error: Not authorized\n");
    const PackageRemoval refused = remover.remove(app);
    EXPECT_FALSE(refused.removed);
    EXPECT_TRUE(refused.cancelled);
    fake.answer = exited(4, "Fatal error: package not found\n");
    EXPECT_EQ(remover.remove(app).message, "Fatal error: package not found");
}

TEST(AppUninstall, SaysWhichOtherPackagesWouldGo) {
    FakeRunner fake;
    fake.answer = exited(0, "NOTE: simulation\nRemv paint-plugins [1.0]\nRemv paint [2.0-1]\n"
                            "Remv paint:i386 [2.0-1]\nInst other\n");
    CommandPackageRemover remover(fake.runner());
    AppInfo app;
    app.kind = AppKind::debian;
    app.package = "paint";
    EXPECT_EQ(remover.alsoRemoved(app), std::vector<std::string>{"paint-plugins"});
    EXPECT_EQ(fake.calls[0], (std::vector<std::string>{"apt-get", "-s", "remove", "paint"}));
    app.kind = AppKind::flatpak;
    EXPECT_TRUE(remover.alsoRemoved(app).empty());
}

TEST(AppUninstall, NumberedNamesInTheHomeTrash) {
    Home home;
    const std::vector<AssociatedItem> items{leftover(home.dir.makeFile("a/report.pdf", 10), true),
                                            leftover(home.dir.makeFile("b/report.pdf", 10), true),
                                            leftover(home.dir.makeFile("c/report.pdf", 10), true)};
    const CancelToken never;
    const LeftoverTrashReport report =
        trashLeftovers(items, RemovalContext::forUser(home.locations), never);
    ASSERT_EQ(report.removed, 3U);
    EXPECT_EQ(lastPathComponent(report.outcomes[0].trashedPath), "report.pdf");
    EXPECT_EQ(lastPathComponent(report.outcomes[1].trashedPath), "report (1).pdf");
    EXPECT_EQ(lastPathComponent(report.outcomes[2].trashedPath), "report (2).pdf");
    EXPECT_EQ(report.freed, 300);
}

TEST(AppUninstall, LeftoversOutsideTheHomeAreRefused) {
    Home home;
    const test::TempDir other;
    const std::vector<AssociatedItem> items{leftover(other.makeFile("x/settings", 10), true)};
    const CancelToken never;
    const LeftoverTrashReport report =
        trashLeftovers(items, RemovalContext::forUser(home.locations), never);
    EXPECT_EQ(report.removed, 0U);
    EXPECT_FALSE(report.outcomes[0].message.empty());
    EXPECT_TRUE(exists(other / "x/settings"));
}

TEST(AppProcesses, SignalsOnlyProcessesOfTheAppsExecutables) {
    const test::TempDir dir;
    const std::string program = dir / "my-app";
    // A copy, so that /proc/PID/exe names our file and not /bin/sleep.
    SubprocessRequest copy;
    copy.argv = {"cp", "/bin/sleep", program};
    ASSERT_TRUE(runSubprocess(copy).succeeded());
    const pid_t child = fork();
    if (child == 0) {
        execl(program.c_str(), "my-app", "30", static_cast<char*>(nullptr));
        _exit(127);
    }
    ASSERT_GT(child, 0);
    for (int i = 0; i < 200 && findAppProcesses({program}).empty(); ++i) {
        usleep(10000);
    }
    EXPECT_EQ(findAppProcesses({program}), std::vector<pid_t>{child});
    EXPECT_EQ(findAppProcesses({dir.path() + "/"}), std::vector<pid_t>{child});
    EXPECT_TRUE(findAppProcesses({dir / "other"}).empty());
    AppInfo app;
    app.executables = {program};
    EXPECT_EQ(terminateAppProcesses(app), 1);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

} // namespace
} // namespace sondrel
