#include "tests/support/bind_mount.h"

#include <sys/mount.h>
#include <unistd.h>

namespace sondrel::test {

ScopedBindMount::ScopedBindMount(const std::string& source, const std::string& mountPoint)
    : m_mountPoint(mountPoint) {
    m_mounted =
        geteuid() == 0 && mount(source.c_str(), mountPoint.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

ScopedBindMount::~ScopedBindMount() {
    if (m_mounted) {
        umount2(m_mountPoint.c_str(), MNT_DETACH);
    }
}

} // namespace sondrel::test
