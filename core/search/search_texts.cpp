#include "core/search/search_texts.h"

#include "core/model/byte_format.h"
#include "core/search/large_file_search.h"
#include "core/util/path_text.h"

#include <cerrno>

namespace sondrel {

std::string groupedCount(std::int64_t n) {
    std::string digits = std::to_string(n < 0 ? -n : n);
    for (std::size_t at = digits.size(); at > 3; at -= 3) {
        digits.insert(at - 3, 1, ',');
    }
    return n < 0 ? "-" + digits : digits;
}

std::string searchFinishedText(std::size_t count) {
    return "Scan finished: found " + std::to_string(count) + " large files";
}

std::string searchCancelledText(std::size_t count) {
    return "Scan cancelled: found " + std::to_string(count) + " large files before it stopped";
}

std::string searchProgressText(std::int64_t checked, std::int64_t found) {
    return "Checked " + groupedCount(checked) + " files, found " + groupedCount(found);
}

std::string showAllText(std::size_t count) {
    return "Show All (" + std::to_string(count) + " Files)";
}

std::string searchFooterText(std::size_t shown, std::size_t filtered, std::int64_t totalBytes) {
    std::string text = "Showing " + std::to_string(shown);
    if (shown < filtered) {
        text += " of " + std::to_string(filtered);
    }
    return text + " files \u00b7 Total: " + formatBytes(totalBytes);
}

std::string trashOneQuestion(std::string_view name) {
    return "Move \u201c" + toDisplayText(name) + "\u201d to the Trash?";
}

std::string trashManyQuestion(std::size_t count, std::int64_t totalBytes) {
    return "Move " + std::to_string(count) + " files (" + formatBytes(totalBytes) +
           ") to the Trash?";
}

std::string trashReportText(std::size_t moved, std::int64_t movedBytes, std::size_t failed,
                            std::string_view firstReason) {
    std::string text = "Moved " + std::to_string(moved) + (moved == 1 ? " file (" : " files (") +
                       formatBytes(movedBytes) + ") to the Trash";
    if (failed > 0) {
        text += "; " + std::to_string(failed) + " could not be moved";
        if (!firstReason.empty()) {
            text += ": " + std::string(firstReason);
        }
    }
    return text;
}

std::string revealFailedText(std::string_view name, TextPlatform platform) {
    return "Could not show \u201c" + toDisplayText(name) + "\u201d in " +
           withPlatformTerms("Finder", platform);
}

std::string searchRootFailedText(std::string_view root, int error) {
    if (error == ENOTDIR) {
        return "\u201c" + toDisplayText(root) + "\u201d is not a folder";
    }
    return searchRootsMissingText(root, 1);
}

std::string searchHintText() {
    return "Find every file of " + formatBytes(kLargeFileMinimum) + " and more in your folders.";
}

std::string searchRootsMissingText(std::string_view onlyRoot, std::size_t rootCount) {
    if (rootCount == 1) {
        return "\u201c" + toDisplayText(onlyRoot) + "\u201d cannot be read";
    }
    return "None of the search folders exist";
}

} // namespace sondrel
