#pragma once
// The texts of the large-file search, shared by the page and the command line. The words that
// name macOS-only things are given as written; callers pass them through withPlatformTerms.

#include "core/model/platform_terms.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sondrel {

/// Page title and subtitle.
inline constexpr std::string_view kSearchTitle = "Intelligent Search & Large Files";
inline constexpr std::string_view kSearchSubtitle =
    "Instant file discovery across your Mac with deep size filters";
/// Status before any search, and while one runs.
inline constexpr std::string_view kSearchReadyText = "Ready to search";
inline constexpr std::string_view kSearchRunningText = "Scanning directories for large files...";
/// The empty state's title before any search.
inline constexpr std::string_view kNoSearchRunText = "No Search Run Yet";
/// The list's text when it has no rows: the search found nothing, or the filter hides all.
inline constexpr std::string_view kNoLargeFilesText = "No large files found";
inline constexpr std::string_view kNoMatchesText = "No files match the filters";
/// Row actions.
inline constexpr std::string_view kRevealText = "Reveal in Finder";
inline constexpr std::string_view kMoveToTrashText = "Move to Trash";

/// "Scan finished: found N large files".
std::string searchFinishedText(std::size_t count);

/// "Scan cancelled: found N large files before it stopped".
std::string searchCancelledText(std::size_t count);

/// "Checked N files, found M" while a search runs (thousands grouped with ',').
std::string searchProgressText(std::int64_t checked, std::int64_t found);

/// "Show All (N Files)".
std::string showAllText(std::size_t count);

/// The footer: "Showing N files · Total: SIZE", or "Showing N of M files · Total: SIZE" while
/// the display cap hides some. SIZE is the sum over all M filtered files.
std::string searchFooterText(std::size_t shown, std::size_t filtered, std::int64_t totalBytes);

/// Confirmation of a single trash: "Move “NAME” to the Trash?" (NAME as display text).
std::string trashOneQuestion(std::string_view name);
/// Confirmation of several: "Move N files (SIZE) to the Trash?".
std::string trashManyQuestion(std::size_t count, std::int64_t totalBytes);

/// After trashing: "Moved N files (SIZE) to the Trash" and, when some failed, "; N could not be
/// moved: REASON" with the first failure's reason.
std::string trashReportText(std::size_t moved, std::int64_t movedBytes, std::size_t failed,
                            std::string_view firstReason);

/// Why a search found nothing to walk: "“NAME” cannot be read" for one root that failed, or
/// "None of the search folders exist" for several.
std::string searchRootsMissingText(std::string_view onlyRoot, std::size_t rootCount);

/// When the file manager could not be asked to show a file: "Could not show “NAME” in Finder",
/// the file manager named in `platform`'s words (NAME as display text, never translated).
std::string revealFailedText(std::string_view name, TextPlatform platform);

/// Why the one folder a search was given could not be walked, from the errno of opening it:
/// "“NAME” is not a folder" (ENOTDIR), otherwise "“NAME” cannot be read".
std::string searchRootFailedText(std::string_view root, int error);

/// Hint of the empty state: "Find every file of 21 MB and more in your folders.", the size being
/// the search's minimum as sizes are shown (so the smallest hit never reads below it).
std::string searchHintText();

/// `n` with thousands grouped by ',' ("12,345").
std::string groupedCount(std::int64_t n);

} // namespace sondrel
