#pragma once
// The text side of the freedesktop.org Trash specification 1.0: percent-encoding of the
// original path, the .trashinfo file, its DeletionDate, and directorysizes lines. No I/O here,
// so it can be fuzzed and tested as plain functions.

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace sondrel {

/// Percent-encodes a path's bytes for a .trashinfo `Path=` or a directorysizes name: letters,
/// digits, '-', '.', '_', '~' and '/' stay; every other byte (including '%', newlines, bytes of
/// invalid UTF-8) becomes "%XX" with upper-case hex. Pass `keepSlash` false for a single name.
std::string percentEncodePath(std::string_view path, bool keepSlash = true);

/// Reverses percent-encoding; gives nothing for a malformed escape ("%", "%G1"). Any byte may
/// result, including NUL; callers that need a path reject a NUL themselves.
std::optional<std::string> percentDecode(std::string_view text);

/// Local time of `when` as the .trashinfo DeletionDate "YYYY-MM-DDThh:mm:ss".
std::string formatDeletionDate(std::time_t when);

/// The parsed content of a .trashinfo file.
struct TrashInfo {
    std::string path;         ///< decoded `Path=` (absolute, or relative to the trash's topdir)
    std::string deletionDate; ///< `DeletionDate=` as written
};

/// The full text of a .trashinfo file for `originalPath` (raw bytes; encoded here) deleted at
/// `deletionDate` (already formatted).
std::string formatTrashInfo(std::string_view originalPath, std::string_view deletionDate);

/// Parses a .trashinfo text: the "[Trash Info]" group must come first (blank lines and '#'
/// comments aside) and hold a decodable, NUL-free, non-empty `Path=`. Later groups are ignored.
std::optional<TrashInfo> parseTrashInfo(std::string_view text);

/// One directorysizes line (with its '\n'): "<bytes> <mtime> <percent-encoded name>".
std::string formatDirectorySizesLine(unsigned long long bytes, long long infoMtime,
                                     std::string_view name);

/// The decoded name of a directorysizes line (without its '\n'), or nothing when the line is
/// malformed.
std::optional<std::string> directorySizesLineName(std::string_view line);

} // namespace sondrel
