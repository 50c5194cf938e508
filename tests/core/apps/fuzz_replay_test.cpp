// Runs the fuzz target's checks over the committed corpus and a fixed pseudo-random sweep, so
// the invariants are part of the ordinary suite (the libFuzzer build needs clang).

#include "tests/fuzz/desktop_entry_fuzz_entry.h"

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
    return SONDREL_SOURCE_DIR "/tests/fixtures/fuzz/desktop_entry";
}

TEST(CatalogueFuzzReplay, CommittedCorpus) {
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
        EXPECT_TRUE(fuzz::checkCatalogueInput(reinterpret_cast<const std::uint8_t*>(data.data()),
                                              data.size()))
            << entry->d_name;
        ++count;
    }
    closedir(dir);
    EXPECT_GE(count, 8);
}

TEST(CatalogueFuzzReplay, SeededSweep) {
    std::mt19937 random(20240501);
    const std::string alphabet = std::string("[]=\n#\\\" <>/&;eyk", 17) + '\0' + "\xff";
    for (int i = 0; i < 20000; ++i) {
        std::string data(1, static_cast<char>(random() % 3));
        data += (i % 2 == 0) ? "[Desktop Entry]\nType=A\nName=x\n" : "<plist><dict><key>k</key>";
        const std::size_t length = random() % 40;
        for (std::size_t j = 0; j < length; ++j) {
            data += alphabet[random() % alphabet.size()];
        }
        ASSERT_TRUE(fuzz::checkCatalogueInput(reinterpret_cast<const std::uint8_t*>(data.data()),
                                              data.size()))
            << testing::PrintToString(data);
    }
}

} // namespace
} // namespace sondrel
