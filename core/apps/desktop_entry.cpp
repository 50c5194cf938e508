#include "core/apps/desktop_entry.h"

namespace sondrel {

namespace {

bool isKeyChar(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
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

// "Key" or "Key[locale]": the key, and whether it carried a locale. Nothing when malformed.
std::optional<std::pair<std::string_view, bool>> parseKey(std::string_view key) {
    const auto bracket = key.find('[');
    const std::string_view base = key.substr(0, bracket);
    if (base.empty()) {
        return std::nullopt;
    }
    for (const char c : base) {
        if (!isKeyChar(c)) {
            return std::nullopt;
        }
    }
    if (bracket == std::string_view::npos) {
        return std::pair{base, false};
    }
    const std::string_view locale = key.substr(bracket + 1);
    if (locale.size() < 2 || locale.back() != ']' ||
        locale.find_first_of("[]") != locale.size() - 1) {
        return std::nullopt;
    }
    return std::pair{base, true};
}

} // namespace

std::string DesktopEntry::value(const std::string& key) const {
    const auto it = values.find(key);
    return it == values.end() ? std::string() : it->second;
}

bool DesktopEntry::flag(const std::string& key) const {
    return value(key) == "true";
}

std::string DesktopEntry::program() const {
    const std::vector<std::string> words = splitExecLine(value("Exec"));
    return words.empty() ? std::string() : words.front();
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    DesktopEntry entry;
    enum class Group { none, main, other } group = Group::none;
    bool sawMain = false;
    std::size_t start = 0;
    while (start < text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        const std::string_view line = trimmed(text.substr(start, end - start));
        start = end + 1;
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            if (line.back() != ']' || line.size() < 3) {
                return std::nullopt;
            }
            const std::string_view name = line.substr(1, line.size() - 2);
            if (group == Group::none && name != "Desktop Entry") {
                return std::nullopt;
            }
            if (name == "Desktop Entry") {
                if (sawMain) {
                    return std::nullopt; // a second main group is not a valid file
                }
                sawMain = true;
                group = Group::main;
            } else {
                group = Group::other;
            }
            continue;
        }
        if (group == Group::none) {
            return std::nullopt;
        }
        if (group == Group::other) {
            continue;
        }
        const auto equals = line.find('=');
        if (equals == std::string_view::npos) {
            return std::nullopt;
        }
        const auto key = parseKey(trimmed(line.substr(0, equals)));
        if (!key) {
            return std::nullopt;
        }
        if (!key->second) {
            entry.values.emplace(std::string(key->first),
                                 unescapeDesktopValue(trimmed(line.substr(equals + 1))));
        }
    }
    if (!sawMain || entry.value("Type").empty() || entry.value("Name").empty()) {
        return std::nullopt;
    }
    return entry;
}

std::string unescapeDesktopValue(std::string_view value) {
    std::string out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (c != '\\' || i + 1 == value.size()) {
            out += c;
            continue;
        }
        switch (value[i + 1]) {
        case 's':
            out += ' ';
            break;
        case 'n':
            out += '\n';
            break;
        case 't':
            out += '\t';
            break;
        case 'r':
            out += '\r';
            break;
        case '\\':
            out += '\\';
            break;
        default:
            out += c;
            continue; // not an escape: keep the backslash, read the next normally
        }
        ++i;
    }
    return out;
}

std::vector<std::string> splitExecLine(std::string_view exec) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    bool quoted = false;
    for (std::size_t i = 0; i < exec.size(); ++i) {
        const char c = exec[i];
        if (quoted) {
            if (c == '"') {
                quoted = false;
            } else if (c == '\\' && i + 1 < exec.size() &&
                       std::string_view("\"`$\\").find(exec[i + 1]) != std::string_view::npos) {
                word += exec[++i];
            } else {
                word += c;
            }
        } else if (c == ' ' || c == '\t' || c == '\n') {
            if (inWord) {
                words.push_back(std::move(word));
                word.clear();
                inWord = false;
            }
        } else if (c == '"') {
            quoted = true;
            inWord = true;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord) {
        words.push_back(std::move(word));
    }
    return words;
}

std::string desktopFileId(std::string_view relativePath) {
    std::string id(relativePath);
    for (char& c : id) {
        if (c == '/') {
            c = '-';
        }
    }
    return id;
}

} // namespace sondrel
