#pragma once
// One fuzz input for the scanner's tree writers (the JSON tree and the ncdu export): the input
// describes a tree with arbitrary names, the writers' output is read back, and every name must
// come back byte for byte, in order, from a document that is valid UTF-8 and free of raw control
// bytes. Shared by the libFuzzer targets (tests/fuzz/tree_json_fuzz.cpp, ncdu_export_fuzz.cpp)
// and the replay test that runs the committed corpus in the ordinary suite.
//
// Input: parts separated by NUL. The first part is the root's path. In each later part the
// first byte says what the rest (the name) is: bit 0 a folder, bits 1-2 how many folders to
// close before it, bits 3-7 its size (so 0x08 is a file of one byte, 0x09 a folder); an empty
// part is a file with an empty name.

#include "core/model/file_item.h"
#include "core/model/file_tree.h"
#include "core/scan/tree_export.h"
#include "core/util/path_text.h"
#include "core/util/text_escape.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace sondrel::fuzz {

/// A tree built from a fuzz input, and its names in the order the writers visit them.
struct FuzzTree {
    std::shared_ptr<FileTree> tree;
    std::string rootPath;
    std::vector<std::string> names; ///< every node below the root, depth first
};

inline FuzzTree buildFuzzTree(std::string_view input) {
    constexpr std::size_t kMaxNodes = 2000;
    constexpr std::size_t kMaxName = 65535; // longer names are cut by the arena
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= input.size(); ++i) {
        if (i == input.size() || input[i] == '\0') {
            parts.push_back(input.substr(start, i - start).substr(0, kMaxName));
            start = i + 1;
        }
    }
    FuzzTree result;
    result.rootPath = std::string(parts[0]);
    result.tree = std::make_shared<FileTree>(result.rootPath);
    NodeArena& arena = result.tree->arena();
    FileNode* root = arena.create(lastPathComponent(parts[0]), true);
    std::map<FileNode*, std::vector<FileNode*>> children;
    std::vector<FileNode*> open{root};
    for (std::size_t i = 1; i < parts.size() && i <= kMaxNodes; ++i) {
        const std::string_view part = parts[i];
        const auto control = part.empty() ? 0U : static_cast<unsigned char>(part[0]);
        const std::string_view name = part.empty() ? part : part.substr(1);
        for (unsigned up = (control >> 1) & 3U; up > 0 && open.size() > 1; --up) {
            open.pop_back();
        }
        const bool isDirectory = (control & 1U) != 0;
        FileNode* node = arena.create(name, isDirectory, control >> 3);
        children[open.back()].push_back(node);
        result.names.emplace_back(name);
        if (isDirectory) {
            open.push_back(node);
        }
    }
    for (auto& [parent, list] : children) {
        setChildren(parent, list);
    }
    result.tree->setRoot(root);
    return result;
}

/// The strings of a JSON document in order, decoded, each marked when it is an object key.
/// Returns nullopt when the document holds a malformed string, unbalanced brackets, a raw
/// control byte (other than the newlines between values) or anything that is not UTF-8.
struct JsonToken {
    std::string text;
    bool isKey = false;
};

inline std::optional<std::vector<JsonToken>> jsonStrings(const std::string& document) {
    if (!isValidUtf8(document)) {
        return std::nullopt;
    }
    std::vector<JsonToken> tokens;
    std::string brackets;
    for (std::size_t i = 0; i < document.size(); ++i) {
        const char c = document[i];
        if (c == '[' || c == '{') {
            brackets += c;
        } else if (c == ']' || c == '}') {
            if (brackets.empty() || brackets.back() != (c == ']' ? '[' : '{')) {
                return std::nullopt;
            }
            brackets.pop_back();
        } else if (c == '"') {
            std::size_t end = i + 1;
            while (end < document.size() && document[end] != '"') {
                end += document[end] == '\\' ? 2 : 1;
            }
            if (end >= document.size()) {
                return std::nullopt;
            }
            std::optional<std::string> text = decodeJsonString(document.substr(i, end - i + 1));
            if (!text) {
                return std::nullopt;
            }
            const bool isKey = end + 1 < document.size() && document[end + 1] == ':';
            tokens.push_back({std::move(*text), isKey});
            i = end;
        } else if (static_cast<unsigned char>(c) < 0x20 && c != '\n') {
            return std::nullopt;
        }
    }
    if (!brackets.empty()) {
        return std::nullopt;
    }
    return tokens;
}

/// The values of every "name" key, in document order.
inline std::vector<std::string> namesIn(const std::vector<JsonToken>& tokens) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        if (tokens[i].isKey && tokens[i].text == "name" && !tokens[i + 1].isKey) {
            names.push_back(tokens[i + 1].text);
        }
    }
    return names;
}

/// The JSON tree gives back the root's path and every name in order.
inline bool checkTreeJson(std::string_view input) {
    const FuzzTree built = buildFuzzTree(input);
    std::ostringstream out;
    if (!writeTreeJson(out, FileItem::rootOf(built.tree))) {
        return false;
    }
    const std::optional<std::vector<JsonToken>> tokens = jsonStrings(out.str());
    if (!tokens || tokens->size() < 4 || (*tokens)[2].text != "path" ||
        (*tokens)[3].text != built.rootPath) {
        return false;
    }
    std::vector<std::string> expected{std::string(lastPathComponent(built.rootPath))};
    expected.insert(expected.end(), built.names.begin(), built.names.end());
    return namesIn(*tokens) == expected;
}

/// The ncdu export names the root by its path and gives back every name in order.
inline bool checkNcduExport(std::string_view input) {
    const FuzzTree built = buildFuzzTree(input);
    std::ostringstream out;
    if (!writeNcduExport(out, FileItem::rootOf(built.tree), 1700000000)) {
        return false;
    }
    const std::optional<std::vector<JsonToken>> tokens = jsonStrings(out.str());
    if (!tokens) {
        return false;
    }
    std::vector<std::string> expected{built.rootPath};
    expected.insert(expected.end(), built.names.begin(), built.names.end());
    return namesIn(*tokens) == expected;
}

} // namespace sondrel::fuzz
