// Runs the desktop-entry fuzz target's checks over the committed corpus and a fixed
// pseudo-random sweep, so the invariants are part of the ordinary suite.

#include "tests/fuzz/desktop_entry_fuzz_entry.h"
#include "tests/support/fuzz_replay.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

bool check(std::string_view data) {
    return fuzz::checkCatalogueInput(reinterpret_cast<const std::uint8_t*>(data.data()),
                                     data.size());
}

TEST(CatalogueFuzzReplay, CommittedCorpusAndSeededSweep) {
    EXPECT_GE(test::replayCorpus("desktop_entry", check), 8);
    test::replaySweep(
        {.seed = 20240501,
         .selectors = 3,
         .count = 20000,
         .maxLength = 40,
         .alphabet = std::string("[]=\n#\\\" <>/&;eyk", 17) + '\0' + "\xff",
         .prefixes = {"[Desktop Entry]\nType=A\nName=x\n", "<plist><dict><key>k</key>"}},
        check);
}

} // namespace
} // namespace sondrel
