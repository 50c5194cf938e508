#pragma once
// The size of a file or a whole folder tree, as `du` counts it: allocated bytes (st_blocks * 512,
// `du -sB1`) and apparent bytes (st_size, `du -sb`), of every entry including the folders
// themselves and the links (never followed), each (device, inode) once. The junk cleaner, the
// application sizes and the leftovers all measure with it.

#include "core/util/cancel_token.h"

#include <cstdint>
#include <string>

namespace sondrel {

/// What measureTree found.
struct TreeSize {
    std::int64_t allocated = 0; ///< bytes on disk
    std::int64_t apparent = 0;  ///< bytes of content (sparse files count their length)
    std::int64_t files = 0;     ///< entries that are not folders (links included), each once
    std::int64_t folders = 0;   ///< folders entered, the root included
    bool exists = false;        ///< something was at the path
    /// Every folder below could be opened and listed to its end, every entry stat'ed, and the
    /// walk was not cancelled: the figures are whole.
    bool complete = false;
    /// A mount point lies below: a folder left out as one (with `oneFilesystem`, any mount),
    /// or a file bind-mounted over another. What is inside a left-out mount is not counted.
    bool mountInside = false;
};

/// How to measure.
struct MeasureOptions {
    /// Stay on the file system of the path (the default: what removal of the path would free).
    bool oneFilesystem = true;
    /// Leave out names beginning with '.'.
    bool skipHidden = false;
    /// Worker threads (0: from the machine).
    unsigned threads = 0;
};

/// Measures `path` without following a link at it or below it: a file or link gives its own
/// size, a folder the sum over its whole tree (in parallel). Nothing at the path gives zeros
/// with `exists` false. Blocks the calling thread; any thread; never throws for file-system
/// errors (unreadable folders add their own size only and clear `complete`).
TreeSize measureTree(const std::string& path, const MeasureOptions& options,
                     const CancelToken& cancel);

/// measureTree of the folder open at `folderFd` (taken over and closed), whose path is
/// `path`: for code that holds the folder already and must measure that very folder, whatever
/// the name leads to meanwhile. A descriptor that is not a folder gives `exists` false.
TreeSize measureTreeAt(int folderFd, const std::string& path, const MeasureOptions& options,
                       const CancelToken& cancel);

/// measureTree with the default options and no cancel.
TreeSize measureTree(const std::string& path);

} // namespace sondrel
