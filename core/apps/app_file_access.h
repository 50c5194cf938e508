#pragma once
// The few file reads the application catalogue needs beyond the walk: a small text file, one
// folder's names, the files of a suffix below a folder, and the newest change in a tree.

#include "core/fs/folder_listing.h"
#include "core/util/cancel_token.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sondrel {

/// The content of the regular file at `path` when it is at most `maxBytes` long; nothing for
/// anything else (missing, a folder, a FIFO, too long). Follows a link at `path` only with
/// `followLink`. Blocking; any thread.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t maxBytes,
                                         bool followLink = true);

/// The entries of the folder at `path` (a link to a folder is followed), in listing order;
/// empty when it cannot be listed. Blocking; any thread.
std::vector<FolderEntry> listFolder(const std::string& path);

/// Paths relative to `root` of the files (or links) below it whose names end in `suffix`, at
/// most `maxDepth` folders deep, sorted byte-wise. Links to folders are not followed. Empty for
/// a missing root. Blocking; any thread.
std::vector<std::string> findFilesBySuffix(const std::string& root, const std::string& suffix,
                                           int maxDepth);

/// The latest modification time (seconds since the epoch) of `path` and, for a folder, of every
/// entry below it (links not followed); nothing when nothing is at the path. Blocking.
std::optional<std::int64_t> newestChange(const std::string& path, const CancelToken& cancel);

/// The "AI" magic of an AppImage (bytes 8..10 of an ELF file are 'A' 'I' and 1 or 2). Reads at
/// most 16 bytes; false for anything that is not a readable regular file.
bool hasAppImageMagic(const std::string& path);

} // namespace sondrel
