#include "core/apps/info_plist.h"

#include <cstdlib>

namespace sondrel {

namespace {

void appendUtf8(std::string& out, unsigned long code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

std::string decodeEntities(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '&') {
            out += text[i];
            continue;
        }
        const auto semicolon = text.find(';', i);
        if (semicolon == std::string_view::npos || semicolon - i > 10) {
            out += '&';
            continue;
        }
        const std::string_view name = text.substr(i + 1, semicolon - i - 1);
        if (name == "amp") {
            out += '&';
        } else if (name == "lt") {
            out += '<';
        } else if (name == "gt") {
            out += '>';
        } else if (name == "quot") {
            out += '"';
        } else if (name == "apos") {
            out += '\'';
        } else if (name.size() > 1 && name[0] == '#') {
            const bool hex = name[1] == 'x' || name[1] == 'X';
            const std::string digits(name.substr(hex ? 2 : 1));
            char* end = nullptr;
            const unsigned long code = std::strtoul(digits.c_str(), &end, hex ? 16 : 10);
            if (digits.empty() || *end != '\0' || code == 0 || code > 0x10FFFF) {
                out += '&';
                continue;
            }
            appendUtf8(out, code);
        } else {
            out += '&';
            continue;
        }
        i = semicolon;
    }
    return out;
}

struct Tag {
    std::string_view name; ///< with a leading '/' for a closing tag
    std::size_t end = 0;   ///< the position after '>'
    bool selfClosing = false;
};

// Reads the next tag at or after `at`. Comments and declarations are skipped.
std::optional<Tag> nextTag(std::string_view text, std::size_t at) {
    for (;;) {
        const auto open = text.find('<', at);
        if (open == std::string_view::npos) {
            return std::nullopt;
        }
        if (text.substr(open, 4) == "<!--") {
            const auto close = text.find("-->", open + 4);
            if (close == std::string_view::npos) {
                return std::nullopt;
            }
            at = close + 3;
            continue;
        }
        const auto close = text.find('>', open);
        if (close == std::string_view::npos) {
            return std::nullopt;
        }
        if (text[open + 1] == '?' || text[open + 1] == '!') {
            at = close + 1;
            continue;
        }
        std::string_view tag = text.substr(open + 1, close - open - 1);
        const bool selfClosing = !tag.empty() && tag.back() == '/';
        const auto space = tag.find_first_of(" \t\r\n/", 1);
        if (space != std::string_view::npos) {
            tag = tag.substr(0, space);
        }
        return Tag{tag, close + 1, selfClosing};
    }
}

} // namespace

std::optional<std::map<std::string, std::string>> parseInfoPlistStrings(std::string_view text) {
    if (text.substr(0, 6) == "bplist" || text.find("<plist") == std::string_view::npos) {
        return std::nullopt;
    }
    auto tag = nextTag(text, text.find("<plist"));
    if (!tag || tag->name != "plist") {
        return std::nullopt;
    }
    tag = nextTag(text, tag->end);
    if (!tag || tag->name != "dict") {
        return std::nullopt;
    }
    std::map<std::string, std::string> strings;
    if (tag->selfClosing) {
        return strings;
    }
    std::size_t at = tag->end;
    int depth = 0; // nesting below the top-level dict
    std::optional<std::string> pendingKey;
    while (auto next = nextTag(text, at)) {
        const std::string_view name = next->name;
        const std::size_t contentStart = next->end;
        at = contentStart;
        if (name == "/dict" || name == "/array") {
            if (depth == 0) {
                return strings; // the end of the top-level dict
            }
            --depth;
            continue;
        }
        if (name == "dict" || name == "array") {
            depth += next->selfClosing ? 0 : 1;
            pendingKey.reset();
            continue;
        }
        if ((name == "key" || name == "string") && next->selfClosing) {
            if (depth == 0 && name == "string" && pendingKey) {
                strings.emplace(std::move(*pendingKey), std::string());
            }
            pendingKey.reset();
            continue;
        }
        if (name == "key" || name == "string") {
            const std::string close = "</" + std::string(name) + ">";
            const auto end = text.find(close, contentStart);
            if (end == std::string_view::npos) {
                return std::nullopt;
            }
            at = end + close.size();
            if (depth != 0) {
                continue;
            }
            std::string content = decodeEntities(text.substr(contentStart, end - contentStart));
            if (name == "key") {
                pendingKey = std::move(content);
            } else if (pendingKey) {
                strings.emplace(std::move(*pendingKey), std::move(content));
                pendingKey.reset();
            }
            continue;
        }
        if (depth == 0 && !name.empty() && name.front() != '/') {
            pendingKey.reset(); // a value of another type: its key is not a string key
        }
    }
    return std::nullopt; // the top-level dict never closed
}

} // namespace sondrel
