#include "core/monitor/processor_ticks.h"

#include <charconv>

namespace sondrel {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

// Splits a line into blank-separated fields.
std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && isSpace(line[i])) {
            ++i;
        }
        const std::size_t start = i;
        while (i < line.size() && !isSpace(line[i])) {
            ++i;
        }
        if (i > start) {
            fields.push_back(line.substr(start, i - start));
        }
    }
    return fields;
}

bool parseCounter(std::string_view field, std::uint64_t& value) {
    const char* end = field.data() + field.size();
    const auto result = std::from_chars(field.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

// "cpu0", "cpu12": a processor line, not the aggregate "cpu" line.
bool isProcessorLabel(std::string_view label) {
    if (label.size() <= 3 || label.substr(0, 3) != "cpu") {
        return false;
    }
    for (const char c : label.substr(3)) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    return true;
}

} // namespace

std::vector<ProcessorTicks> parseProcStat(std::string_view text) {
    // Field order after the label: user nice system idle iowait irq softirq steal guest ...
    std::vector<ProcessorTicks> processors;
    std::size_t lineStart = 0;
    while (lineStart < text.size()) {
        std::size_t lineEnd = text.find('\n', lineStart);
        if (lineEnd == std::string_view::npos) {
            lineEnd = text.size();
        }
        const std::string_view line = text.substr(lineStart, lineEnd - lineStart);
        lineStart = lineEnd + 1;
        // Most of the text is the long "intr" and "softirq" lines: skip them unsplit.
        if (line.substr(0, 3) != "cpu") {
            continue;
        }
        const std::vector<std::string_view> fields = fieldsOf(line);
        if (fields.size() < 5 || !isProcessorLabel(fields[0])) {
            continue;
        }
        std::uint64_t counters[7] = {};
        bool valid = true;
        const std::size_t count = fields.size() - 1 < 7 ? fields.size() - 1 : 7;
        for (std::size_t k = 0; k < count && valid; ++k) {
            valid = parseCounter(fields[k + 1], counters[k]);
        }
        if (!valid) {
            continue;
        }
        ProcessorTicks ticks;
        ticks.user = counters[0];
        ticks.nice = counters[1];
        ticks.system = counters[2] + counters[5] + counters[6];
        ticks.idle = counters[3] + counters[4];
        processors.push_back(ticks);
    }
    return processors;
}

} // namespace sondrel
