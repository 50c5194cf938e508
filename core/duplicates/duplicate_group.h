#pragma once
// The duplicate finder's values: one file of a set of identical files, and the set (a group).
// A group's files all have the same size and the same sampled digest; the copies whose
// `isSelected` is set are the ones a trash run moves to the Trash.

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace sondrel {

/// One copy in a duplicate group. Plain value; the identity fields (`device`, `inode`, `size`,
/// `modifiedNs`) are what the file was when it was hashed, and a trash run checks the file
/// still matches them before it touches it.
struct DuplicateFile {
    std::uint64_t id = 0; ///< unique within one scan result (the views find a file by it)
    std::string path;     ///< absolute, bytes
    std::int64_t size = 0;
    std::int64_t modifiedNs = 0; ///< modification time, nanoseconds since the epoch
    dev_t device = 0;
    ino_t inode = 0;
    bool isSelected = false; ///< true: this copy is trashed by a trash run

    /// The last path component (bytes).
    std::string name() const;
};

/// A set of two or more files with equal size and equal sampled digest. Plain value.
struct DuplicateGroup {
    std::uint64_t id = 0;  ///< unique within one scan result
    std::int64_t size = 0; ///< bytes of one copy
    std::string digest;    ///< the sampled SHA-256, 64 lower-case hex digits
    std::vector<DuplicateFile> files;

    /// Number of selected copies times `size`: what trashing the selection frees. Selecting
    /// every copy counts the whole group. Aborts on overflow (impossible for real files).
    std::int64_t wastedSize() const;
    /// Number of selected copies.
    std::size_t selectedCount() const;
};

/// Sum of wastedSize() over `groups`.
std::int64_t totalWastedSize(const std::vector<DuplicateGroup>& groups);
/// Number of selected copies over `groups`.
std::size_t totalSelectedCount(const std::vector<DuplicateGroup>& groups);

/// Orders each group's files by modification time, oldest first (newest first with
/// `keepNewest`), stably, then unselects the first file and selects all others. The files keep
/// the new order.
void autoSelect(std::vector<DuplicateGroup>& groups, bool keepNewest);

/// Stable sort of `groups` by wastedSize(), largest first.
void sortByWastedSize(std::vector<DuplicateGroup>& groups);

/// Flips isSelected of the file with `fileId`; false when no file has that id.
bool toggleFile(std::vector<DuplicateGroup>& groups, std::uint64_t fileId);

} // namespace sondrel
