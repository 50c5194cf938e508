// Storage layouts on folders of realistic shape: a 10,000-item treemap in a 1600 x 1000 canvas
// and the colour rings of a folder with 1,000 children of 50 files each.
#include "core/layout/sunburst_layout.h"
#include "core/layout/treemap_layout.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace sondrel;

// Sizes with a long tail, as in a real home folder (a few huge items, many small ones).
std::vector<std::int64_t> longTailSizes(std::size_t count, std::uint64_t seed) {
    std::mt19937_64 rng(seed);
    std::lognormal_distribution<double> size(12.0, 3.0);
    std::vector<std::int64_t> sizes(count);
    for (auto& s : sizes) {
        s = static_cast<std::int64_t>(size(rng)) + 1;
    }
    return sizes;
}

void BM_ComputeLayout(benchmark::State& state) {
    const auto sizes = longTailSizes(static_cast<std::size_t>(state.range(0)), 42);
    for (auto _ : state) {
        auto nodes = computeLayout(sizes, {0, 0, 1600, 1000});
        benchmark::DoNotOptimize(nodes.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ComputeLayout)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMicrosecond);

void BM_ComputeSunburstSectors(benchmark::State& state) {
    const auto children = static_cast<std::size_t>(state.range(0));
    constexpr std::size_t kGrandchildren = 50;
    auto tree = std::make_shared<FileTree>("/bench");
    NodeArena& arena = tree->arena();
    const auto sizes = longTailSizes(children * kGrandchildren, 7);
    std::vector<FileNode*> folders;
    std::int64_t total = 0;
    for (std::size_t c = 0; c < children; ++c) {
        std::vector<FileNode*> files;
        std::int64_t sum = 0;
        for (std::size_t g = 0; g < kGrandchildren; ++g) {
            files.push_back(arena.create("file", false, sizes[c * kGrandchildren + g]));
            sum += files.back()->size;
        }
        sortBySizeDescending(files);
        FileNode* folder = arena.create("folder", true, sum);
        setChildren(folder, files);
        folders.push_back(folder);
        total += sum;
    }
    sortBySizeDescending(folders);
    const std::vector<const FileNode*> items(folders.begin(), folders.end());
    for (auto _ : state) {
        auto sectors = computeSunburstSectors(items, total);
        benchmark::DoNotOptimize(sectors.data());
    }
    state.counters["sectors"] = static_cast<double>(computeSunburstSectors(items, total).size());
}
BENCHMARK(BM_ComputeSunburstSectors)->Arg(1'000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
