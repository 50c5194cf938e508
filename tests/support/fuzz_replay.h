#pragma once
// Replays a fuzz target's checks in the ordinary suite (the libFuzzer build needs clang): over
// the committed corpus, and over a fixed pseudo-random sweep, so every run checks the same
// inputs.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel::test {

/// A fuzz check: true when the input kept every invariant.
using FuzzCheck = std::function<bool(std::string_view input)>;

/// Runs `check` over every file of tests/fixtures/fuzz/`corpus` in the source tree (dot files
/// skipped), adding a test failure that names each input it rejects. Returns how many inputs
/// it ran (0, with a failure, when the folder cannot be read).
int replayCorpus(std::string_view corpus, const FuzzCheck& check);

/// How a sweep's inputs are made: `count` inputs, each one selector byte below `selectors`
/// (none when 0; targets that split their input read it first), the `prefixes` entry chosen in
/// turn (none when empty), then up to `maxLength - 1` bytes drawn from `alphabet`, from a
/// generator seeded with `seed`.
struct Sweep {
    unsigned seed = 1;
    unsigned selectors = 0;
    int count = 1000;
    std::size_t maxLength = 32;
    std::string alphabet;
    std::vector<std::string> prefixes;
};

/// Runs `check` over the sweep's inputs; stops at the first it rejects with a failure that
/// prints it.
void replaySweep(const Sweep& sweep, const FuzzCheck& check);

} // namespace sondrel::test
