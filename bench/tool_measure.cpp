// sondrel-bench-measure: measureTree over one path, for the benchmarks.
//
// Usage: sondrel-bench-measure PATH [--threads N]
// Prints "allocated A apparent B files F folders D" (A as `du -sB1`, B as `du -sb`).

#include "core/fs/measure_tree.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
    std::string path;
    sondrel::MeasureOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--threads" && i + 1 < argc) {
            options.threads = static_cast<unsigned>(std::max(1, std::atoi(argv[++i])));
        } else if (path.empty() && !arg.empty() && arg[0] != '-') {
            path = arg;
        } else {
            std::fprintf(stderr, "usage: sondrel-bench-measure PATH [--threads N]\n");
            return 2;
        }
    }
    if (path.empty()) {
        std::fprintf(stderr, "usage: sondrel-bench-measure PATH [--threads N]\n");
        return 2;
    }
    const sondrel::CancelToken cancel;
    const sondrel::TreeSize size = sondrel::measureTree(path, options, cancel);
    if (!size.exists) {
        std::fprintf(stderr, "sondrel-bench-measure: nothing at %s\n", path.c_str());
        return 1;
    }
    std::printf("allocated %lld apparent %lld files %lld folders %lld\n",
                static_cast<long long>(size.allocated), static_cast<long long>(size.apparent),
                static_cast<long long>(size.files), static_cast<long long>(size.folders));
    return 0;
}
