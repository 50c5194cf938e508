// The shared walk with a visitor that records what it is shown: options (hidden names, pruned
// names, depth, mounts), links, cancellation, and trees that are deep or wide enough to run a
// careless walk out of descriptors or stack.

#include "core/fs/parallel_walk.h"
#include "tests/support/bind_mount.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace sondrel {
namespace {

using test::TempDir;

// Records every folder and file it is shown, by path below the root, and the skips.
class RecordingVisitor : public WalkVisitor {
public:
    explicit RecordingVisitor(std::string root) : m_root(std::move(root)) {}

    bool folderFound(WalkWorker& worker, const WalkEntry& entry, FolderToken&) override {
        record(m_folders, worker.pathOf(entry.name));
        EXPECT_NE(entry.type, DT_UNKNOWN);
        return m_descend;
    }
    bool fileFound(WalkWorker& worker, const WalkEntry& entry, void*& slot) override {
        slot = reinterpret_cast<void*>(static_cast<std::uintptr_t>(entry.type));
        record(m_listed, worker.pathOf(entry.name));
        return true;
    }
    void fileStat(WalkWorker& worker, FolderToken, void* slot, std::string_view name,
                  const struct stat* info) override {
        record(m_files, worker.pathOf(name));
        if (info != nullptr) {
            m_bytes += info->st_size;
            EXPECT_EQ(static_cast<std::uintptr_t>(IFTODT(info->st_mode)),
                      reinterpret_cast<std::uintptr_t>(slot));
        }
        worker.report(1, info != nullptr ? info->st_size : 0);
    }
    void folderSkipped(WalkWorker&, FolderToken, FolderSkip why) override {
        std::lock_guard lock(m_mutex);
        m_skips.push_back(why);
    }

    std::set<std::string> folders() const { return m_folders; }
    std::set<std::string> files() const { return m_files; }
    std::set<std::string> listed() const { return m_listed; }
    std::vector<FolderSkip> skips() const { return m_skips; }
    std::int64_t bytes() const { return m_bytes; }
    void setDescend(bool descend) { m_descend = descend; }

private:
    void record(std::set<std::string>& into, const std::string& path) {
        std::lock_guard lock(m_mutex);
        EXPECT_EQ(path.compare(0, m_root.size(), m_root), 0) << path;
        into.insert(path.substr(m_root.size() + 1));
    }

    std::string m_root;
    std::mutex m_mutex;
    std::set<std::string> m_folders, m_files, m_listed;
    std::vector<FolderSkip> m_skips;
    std::atomic<std::int64_t> m_bytes{0};
    bool m_descend = true;
};

WalkOutcome walk(const std::string& root, RecordingVisitor& visitor, WalkOptions options = {},
                 const CancelToken* cancel = nullptr) {
    const CancelToken never;
    if (options.threads == 0) {
        options.threads = 4;
    }
    return walkTree(root, {}, options, visitor, cancel != nullptr ? *cancel : never);
}

TEST(ParallelWalk, HiddenNamesArePassedOnOrLeftOutByOption) {
    TempDir dir;
    dir.makeFile("a/.hidden-file", 5);
    dir.makeFile(".hidden-folder/inside", 7);
    dir.makeFile("a/visible", 3);
    RecordingVisitor all(dir.path());
    walk(dir.path(), all);
    EXPECT_EQ(all.files(),
              (std::set<std::string>{"a/.hidden-file", ".hidden-folder/inside", "a/visible"}));

    RecordingVisitor visible(dir.path());
    WalkOptions options;
    options.skipHidden = true;
    walk(dir.path(), visible, options);
    EXPECT_EQ(visible.files(), std::set<std::string>{"a/visible"});
    EXPECT_EQ(visible.folders(), std::set<std::string>{"a"});
}

TEST(ParallelWalk, PrunedNamesAndTheDepthLimitHoldAtAnyDepth) {
    TempDir dir;
    dir.makeFile("node_modules/x", 1);
    dir.makeFile("src/lib/node_modules/deep/y", 1);
    dir.makeFile("src/lib/node_modules_not/z", 1); // exact names only
    dir.makeFile("src/Node_Modules/w", 1);         // case-sensitive
    dir.makeFile("src/lib/file", 1);
    WalkOptions options;
    options.pruneNames = {"node_modules", ".git"};
    RecordingVisitor pruned(dir.path());
    walk(dir.path(), pruned, options);
    EXPECT_EQ(pruned.files(), (std::set<std::string>{"src/lib/node_modules_not/z",
                                                     "src/Node_Modules/w", "src/lib/file"}));
    for (const std::string& folder : pruned.folders()) {
        EXPECT_EQ(folder.find("node_modules/"), std::string::npos) << folder;
        EXPECT_NE(folder, "node_modules");
    }

    options.pruneNames.clear();
    options.maxDepth = 2;
    RecordingVisitor shallow(dir.path());
    walk(dir.path(), shallow, options);
    EXPECT_EQ(shallow.files(),
              (std::set<std::string>{"node_modules/x", "src/Node_Modules/w", "src/lib/file"}));
    EXPECT_TRUE(shallow.folders().count("src/lib"));
    EXPECT_FALSE(shallow.folders().count("src/lib/node_modules"));
}

TEST(ParallelWalk, LinksAreReportedAsLinksAndNeverFollowed) {
    TempDir dir;
    dir.makeFile("big/blob", 1 << 20);
    dir.makeDir("tree");
    ASSERT_EQ(symlink((dir / "big").c_str(), (dir / "tree/to-big").c_str()), 0);
    ASSERT_EQ(symlink("..", (dir / "tree/loop").c_str()), 0);
    RecordingVisitor visitor(dir / "tree");
    walk(dir / "tree", visitor);
    EXPECT_EQ(visitor.files(), (std::set<std::string>{"loop", "to-big"}));
    EXPECT_TRUE(visitor.folders().empty());
    EXPECT_LT(visitor.bytes(), 1000); // the links' own lengths, not the folder behind them

    // A link as the root itself is followed only when asked.
    RecordingVisitor followed(dir / "tree/to-big");
    EXPECT_TRUE(walk(dir / "tree/to-big", followed).opened);
    EXPECT_EQ(followed.files(), std::set<std::string>{"blob"});
    WalkOptions options;
    options.followRootLink = false;
    RecordingVisitor refused(dir / "tree/to-big");
    EXPECT_FALSE(walk(dir / "tree/to-big", refused, options).opened);
}

TEST(ParallelWalk, OddEntriesAndPrunedFoldersFromTheVisitor) {
    TempDir dir;
    ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0644), 0);
    dir.makeFile("name with\nnewline and $(rm -rf x) \"quotes\"", 2);
    dir.makeFile("bad\xff\xfe", 3);
    dir.makeFile("sub/inner", 4);
    RecordingVisitor visitor(dir.path());
    visitor.setDescend(false);
    walk(dir.path(), visitor);
    EXPECT_EQ(visitor.files(),
              (std::set<std::string>{"fifo", "bad\xff\xfe",
                                     "name with\nnewline and $(rm -rf x) \"quotes\""}));
    EXPECT_EQ(visitor.folders(), std::set<std::string>{"sub"});
}

TEST(ParallelWalk, CancelStopsWithinOneFolder) {
    TempDir dir;
    for (int i = 0; i < 50; ++i) {
        dir.makeFile("d" + std::to_string(i) + "/f", 1);
    }
    // The visitor cancels when it sees its first folder: the root's listing stops there, the
    // folder found is skipped as cancelled and nothing below is opened.
    class CancellingVisitor : public RecordingVisitor {
    public:
        CancellingVisitor(std::string root, CancelToken& cancel)
            : RecordingVisitor(std::move(root)), m_cancel(cancel) {}
        bool folderFound(WalkWorker& worker, const WalkEntry& entry, FolderToken& child) override {
            m_cancel.cancel();
            return RecordingVisitor::folderFound(worker, entry, child);
        }

    private:
        CancelToken& m_cancel;
    };
    CancelToken cancel;
    CancellingVisitor visitor(dir.path(), cancel);
    const WalkOutcome outcome = walk(dir.path(), visitor, {}, &cancel);
    EXPECT_TRUE(outcome.cancelled);
    EXPECT_EQ(visitor.folders().size(), 1U);
    EXPECT_TRUE(visitor.files().empty());
    EXPECT_EQ(visitor.skips(), std::vector<FolderSkip>{FolderSkip::cancelled});
}

// A tmpfs when there is one: a disk takes minutes to create 300,000 files.
std::string fastTempBase() {
    struct stat info {};
    return stat("/dev/shm", &info) == 0 && S_ISDIR(info.st_mode) && access("/dev/shm", W_OK) == 0
               ? "/dev/shm"
               : "";
}

TEST(ParallelWalk, DeepChainsAndWideFoldersStayWithinDescriptorsAndStack) {
    TempDir dir(fastTempBase());
    // 5,000 levels: far beyond PATH_MAX, so every level is made relative to the one above.
    int fd = open(dir.path().c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < 5000; ++level) {
        ASSERT_EQ(mkdirat(fd, "d", 0755), 0);
        const int next = openat(fd, "d", O_RDONLY | O_DIRECTORY);
        close(fd);
        fd = next;
    }
    const int leaf = openat(fd, "leaf", O_WRONLY | O_CREAT, 0644);
    close(leaf);
    close(fd);
    // 300,000 entries in one folder.
    const std::string wide = dir.makeDir("wide");
    const int wideFd = open(wide.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < 300000; ++i) {
        const int file = openat(wideFd, std::to_string(i).c_str(), O_WRONLY | O_CREAT, 0644);
        ASSERT_GE(file, 0);
        close(file);
    }
    close(wideFd);

    // A small descriptor limit: the walk must keep within its budget, not the limit.
    rlimit saved{};
    getrlimit(RLIMIT_NOFILE, &saved);
    rlimit tight = saved;
    tight.rlim_cur = 64;
    setrlimit(RLIMIT_NOFILE, &tight);
    class CountingVisitor : public WalkVisitor {
    public:
        bool folderFound(WalkWorker&, const WalkEntry& entry, FolderToken&) override {
            int depth = maxDepth.load();
            while (entry.depth > depth && !maxDepth.compare_exchange_weak(depth, entry.depth)) {
            }
            return true;
        }
        bool fileFound(WalkWorker&, const WalkEntry&, void*&) override { return true; }
        void fileStat(WalkWorker&, FolderToken, void*, std::string_view,
                      const struct stat* info) override {
            (info != nullptr ? stated : failed).fetch_add(1);
        }
        void folderSkipped(WalkWorker&, FolderToken, FolderSkip) override { skipped.fetch_add(1); }
        std::atomic<int> maxDepth{0}, stated{0}, failed{0}, skipped{0};
    } visitor;
    WalkOptions options;
    options.threads = 4;
    const CancelToken cancel;
    const WalkOutcome outcome = walkTree(dir.path(), {}, options, visitor, cancel);
    setrlimit(RLIMIT_NOFILE, &saved);
    EXPECT_TRUE(outcome.opened);
    EXPECT_EQ(visitor.maxDepth.load(), 5000);
    EXPECT_EQ(visitor.stated.load(), 300001);
    EXPECT_EQ(visitor.failed.load(), 0);
    EXPECT_EQ(visitor.skipped.load(), 0);
}

TEST(ParallelWalk, MountsBelowTheRootAreEnteredOnceOrNotAtAll) {
    TempDir dir;
    dir.makeFile("tree/data/a", 10);
    dir.makeFile("outside/b", 20);
    dir.makeDir("tree/view-of-data");
    dir.makeDir("tree/view-of-outside");
    const test::ScopedBindMount inside(dir / "tree/data", dir / "tree/view-of-data");
    const test::ScopedBindMount outside(dir / "outside", dir / "tree/view-of-outside");
    if (!inside.mounted() || !outside.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here";
    }
    // Both are second views of the disk the tree is on: shown, never entered.
    RecordingVisitor visitor(dir / "tree");
    walk(dir / "tree", visitor);
    EXPECT_EQ(visitor.files(), std::set<std::string>{"data/a"});
    EXPECT_EQ(visitor.skips(),
              (std::vector<FolderSkip>{FolderSkip::mountPoint, FolderSkip::mountPoint}));

    // A different file system below the root is entered, unless the walk stays on one.
    dir.makeDir("tree/other");
    if (mount("none", (dir / "tree/other").c_str(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "cannot mount a tmpfs here";
    }
    const std::string other = dir.writeFile("tree/other/c", "ccc");
    RecordingVisitor entered(dir / "tree");
    walk(dir / "tree", entered);
    EXPECT_TRUE(entered.files().count("other/c"));
    WalkOptions options;
    options.oneFilesystem = true;
    RecordingVisitor stayed(dir / "tree");
    walk(dir / "tree", stayed, options);
    EXPECT_FALSE(stayed.files().count("other/c"));
    umount2((dir / "tree/other").c_str(), MNT_DETACH);
}

} // namespace
} // namespace sondrel
