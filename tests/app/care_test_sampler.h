#pragma once
// A system sampler for the Smart Care tests: a 500 GiB disk whose available bytes and a memory
// use in percent are set by the test through shared Figures, read on every sample.

#include "platform/system_sampler.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace sondrel::test {

inline constexpr std::int64_t kGiB = std::int64_t{1} << 30;

/// The figures the sampler reports; change them between samples.
struct CareFigures {
    std::int64_t availableBytes = 100 * kGiB;
    std::uint64_t memoryPercent = 50;
};

/// Reports `figures`: no processors, memory of 100 bytes with memoryPercent active, a
/// 500 GiB disk with availableBytes free and available. Any thread.
class CareTestSampler final : public SystemSampler {
public:
    explicit CareTestSampler(std::shared_ptr<CareFigures> figures)
        : m_figures(std::move(figures)) {}
    std::vector<ProcessorTicks> processorTicks() override { return {}; }
    MemoryStats memory() override {
        MemoryStats memory;
        memory.totalBytes = 100;
        memory.activeBytes = m_figures->memoryPercent;
        return memory;
    }
    DiskStats disk() override {
        DiskStats disk;
        disk.totalBytes = 500 * kGiB;
        disk.freeBytes = m_figures->availableBytes;
        disk.availableBytes = m_figures->availableBytes;
        return disk;
    }
    HostFacts hostFacts() override { return {}; }

private:
    std::shared_ptr<CareFigures> m_figures;
};

} // namespace sondrel::test
