// Restoring from the Trash: odd names and folders come back with their records gone, clashes
// and tampered records change nothing, and a top-directory trash's relative Path= is resolved.

#include "core/removal/trash.h"
#include "core/removal/trash_info.h"
#include "core/removal/trash_restore.h"
#include "removal_test_support.h"

#include <fstream>
#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::exists;
using test::readFile;

TEST(TrashRestore, ItemsComeBackAndTheirRecordsGo) {
    test::TempHome t;
    const TrashContext context = t.context().trash;
    const std::vector<std::string> names = {"plain.txt", "new\nline", "100% done",
                                            std::string("bad\xff\xfe"), "-rf"};
    for (const std::string& name : names) {
        const std::string path = t.dir.writeFile("home/docs/" + name, "content of " + name);
        const TrashResult trashed = moveToTrash(path, context);
        ASSERT_TRUE(trashed.ok) << trashed.error;
        const RestoreResult restored = restoreFromTrash(trashed.trashedPath, trashed.infoPath);
        ASSERT_TRUE(restored.ok) << restored.error;
        EXPECT_EQ(restored.restoredPath, path);
        EXPECT_EQ(readFile(path), "content of " + name);
        EXPECT_FALSE(exists(trashed.trashedPath));
        EXPECT_FALSE(exists(trashed.infoPath));
    }

    // A folder keeps its contents and loses its directorysizes line.
    const std::string folder = t.dir.makeDir("home/docs/folder");
    t.dir.makeFile("home/docs/folder/inner", 5000);
    const TrashResult trashed = moveToTrash(folder, context);
    ASSERT_TRUE(trashed.ok) << trashed.error;
    ASSERT_NE(readFile(t.trash + "/directorysizes").find(" folder\n"), std::string::npos);
    const RestoreResult restored = restoreFromTrash(trashed.trashedPath, trashed.infoPath);
    ASSERT_TRUE(restored.ok) << restored.error;
    EXPECT_TRUE(exists(folder + "/inner"));
    EXPECT_EQ(readFile(t.trash + "/directorysizes").find(" folder\n"), std::string::npos);
}

TEST(TrashRestore, RefusalsChangeNothing) {
    test::TempHome t;
    const TrashContext context = t.context().trash;
    const std::string path = t.dir.writeFile("home/docs/report.pdf", "old");
    const TrashResult trashed = moveToTrash(path, context);
    ASSERT_TRUE(trashed.ok) << trashed.error;

    // Something new at the original place is never replaced.
    t.dir.writeFile("home/docs/report.pdf", "new");
    RestoreResult clash = restoreFromTrash(trashed.trashedPath, trashed.infoPath);
    EXPECT_FALSE(clash.ok);
    EXPECT_FALSE(clash.error.empty());
    EXPECT_EQ(readFile(path), "new");
    EXPECT_EQ(readFile(trashed.trashedPath), "old");
    EXPECT_TRUE(exists(trashed.infoPath));
    ASSERT_EQ(unlink(path.c_str()), 0);

    // Paths that do not belong together, and records that were tampered with.
    EXPECT_FALSE(restoreFromTrash(t.trash + "/files/other", trashed.infoPath).ok);
    EXPECT_FALSE(restoreFromTrash(trashed.trashedPath, trashed.trashedPath).ok);
    const std::string record = readFile(trashed.infoPath);
    for (const std::string& text :
         {std::string("garbage"), formatTrashInfo("/etc/../etc/passwd", "2024-01-01T00:00:00"),
          formatTrashInfo("relative/name", "2024-01-01T00:00:00"),
          formatTrashInfo(t.home + "/gone/report.pdf", "2024-01-01T00:00:00")}) {
        std::ofstream(trashed.infoPath, std::ios::binary | std::ios::trunc) << text;
        const RestoreResult tampered = restoreFromTrash(trashed.trashedPath, trashed.infoPath);
        EXPECT_FALSE(tampered.ok) << text;
        EXPECT_FALSE(tampered.error.empty());
        EXPECT_TRUE(exists(trashed.trashedPath));
    }
    std::ofstream(trashed.infoPath, std::ios::binary | std::ios::trunc) << record;
    ASSERT_TRUE(restoreFromTrash(trashed.trashedPath, trashed.infoPath).ok);
    EXPECT_EQ(readFile(path), "old");
    // Restoring twice: it is no longer in the Trash.
    EXPECT_FALSE(restoreFromTrash(trashed.trashedPath, trashed.infoPath).ok);
}

TEST(TrashRestore, TopDirectoryTrashResolvesRelativePaths) {
    test::TempHome t;
    test::ScratchMount disk(t.dir, "disk");
    if (!disk.mounted()) {
        GTEST_SKIP() << "could not mount a second file system (needs root and mount rights)";
    }
    const std::string item = t.dir.writeFile("disk/sub/odd name", "data");
    const TrashResult trashed = moveToTrash(item, t.context().trash);
    ASSERT_TRUE(trashed.ok) << trashed.error;
    ASSERT_EQ(parseTrashInfo(readFile(trashed.infoPath))->path, "sub/odd name");
    const RestoreResult restored = restoreFromTrash(trashed.trashedPath, trashed.infoPath);
    ASSERT_TRUE(restored.ok) << restored.error;
    EXPECT_EQ(restored.restoredPath, item);
    EXPECT_EQ(readFile(item), "data");
}

} // namespace
} // namespace sondrel
