#include "core/scan/scan_texts.h"

#include "core/model/byte_format.h"
#include "core/util/path_text.h"

#include <cstdio>

namespace sondrel {

std::string scanStartText(std::string_view folderName) {
    return "Fast scanning " + std::string(folderName) + "...";
}

std::string scanProgressText(std::int64_t items, std::int64_t bytes) {
    return "Scanning: " + std::to_string(items) + " items (" + formatBytes(bytes) + ")";
}

std::string scanSummaryText(std::int64_t items, std::int64_t bytes, double elapsedSeconds) {
    const double rate = elapsedSeconds > 0 ? static_cast<double>(items) / elapsedSeconds : 0.0;
    char tail[96];
    std::snprintf(tail, sizeof tail, ") in %.2fs (%.0f items/s)", elapsedSeconds, rate);
    return "Scanned " + std::to_string(items) + " items (" + formatBytes(bytes) + tail;
}

std::string accessDeniedText(std::string_view folderName) {
    return "Access not allowed for '" + std::string(folderName) + "'. Permission was denied.";
}

std::string scanTargetName(std::string_view path) {
    std::string_view name = lastPathComponent(path);
    if (name.empty()) {
        name = path;
    }
    return toDisplayText(name);
}

} // namespace sondrel
