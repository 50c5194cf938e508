#include "core/junk/junk_type.h"

#include <array>

namespace sondrel {

namespace {

struct TypeRow {
    JunkType type;
    std::string_view name;
    std::string_view icon;
    std::string_view key;
};

constexpr std::array<TypeRow, 6> kTypes{{
    {JunkType::xcode, "Xcode & Developer", "hammer.fill", "developer"},
    {JunkType::nodeModules, "node_modules Bloat", "cube.box.fill", "node_modules"},
    {JunkType::userCaches, "User Caches", "sparkles", "user_caches"},
    {JunkType::logs, "System & App Logs", "doc.plaintext.fill", "logs"},
    {JunkType::trash, "macOS Trash", "trash.fill", "trash"},
    {JunkType::orphaned, "Orphaned App Residue", "puzzlepiece.extension.fill", "orphaned"},
}};

const TypeRow& rowOf(JunkType type) {
    return kTypes[static_cast<std::size_t>(type)];
}

} // namespace

const std::vector<JunkType>& allJunkTypes() {
    static const std::vector<JunkType> types = [] {
        std::vector<JunkType> all;
        for (const TypeRow& row : kTypes) {
            all.push_back(row.type);
        }
        return all;
    }();
    return types;
}

std::string_view junkTypeName(JunkType type) {
    return rowOf(type).name;
}

std::string_view junkTypeIcon(JunkType type) {
    return rowOf(type).icon;
}

std::string_view junkTypeKey(JunkType type) {
    return rowOf(type).key;
}

std::optional<JunkType> junkTypeFromKey(std::string_view key) {
    for (const TypeRow& row : kTypes) {
        if (row.key == key) {
            return row.type;
        }
    }
    return std::nullopt;
}

} // namespace sondrel
