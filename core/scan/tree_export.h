#pragma once
// Writers of a scanned tree: the command line's JSON tree, and ncdu's JSON export format
// (major version 1, minor version 2), which ncdu (-f FILE) and gdu (-f FILE) open.
//
// Names and paths are written with appendJsonString (core/util/text_escape.h): valid UTF-8 passes
// through and each byte that is not part of valid UTF-8 becomes \udcXX, so two different names
// never give the same text and the original bytes can be read back. docs/json-format.md
// describes both formats.

#include "core/model/file_item.h"

#include <ctime>
#include <ostream>
#include <string>
#include <string_view>

namespace sondrel {

/// Writes `root` and everything below it as one compact JSON object followed by a newline. Each
/// node is {"name","size","fileCount","category" (display name),"isDirectory"}, a folder adds
/// "children":[...] in tree order (largest first; empty for a collapsed folder), and the root
/// alone also carries "path", its full path: a consumer joins the names below it, so the output
/// grows with the number of nodes, not with their depth. Returns false when the stream failed.
bool writeTreeJson(std::ostream& out, const FileItem& root);

/// Writes the tree below `root` in ncdu's export format. The root entry is named by its full
/// path; folders are arrays whose first element describes the folder; a collapsed folder is an
/// empty folder whose own size is its total, so ncdu shows the right size. `asize` and `dsize`
/// are both the logical size. Returns false when the stream failed.
bool writeNcduExport(std::ostream& out, const FileItem& root, std::time_t timestamp);

} // namespace sondrel
