// libFuzzer target for the removal rules; see removal_fuzz_entry.h.

#include "tests/fuzz/removal_fuzz_entry.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!sondrel::fuzz::checkRemovalInput(data, size)) {
        std::abort();
    }
    return 0;
}
