// sondrel-bench-scan_stats: memory of a scanned tree, for the benchmark report.
//
// Usage: sondrel-bench-scan_stats ROOT [--depth N] [--threads N]
// Prints the node count, arena bytes used and reserved, bytes per node, and the scan time.

#include "core/scan/tree_scan.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
    std::string root;
    sondrel::ScanOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--depth" && i + 1 < argc) {
            options.maxDepth = std::atoi(argv[++i]);
        } else if (arg == "--threads" && i + 1 < argc) {
            options.threads = static_cast<unsigned>(std::atoi(argv[++i]));
        } else if (root.empty()) {
            root = arg;
        }
    }
    if (root.empty()) {
        std::fprintf(stderr, "usage: sondrel-bench-scan_stats ROOT [--depth N] [--threads N]\n");
        return 2;
    }
    sondrel::CancelToken cancel;
    const sondrel::ScanResult result = sondrel::scanTree(root, options, cancel);
    if (!result.tree) {
        std::fprintf(stderr, "cannot read %s\n", root.c_str());
        return 1;
    }
    const std::size_t nodes = result.tree->nodeCount();
    const std::size_t used = result.tree->bytesUsed();
    std::printf("depth %d: %zu nodes, %zu bytes used, %zu reserved, %.1f bytes/node, %.3f s, "
                "root %lld bytes\n",
                options.maxDepth, nodes, used, result.tree->bytesReserved(),
                nodes > 0 ? static_cast<double>(used) / static_cast<double>(nodes) : 0.0,
                result.elapsedSeconds, static_cast<long long>(result.rootItem().size()));
    return 0;
}
