// The folder walk on real trees built in a temporary folder: what the tree holds (depth
// collapse, hidden names, links, bundles, hard links, unreadable folders, odd names), ordering
// and totals against an independent walk. Cancel, progress and mounts: tree_scan_run_test.cpp.

#include "core/scan/tree_scan.h"
#include "tests/core/scan/tree_test_support.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::child;
using test::describe;
using test::expectConsistent;
using test::scan;
using test::symlinkOrFail;
using test::TempDir;

TEST(TreeScan, FolderBelowTheDepthLimitIsALeafWithItsWholeSize) {
    TempDir dir;
    dir.makeFile("l1/l2/l3/l4/at5.txt", 7);
    dir.makeFile("l1/l2/l3/l4/l5/x", 100);
    dir.makeFile("l1/l2/l3/l4/l5/.hidden", 50);
    dir.makeFile("l1/l2/l3/l4/l5/sub/deeper/y", 20);
    dir.makeFile("l1/l2/l3/l4/l5/.hdir/z", 30);

    const ScanResult result = scan(dir.path());
    ASSERT_FALSE(result.accessDenied);
    const FileItem l4 = child(child(child(child(result.rootItem(), "l1"), "l2"), "l3"), "l4");
    ASSERT_TRUE(l4);
    EXPECT_TRUE(child(l4, "at5.txt")); // files appear down to depth 5
    const FileItem l5 = child(l4, "l5");
    ASSERT_TRUE(l5);
    EXPECT_TRUE(l5.isDirectory());
    EXPECT_EQ(l5.childCount(), 0U);
    EXPECT_EQ(l5.size(), 120);
    EXPECT_EQ(l5.fileCount(), 2);
    EXPECT_EQ(l5.category(), FileCategory::other);
    EXPECT_EQ(result.rootItem().size(), 127);
    EXPECT_EQ(result.rootItem().fileCount(), 3);
    // Reports: one per file (at5.txt) and one per collapsed folder.
    EXPECT_EQ(result.items, 2);
    EXPECT_EQ(result.bytes, 127);
    expectConsistent(result.rootItem());

    // A smaller depth collapses higher up; the totals do not change.
    const ScanResult shallow = scan(dir.path(), 1);
    const FileItem l1 = child(shallow.rootItem(), "l1");
    ASSERT_TRUE(l1);
    const FileItem l2 = child(l1, "l2");
    ASSERT_TRUE(l2);
    EXPECT_EQ(l2.childCount(), 0U);
    EXPECT_EQ(l2.size(), 127);
    EXPECT_EQ(shallow.rootItem().size(), 127);
}

TEST(TreeScan, HiddenNamesAndLinksAddNothing) {
    TempDir dir;
    dir.makeFile(".profile", 10);
    dir.makeFile(".config/app/settings", 10);
    const ScanResult hiddenOnly = scan(dir.path());
    EXPECT_EQ(hiddenOnly.rootItem().childCount(), 0U);
    EXPECT_EQ(hiddenOnly.rootItem().size(), 0);
    EXPECT_EQ(hiddenOnly.rootItem().fileCount(), 0);

    TempDir other;
    const std::string big = other.makeFile("big/blob", 1 << 20);
    dir.makeFile("real", 5);
    symlinkOrFail(other / "big", dir / "link-to-folder");
    symlinkOrFail(big, dir / "link-to-file");
    symlinkOrFail(dir / "nowhere", dir / "dangling");
    dir.makeDir("loop");
    symlinkOrFail(dir / "loop", dir / "loop/again");
    dir.makeFile("l1/l2/l3/l4/l5/f", 3);
    symlinkOrFail(other / "big", dir / "l1/l2/l3/l4/l5/link-deep");

    const ScanResult result = scan(dir.path());
    EXPECT_EQ(describe(result.rootItem()).find("link"), std::string::npos);
    EXPECT_EQ(result.rootItem().size(), 8);
    EXPECT_EQ(result.rootItem().fileCount(), 2);
    EXPECT_EQ(child(result.rootItem(), "loop").childCount(), 0U);
}

TEST(TreeScan, ApplicationBundlesAreOneLeaf) {
    TempDir dir;
    dir.makeFile("Apps/Foo.app/Contents/MacOS/foo", 100);
    dir.makeFile("Apps/Foo.app/Contents/Resources/r.png", 50);
    dir.makeFile("Apps/Foo.app/Contents/.hidden", 1000);
    dir.makeFile("Apps/Foo.app/Contents/Plugins/Inner.app/bin", 10); // nested: measured once
    dir.makeFile("Apps/Foo.app/Direct.app/d", 1);
    dir.makeFile("Root.app/x", 4);             // at the top level too
    dir.makeFile("Apps/Foo.application/f", 1); // only ".app" names a bundle

    const ScanResult result = scan(dir.path());
    const FileItem apps = child(result.rootItem(), "Apps");
    const FileItem foo = child(apps, "Foo.app");
    ASSERT_TRUE(foo);
    EXPECT_FALSE(foo.isDirectory());
    EXPECT_EQ(foo.childCount(), 0U);
    EXPECT_EQ(foo.size(), 161);
    EXPECT_EQ(foo.fileCount(), 1);
    EXPECT_EQ(foo.category(), FileCategory::application);
    EXPECT_EQ(child(result.rootItem(), "Root.app").size(), 4);
    EXPECT_TRUE(child(apps, "Foo.application").isDirectory());
    // Three reports per bundle, each with its whole size, plus one per file.
    EXPECT_EQ(result.items, 3 + 3 + 1);
    EXPECT_EQ(result.bytes, 3 * 161 + 3 * 4 + 1);
    expectConsistent(result.rootItem());

    // Scanning a bundle itself shows its contents: a bundle directly inside it is an ordinary
    // folder, one further down is a bundle again.
    const ScanResult inside = scan(dir / "Apps/Foo.app");
    EXPECT_TRUE(child(inside.rootItem(), "Direct.app").isDirectory());
    const FileItem plugins = child(child(inside.rootItem(), "Contents"), "Plugins");
    ASSERT_TRUE(plugins);
    EXPECT_FALSE(child(plugins, "Inner.app").isDirectory());
    EXPECT_EQ(child(plugins, "Inner.app").size(), 10);
}

TEST(TreeScan, HardLinksCountOnceAtTheSameLinkEveryTime) {
    TempDir dir;
    const std::string original = dir.makeFile("b/original", 1000);
    dir.makeDir("a/a2/a3/a4/a5");
    dir.makeDir("c");
    dir.makeFile("tool.app/bin", 1);
    ASSERT_EQ(link(original.c_str(), (dir / "c/second").c_str()), 0);
    ASSERT_EQ(link(original.c_str(), (dir / "a/a2/a3/a4/a5/third").c_str()), 0);
    ASSERT_EQ(link(original.c_str(), (dir / "tool.app/fourth").c_str()), 0);

    std::string first;
    for (unsigned threads : {1U, 2U, 4U, 4U, 4U}) {
        const ScanResult result = scan(dir.path(), 4, threads);
        const FileItem root = result.rootItem();
        EXPECT_EQ(root.size(), 1001);
        EXPECT_EQ(root.fileCount(), 4); // every link is a file; the bundle counts one
        // The link with the smallest path keeps the bytes: here the collapsed folder a/.../a5.
        const FileItem a5 = child(child(child(child(child(root, "a"), "a2"), "a3"), "a4"), "a5");
        EXPECT_EQ(a5.size(), 1000);
        EXPECT_EQ(child(child(root, "b"), "original").size(), 0);
        EXPECT_EQ(child(child(root, "c"), "second").size(), 0);
        EXPECT_EQ(child(root, "tool.app").size(), 1);
        EXPECT_EQ(result.bytes, 1000 + 3 * 1 + 0); // progress bytes without the other links
        expectConsistent(root);
        if (first.empty()) {
            first = describe(root);
        }
        EXPECT_EQ(describe(root), first);
    }
}

TEST(TreeScan, OddNamesAreKeptByteForByte) {
    TempDir dir;
    const std::vector<std::string> names = {
        "bad\xff\xfe utf8", "new\nline", "quote\"s'", "$(touch pwned)", "back\\slash", "-dash",
    };
    for (const std::string& name : names) {
        dir.makeFile("odd/" + name, 3);
        dir.makeFile("odd/" + name + ".d/inner", 2);
    }
    const ScanResult result = scan(dir.path());
    const FileItem odd = child(result.rootItem(), "odd");
    for (const std::string& name : names) {
        const FileItem file = child(odd, name);
        ASSERT_TRUE(file) << name;
        struct stat info {};
        EXPECT_EQ(lstat(file.url().c_str(), &info), 0) << file.url();
        EXPECT_EQ(child(child(odd, name + ".d"), "inner").size(), 2);
    }
    EXPECT_EQ(odd.size(), 5 * static_cast<std::int64_t>(names.size()));
}

TEST(TreeScan, ChildrenAreSortedLargestFirstKeepingListingOrderForTies) {
    TempDir dir;
    for (int i = 0; i < 40; ++i) {
        dir.makeFile("f" + std::to_string(i), i % 3 == 0 ? 10 : 20);
        dir.makeDir("d" + std::to_string(i)); // empty folders: all size 0
    }
    std::vector<std::string> listing;
    DIR* stream = opendir(dir.path().c_str());
    ASSERT_NE(stream, nullptr);
    while (dirent* entry = readdir(stream)) {
        if (entry->d_name[0] != '.') {
            listing.emplace_back(entry->d_name);
        }
    }
    closedir(stream);
    std::vector<std::string> expected;
    for (const std::int64_t size : {20, 10, 0}) {
        for (const std::string& name : listing) {
            const bool isFile = name[0] == 'f';
            const int i = std::atoi(name.c_str() + 1);
            if ((isFile ? (i % 3 == 0 ? 10 : 20) : 0) == size) {
                expected.push_back(name);
            }
        }
    }
    const ScanResult first = scan(dir.path(), 4, 4);
    std::vector<std::string> order;
    for (const FileItem& item : first.rootItem().children()) {
        order.emplace_back(item.name());
    }
    EXPECT_EQ(order, expected);
    EXPECT_EQ(describe(scan(dir.path(), 4, 1).rootItem()), describe(first.rootItem()));
}

TEST(TreeScan, WideFoldersAreSizedInSlicesWithTheSameResult) {
    TempDir dir;
    std::int64_t total = 0;
    for (int i = 0; i < 5000; ++i) {
        const int size = i % 7;
        dir.makeFile("wide/f" + std::to_string(i), size);
        dir.makeFile("a/b/c/d/e/wide/g" + std::to_string(i), size); // inside a collapsed folder
        total += size;
    }
    const ScanResult many = scan(dir.path(), 4, 4);
    const ScanResult one = scan(dir.path(), 4, 1);
    EXPECT_EQ(describe(many.rootItem()), describe(one.rootItem()));
    const FileItem wide = child(many.rootItem(), "wide");
    EXPECT_EQ(wide.size(), total);
    EXPECT_EQ(wide.fileCount(), 5000);
    EXPECT_EQ(wide.childCount(), 5000U);
    EXPECT_EQ(many.rootItem().size(), 2 * total);
    EXPECT_EQ(many.rootItem().fileCount(), 10000);
    EXPECT_EQ(many.items, 5001); // 5000 files and one collapsed folder
    expectConsistent(many.rootItem());
}

TEST(TreeScan, TargetThatCannotBeReadIsRefused) {
    TempDir dir;
    const ScanResult missing = scan(dir / "missing");
    EXPECT_TRUE(missing.accessDenied);
    EXPECT_FALSE(missing.tree);
    EXPECT_FALSE(missing.rootItem());
    EXPECT_FALSE(isPathAccessibleAndReadable(dir / "missing"));
    EXPECT_TRUE(isPathAccessibleAndReadable(dir.path()));
    EXPECT_TRUE(isPathAccessibleAndReadable(dir.makeFile("file", 1)));
    // A readable file as the target: a root with nothing in it.
    const ScanResult file = scan(dir / "file");
    ASSERT_FALSE(file.accessDenied);
    EXPECT_EQ(file.rootItem().childCount(), 0U);
}

// Runs `body` with permissions that apply: as root, in a child process that became "nobody".
// `body` returns "" on success or a description of what went wrong.
std::string withPermissionsEnforced(const TempDir& dir, const std::function<std::string()>& body) {
    if (geteuid() != 0) {
        return body();
    }
    chmod(dir.path().c_str(), 0755);
    int fds[2];
    if (pipe(fds) != 0) {
        return "pipe failed";
    }
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        std::string message = "cannot drop privileges";
        if (setgid(65534) == 0 && setuid(65534) == 0) {
            message = body();
        }
        if (!message.empty()) {
            const ssize_t written = write(fds[1], message.data(), message.size());
            static_cast<void>(written);
        }
        _exit(0);
    }
    close(fds[1]);
    std::string message;
    char buffer[512];
    ssize_t n = 0;
    while ((n = read(fds[0], buffer, sizeof buffer)) > 0) {
        message.append(buffer, static_cast<std::size_t>(n));
    }
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    return message;
}

TEST(TreeScan, UnreadableFoldersAreSkippedAndAnUnreadableTargetIsRefused) {
    TempDir dir;
    dir.makeFile("open/a", 10);
    dir.makeFile("closed/secret", 1000);
    dir.makeFile("listonly/hidden-size", 500); // readable listing, no search permission
    dir.makeFile("deep/d2/d3/d4/d5/closed/secret", 1000);
    dir.makeFile("deep/d2/d3/d4/d5/ok", 1);
    chmod((dir / "closed").c_str(), 0);
    chmod((dir / "deep/d2/d3/d4/d5/closed").c_str(), 0);
    chmod((dir / "listonly").c_str(), 0644);

    const std::string failure = withPermissionsEnforced(dir, [&]() -> std::string {
        const ScanResult result = scan(dir.path());
        if (result.accessDenied) {
            return "root refused";
        }
        const FileItem root = result.rootItem();
        if (child(root, "closed")) {
            return "unreadable folder listed: " + describe(root);
        }
        const FileItem listOnly = child(root, "listonly");
        if (!listOnly || listOnly.size() != 0) {
            return "list-only folder: " + describe(root);
        }
        const FileItem d5 = child(child(child(child(child(root, "deep"), "d2"), "d3"), "d4"), "d5");
        if (!d5 || d5.size() != 1 || d5.fileCount() != 1) {
            return "collapsed folder with an unreadable part: " + describe(root);
        }
        if (root.size() != 11) {
            return "total: " + describe(root);
        }
        const ScanResult refused = scan(dir / "closed");
        if (!refused.accessDenied || refused.tree) {
            return "unreadable target not refused";
        }
        if (isPathAccessibleAndReadable(dir / "closed") ||
            isPathAccessibleAndReadable(dir / "closed/secret")) {
            return "readability test passed an unreadable path";
        }
        return "";
    });
    EXPECT_EQ(failure, "");
}

// An independent walk: regular files, hidden names and links skipped, hard links once.
void independentTotals(const std::string& path, std::int64_t& bytes, std::int64_t& files,
                       std::set<std::pair<dev_t, ino_t>>& seen) {
    DIR* stream = opendir(path.c_str());
    if (stream == nullptr) {
        return;
    }
    while (dirent* entry = readdir(stream)) {
        if (entry->d_name[0] == '.') {
            continue;
        }
        const std::string child = path + "/" + entry->d_name;
        struct stat info {};
        if (lstat(child.c_str(), &info) != 0) {
            continue;
        }
        if (S_ISDIR(info.st_mode)) {
            independentTotals(child, bytes, files, seen);
        } else if (S_ISREG(info.st_mode)) {
            ++files;
            if (info.st_nlink < 2 || seen.insert({info.st_dev, info.st_ino}).second) {
                bytes += info.st_size;
            }
        }
    }
    closedir(stream);
}

TEST(TreeScan, TotalsMatchAnIndependentWalkAtEveryDepthAndDescriptorBound) {
    TempDir dir;
    std::mt19937 random(42);
    std::vector<std::string> folders = {""};
    for (int i = 0; i < 400; ++i) {
        const std::string& parent = folders[random() % folders.size()];
        const int kind = static_cast<int>(random() % 10);
        const std::string name = (kind == 0 ? "." : "") + std::string("n") + std::to_string(i) +
                                 (kind == 1 ? ".app" : "");
        const std::string path = parent.empty() ? name : parent + "/" + name;
        if (random() % 3 == 0) {
            dir.makeFile(path, static_cast<long long>(random() % 5000));
        } else {
            dir.makeDir(path);
            folders.push_back(path);
        }
    }
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    std::set<std::pair<dev_t, ino_t>> seen;
    independentTotals(dir.path(), bytes, files, seen);

    std::string reference;
    for (const int depth : {1, 2, 4, 64}) {
        const ScanResult result = scan(dir.path(), depth, 3);
        EXPECT_EQ(result.rootItem().size(), bytes) << depth;
        expectConsistent(result.rootItem());
        if (depth == 64) {
            EXPECT_GT(result.rootItem().fileCount(), 0);
            EXPECT_GT(files, 0);
            reference = describe(result.rootItem());
        }
    }

    // With very few descriptors the walk opens folders by path; the tree is the same.
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &saved), 0);
    rlimit low = saved;
    low.rlim_cur = 40;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
    const ScanResult bounded = scan(dir.path(), 64, 3);
    setrlimit(RLIMIT_NOFILE, &saved);
    EXPECT_EQ(bounded.rootItem().size(), bytes);
    expectConsistent(bounded.rootItem());
    EXPECT_EQ(describe(bounded.rootItem()), reference);
}

} // namespace
} // namespace sondrel
