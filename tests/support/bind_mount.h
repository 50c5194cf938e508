#pragma once
// A bind mount for the length of a test. Mounting needs root and a mount namespace that allows
// it; where it is refused the object says so and the test skips.

#include <string>

namespace sondrel::test {

/// Binds `source` onto the existing folder `mountPoint` on construction; detaches it again on
/// destruction (before a TempDir holding it is removed, so the removal never reaches the bound
/// folder's contents).
class ScopedBindMount {
public:
    ScopedBindMount(const std::string& source, const std::string& mountPoint);
    ScopedBindMount(const ScopedBindMount&) = delete;
    ScopedBindMount& operator=(const ScopedBindMount&) = delete;
    ~ScopedBindMount();

    /// True when the mount is in place.
    bool mounted() const { return m_mounted; }

private:
    std::string m_mountPoint;
    bool m_mounted = false;
};

} // namespace sondrel::test
