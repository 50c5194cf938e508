#include "tests/support/fuzz_replay.h"

#include <dirent.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace sondrel::test {

int replayCorpus(std::string_view corpus, const FuzzCheck& check) {
    const std::string folder =
        std::string(SONDREL_SOURCE_DIR "/tests/fixtures/fuzz/") + std::string(corpus);
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr) {
        ADD_FAILURE() << "cannot read the corpus " << folder;
        return 0;
    }
    int count = 0;
    while (const dirent* entry = readdir(dir)) {
        if (entry->d_name[0] == '.') {
            continue;
        }
        std::ifstream in(folder + "/" + entry->d_name, std::ios::binary);
        const std::string data{std::istreambuf_iterator<char>(in),
                               std::istreambuf_iterator<char>()};
        EXPECT_TRUE(check(data)) << folder << "/" << entry->d_name;
        ++count;
    }
    closedir(dir);
    return count;
}

void replaySweep(const Sweep& sweep, const FuzzCheck& check) {
    std::mt19937 random(sweep.seed);
    for (int i = 0; i < sweep.count; ++i) {
        std::string data;
        if (sweep.selectors > 0) {
            data += static_cast<char>(random() % sweep.selectors);
        }
        if (!sweep.prefixes.empty()) {
            data += sweep.prefixes[static_cast<std::size_t>(i) % sweep.prefixes.size()];
        }
        const std::size_t length = random() % sweep.maxLength;
        for (std::size_t j = 0; j < length && !sweep.alphabet.empty(); ++j) {
            data += sweep.alphabet[random() % sweep.alphabet.size()];
        }
        ASSERT_TRUE(check(data)) << testing::PrintToString(data);
    }
}

} // namespace sondrel::test
