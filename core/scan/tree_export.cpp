#include "core/scan/tree_export.h"

#include "core/util/path_text.h"

#include <cstdio>
#include <vector>

namespace sondrel {

namespace {

constexpr std::size_t kFlushBytes = 1 << 16;

void flushIfFull(std::string& buffer, std::ostream& out) {
    if (buffer.size() >= kFlushBytes) {
        out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        buffer.clear();
    }
}

void appendNumber(std::string& out, std::int64_t number) {
    char text[24];
    const int length = std::snprintf(text, sizeof text, "%lld", static_cast<long long>(number));
    out.append(text, static_cast<std::size_t>(length));
}

// One level of an iterative depth-first walk: the node, its next child to visit and the
// length of the path before this node's name was appended.
struct Frame {
    const FileNode* node;
    const FileNode* nextChild;
    std::size_t pathLength;
};

} // namespace

void appendJsonString(std::string& out, std::string_view bytes) {
    const bool valid = isValidUtf8(bytes);
    out += '"';
    for (const char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += ch;
        } else if (c < 0x20 || c == 0x7F || (!valid && c >= 0x80)) {
            static constexpr char kNamed[] = "btnvfr"; // \b \t \n (\v unnamed) \f \r
            if (c >= '\b' && c <= '\r' && c != '\v') {
                out += '\\';
                out += kNamed[c - '\b'];
            } else {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                out += escaped;
            }
        } else {
            out += ch;
        }
    }
    out += '"';
}

bool writeTreeJson(std::ostream& out, const FileItem& root) {
    std::string buffer;
    buffer.reserve(kFlushBytes + 4096);
    std::string path = root.url();
    const auto openNode = [&](const FileNode* node) {
        buffer += "{\"name\":";
        appendJsonString(buffer, node->name());
        buffer += ",\"path\":";
        appendJsonString(buffer, path);
        buffer += ",\"size\":";
        appendNumber(buffer, node->size);
        buffer += ",\"fileCount\":";
        appendNumber(buffer, node->fileCount);
        buffer += ",\"category\":";
        appendJsonString(buffer, displayName(node->category));
        buffer += node->isDirectory() ? ",\"isDirectory\":true" : ",\"isDirectory\":false";
        buffer += ",\"children\":[";
    };
    std::vector<Frame> stack;
    openNode(root.node());
    stack.push_back({root.node(), root.node()->firstChild, path.size()});
    while (!stack.empty()) {
        Frame& frame = stack.back();
        const FileNode* child = frame.nextChild;
        if (child == nullptr) {
            buffer += "]}";
            path.resize(frame.pathLength);
            stack.pop_back();
            if (!stack.empty() && stack.back().nextChild != nullptr) {
                buffer += ',';
            }
            flushIfFull(buffer, out);
            continue;
        }
        frame.nextChild = child->nextSibling;
        const std::size_t parentLength = path.size();
        if (path.empty() || path.back() != '/') {
            path += '/';
        }
        path += child->name();
        openNode(child);
        stack.push_back({child, child->firstChild, parentLength});
    }
    buffer += '\n';
    out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    out.flush();
    return static_cast<bool>(out);
}

bool writeNcduExport(std::ostream& out, const FileItem& root, std::time_t timestamp) {
    std::string buffer;
    buffer.reserve(kFlushBytes + 4096);
    buffer += "[1,2,{\"progname\":\"sondrel\",\"progver\":\"" SONDREL_VERSION "\",\"timestamp\":";
    appendNumber(buffer, static_cast<std::int64_t>(timestamp));
    buffer += "},\n";
    const auto info = [&](std::string_view name, const FileNode* node, bool directory) {
        buffer += "{\"name\":";
        appendJsonString(buffer, name);
        // A folder's own size in ncdu is the folder entry itself; its children add the rest.
        // Only a collapsed folder (no children) carries its total here.
        const std::int64_t own = directory && node->firstChild != nullptr ? 0 : node->size;
        buffer += ",\"asize\":";
        appendNumber(buffer, own);
        buffer += ",\"dsize\":";
        appendNumber(buffer, own);
        buffer += '}';
    };
    std::vector<Frame> stack;
    const std::string rootPath = root.url();
    buffer += '[';
    info(rootPath, root.node(), true);
    stack.push_back({root.node(), root.node()->firstChild, 0});
    while (!stack.empty()) {
        Frame& frame = stack.back();
        const FileNode* child = frame.nextChild;
        if (child == nullptr) {
            buffer += ']';
            stack.pop_back();
            flushIfFull(buffer, out);
            continue;
        }
        frame.nextChild = child->nextSibling;
        buffer += ",\n";
        if (child->isDirectory()) {
            buffer += '[';
            info(child->name(), child, true);
            stack.push_back({child, child->firstChild, 0});
        } else {
            info(child->name(), child, false);
        }
        flushIfFull(buffer, out);
    }
    buffer += "]\n";
    out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    out.flush();
    return static_cast<bool>(out);
}

} // namespace sondrel
