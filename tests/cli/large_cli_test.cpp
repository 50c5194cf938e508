// `sondrel-cli large` against a temporary home: the filters, JSON, and clear usage errors.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <map>
#include <unistd.h>

namespace sondrel {
namespace {

using test::runProcess;

TEST(LargeCli, FindsFiltersAndReports) {
    test::TempDir dir;
    const std::string home = dir.makeDir("home");
    for (const auto& [path, size] :
         std::map<std::string, off_t>{{"home/Videos/Trip.MKV", 300 << 20},
                                      {"home/Downloads/disk.iso", 120 << 20},
                                      {"home/Downloads/build/skipped.iso", 120 << 20},
                                      {"home/Documents/exact.pdf", 104857600},
                                      {"home/Documents/small.pdf", 1 << 20}}) {
        ASSERT_EQ(truncate(dir.makeFile(path).c_str(), size), 0);
    }
    const std::map<std::string, std::string> environment = {{"HOME", home},
                                                            {"XDG_CONFIG_HOME", home + "/.config"}};

    const auto all = runProcess({SONDREL_CLI_PATH, "large"}, {}, environment);
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_NE(all.out.find("Trip.MKV"), std::string::npos);
    EXPECT_EQ(all.out.find("skipped"), std::string::npos);
    EXPECT_EQ(all.out.find("small"), std::string::npos);
    EXPECT_NE(all.out.find("Showing 3 files \u00b7 Total: "), std::string::npos) << all.out;

    const auto narrowed = runProcess({SONDREL_CLI_PATH, "--json", "large", "--min", "100M",
                                      "--category", "documents", "--name", " EXACT "},
                                     {}, environment);
    EXPECT_EQ(narrowed.exitCode, 0) << narrowed.err;
    EXPECT_NE(narrowed.out.find("\"size\": 104857600"), std::string::npos) << narrowed.out;
    EXPECT_EQ(narrowed.out.find("disk.iso"), std::string::npos);
    EXPECT_NE(narrowed.out.find("\"category\": \"Documents\""), std::string::npos);

    const auto folder = runProcess({SONDREL_CLI_PATH, "large", home + "/Downloads", "--min", "1G"},
                                   {}, environment);
    EXPECT_EQ(folder.exitCode, 0);
    EXPECT_NE(folder.out.find("Showing 0 files"), std::string::npos);

    for (const char* size : {"lots", "nan", "NaNM", "inf", "-1G", "9000000T"}) {
        const auto bad = runProcess({SONDREL_CLI_PATH, "large", "--min", size}, {}, environment);
        EXPECT_EQ(bad.exitCode, 2) << size;
        EXPECT_NE(bad.err.find("--min needs a size like 100M or 1G"), std::string::npos)
            << size << ": " << bad.err;
    }
    EXPECT_EQ(runProcess({SONDREL_CLI_PATH, "large", "--category", "Spreadsheets"}, {}, environment)
                  .exitCode,
              2);
    const auto missing =
        runProcess({SONDREL_CLI_PATH, "large", home + "/nowhere"}, {}, environment);
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_NE(missing.err.find("cannot be read"), std::string::npos) << missing.err;
    const auto file =
        runProcess({SONDREL_CLI_PATH, "large", home + "/Videos/Trip.MKV"}, {}, environment);
    EXPECT_EQ(file.exitCode, 1);
    EXPECT_NE(file.err.find("Trip.MKV\u201d is not a folder"), std::string::npos) << file.err;
}

} // namespace
} // namespace sondrel
