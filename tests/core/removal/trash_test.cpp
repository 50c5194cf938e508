// The freedesktop Trash on real folders: the home trash, clashes, odd names as the desktop sees
// them, and top-directory trashes on a second file system mounted by the test.

#include "core/removal/permanent_removal.h"
#include "core/removal/trash.h"
#include "core/removal/trash_info.h"
#include "removal_test_support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

namespace sondrel {
namespace {

using test::exists;
using test::readFile;

// Sets or clears the immutable attribute; false when the file system has none.
bool setImmutable(const std::string& path, bool on) {
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    int flags = 0;
    bool ok = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
    ok = ok && ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    close(fd);
    return ok;
}

std::vector<std::string> oddNames() {
    return {"plain.txt",   "new\nline",   "100% done",   std::string("bad\xff\xfe"),
            "\"q\" 'q'",   "$(touch x)",  "`touch y`",   "-rf",
            "caf\xc3\xa9", "back\\slash", "a b c.tar.gz"};
}

TEST(Trash, OddNamesRoundTripAndShowInTheDesktopTrash) {
    test::TempHome t;
    const TrashContext context = t.context().trash;
    std::vector<std::string> originals;
    for (const std::string& name : oddNames()) {
        originals.push_back(t.dir.writeFile("home/docs/" + name, "content of " + name));
    }
    originals.push_back(t.dir.makeDir("home/docs/folder"));
    t.dir.makeFile("home/docs/folder/inner", 5000);

    for (const std::string& path : originals) {
        const TrashResult result = moveToTrash(path, context);
        ASSERT_TRUE(result.ok) << path << ": " << result.error;
        EXPECT_EQ(result.location, TrashLocation::home);
        EXPECT_EQ(result.trashDir, t.trash);
        EXPECT_FALSE(exists(path));
        EXPECT_TRUE(exists(result.trashedPath));
        const std::optional<TrashInfo> info = parseTrashInfo(readFile(result.infoPath));
        ASSERT_TRUE(info) << result.infoPath;
        EXPECT_EQ(info->path, path);
        EXPECT_EQ(info->deletionDate, formatDeletionDate(1700000000));
    }
    // Nothing named in the names was run.
    for (const char* stray : {"x", "y", "docs/x", "docs/y"}) {
        EXPECT_FALSE(exists(t.home + "/" + stray)) << stray;
    }
    const std::string sizes = readFile(t.trash + "/directorysizes");
    EXPECT_NE(sizes.find(" folder\n"), std::string::npos) << sizes;

    const std::optional<std::string> listing = test::gioTrashListing(t);
    if (!listing) {
        GTEST_SKIP() << "gio or dbus-run-session unavailable: the desktop's view of the Trash "
                        "was not checked (install libglib2.0-bin, gvfs and dbus)";
    }
    for (const std::string& path : originals) {
        EXPECT_NE(listing->find("trash::orig-path=" + test::gioEscaped(path) + "\n"),
                  std::string::npos)
            << test::gioEscaped(path) << "\n"
            << *listing;
    }
}

TEST(Trash, ClashesTakeTheNextFreeName) {
    test::TempHome t;
    const TrashContext context = t.context().trash;
    // A stale record without its file, and a stray file without its record.
    t.dir.writeFile("home/.local/share/Trash/info/report.pdf.trashinfo", "stale");
    t.dir.writeFile("home/.local/share/Trash/files/report (1).pdf", "stray");
    const std::string path = t.dir.writeFile("home/report.pdf", "new");
    const TrashResult result = moveToTrash(path, context);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_EQ(result.trashedPath, t.trash + "/files/report (2).pdf");
    EXPECT_EQ(readFile(t.trash + "/info/report.pdf.trashinfo"), "stale");
    EXPECT_EQ(readFile(t.trash + "/files/report (1).pdf"), "stray");
    EXPECT_FALSE(exists(t.trash + "/info/report (1).pdf.trashinfo"));

    // The manual move numbers the same way.
    std::vector<std::string> names;
    for (const char* folder : {"a", "b", "c"}) {
        const TrashResult moved = moveIntoHomeTrashManually(
            t.dir.writeFile(std::string("home/") + folder + "/notes.txt", folder), context);
        ASSERT_TRUE(moved.ok) << moved.error;
        names.push_back(moved.trashedPath.substr(moved.trashedPath.rfind('/') + 1));
        EXPECT_TRUE(exists(moved.infoPath));
    }
    EXPECT_EQ(names, (std::vector<std::string>{"notes.txt", "notes (1).txt", "notes (2).txt"}));

    struct Case {
        std::string name;
        unsigned n;
        std::string expected;
    };
    for (const Case& c : std::vector<Case>{{"report.pdf", 0, "report.pdf"},
                                           {"report.pdf", 2, "report (2).pdf"},
                                           {"archive.tar.gz", 1, "archive.tar (1).gz"},
                                           {"README", 3, "README (3)"},
                                           {".bashrc", 1, ".bashrc (1)"},
                                           {"dot.", 1, "dot. (1)"}}) {
        EXPECT_EQ(numberedName(c.name, c.n), c.expected) << c.name;
    }
}

TEST(Trash, FailuresLeaveNoRecord) {
    test::TempHome t;
    const TrashContext context = t.context().trash;
    const TrashResult vanished = moveToTrash(t.home + "/gone-before-we-looked", context);
    EXPECT_FALSE(vanished.ok);
    EXPECT_FALSE(vanished.error.empty());

    // A folder whose entries cannot be renamed: the record written first is taken back.
    const std::string locked = t.dir.makeDir("home/locked");
    const std::string file = t.dir.writeFile("home/locked/keep.txt", "keep");
    if (!setImmutable(locked, true)) {
        GTEST_SKIP() << "this file system has no immutable attribute";
    }
    const TrashResult refused = moveToTrash(file, context);
    const TrashResult manual = moveIntoHomeTrashManually(file, context);
    setImmutable(locked, false);
    EXPECT_FALSE(refused.ok);
    EXPECT_FALSE(manual.ok);
    EXPECT_EQ(readFile(file), "keep");
    EXPECT_FALSE(exists(t.trash + "/info/keep.txt.trashinfo"));
    EXPECT_FALSE(exists(t.trash + "/files/keep.txt"));
}

TEST(Trash, RemovingATrashEntryForgetsItsRecord) {
    test::TempHome t;
    const TrashContext context = t.context().trash;
    t.dir.makeFile("home/big/one", 10000);
    const TrashResult folder = moveToTrash(t.home + "/big", context);
    const TrashResult file = moveToTrash(t.dir.writeFile("home/small", "s"), context);
    ASSERT_TRUE(folder.ok && file.ok);
    t.dir.writeFile("home/.local/share/Trash/directorysizes",
                    readFile(t.trash + "/directorysizes") + "123 456 other\n");

    EXPECT_TRUE(removePermanently(folder.trashedPath, t.trash).removed);
    EXPECT_TRUE(removePermanently(file.trashedPath, t.trash).removed);
    EXPECT_FALSE(exists(folder.infoPath));
    EXPECT_FALSE(exists(file.infoPath));
    EXPECT_EQ(readFile(t.trash + "/directorysizes"), "123 456 other\n");
}

TEST(Trash, SecondFileSystemUsesTopDirectoryTrashes) {
    test::TempHome t;
    test::ScratchMount disk(t.dir, "disk");
    if (!disk.mounted()) {
        GTEST_SKIP() << "could not mount a second file system (needs root and mount rights)";
    }
    const TrashContext context = t.context().trash;
    const std::string uid = std::to_string(getuid());
    const std::string top = disk.path();
    const std::string odd = "sub/odd $(touch z)\nname";

    // $topdir/.Trash-$uid, made 0700 and owned by the user, with a relative Path=.
    const std::string item = t.dir.writeFile("disk/" + odd, "data");
    const TrashResult user = moveToTrash(item, context);
    ASSERT_TRUE(user.ok) << user.error;
    EXPECT_EQ(user.location, TrashLocation::topDirUser);
    EXPECT_EQ(user.trashDir, top + "/.Trash-" + uid);
    struct stat info {};
    ASSERT_EQ(lstat(user.trashDir.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0700U);
    EXPECT_EQ(info.st_uid, getuid());
    EXPECT_EQ(parseTrashInfo(readFile(user.infoPath))->path, odd);
    EXPECT_FALSE(exists(t.trash + "/files/" + std::string(odd.substr(4))));
    if (disk.listedByDesktop()) {
        const std::optional<std::string> listing = test::gioTrashListing(t);
        if (listing) {
            EXPECT_NE(listing->find("trash::orig-path=" + test::gioEscaped(item) + "\n"),
                      std::string::npos)
                << *listing;
        }
    }

    // A sticky, real $topdir/.Trash is preferred: .Trash/$uid.
    ASSERT_EQ(mkdir((top + "/.Trash").c_str(), 01777), 0);
    ASSERT_EQ(chmod((top + "/.Trash").c_str(), 01777), 0);
    const TrashResult shared = moveToTrash(t.dir.writeFile("disk/b.txt", "b"), context);
    ASSERT_TRUE(shared.ok) << shared.error;
    EXPECT_EQ(shared.location, TrashLocation::topDirShared);
    EXPECT_EQ(shared.trashDir, top + "/.Trash/" + uid);

    // Without the sticky bit .Trash is not trusted.
    ASSERT_EQ(chmod((top + "/.Trash").c_str(), 0777), 0);
    const TrashResult notSticky = moveToTrash(t.dir.writeFile("disk/c.txt", "c"), context);
    ASSERT_TRUE(notSticky.ok) << notSticky.error;
    EXPECT_EQ(notSticky.location, TrashLocation::topDirUser);

    // .Trash-$uid owned by someone else, or a link, is not used; nothing is copied elsewhere.
    ASSERT_EQ(rename((top + "/.Trash-" + uid).c_str(), (top + "/elsewhere").c_str()), 0);
    ASSERT_EQ(symlink((top + "/elsewhere").c_str(), (top + "/.Trash-" + uid).c_str()), 0);
    const std::string kept = t.dir.writeFile("disk/d.txt", "d");
    const TrashResult viaLink = moveToTrash(kept, context);
    EXPECT_FALSE(viaLink.ok);
    EXPECT_FALSE(exists(top + "/elsewhere/info/d.txt.trashinfo"));

    ASSERT_EQ(unlink((top + "/.Trash-" + uid).c_str()), 0);
    ASSERT_EQ(mkdir((top + "/.Trash-" + uid).c_str(), 0700), 0);
    ASSERT_EQ(chown((top + "/.Trash-" + uid).c_str(), getuid() + 4242, getgid()), 0);
    const TrashResult foreign = moveToTrash(kept, context);
    EXPECT_FALSE(foreign.ok);
    EXPECT_EQ(readFile(kept), "d");
    EXPECT_FALSE(exists(top + "/.Trash-" + uid + "/files"));

    // The home trash is on another file system: the manual move refuses rather than copies.
    const TrashResult manual = moveIntoHomeTrashManually(kept, context);
    EXPECT_FALSE(manual.ok);
    EXPECT_EQ(readFile(kept), "d");
    EXPECT_FALSE(exists(t.trash + "/files/d.txt"));
    EXPECT_FALSE(exists(t.trash + "/info/d.txt.trashinfo"));
}

// The privileged helper trashes as root for another user: what it creates belongs to that user.
TEST(Trash, CreatedFoldersAndRecordsBelongToTheTrashUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to create files for another user";
    }
    test::TempHome t;
    TrashContext context = t.context().trash;
    context.uid = 4242;
    context.gid = 4243;
    t.dir.makeFile("home/folder/inside", 100);
    const TrashResult result = moveToTrash(t.home + "/folder", context);
    ASSERT_TRUE(result.ok) << result.error;
    for (const std::string& path : {t.trash, t.trash + "/files", t.trash + "/info", result.infoPath,
                                    t.trash + "/directorysizes"}) {
        struct stat info {};
        ASSERT_EQ(lstat(path.c_str(), &info), 0) << path;
        EXPECT_EQ(info.st_uid, 4242U) << path;
        EXPECT_EQ(info.st_gid, 4243U) << path;
    }
}

// Strict mode (the privileged helper): a link anywhere on the way makes the move fail, and a
// home trash that is a link is never used nor replaced by another trash.
TEST(Trash, LinksOnTheWayStopStrictMovesAndLinkedHomeTrashes) {
    test::TempHome t;
    const std::string outside = t.dir.makeDir("outside");
    t.dir.writeFile("outside/victim", "keep");
    ASSERT_EQ(symlink(outside.c_str(), (t.home + "/linked").c_str()), 0);
    TrashContext strict = t.context().trash;
    strict.strictPaths = true;

    const TrashResult throughLink = moveToTrash(t.home + "/linked/victim", strict);
    EXPECT_FALSE(throughLink.ok);
    EXPECT_EQ(test::readFile(outside + "/victim"), "keep");
    const RemovalReport removal = removePermanently(t.home + "/linked/victim", {}, true);
    EXPECT_FALSE(removal.removed);
    EXPECT_EQ(test::readFile(outside + "/victim"), "keep");

    // The home trash swapped for a link to somewhere else.
    const std::string elsewhere = t.dir.makeDir("elsewhere");
    ASSERT_EQ(symlink(elsewhere.c_str(), t.trash.c_str()), 0);
    const std::string item = t.dir.writeFile("home/item", "i");
    for (const bool strictPaths : {true, false}) {
        TrashContext context = t.context().trash;
        context.strictPaths = strictPaths;
        const TrashResult result = moveToTrash(item, context);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(test::readFile(item), "i");
        EXPECT_FALSE(exists(elsewhere + "/files"));
        EXPECT_FALSE(exists(elsewhere + "/info"));
        EXPECT_FALSE(moveIntoHomeTrashManually(item, context).ok);
    }
}

} // namespace
} // namespace sondrel
