// Percent-encoding, .trashinfo texts and directorysizes lines.

#include "core/removal/trash_info.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

TEST(TrashInfo, OddNamesRoundTripExactly) {
    const std::vector<std::string> paths = {
        "/home/a/plain.txt",           "/home/a/with space",
        "/home/a/new\nline",           "/home/a/100% sure",
        "/home/a/%41 stays %41",       std::string("/home/a/bad\xff\xfe utf8"),
        "/home/a/\"double\" 'single'", "/home/a/$(touch x)",
        "/home/a/`touch y`",           "/home/a/-rf",
        "/home/a/caf\xc3\xa9",         "/home/a/tab\there\r",
        "relative/in/topdir",
    };
    for (const std::string& path : paths) {
        const std::string text = formatTrashInfo(path, "2024-01-02T03:04:05");
        // The encoded form is one line of plain ASCII.
        const std::string encoded = percentEncodePath(path);
        EXPECT_EQ(encoded.find_first_of("\"'$`;|&<>()\\"), std::string::npos) << encoded;
        for (const char c : encoded) {
            EXPECT_TRUE(c > 0x20 && c < 0x7f) << encoded;
        }
        const std::optional<TrashInfo> info = parseTrashInfo(text);
        ASSERT_TRUE(info) << text;
        EXPECT_EQ(info->path, path);
        EXPECT_EQ(info->deletionDate, "2024-01-02T03:04:05");
    }
    EXPECT_EQ(percentEncodePath("/a b/%"), "/a%20b/%25");
    EXPECT_EQ(percentEncodePath("a/b", false), "a%2Fb");
}

TEST(TrashInfo, ParserRejectsMalformedTexts) {
    const std::vector<std::string> bad = {
        "",
        "Path=/x\n",
        "[Other]\nPath=/x\n",
        "[Trash Info]\nDeletionDate=2024-01-01T00:00:00\n",
        "[Trash Info]\nPath=\n",
        "[Trash Info]\nPath=/bad%\n",
        "[Trash Info]\nPath=/bad%4\n",
        "[Trash Info]\nPath=/bad%G0\n",
        "[Trash Info]\nPath=/nul%00byte\n",
    };
    for (const std::string& text : bad) {
        EXPECT_FALSE(parseTrashInfo(text)) << text;
    }
    const auto info =
        parseTrashInfo("# note\n\n[Trash Info]\r\nPath=/a%20b\r\n[Later]\nPath=/no\n");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->path, "/a b");
}

TEST(TrashInfo, DeletionDateIsLocalIsoWithoutZone) {
    const std::string date = formatDeletionDate(1700000000);
    ASSERT_EQ(date.size(), 19U);
    EXPECT_EQ(date[4], '-');
    EXPECT_EQ(date[10], 'T');
    EXPECT_EQ(date[16], ':');
}

TEST(TrashInfo, DirectorySizesLines) {
    const std::string line = formatDirectorySizesLine(4096, 1700000000, "a b/c\n");
    EXPECT_EQ(line, "4096 1700000000 a%20b%2Fc%0A\n");
    EXPECT_EQ(directorySizesLineName(line.substr(0, line.size() - 1)), "a b/c\n");
    for (const std::string bad : {"", "4096", "4096 17", "x 17 name", "1 y name", "1 2 %zz"}) {
        EXPECT_FALSE(directorySizesLineName(bad)) << bad;
    }
}

} // namespace
} // namespace sondrel
