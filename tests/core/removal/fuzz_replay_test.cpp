// Runs the fuzz target's checks over the committed corpus and a fixed pseudo-random sweep, so
// the invariants are part of the ordinary suite (the libFuzzer build needs clang).

#include "tests/fuzz/removal_fuzz_entry.h"

#include <dirent.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {
namespace {

// The committed corpus in the source tree.
std::string corpusFolder() {
    return SONDREL_SOURCE_DIR "/tests/fixtures/fuzz/removal";
}

TEST(RemovalFuzzReplay, CommittedCorpus) {
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
        EXPECT_TRUE(fuzz::checkRemovalInput(reinterpret_cast<const std::uint8_t*>(data.data()),
                                            data.size()))
            << entry->d_name;
        ++count;
    }
    closedir(dir);
    EXPECT_GT(count, 10);
}

TEST(RemovalFuzzReplay, SeededSweep) {
    std::mt19937 random(20240501);
    const std::string alphabet = std::string("/.%~ -aZ09\n\\$`'\"R P[]=", 22) + '\0' + "\xff\xc3";
    for (int i = 0; i < 20000; ++i) {
        std::string data(1, static_cast<char>(random() % 3));
        const std::size_t length = random() % 24;
        for (std::size_t j = 0; j < length; ++j) {
            data += alphabet[random() % alphabet.size()];
        }
        ASSERT_TRUE(fuzz::checkRemovalInput(reinterpret_cast<const std::uint8_t*>(data.data()),
                                            data.size()))
            << testing::PrintToString(data);
    }
}

} // namespace
} // namespace sondrel
