// libFuzzer target for the application catalogue's readers; see desktop_entry_fuzz_entry.h.

#include "tests/fuzz/desktop_entry_fuzz_entry.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!sondrel::fuzz::checkCatalogueInput(data, size)) {
        std::abort();
    }
    return 0;
}
