#pragma once
// Parser of Linux's /proc/meminfo and its mapping onto MemoryStats.

#include "core/monitor/memory_stats.h"

#include <string_view>

namespace sondrel {

/// Memory figures from a /proc/meminfo text ("Key:   123 kB" lines; kB means KiB):
/// total = MemTotal; used = MemTotal - MemAvailable (what `free` reports), split so that
/// active + wired + compressed == used exactly:
///   compressed = Zswap (the compressed pool; 0 when absent), at most used;
///   wired = SUnreclaim + PageTables + SecPageTables + KernelStack, at most what is left;
///   active = the rest (essentially anonymous memory and shmem);
/// free = MemFree. Without MemAvailable (kernels before 3.14) used falls back to
/// MemTotal - MemFree - Buffers - Cached. Without MemTotal the result is all 0.
/// Unknown keys and malformed lines are ignored. Pure; never throws.
MemoryStats parseMeminfo(std::string_view text);

} // namespace sondrel
