// Cost of one telemetry sample on the live machine: the reads and computations behind
// SystemMonitor::refresh() (processor counters and their delta, memory, disk capacity), and
// each part alone. Target: one sample well under 1 ms.

#include "core/monitor/cpu_load_tracker.h"
#include "core/monitor/meminfo.h"
#include "core/monitor/system_overview.h"
#include "platform/linux/linux_system_sampler.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <sstream>

namespace {

std::string readAll(const char* path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void BM_Sample(benchmark::State& state) {
    sondrel::LinuxSystemSampler sampler;
    sondrel::CpuLoadTracker tracker;
    sondrel::SystemOverview overview = sondrel::SystemOverview::withHostFacts(sampler.hostFacts());
    for (auto _ : state) {
        overview.cpu = tracker.next(sampler.processorTicks());
        overview.memory = sampler.memory();
        overview.disk = sampler.disk();
        benchmark::DoNotOptimize(overview);
    }
}
BENCHMARK(BM_Sample)->Unit(benchmark::kMicrosecond);

void BM_ReadProcessorTicks(benchmark::State& state) {
    sondrel::LinuxSystemSampler sampler;
    for (auto _ : state) {
        benchmark::DoNotOptimize(sampler.processorTicks());
    }
}
BENCHMARK(BM_ReadProcessorTicks)->Unit(benchmark::kMicrosecond);

void BM_ReadMemory(benchmark::State& state) {
    sondrel::LinuxSystemSampler sampler;
    for (auto _ : state) {
        benchmark::DoNotOptimize(sampler.memory());
    }
}
BENCHMARK(BM_ReadMemory)->Unit(benchmark::kMicrosecond);

void BM_ReadDisk(benchmark::State& state) {
    sondrel::LinuxSystemSampler sampler;
    for (auto _ : state) {
        benchmark::DoNotOptimize(sampler.disk());
    }
}
BENCHMARK(BM_ReadDisk)->Unit(benchmark::kMicrosecond);

void BM_ParseProcStatText(benchmark::State& state) {
    const std::string text = readAll("/proc/stat");
    for (auto _ : state) {
        benchmark::DoNotOptimize(sondrel::parseProcStat(text));
    }
}
BENCHMARK(BM_ParseProcStatText)->Unit(benchmark::kMicrosecond);

void BM_ParseMeminfoText(benchmark::State& state) {
    const std::string text = readAll("/proc/meminfo");
    for (auto _ : state) {
        benchmark::DoNotOptimize(sondrel::parseMeminfo(text));
    }
}
BENCHMARK(BM_ParseMeminfoText)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
