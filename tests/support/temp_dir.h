#pragma once
// A temporary folder for a test, removed with everything in it when the object goes away.
// Every test that touches the disk works inside one of these and nowhere else.

#include <string>
#include <string_view>

namespace sondrel::test {

/// Creates a fresh folder under $TMPDIR (or /tmp) on construction; removes it (without following
/// links, restoring permissions it finds closed) on destruction.
class TempDir {
public:
    TempDir();
    /// Creates the folder under `base` instead (for example a tmpfs, for trees of hundreds of
    /// thousands of entries that a disk would take minutes to create).
    explicit TempDir(const std::string& base);
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir();

    /// Absolute path of the folder (no trailing slash).
    const std::string& path() const { return m_path; }
    /// `path()/relative`.
    std::string operator/(std::string_view relative) const;

    /// Creates the folders of `relative` (like mkdir -p) and returns the absolute path.
    std::string makeDir(std::string_view relative) const;
    /// Writes a file of `size` bytes ('x' filled), creating parent folders; returns its path.
    std::string makeFile(std::string_view relative, long long size = 0) const;
    /// Writes a file with the given contents, creating parent folders; returns its path.
    std::string writeFile(std::string_view relative, std::string_view contents) const;

private:
    std::string m_path;
};

} // namespace sondrel::test
