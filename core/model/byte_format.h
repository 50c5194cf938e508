#pragma once
// Byte and percent texts shown to the user. One formatter for the whole program so that every
// size reads the same in the views, the command line and the JSON output.

#include <cstdint>
#include <string>

namespace sondrel {

/// Formats a signed byte count in the file-style decimal notation (1 KB = 1000 bytes):
/// 0 -> "Zero KB", 1 -> "1 byte", 2..999 -> "N bytes", KB without decimals, MB with one,
/// GB and larger with two, trailing zeros dropped ("1 MB", "1.5 MB", "1.23 GB").
/// A value that rounds to 1000 of a unit moves to the next unit ("1 MB", not "1000 KB").
/// Negative counts keep their sign ("-1.5 MB"). Pure; safe on any thread.
std::string formatBytes(std::int64_t bytes);

/// Formats a fraction (0..1) as a percent text with one decimal: 0.1234 -> "12.3%".
/// Values outside 0..1 are printed as they are ("150.0%"). Pure; safe on any thread.
std::string formatPercent(double fraction);

} // namespace sondrel
