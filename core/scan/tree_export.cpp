#include "core/scan/tree_export.h"

#include "core/util/text_escape.h"

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

// One level of an iterative depth-first walk: the node and its next child to visit.
struct Frame {
    const FileNode* node;
    const FileNode* nextChild;
};

} // namespace

bool writeTreeJson(std::ostream& out, const FileItem& root) {
    std::string buffer;
    buffer.reserve(kFlushBytes + 4096);
    const auto openNode = [&](const FileNode* node, bool isRoot) {
        buffer += "{\"name\":";
        appendJsonString(buffer, node->name());
        if (isRoot) {
            buffer += ",\"path\":";
            appendJsonString(buffer, root.url());
        }
        buffer += ",\"size\":";
        appendNumber(buffer, node->size);
        buffer += ",\"fileCount\":";
        appendNumber(buffer, node->fileCount);
        buffer += ",\"category\":";
        appendJsonString(buffer, displayName(node->category));
        if (node->isDirectory()) {
            buffer += ",\"isDirectory\":true,\"children\":[";
        } else {
            buffer += ",\"isDirectory\":false}";
        }
    };
    std::vector<Frame> stack;
    openNode(root.node(), true);
    if (root.node()->isDirectory()) {
        stack.push_back({root.node(), root.node()->firstChild});
    }
    while (!stack.empty()) {
        Frame& frame = stack.back();
        const FileNode* child = frame.nextChild;
        if (child == nullptr) {
            buffer += "]}";
            stack.pop_back();
            flushIfFull(buffer, out);
            continue;
        }
        if (child != frame.node->firstChild) {
            buffer += ',';
        }
        frame.nextChild = child->nextSibling;
        openNode(child, false);
        if (child->isDirectory()) {
            stack.push_back({child, child->firstChild});
        }
        flushIfFull(buffer, out);
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
        const bool leaf = !directory || node->firstChild == nullptr;
        const bool apparentFirst = root.tree()->measure() == SizeMeasure::apparent;
        const std::int64_t apparent = leaf ? (apparentFirst ? node->size : node->otherSize) : 0;
        const std::int64_t allocated = leaf ? (apparentFirst ? node->otherSize : node->size) : 0;
        buffer += ",\"asize\":";
        appendNumber(buffer, apparent);
        buffer += ",\"dsize\":";
        appendNumber(buffer, allocated);
        buffer += '}';
    };
    std::vector<Frame> stack;
    const std::string rootPath = root.url();
    buffer += '[';
    info(rootPath, root.node(), true);
    stack.push_back({root.node(), root.node()->firstChild});
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
            stack.push_back({child, child->firstChild});
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
