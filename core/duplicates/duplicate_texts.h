#pragma once
// The duplicate finder's status and result texts, shared by the page and the command line.

#include "core/duplicates/duplicate_finder.h"
#include "core/duplicates/duplicate_trash.h"

#include <cstddef>
#include <string>

namespace sondrel {

/// "Discovering candidate duplicate files...".
inline constexpr const char* kDuplicateDiscoveringText = "Discovering candidate duplicate files...";

/// "Hashing 120 candidate clusters..." when hashing starts (`done` 0) and "Hashing 41 of 120
/// candidate clusters..." while it runs.
std::string duplicateHashingText(std::size_t done, std::size_t clusters);

/// The status after a scan: "Found 3 duplicate groups (12.5 MB reclaimable)" with the sum of
/// the groups' wasted sizes ("Zero KB" for none).
std::string duplicateFoundText(const std::vector<DuplicateGroup>& groups);

/// The result of a trash run: "Successfully moved N duplicate files (X) to Trash." without
/// failures, otherwise "Moved N duplicate files (X) to Trash. F file(s) could not be removed.".
std::string duplicateTrashResultText(std::size_t moved, std::int64_t freed, std::size_t failed);

/// "Each file: " + the formatted size (heading of a group).
std::string duplicateEachFileText(std::int64_t size);

} // namespace sondrel
