#pragma once
// The check made right before a selected copy goes to the Trash. Groups are formed from
// sampled digests, which cannot see a difference outside the samples; as a design decision the
// program still never trashes a file that is not a true copy: the selected copy is compared byte
// for byte with the copy that is kept, streaming, both opened without following links, and
// both must be unchanged (device, inode, size, modification time) since the scan.

#include "core/duplicates/duplicate_group.h"
#include "core/util/cancel_token.h"

#include <string>

namespace sondrel {

/// What the comparison found.
enum class CopyVerdict : unsigned char {
    identical,   ///< same bytes; the copy may be trashed
    differs,     ///< the contents differ somewhere
    copyChanged, ///< the selected copy is gone, replaced or modified since the scan
    keptChanged, ///< the kept copy is gone, replaced or modified since the scan
    sameFile,    ///< both names are one file (hard links): trashing one frees nothing
    unreadable,  ///< a read failed
    cancelled,   ///< the cancel token was set during the comparison
};

/// A one-line English reason for a verdict other than identical ("differs from the kept copy").
std::string describe(CopyVerdict verdict);

/// True when the file at `file.path` is still the file the scan saw: a regular file (not
/// followed through a link) with the same device, inode, size and modification time. Any
/// thread.
bool isUnchangedSinceScan(const DuplicateFile& file);

/// Compares `copy` with `kept` byte for byte after checking both are unchanged since the scan
/// and are not the same file; checks both again after reading. Reads with pread in 1 MiB
/// blocks. Blocks; polls `cancel` between blocks. Any thread.
CopyVerdict verifyCopy(const DuplicateFile& copy, const DuplicateFile& kept,
                       const CancelToken& cancel);

} // namespace sondrel
