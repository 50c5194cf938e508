#pragma once
// The Linux telemetry sources: /proc/stat, /proc/meminfo, /proc/uptime, statvfs of a volume,
// uname and os-release.

#include "platform/system_sampler.h"

#include <string>

namespace sondrel {

/// Reads the telemetry sources of a Linux system. The folders are parameters so that tests can
/// point the sampler at recorded texts; the defaults are the live system. Every read that fails
/// (missing file, unreadable, statvfs error) gives the defaults; nothing throws.
class LinuxSystemSampler final : public SystemSampler {
public:
    /// `procRoot`: folder holding stat, meminfo and uptime ("/proc"); `volumePath`: a path on the
    /// volume whose capacity is reported ("/"); `osReleasePaths`: os-release files tried in order.
    explicit LinuxSystemSampler(std::string procRoot = "/proc", std::string volumePath = "/",
                                std::vector<std::string> osReleasePaths = {"/etc/os-release",
                                                                           "/usr/lib/os-release"});

    std::vector<ProcessorTicks> processorTicks() override;
    MemoryStats memory() override;
    DiskStats disk() override;
    /// Host name from gethostname, "PRETTY_NAME, kernel RELEASE" from os-release and uname, and
    /// the first figure of <procRoot>/uptime.
    HostFacts hostFacts() override;

private:
    std::string m_procRoot;
    std::string m_volumePath;
    std::vector<std::string> m_osReleasePaths;
};

} // namespace sondrel
