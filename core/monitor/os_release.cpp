#include "core/monitor/os_release.h"

namespace sondrel {

namespace {

// Shell-style value of an os-release assignment: surrounding quotes removed, backslash escapes
// resolved.
std::string unquote(std::string_view value) {
    while (!value.empty() && (value.back() == ' ' || value.back() == '\r')) {
        value.remove_suffix(1);
    }
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
        value = value.substr(1, value.size() - 2);
    }
    std::string result;
    result.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) {
            ++i;
        }
        result.push_back(value[i]);
    }
    return result;
}

} // namespace

std::string prettyNameFromOsRelease(std::string_view text) {
    constexpr std::string_view kKey = "PRETTY_NAME=";
    std::size_t lineStart = 0;
    while (lineStart < text.size()) {
        std::size_t lineEnd = text.find('\n', lineStart);
        if (lineEnd == std::string_view::npos) {
            lineEnd = text.size();
        }
        const std::string_view line = text.substr(lineStart, lineEnd - lineStart);
        lineStart = lineEnd + 1;
        if (line.substr(0, kKey.size()) == kKey) {
            return unquote(line.substr(kKey.size()));
        }
    }
    return {};
}

std::string osVersionText(std::string_view prettyName, std::string_view kernelRelease) {
    std::string text(prettyName);
    if (!kernelRelease.empty()) {
        if (!text.empty()) {
            text += ", ";
        }
        text += "kernel ";
        text += kernelRelease;
    }
    return text;
}

} // namespace sondrel
