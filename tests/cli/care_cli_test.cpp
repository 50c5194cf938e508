// `sondrel-cli care` and `care clean` against a temporary home whose Trash holds two items:
// the report, the dry run, a clean that skips the Trash (nothing removed), a real clean, and
// argument checks.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>

namespace sondrel {
namespace {

using test::runProcess;

bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

struct TrashHome {
    test::TempDir dir;
    std::string home = dir.makeDir("home");
    std::map<std::string, std::string> environment = {{"HOME", home},
                                                      {"XDG_DATA_HOME", home + "/.local/share"}};
    std::string big = dir.makeFile("home/.local/share/Trash/files/big.iso", 300000);
    std::string folder = dir.makeFile("home/.local/share/Trash/files/old/notes.txt", 5000);
    std::string info =
        dir.writeFile("home/.local/share/Trash/info/big.iso.trashinfo",
                      "[Trash Info]\nPath=/x/big.iso\nDeletionDate=2024-01-01T00:00:00\n");

    test::ProcessResult run(std::vector<std::string> args) const {
        args.insert(args.begin(), SONDREL_CLI_PATH);
        return runProcess(args, {}, environment);
    }
};

TEST(CareCli, ReportsScoresAndTheTrash) {
    TrashHome t;
    const auto text = t.run({"care"});
    ASSERT_EQ(text.exitCode, 0) << text.err;
    EXPECT_NE(text.out.find("Health Score: "), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("Storage Headroom:"), std::string::npos);
    EXPECT_NE(text.out.find("Empty Trash Bin:"), std::string::npos);
    EXPECT_NE(text.out.find("can be reclaimed"), std::string::npos);

    const auto json = t.run({"--json", "care"});
    ASSERT_EQ(json.exitCode, 0) << json.err;
    for (const char* key : {"\"healthScore\"", "\"clutterScore\"", "\"diskScore\"",
                            "\"memoryScore\"", "\"trashBytes\"", "\"developerJunkBytes\"",
                            "\"orphanedResidueBytes\"", "\"systemCacheBytes\"", "\"logBytes\""}) {
        EXPECT_NE(json.out.find(key), std::string::npos) << key;
    }
    EXPECT_EQ(json.out.find("\"trashBytes\": 0"), std::string::npos) << json.out;
}

TEST(CareCli, DryRunAndSkipTouchNothingThenTheCleanEmptiesTheTrash) {
    TrashHome t;
    const auto dry = t.run({"care", "clean"});
    ASSERT_EQ(dry.exitCode, 0) << dry.err;
    EXPECT_NE(dry.out.find("dry run"), std::string::npos);
    EXPECT_NE(dry.out.find(t.big), std::string::npos) << dry.out;
    EXPECT_TRUE(exists(t.big));

    const auto skipped = t.run({"care", "clean", "--skip", "trash", "--yes"});
    ASSERT_EQ(skipped.exitCode, 0) << skipped.err;
    EXPECT_NE(skipped.out.find("Clean complete! Reclaimed Zero KB"), std::string::npos)
        << skipped.out;
    EXPECT_TRUE(exists(t.big));
    EXPECT_TRUE(exists(t.folder));

    const auto cleaned = t.run({"--json", "care", "clean", "--yes"});
    ASSERT_EQ(cleaned.exitCode, 0) << cleaned.err;
    EXPECT_NE(cleaned.out.find("\"removedItems\": 2"), std::string::npos) << cleaned.out;
    EXPECT_NE(cleaned.out.find("\"clutterScore\": 60"), std::string::npos);
    EXPECT_FALSE(exists(t.big));
    EXPECT_FALSE(exists(t.folder));
    EXPECT_FALSE(exists(t.info));
}

TEST(CareCli, BadArguments) {
    TrashHome t;
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"care", "clean", "--skip", "everything"},
          {"care", "clean", "--skip"},
          {"care", "--yes"},
          {"care", "clean", "extra"},
          {"care", "purge"}}) {
        const auto result = t.run(args);
        EXPECT_EQ(result.exitCode, 2) << args.back();
        EXPECT_FALSE(result.err.empty());
    }
    EXPECT_TRUE(exists(t.big));
}

} // namespace
} // namespace sondrel
