#include "core/monitor/meminfo.h"

#include <algorithm>
#include <charconv>

namespace sondrel {

namespace {

// The keys the mapping reads.
constexpr std::string_view kKeys[] = {"MemTotal",      "MemFree",    "MemAvailable", "Buffers",
                                      "Cached",        "Zswap",      "SUnreclaim",   "PageTables",
                                      "SecPageTables", "KernelStack"};
constexpr std::size_t kKeyCount = sizeof kKeys / sizeof kKeys[0];

// Values of kKeys found in the text ("Key:   123 kB" lines, converted to bytes); the last
// well-formed line of a key wins.
struct Fields {
    std::uint64_t values[kKeyCount] = {};
    bool present[kKeyCount] = {};

    bool has(std::string_view key) const { return present[indexOf(key)]; }
    std::uint64_t get(std::string_view key) const { return values[indexOf(key)]; }
    static std::size_t indexOf(std::string_view key) {
        std::size_t i = 0;
        while (i < kKeyCount && kKeys[i] != key) {
            ++i;
        }
        return i < kKeyCount ? i : 0;
    }
};

Fields readFields(std::string_view text) {
    Fields fields;
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
        std::size_t key = 0;
        while (key < kKeyCount && kKeys[key] != line.substr(0, colon)) {
            ++key;
        }
        if (key == kKeyCount) {
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
        fields.values[key] = value;
        fields.present[key] = true;
    }
    return fields;
}

} // namespace

MemoryStats parseMeminfo(std::string_view text) {
    const Fields fields = readFields(text);
    const auto field = [&fields](std::string_view key) { return fields.get(key); };
    MemoryStats stats;
    if (!fields.has("MemTotal")) {
        return stats;
    }
    stats.totalBytes = field("MemTotal");
    stats.freeBytes = field("MemFree");

    std::uint64_t available = 0;
    if (fields.has("MemAvailable")) {
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
