#include "core/removal/trash_info.h"

#include <charconv>

namespace sondrel {

namespace {

bool isUnreserved(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

std::string percentEncodePath(std::string_view path, bool keepSlash) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(path.size());
    for (const char ch : path) {
        const auto c = static_cast<unsigned char>(ch);
        if (isUnreserved(c) || (keepSlash && c == '/')) {
            out += ch;
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 0x0F];
        }
    }
    return out;
}

std::optional<std::string> percentDecode(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out += text[i];
            continue;
        }
        if (i + 2 >= text.size()) {
            return std::nullopt;
        }
        const int high = hexValue(text[i + 1]);
        const int low = hexValue(text[i + 2]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        out += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return out;
}

std::string formatDeletionDate(std::time_t when) {
    std::tm local{};
    localtime_r(&when, &local);
    char buffer[32];
    const std::size_t length = std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S", &local);
    return std::string(buffer, length);
}

std::string formatTrashInfo(std::string_view originalPath, std::string_view deletionDate) {
    std::string text = "[Trash Info]\nPath=";
    text += percentEncodePath(originalPath);
    text += "\nDeletionDate=";
    text += deletionDate;
    text += '\n';
    return text;
}

std::optional<TrashInfo> parseTrashInfo(std::string_view text) {
    bool inGroup = false;
    bool sawGroup = false;
    std::optional<std::string> path;
    std::string date;
    while (!text.empty()) {
        const std::size_t newline = text.find('\n');
        const std::string_view raw = text.substr(0, newline);
        text.remove_prefix(newline == std::string_view::npos ? text.size() : newline + 1);
        const std::string_view line = trimmed(raw);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            if (sawGroup) {
                break;
            }
            if (line != "[Trash Info]") {
                return std::nullopt;
            }
            inGroup = true;
            sawGroup = true;
            continue;
        }
        if (!inGroup) {
            return std::nullopt;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            continue;
        }
        const std::string_view key = trimmed(line.substr(0, equals));
        const std::string_view value = trimmed(line.substr(equals + 1));
        if (key == "Path" && !path) {
            path = percentDecode(value);
            if (!path) {
                return std::nullopt;
            }
        } else if (key == "DeletionDate" && date.empty()) {
            date = std::string(value);
        }
    }
    if (!path || path->empty() || path->find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return TrashInfo{std::move(*path), std::move(date)};
}

std::string formatDirectorySizesLine(unsigned long long bytes, long long infoMtime,
                                     std::string_view name) {
    return std::to_string(bytes) + ' ' + std::to_string(infoMtime) + ' ' +
           percentEncodePath(name, false) + '\n';
}

std::optional<std::string> directorySizesLineName(std::string_view line) {
    const std::size_t first = line.find(' ');
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t second = line.find(' ', first + 1);
    if (second == std::string_view::npos) {
        return std::nullopt;
    }
    unsigned long long bytes = 0;
    long long mtime = 0;
    const std::string_view bytesText = line.substr(0, first);
    const std::string_view mtimeText = line.substr(first + 1, second - first - 1);
    if (std::from_chars(bytesText.data(), bytesText.data() + bytesText.size(), bytes).ptr !=
            bytesText.data() + bytesText.size() ||
        bytesText.empty() ||
        std::from_chars(mtimeText.data(), mtimeText.data() + mtimeText.size(), mtime).ptr !=
            mtimeText.data() + mtimeText.size() ||
        mtimeText.empty()) {
        return std::nullopt;
    }
    std::optional<std::string> name = percentDecode(line.substr(second + 1));
    if (!name || name->empty()) {
        return std::nullopt;
    }
    return name;
}

} // namespace sondrel
