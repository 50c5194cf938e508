#include "core/monitor/meminfo.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string>

namespace sondrel {

namespace {

// "Key:   123 kB" lines -> bytes by key. Values without a unit (HugePages_Total) are counts and
// are kept as they stand; nothing below reads them.
std::map<std::string, std::uint64_t, std::less<>> readFields(std::string_view text) {
    std::map<std::string, std::uint64_t, std::less<>> fields;
    std::size_t lineStart = 0;
    while (lineStart < text.size()) {
        std::size_t lineEnd = text.find('\n', lineStart);
        if (lineEnd == std::string_view::npos) {
            lineEnd = text.size();
        }
        const std::string_view line = text.substr(lineStart, lineEnd - lineStart);
        lineStart = lineEnd + 1;
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos || colon == 0) {
            continue;
        }
        std::size_t i = colon + 1;
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) {
            ++i;
        }
        std::uint64_t value = 0;
        const char* end = line.data() + line.size();
        const auto result = std::from_chars(line.data() + i, end, value);
        if (result.ec != std::errc() || result.ptr == line.data() + i) {
            continue;
        }
        std::string_view unit = line.substr(static_cast<std::size_t>(result.ptr - line.data()));
        while (!unit.empty() && (unit.front() == ' ' || unit.front() == '\t')) {
            unit.remove_prefix(1);
        }
        while (!unit.empty() && (unit.back() == ' ' || unit.back() == '\r')) {
            unit.remove_suffix(1);
        }
        if (unit == "kB") {
            if (value > UINT64_MAX / 1024) {
                continue;
            }
            value *= 1024;
        } else if (!unit.empty()) {
            continue;
        }
        fields.insert_or_assign(std::string(line.substr(0, colon)), value);
    }
    return fields;
}

} // namespace

MemoryStats parseMeminfo(std::string_view text) {
    const auto fields = readFields(text);
    const auto field = [&fields](std::string_view key) -> std::uint64_t {
        const auto it = fields.find(key);
        return it == fields.end() ? 0 : it->second;
    };
    MemoryStats stats;
    if (fields.find("MemTotal") == fields.end()) {
        return stats;
    }
    stats.totalBytes = field("MemTotal");
    stats.freeBytes = field("MemFree");

    std::uint64_t available = 0;
    if (fields.find("MemAvailable") != fields.end()) {
        available = field("MemAvailable");
    } else {
        available = stats.freeBytes + field("Buffers") + field("Cached");
    }
    const std::uint64_t used = stats.totalBytes > available ? stats.totalBytes - available : 0;

    stats.compressedBytes = std::min(field("Zswap"), used);
    const std::uint64_t kernel =
        field("SUnreclaim") + field("PageTables") + field("SecPageTables") + field("KernelStack");
    stats.wiredBytes = std::min(kernel, used - stats.compressedBytes);
    stats.activeBytes = used - stats.compressedBytes - stats.wiredBytes;
    return stats;
}

} // namespace sondrel
