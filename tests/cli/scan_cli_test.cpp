// `sondrel-cli scan`: the summary, the JSON tree, the ncdu export (opened by ncdu itself when it
// is installed), the refusal and bad arguments.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <unistd.h>

namespace sondrel {
namespace {

using test::runProcess;

void makeTree(const test::TempDir& dir) {
    dir.makeFile("tree/big/blob.iso", 5000);
    dir.makeFile("tree/small.txt", 100);
    dir.makeFile("tree/.hidden", 99999);
    dir.makeFile("tree/odd\nname \xff.txt", 7);
    dir.makeFile("tree/a/b/c/d/e/f/deep.bin", 30);
}

TEST(CliScan, SummaryLineAndLargestChildren) {
    test::TempDir dir;
    makeTree(dir);
    const auto result = runProcess({SONDREL_CLI_PATH, "scan", dir / "tree"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out.rfind("Scanned 4 items (5 KB) in ", 0), 0U) << result.out;
    const std::size_t big = result.out.find("5 KB  big/");
    const std::size_t small = result.out.find("100 bytes  small.txt");
    ASSERT_NE(big, std::string::npos) << result.out;
    ASSERT_NE(small, std::string::npos) << result.out;
    EXPECT_LT(big, small); // largest first
    EXPECT_EQ(result.out.find(".hidden"), std::string::npos);
    EXPECT_NE(result.out.find("odd\nname \xEF\xBF\xBD.txt"), std::string::npos); // display text
    EXPECT_TRUE(result.err.empty()) << result.err; // no progress when stderr is not a terminal
}

TEST(CliScan, JsonTreeKeepsBytesAndDepth) {
    test::TempDir dir;
    makeTree(dir);
    const auto result =
        runProcess({SONDREL_CLI_PATH, "--json", "scan", "--depth", "2", dir / "tree"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string& out = result.out;
    EXPECT_EQ(out.rfind("{\"name\":\"tree\",\"path\":\"" + dir.path() +
                            "/tree\",\"size\":5137,"
                            "\"fileCount\":4,",
                        0),
              0U)
        << out;
    EXPECT_NE(out.find("\"name\":\"blob.iso\",\"path\":\"" + dir.path() +
                       "/tree/big/blob.iso\",\"size\":5000,\"fileCount\":1,\"category\":"
                       "\"Archives\",\"isDirectory\":false,\"children\":[]"),
              std::string::npos);
    EXPECT_NE(out.find("\"name\":\"odd\\nname \\u00ff.txt\""), std::string::npos);
    // Depth 2: tree/a/b is expanded, tree/a/b/c is a leaf with the whole size.
    EXPECT_NE(out.find("{\"name\":\"c\",\"path\":\"" + dir.path() +
                       "/tree/a/b/c\",\"size\":30,\"fileCount\":1,\"category\":\"Other\","
                       "\"isDirectory\":true,\"children\":[]}"),
              std::string::npos)
        << out;
}

TEST(CliScan, NcduExportOpensInNcdu) {
    test::TempDir dir;
    makeTree(dir);
    const std::string exported = dir / "export.json";
    const auto result =
        runProcess({SONDREL_CLI_PATH, "scan", "--export-ncdu", exported, dir / "tree"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    std::ifstream in(exported);
    std::stringstream text;
    text << in.rdbuf();
    EXPECT_EQ(text.str().rfind("[1,2,{\"progname\":\"sondrel\"", 0), 0U);
    EXPECT_NE(text.str().find("{\"name\":\"blob.iso\",\"asize\":5000,\"dsize\":5000}"),
              std::string::npos);

    if (access("/usr/bin/ncdu", X_OK) != 0) {
        GTEST_SKIP() << "ncdu is not installed";
    }
    // ncdu reads the export and writes it out again in its own words.
    const std::string again = dir / "again.json";
    const auto ncdu = runProcess({"/usr/bin/ncdu", "-f", exported, "-o", again});
    ASSERT_EQ(ncdu.exitCode, 0) << ncdu.err;
    std::ifstream reread(again);
    std::stringstream copy;
    copy << reread.rdbuf();
    EXPECT_NE(copy.str().find("\"name\":\"blob.iso\",\"asize\":5000"), std::string::npos)
        << copy.str();
    EXPECT_NE(copy.str().find("\"name\":\"" + dir.path() + "/tree\""), std::string::npos);
}

TEST(CliScan, RefusalAndBadArguments) {
    test::TempDir dir;
    const auto missing = runProcess({SONDREL_CLI_PATH, "scan", dir / "nothing-here"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err,
              "sondrel-cli: Access not allowed for 'nothing-here'. Permission was denied.\n");
    EXPECT_TRUE(missing.out.empty());

    for (const std::vector<std::string>& args :
         {std::vector<std::string>{SONDREL_CLI_PATH, "scan", "--depth", "0", dir.path()},
          {SONDREL_CLI_PATH, "scan", "--depth", "x", dir.path()},
          {SONDREL_CLI_PATH, "scan", dir.path(), dir.path()},
          {SONDREL_CLI_PATH, "scan", "--export-ncdu"}}) {
        const auto result = runProcess(args);
        EXPECT_EQ(result.exitCode, 2) << args[2];
        EXPECT_FALSE(result.err.empty());
    }
    const auto unwritable = runProcess(
        {SONDREL_CLI_PATH, "scan", "--export-ncdu", dir / "no/such/folder/x.json", dir.path()});
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_NE(unwritable.err.find("cannot write"), std::string::npos);
}

} // namespace
} // namespace sondrel
