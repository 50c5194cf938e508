// `sondrel-cli dups` and `dups trash` as a user runs them against a temporary home.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sys/stat.h>

namespace sondrel {
namespace {

using test::runProcess;

bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

void writeRandom(const std::string& path, std::size_t size, unsigned seed, long offsetToFlip = -1) {
    std::mt19937 generator(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(generator() & 0xff);
    }
    if (offsetToFlip >= 0) {
        bytes[static_cast<std::size_t>(offsetToFlip)] ^= 1;
    }
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(size));
}

TEST(DupsCli, ListsGroupsAndTrashesOnlyTrueCopies) {
    test::TempDir dir;
    const std::string home = dir.makeDir("home");
    const std::string docs = dir.makeDir("home/Documents");
    const std::map<std::string, std::string> environment = {
        {"HOME", home},
        {"XDG_DATA_HOME", home + "/.local/share"},
        {"XDG_CONFIG_HOME", home + "/.config"}};
    writeRandom(docs + "/a.bin", 2000000, 1);
    writeRandom(docs + "/b.bin", 2000000, 1);
    writeRandom(docs + "/x.bin", 3000000, 2);
    writeRandom(docs + "/y.bin", 3000000, 2, 1500000 - 7); // differs outside the samples

    const auto listed = runProcess({SONDREL_CLI_PATH, "--json", "dups"}, {}, environment);
    EXPECT_EQ(listed.exitCode, 0) << listed.err;
    EXPECT_NE(listed.out.find("\"status\": \"Found 2 duplicate groups (5 MB reclaimable)\""),
              std::string::npos)
        << listed.out;
    EXPECT_NE(listed.out.find("\"keep\": true"), std::string::npos);

    // Not confirmed: nothing moves.
    const auto refused = runProcess({SONDREL_CLI_PATH, "dups", "trash", docs}, "n\n", environment);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(exists(docs + "/b.bin"));

    const auto trashed =
        runProcess({SONDREL_CLI_PATH, "dups", "trash", "--yes", docs}, {}, environment);
    EXPECT_EQ(trashed.exitCode, 1); // y.bin is not a true copy
    EXPECT_NE(trashed.out.find("moved 1, freed 2 MB, failed 1"), std::string::npos) << trashed.out;
    EXPECT_NE(trashed.err.find("y.bin: differs from the kept copy"), std::string::npos)
        << trashed.err;
    EXPECT_TRUE(exists(docs + "/a.bin"));
    EXPECT_FALSE(exists(docs + "/b.bin"));
    EXPECT_TRUE(exists(home + "/.local/share/Trash/files/b.bin"));
    EXPECT_TRUE(exists(docs + "/y.bin"));

    const auto bad =
        runProcess({SONDREL_CLI_PATH, "dups", "trash", "--keep", "largest"}, {}, environment);
    EXPECT_EQ(bad.exitCode, 2);
    const auto missing = runProcess({SONDREL_CLI_PATH, "dups", dir / "nothing"}, {}, environment);
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_NE(missing.err.find("is not a folder"), std::string::npos);
}

} // namespace
} // namespace sondrel
