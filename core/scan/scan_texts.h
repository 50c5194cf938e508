#pragma once
// The status texts of a folder scan, shared by the engine and the command line.

#include <cstdint>
#include <string>
#include <string_view>

namespace sondrel {

/// "Fast scanning NAME..." shown when a scan starts.
std::string scanStartText(std::string_view folderName);

/// "Scanning: N items (SIZE)" shown while a scan runs.
std::string scanProgressText(std::int64_t items, std::int64_t bytes);

/// "Scanned N items (SIZE) in S.SSs (R items/s)"; the rate is 0 when `elapsedSeconds` is not
/// positive.
std::string scanSummaryText(std::int64_t items, std::int64_t bytes, double elapsedSeconds);

/// "Access not allowed for 'NAME'. Permission was denied." for a target that cannot be read.
std::string accessDeniedText(std::string_view folderName);

/// "Scan cancelled".
inline constexpr std::string_view kScanCancelledText = "Scan cancelled";

/// Name shown for a scan target: its last path component, or the whole path when that is
/// empty ("/"). Display text (invalid UTF-8 replaced).
std::string scanTargetName(std::string_view path);

} // namespace sondrel
