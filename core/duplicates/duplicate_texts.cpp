#include "core/duplicates/duplicate_texts.h"

#include "core/model/byte_format.h"

namespace sondrel {

std::string duplicateHashingText(std::size_t done, std::size_t clusters) {
    if (done == 0) {
        return "Hashing " + std::to_string(clusters) + " candidate clusters...";
    }
    return "Hashing " + std::to_string(done) + " of " + std::to_string(clusters) +
           " candidate clusters...";
}

std::string duplicateFoundText(const std::vector<DuplicateGroup>& groups) {
    return "Found " + std::to_string(groups.size()) + " duplicate groups (" +
           formatBytes(totalWastedSize(groups)) + " reclaimable)";
}

std::string duplicateTrashResultText(std::size_t moved, std::int64_t freed, std::size_t failed) {
    if (failed == 0) {
        return "Successfully moved " + std::to_string(moved) + " duplicate files (" +
               formatBytes(freed) + ") to Trash.";
    }
    return "Moved " + std::to_string(moved) + " duplicate files (" + formatBytes(freed) +
           ") to Trash. " + std::to_string(failed) + " file(s) could not be removed.";
}

std::string duplicateEachFileText(std::int64_t size) {
    return "Each file: " + formatBytes(size);
}

} // namespace sondrel
