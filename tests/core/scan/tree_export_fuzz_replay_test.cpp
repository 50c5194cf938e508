// Runs the tree writers' fuzz checks over the committed corpus and a fixed pseudo-random sweep of
// hostile names, so the round trip is part of the ordinary suite (the libFuzzer build needs
// clang).

#include "tests/fuzz/tree_export_fuzz_entry.h"

#include <dirent.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace sondrel {
namespace {

std::string corpusFolder() {
    return SONDREL_SOURCE_DIR "/tests/fixtures/fuzz/tree_export";
}

TEST(TreeExportFuzzReplay, CommittedCorpus) {
    const std::string folder = corpusFolder();
    DIR* dir = opendir(folder.c_str());
    ASSERT_NE(dir, nullptr) << folder;
    int count = 0;
    while (const dirent* entry = readdir(dir)) {
        if (entry->d_name[0] == '.') {
            continue;
        }
        std::ifstream in(folder + "/" + entry->d_name, std::ios::binary);
        const std::string data{std::istreambuf_iterator<char>(in),
                               std::istreambuf_iterator<char>()};
        EXPECT_TRUE(fuzz::checkTreeJson(data)) << entry->d_name;
        EXPECT_TRUE(fuzz::checkNcduExport(data)) << entry->d_name;
        ++count;
    }
    closedir(dir);
    EXPECT_GE(count, 5);
}

TEST(TreeExportFuzzReplay, SeededSweep) {
    std::mt19937 random(20240601);
    const std::string alphabet =
        std::string("/a.\"\\\n\r\x1b\x7f[]{}:,") + '\0' + "\x01\x03\x07\xc3\xa9\xe9\xed\xa0\xff";
    for (int i = 0; i < 3000; ++i) {
        std::string data;
        const std::size_t length = random() % 48;
        for (std::size_t j = 0; j < length; ++j) {
            data += alphabet[random() % alphabet.size()];
        }
        ASSERT_TRUE(fuzz::checkTreeJson(data)) << testing::PrintToString(data);
        ASSERT_TRUE(fuzz::checkNcduExport(data)) << testing::PrintToString(data);
    }
}

} // namespace
} // namespace sondrel
