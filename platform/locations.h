#pragma once
// Where the user's things live. Every feature takes a Locations instead of reading the
// environment itself, so a fake home (tests) or another machine's home (a mounted disk or a
// backup, `sondrel-cli --home DIR --layout macos`) is analysed exactly like the running user's.

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sondrel {

/// Which operating system's folder layout a home follows.
/// `xdg` is the Linux (freedesktop XDG) layout; the enumerators avoid the word `linux`, which
/// some compilers and moc predefine as a macro.
enum class HomeLayout : unsigned char { xdg, macos };

/// Parses "linux" or "macos"; anything else gives nothing.
std::optional<HomeLayout> homeLayoutFromName(const std::string& name);

/// The folders of one home. Plain values; build with forLinux, forMacos or forCurrentUser.
struct Locations {
    HomeLayout layout = HomeLayout::xdg;
    std::string home;       ///< the home folder, absolute, no trailing slash
    std::string cacheHome;  ///< ~/.cache or ~/Library/Caches
    std::string configHome; ///< ~/.config or ~/Library/Preferences
    std::string dataHome;   ///< ~/.local/share or ~/Library/Application Support
    std::string stateHome;  ///< ~/.local/state or ~/Library/Saved Application State
    std::string logsHome;   ///< where user logs live (~/.local/state on Linux, ~/Library/Logs)
    std::string trashFiles; ///< home trash files/ (~/.local/share/Trash/files or ~/.Trash)
    std::string trashInfo;  ///< home trash info/ (empty on macOS, whose Trash has none)
    std::vector<std::string> applicationDirs; ///< where installed applications are listed
    std::vector<std::string> dataDirs;        ///< system data dirs ($XDG_DATA_DIRS on Linux)

    /// Linux layout of `home`. `environment` supplies XDG_* overrides (only absolute values are
    /// used, following the XDG base directory rules); pass an empty map for a home that
    /// is not the running user's.
    static Locations forLinux(const std::string& home,
                              const std::map<std::string, std::string>& environment = {});
    /// macOS layout of `home` (for analysing a Mac's home folder from here).
    static Locations forMacos(const std::string& home);
    /// The running user's home ($HOME, else the password database) in this platform's layout,
    /// honouring the XDG variables of the process environment.
    static Locations forCurrentUser();
    /// `home` in `layout`, as the command line's --home/--layout ask for.
    static Locations forHome(const std::string& home, HomeLayout layout);

    /// The user folder of that kind inside the home ("Downloads", "Documents", "Desktop"),
    /// following ~/.config/user-dirs.dirs on Linux.
    std::string userDir(const std::string& kind) const;
};

/// The running user's home folder: $HOME when it is absolute, else the password database.
std::string currentUserHome();

} // namespace sondrel
