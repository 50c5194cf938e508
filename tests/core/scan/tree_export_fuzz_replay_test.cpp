// Runs the tree writers' fuzz checks over the committed corpus and a fixed pseudo-random sweep of
// hostile names, so the round trip is part of the ordinary suite.

#include "tests/fuzz/tree_export_fuzz_entry.h"
#include "tests/support/fuzz_replay.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

bool check(std::string_view data) {
    return fuzz::checkTreeJson(data) && fuzz::checkNcduExport(data);
}

TEST(TreeExportFuzzReplay, CommittedCorpusAndSeededSweep) {
    EXPECT_GE(test::replayCorpus("tree_export", check), 5);
    test::replaySweep({.seed = 20240601,
                       .selectors = 0,
                       .count = 3000,
                       .maxLength = 48,
                       .alphabet = std::string("/a.\"\\\n\r\x1b\x7f[]{}:,") + '\0' +
                                   "\x01\x03\x07\xc3\xa9\xe9\xed\xa0\xff",
                       .prefixes = {}},
                      check);
}

} // namespace
} // namespace sondrel
