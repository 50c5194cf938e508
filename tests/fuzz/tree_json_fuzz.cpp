// libFuzzer target for the JSON tree writer; see tree_export_fuzz_entry.h.

#include "tests/fuzz/tree_export_fuzz_entry.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!sondrel::fuzz::checkTreeJson({reinterpret_cast<const char*>(data), size})) {
        std::abort();
    }
    return 0;
}
