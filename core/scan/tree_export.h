#pragma once
// Writers of a scanned tree: the command line's JSON tree, and ncdu's JSON export format
// (major version 1, minor version 2), which ncdu (-f FILE) and gdu (-f FILE) open.
//
// Names and paths are written byte-exact: valid UTF-8 passes through; a string that is not
// valid UTF-8 has each byte >= 0x80 written as \u0080..\u00FF (ncdu's convention), so the
// original bytes can be recovered.

#include "core/model/file_item.h"

#include <ctime>
#include <ostream>
#include <string>
#include <string_view>

namespace sondrel {

/// Appends `bytes` as a quoted JSON string to `out` (see the byte convention above).
void appendJsonString(std::string& out, std::string_view bytes);

/// Writes `root` and everything below it as one compact JSON object followed by a newline:
/// {"name","path","size","fileCount","category" (display name),"isDirectory","children":[...]}.
/// Children are in tree order (largest first). Returns false when the stream failed.
bool writeTreeJson(std::ostream& out, const FileItem& root);

/// Writes the tree below `root` in ncdu's export format. The root entry is named by its full
/// path; folders are arrays whose first element describes the folder; a collapsed folder is an
/// empty folder whose own size is its total, so ncdu shows the right size. `asize` and `dsize`
/// are both the logical size. Returns false when the stream failed.
bool writeNcduExport(std::ostream& out, const FileItem& root, std::time_t timestamp);

} // namespace sondrel
