#pragma once
// What dpkg knows about installed packages, read straight from its admin folder
// (/var/lib/dpkg): the status file for names, versions and sizes, and the info/<pkg>.list files
// for which package owns which file. One read of the folder, never a process per package.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// One installed package from the status file.
struct DpkgPackage {
    std::string name;
    std::string architecture;
    std::string version;
    std::int64_t installedSizeKiB = 0; ///< the package's own estimate ("Installed-Size")
};

/// The installed packages of a status file's text, in file order. A stanza that is not
/// installed ("Status: ... installed" as its third word) or lacks a Package field is skipped; a
/// stanza with a malformed line (no colon, not a continuation) is skipped whole and the rest are
/// still read. Never throws.
std::vector<DpkgPackage> parseDpkgStatus(std::string_view text);

/// The package name of an info file name: "gimp.list" -> "gimp", "libc6:amd64.list" -> "libc6";
/// nothing when it does not end in ".list".
std::optional<std::string> packageOfListFile(std::string_view fileName);

/// The installed packages and, for files whose name ends in one of the indexed suffixes, their
/// owners. Plain value once loaded; const methods are safe from any thread.
class DpkgDatabase {
public:
    /// Reads `adminDir`/status and every `adminDir`/info/*.list, remembering the owner of each
    /// listed path ending in one of `indexedSuffixes` (for example ".desktop"). A missing or
    /// unreadable folder gives an empty database. Blocking.
    static DpkgDatabase load(const std::string& adminDir,
                             const std::vector<std::string>& indexedSuffixes);

    /// The installed package `name`, or null.
    const DpkgPackage* package(const std::string& name) const;
    /// The owner of an indexed path, or "" when no installed package lists it.
    std::string ownerOf(const std::string& path) const;
    /// Every path the package's list file names (folders included), in file order; empty when
    /// it has none. Reads the list file again. Blocking.
    std::vector<std::string> filesOf(const std::string& package) const;
    /// The names of every installed package.
    const std::set<std::string>& packageNames() const { return m_names; }
    /// Number of installed packages.
    std::size_t size() const { return m_packages.size(); }

private:
    std::string m_adminDir;
    std::map<std::string, DpkgPackage> m_packages;
    std::map<std::string, std::string> m_listFiles; ///< package -> its list file name
    std::map<std::string, std::string> m_owners;    ///< indexed path -> package
    std::set<std::string> m_names;
};

} // namespace sondrel
