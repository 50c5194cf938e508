#pragma once
// The program's texts name a few macOS-only things ("Finder", "macOS Trash"). On Linux those
// words are replaced from one table so that every screen and the command line say the same.

#include <string>
#include <string_view>

namespace sondrel {

/// Which platform's words a text should use.
/// `gnuLinux` rather than `linux`, which some compilers and moc predefine as a macro.
enum class TextPlatform : unsigned char { gnuLinux, macos };

/// The platform this build runs on.
TextPlatform currentTextPlatform();

/// `text` with the macOS-only terms replaced for `platform` (unchanged for macOS): "macOS Trash"
/// -> "Trash", "Reveal in (macOS) Finder" -> "Show in Files", "across your Mac" -> "across your
/// computer", "macOS Finder" and "Finder" -> "Files", "Apple System Integrity Protection" -> "the
/// system's package manager", "Xcode & Developer Caches" -> "Developer Caches" (and that group's
/// description and the junk page's Xcode sentences), "~/Library/Caches" -> "~/.cache",
/// "Xcode DerivedData" -> "developer build caches", "Apple Silicon /
/// Intel processors" -> "x86 / ARM processors", "APFS Storage" -> "Disk Storage", "Mac Name" ->
/// "Computer Name", "Your Mac" and "from your Mac" -> "Your system" and "from your system",
/// "~/Library/Caches" -> "~/.cache", the Smart Care texts on Xcode caches and Application
/// Support files in their Linux words, "macOS" -> "Linux", the uninstaller's "~/Library" phrases
/// -> the home folder and "Application Binary (.app)" -> "Application Files"; and the sentences
/// that speak of a
/// privacy prompt say on Linux that the folder's permissions do not let the user read it.
std::string withPlatformTerms(std::string_view text, TextPlatform platform);

} // namespace sondrel
