#pragma once
// One fuzz input for the removal rules: the first byte picks what is exercised, the rest is the
// text. Shared by the libFuzzer target (tests/fuzz/removal_fuzz.cpp) and the replay test that
// runs the committed corpus in the ordinary suite. Returns false when an invariant breaks.

#include "core/removal/path_safety.h"
#include "core/removal/privileged_helper_client.h"
#include "core/removal/trash_info.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace sondrel::fuzz {

inline std::vector<std::string> splitOnNul(const std::string& text) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == '\0') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

// Trash record texts: encoding round trip, parser robustness and its own output.
inline bool checkTrashInfo(const std::string& text) {
    const std::string encoded = percentEncodePath(text);
    for (const char c : encoded) {
        if (c <= ' ' || c >= 0x7f) {
            return false;
        }
    }
    if (percentDecode(encoded) != text || percentDecode(percentEncodePath(text, false)) != text) {
        return false;
    }
    if (const std::optional<TrashInfo> info = parseTrashInfo(text)) {
        const std::optional<TrashInfo> again =
            parseTrashInfo(formatTrashInfo(info->path, "2024-01-01T00:00:00"));
        if (!again || again->path != info->path) {
            return false;
        }
    }
    if (!text.empty() && text.find('\n') == std::string::npos) {
        const std::string line = formatDirectorySizesLine(1, 2, text);
        if (directorySizesLineName(line.substr(0, line.size() - 1)) != text) {
            return false;
        }
    }
    directorySizesLineName(text);
    return true;
}

// Path rules: whatever the input, an allowed path is clean, strictly inside a root and
// neither the home nor above it.
inline bool checkPathRules(const std::string& text) {
    const std::vector<std::string> parts = splitOnNul(text);
    const std::string& path = parts[0];
    const std::string home = parts.size() > 1 ? parts[1] : "/home/user";
    const std::vector<std::string> roots(parts.begin() + (parts.size() > 2 ? 2 : 0),
                                         parts.size() > 2 ? parts.end() : parts.begin());
    if (const std::optional<std::string> normal = normalizeAbsolutePath(path)) {
        if (normalizeAbsolutePath(*normal) != *normal || normal->find("//") != std::string::npos ||
            (normal->size() > 1 && normal->back() == '/')) {
            return false;
        }
    }
    if (checkRemovablePath(path, home, roots) != PathVerdict::allowed) {
        return true;
    }
    const std::optional<std::string> normal = normalizeAbsolutePath(path);
    const std::optional<std::string> homeNormal = normalizeAbsolutePath(home);
    if (!normal || *normal == "/" || (homeNormal && isWithinFolder(*homeNormal, *normal))) {
        return false;
    }
    bool inside = false;
    for (const std::string& root : roots) {
        const std::optional<std::string> r = normalizeAbsolutePath(root);
        if (r && *r == *normal) {
            return false;
        }
        inside = inside || (r && isWithinFolder(*normal, *r));
    }
    return inside;
}

// The helper's stdin and stdout: exact round trip of what decodes, no crash on anything.
inline bool checkHelperProtocol(const std::string& text) {
    std::vector<std::string> roots;
    std::vector<std::string> paths;
    if (decodeHelperInput(text, roots, paths)) {
        std::string again;
        for (const std::string& root : roots) {
            again += 'R' + root + '\0';
        }
        for (const std::string& path : paths) {
            again += 'P' + path + '\0';
        }
        if (again != text) {
            return false;
        }
    }
    const std::vector<std::string> asked = {"/a", "/b", "/c"};
    return parseHelperOutput(text, asked).size() == asked.size();
}

inline bool checkRemovalInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return true;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 3) {
    case 0:
        return checkTrashInfo(text);
    case 1:
        return checkPathRules(text);
    default:
        return checkHelperProtocol(text);
    }
}

} // namespace sondrel::fuzz
