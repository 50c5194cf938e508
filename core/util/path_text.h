#pragma once
// Byte-string helpers for paths. Paths are kept as raw bytes end to end (names need not be
// valid UTF-8); only display code turns them into text with toDisplayText.

#include <string>
#include <string_view>

namespace sondrel {

/// ASCII lower-casing of a byte string; bytes >= 0x80 are left untouched so that names which
/// are not valid UTF-8 survive exactly.
std::string asciiLower(std::string_view text);

/// The last path component: "/a/b.txt" -> "b.txt", "/a/b/" -> "b", "/" -> "", "name" -> "name".
std::string_view lastPathComponent(std::string_view path);

/// The text after the last dot of the last component, as written (not lower-cased).
/// "a.tar.gz" -> "gz", "README" -> "", "a." -> "", ".bashrc" -> "" (a leading dot alone marks
/// a hidden name, not an extension).
std::string_view pathExtension(std::string_view path);

/// Joins a folder path and a child name with exactly one '/' between them.
std::string joinPath(std::string_view folder, std::string_view name);

/// Length of the well-formed UTF-8 sequence that starts at byte `at` of `text` (1..4), or 0 when
/// the bytes there do not start one (a stray continuation byte, an overlong form, a surrogate,
/// a code point above U+10FFFF or a sequence cut short). `at` must be below text.size().
std::size_t utf8SequenceLength(std::string_view text, std::size_t at);

/// True when `text` is well-formed UTF-8 (no overlongs, no surrogates, nothing above U+10FFFF).
bool isValidUtf8(std::string_view text);

/// Display text for a byte string: valid UTF-8 is returned unchanged; each byte of an invalid
/// sequence becomes U+FFFD. Used only for showing names, never for finding files again.
std::string toDisplayText(std::string_view bytes);

/// True when `text` ends with `suffix` (byte comparison).
inline bool endsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

/// True when `text` starts with `prefix` (byte comparison).
inline bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// True when `text` contains `part` (byte comparison).
inline bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

} // namespace sondrel
