#include "core/model/platform_terms.h"

#include <array>
#include <utility>

namespace sondrel {

TextPlatform currentTextPlatform() {
#ifdef __APPLE__
    return TextPlatform::macos;
#else
    return TextPlatform::gnuLinux;
#endif
}

std::string withPlatformTerms(std::string_view text, TextPlatform platform) {
    std::string result(text);
    if (platform == TextPlatform::macos) {
        return result;
    }
    // Longer phrases first, so that "macOS Trash" is not half-replaced by the "macOS" rule.
    // Whole sentences come first: Linux shows no privacy prompt, a folder is unreadable only
    // because its permissions say so.
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 29> kTerms = {{
        {"You selected 'Don't Allow' for this directory, so its files were not pulled into the "
         "app.",
         "The folder's permissions do not let you read it, so its files were not pulled into the "
         "app."},
        {"These folders in ~/Library belong to applications that are no longer installed on your "
         "Mac.",
         "These folders in your home folder belong to applications that are no longer installed "
         "on this computer."},
        {"hidden ~/Library caches, containers, and residues",
         "hidden caches, settings, and residues in your home folder"},
        {"all selected ~/Library leftover files",
         "all selected leftover files in your home folder"},
        {"Application Binary (.app)", "Application Files"},
        {"macOS requires permission to scan your ",
         "The folder's permissions do not let you read your "},
        {" folder and authorize access", " folder, or a copy of it that you can read"},
        {"Xcode DerivedData, build indexes, and transient compilation caches.",
         "Package downloads and build caches of npm, pip, Cargo, Go, Gradle and ccache."},
        {"Abandoned preferences and Application Support files",
         "Abandoned settings and data folders"},
        {"DerivedData, Simulators", "Package & build caches"},
        {"~/Library/Caches", "~/.cache"},
        {"Your Mac", "Your system"},
        {"from your Mac", "from your system"},
        {"macOS Trash", "Trash"},
        {"Reveal in macOS Finder", "Show in Files"},
        {"Reveal in Finder", "Show in Files"},
        {"across your Mac", "across your computer"},
        {"macOS Finder", "Files"},
        {"Apple Silicon / Intel processors", "x86 / ARM processors"},
        {"APFS Storage", "Disk Storage"},
        {"APFS storage", "disk storage"},
        {"Mac Name", "Computer Name"},
        {"Apple System Integrity Protection", "the system's package manager"},
        {"Xcode & Developer Caches", "Developer Caches"},
        {"DerivedData, iOS device support logs, and build artifacts that can be safely rebuilt.",
         "Package, module and compiler caches (npm, pip, Cargo, Go, Gradle, Maven, ccache) that "
         "their tools rebuild."},
        {"Xcode DerivedData, simulator caches, node_modules bloat",
         "developer caches, node_modules bloat"},
        {"Xcode DerivedData", "developer build caches"},
        {"Finder", "Files"},
        {"macOS", "Linux"},
    }};
    for (const auto& [from, to] : kTerms) {
        for (std::size_t at = result.find(from); at != std::string::npos;
             at = result.find(from, at + to.size())) {
            result.replace(at, from.size(), to);
        }
    }
    return result;
}

} // namespace sondrel
