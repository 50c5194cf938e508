#pragma once
// Reads a recorded text under tests/fixtures/proc for the monitor tests.

#include <fstream>
#include <sstream>
#include <string>

namespace sondrel::test {

/// The contents of tests/fixtures/proc/<relative>; "" when the file is missing.
inline std::string procFixture(const std::string& relative) {
    std::ifstream in(std::string(SONDREL_SOURCE_DIR "/tests/fixtures/proc/") + relative,
                     std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace sondrel::test
