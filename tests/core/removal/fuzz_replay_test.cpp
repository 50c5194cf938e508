// Runs the removal fuzz target's checks over the committed corpus and a fixed pseudo-random
// sweep, so the invariants are part of the ordinary suite.

#include "tests/fuzz/removal_fuzz_entry.h"
#include "tests/support/fuzz_replay.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

bool check(std::string_view data) {
    return fuzz::checkRemovalInput(reinterpret_cast<const std::uint8_t*>(data.data()), data.size());
}

TEST(RemovalFuzzReplay, CommittedCorpusAndSeededSweep) {
    EXPECT_GT(test::replayCorpus("removal", check), 10);
    test::replaySweep({.seed = 20240501,
                       .selectors = 3,
                       .count = 20000,
                       .maxLength = 24,
                       .alphabet = std::string("/.%~ -aZ09\n\\$`'\"R P[]=", 22) + '\0' + "\xff\xc3",
                       .prefixes = {}},
                      check);
}

} // namespace
} // namespace sondrel
