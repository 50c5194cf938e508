// `sondrel-cli scan`: the summary, the JSON tree, the ncdu export (opened by ncdu itself when it
// is installed), the refusal and bad arguments.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <sys/stat.h>
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
    const auto result = runProcess({SONDREL_CLI_PATH, "scan", "--apparent-size", dir / "tree"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out.rfind("Scanned 4 items (5 KB) in ", 0), 0U) << result.out;
    const std::size_t big = result.out.find("5 KB  big/");
    const std::size_t small = result.out.find("100 bytes  small.txt");
    ASSERT_NE(big, std::string::npos) << result.out;
    ASSERT_NE(small, std::string::npos) << result.out;
    EXPECT_LT(big, small); // largest first
    EXPECT_EQ(result.out.find(".hidden"), std::string::npos);
    EXPECT_NE(result.out.find("odd\\nname \\377.txt"), std::string::npos); // escaped visibly
    EXPECT_TRUE(result.err.empty()) << result.err; // no progress when stderr is not a terminal
}

TEST(CliScan, JsonTreeKeepsBytesAndDepth) {
    test::TempDir dir;
    makeTree(dir);
    const auto result = runProcess(
        {SONDREL_CLI_PATH, "--json", "scan", "--apparent-size", "--depth", "2", dir / "tree"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string& out = result.out;
    EXPECT_EQ(out.rfind("{\"name\":\"tree\",\"path\":\"" + dir.path() +
                            "/tree\",\"size\":5137,"
                            "\"fileCount\":4,",
                        0),
              0U)
        << out;
    EXPECT_EQ(out.find("\"path\"", 1), out.find("\"path\"")); // only the root has a path
    EXPECT_NE(out.find("{\"name\":\"blob.iso\",\"size\":5000,\"fileCount\":1,\"category\":"
                       "\"Archives\",\"isDirectory\":false}"),
              std::string::npos);
    EXPECT_NE(out.find("\"name\":\"odd\\nname \\udcff.txt\""), std::string::npos);
    // Depth 2: tree/a/b is expanded, tree/a/b/c is a leaf with the whole size.
    EXPECT_NE(out.find("{\"name\":\"c\",\"size\":30,\"fileCount\":1,\"category\":\"Other\","
                       "\"isDirectory\":true,\"children\":[]}"),
              std::string::npos)
        << out;
}

TEST(CliScan, NamesThatAreNotUtf8ReadBackExactly) {
    test::TempDir dir;
    dir.makeFile("tree/caf\xE9", 1);     // one Latin-1 byte
    dir.makeFile("tree/caf\xC3\xA9", 2); // "café" in UTF-8
    dir.makeFile("tree/\x1b]0;title\x07\x1b[2J", 3);
    const auto human = runProcess({SONDREL_CLI_PATH, "scan", dir / "tree"});
    ASSERT_EQ(human.exitCode, 0) << human.err;
    EXPECT_NE(human.out.find("  caf\\351\n"), std::string::npos) << human.out;
    EXPECT_NE(human.out.find("  caf\xC3\xA9\n"), std::string::npos);
    EXPECT_NE(human.out.find("  \\033]0;title\\a\\033[2J\n"), std::string::npos);
    EXPECT_EQ(human.out.find('\x1b'), std::string::npos);

    const auto json = runProcess({SONDREL_CLI_PATH, "--json", "scan", dir / "tree"});
    ASSERT_EQ(json.exitCode, 0) << json.err;
    EXPECT_NE(json.out.find("\"name\":\"caf\\udce9\""), std::string::npos) << json.out;
    EXPECT_NE(json.out.find("\"name\":\"caf\xC3\xA9\""), std::string::npos);
    EXPECT_EQ(json.out.find('\x1b'), std::string::npos);

    // The documented reading: Python's surrogateescape gives back the bytes on the disk.
    if (access("/usr/bin/python3", X_OK) != 0) {
        GTEST_SKIP() << "python3 is not installed";
    }
    const std::string reader =
        "import json, os, sys\n"
        "tree = json.load(sys.stdin)\n"
        "root = tree['path'].encode('utf-8', 'surrogateescape')\n"
        "names = sorted(c['name'].encode('utf-8', 'surrogateescape') for c in tree['children'])\n"
        "sys.exit(0 if names == sorted(os.listdir(root)) else 1)\n";
    const auto python = runProcess({"/usr/bin/python3", "-c", reader}, json.out);
    EXPECT_EQ(python.exitCode, 0) << python.err;
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
    struct stat blob {};
    ASSERT_EQ(lstat((dir / "tree/big/blob.iso").c_str(), &blob), 0);
    EXPECT_NE(text.str().find("{\"name\":\"blob.iso\",\"asize\":5000,\"dsize\":" +
                              std::to_string(blob.st_blocks * 512) + "}"),
              std::string::npos)
        << text.str();

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

TEST(CliScan, SizesAreOnDiskUnlessApparentSizeIsAsked) {
    test::TempDir dir;
    dir.makeFile("tree/hole.img", 0);
    ASSERT_EQ(truncate((dir / "tree/hole.img").c_str(), 1 << 30), 0);
    dir.makeFile("tree/data.bin", 70000);
    struct stat data {};
    struct stat hole {};
    ASSERT_EQ(lstat((dir / "tree/data.bin").c_str(), &data), 0);
    ASSERT_EQ(lstat((dir / "tree/hole.img").c_str(), &hole), 0);
    const auto rootSize = [&dir](std::vector<std::string> extra) {
        std::vector<std::string> command{SONDREL_CLI_PATH, "--json", "scan"};
        command.insert(command.end(), extra.begin(), extra.end());
        command.push_back(dir / "tree");
        const auto result = runProcess(command);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        const std::size_t at = result.out.find("\"size\":");
        return result.out.substr(at + 7, result.out.find(',', at) - at - 7);
    };
    EXPECT_EQ(rootSize({}), std::to_string((data.st_blocks + hole.st_blocks) * 512));
    EXPECT_EQ(rootSize({"--apparent-size"}), std::to_string(70000 + (1LL << 30)));
}

TEST(CliScan, RefusalAndBadArguments) {
    test::TempDir dir;
    const auto missing = runProcess({SONDREL_CLI_PATH, "scan", dir / "nothing-here"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "sondrel-cli: '" + dir / "nothing-here" + "' does not exist\n");
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
