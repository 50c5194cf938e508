#pragma once
// A reader for desktop entry files (the freedesktop.org Desktop Entry format): the
// "[Desktop Entry]" group's keys, the value escapes, the Exec quoting, and the desktop-file ID
// a file gets from where it lies below an applications folder.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// The "[Desktop Entry]" group of one file: unlocalised keys with their unescaped values.
/// Localised keys ("Name[de]") and other groups are ignored. Plain value.
struct DesktopEntry {
    std::map<std::string, std::string> values;

    /// The value of `key`, or "" when absent.
    std::string value(const std::string& key) const;
    /// `key` read as a boolean: true only for the literal "true" (the format's only spelling).
    bool flag(const std::string& key) const;
    /// The program to run: the first word of Exec after quoting is undone, or "" without Exec.
    std::string program() const;
};

/// Parses a whole file's text. Gives nothing for a text that is not a desktop entry: the first
/// group (comments and blank lines aside) is not "[Desktop Entry]", a line in it is neither a
/// comment, a group header nor "Key=Value" with a key of [A-Za-z0-9-] (optionally "[locale]"),
/// the group is missing Type or Name, or the text holds a NUL byte. A key given twice keeps its
/// first value. Never throws for any input.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text);

/// Undoes the value escapes \s \n \t \r \\ (other backslashes stay as they are).
std::string unescapeDesktopValue(std::string_view value);

/// Splits an (already unescaped) Exec value into arguments: words separated by spaces, double
/// quotes group a word and inside them a backslash makes the next of " ` $ \ literal. An
/// unterminated quote ends the word at the end of the text. Field codes (%f, %U, ...) are kept.
std::vector<std::string> splitExecLine(std::string_view exec);

/// The desktop-file ID of a file at `relativePath` below an applications folder: the path with
/// each '/' replaced by '-' ("kde/konsole.desktop" -> "kde-konsole.desktop").
std::string desktopFileId(std::string_view relativePath);

} // namespace sondrel
