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

// The committed corpus, found from the source file's path when that is absolute, else by
// walking up from the test binary (a build folder inside the source tree).
std::string corpusFolder() {
    constexpr const char* kCorpus = "/tests/fixtures/fuzz/removal";
    const std::string file = __FILE__;
    if (!file.empty() && file.front() == '/') {
        return file.substr(0, file.rfind("/tests/core/removal/")) + kCorpus;
    }
    char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    std::string folder(self, length > 0 ? static_cast<std::size_t>(length) : 0);
    while (folder.size() > 1) {
        folder = folder.substr(0, folder.rfind('/'));
        struct stat info {};
        if (stat((folder + kCorpus).c_str(), &info) == 0) {
            return folder + kCorpus;
        }
    }
    return kCorpus;
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
