#include "platform/linux/linux_system_sampler.h"

#include "core/monitor/meminfo.h"
#include "core/monitor/os_release.h"

#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>
#include <utility>

namespace sondrel {

namespace {

// Reads a small regular text file whole (proc files report size 0, so read until end of file).
// Returns "" when the file cannot be opened or read; at most `limit` bytes are kept.
std::string readSmallFile(const std::string& path, std::size_t limit = 1 << 20) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        return {};
    }
    // Only regular files are read (proc files are regular): never a FIFO, socket or device.
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return {};
    }
    std::string text;
    char buffer[8192];
    while (text.size() < limit) {
        const ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            if (count < 0) {
                text.clear();
            }
            break;
        }
        text.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(fd);
    return text;
}

std::int64_t bytesOf(unsigned long long blocks, unsigned long long blockSize) {
    constexpr auto kMax = static_cast<unsigned long long>(std::numeric_limits<std::int64_t>::max());
    if (blockSize != 0 && blocks > kMax / blockSize) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return static_cast<std::int64_t>(blocks * blockSize);
}

} // namespace

LinuxSystemSampler::LinuxSystemSampler(std::string procRoot, std::string volumePath,
                                       std::vector<std::string> osReleasePaths)
    : m_procRoot(std::move(procRoot)), m_volumePath(std::move(volumePath)),
      m_osReleasePaths(std::move(osReleasePaths)) {}

std::vector<ProcessorTicks> LinuxSystemSampler::processorTicks() {
    return parseProcStat(readSmallFile(m_procRoot + "/stat"));
}

MemoryStats LinuxSystemSampler::memory() {
    return parseMeminfo(readSmallFile(m_procRoot + "/meminfo"));
}

DiskStats LinuxSystemSampler::disk() {
    DiskStats stats;
    struct statvfs info {};
    if (::statvfs(m_volumePath.c_str(), &info) != 0) {
        return stats;
    }
    const unsigned long long blockSize = info.f_frsize != 0 ? info.f_frsize : info.f_bsize;
    stats.totalBytes = bytesOf(info.f_blocks, blockSize);
    // df's meanings: what the user may write is free; the blocks kept for root are neither
    // used nor free for the user and are reported apart.
    stats.availableBytes = bytesOf(info.f_bavail, blockSize);
    stats.freeBytes = stats.availableBytes;
    stats.reservedBytes =
        info.f_bfree > info.f_bavail ? bytesOf(info.f_bfree - info.f_bavail, blockSize) : 0;
    return stats;
}

HostFacts LinuxSystemSampler::hostFacts() {
    HostFacts facts;
    char host[256] = {};
    if (::gethostname(host, sizeof host - 1) == 0) {
        facts.hostName = host;
    }
    std::string prettyName;
    for (const std::string& path : m_osReleasePaths) {
        prettyName = prettyNameFromOsRelease(readSmallFile(path, 64 * 1024));
        if (!prettyName.empty()) {
            break;
        }
    }
    struct utsname names {};
    const std::string kernel = ::uname(&names) == 0 ? std::string(names.release) : std::string();
    facts.osVersion = osVersionText(prettyName, kernel);

    const std::string uptime = readSmallFile(m_procRoot + "/uptime", 4096);
    if (!uptime.empty()) {
        // from_chars, not strtod: the GUI sets the user's locale, whose decimal mark may differ.
        double seconds = 0;
        const auto result = std::from_chars(uptime.data(), uptime.data() + uptime.size(), seconds);
        if (result.ec == std::errc() && seconds > 0) {
            facts.uptimeSeconds = seconds;
        }
    }
    return facts;
}

std::unique_ptr<SystemSampler> makeSystemSampler() {
    return std::make_unique<LinuxSystemSampler>();
}

} // namespace sondrel
