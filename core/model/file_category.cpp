#include "core/model/file_category.h"

#include "core/util/path_text.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace sondrel {

namespace {

struct CategoryInfo {
    std::string_view name;
    std::string_view icon;
    Rgb rgb;
};

constexpr std::array<CategoryInfo, 9> kInfo = {{
    {"Developer", "hammer.fill", {0.98, 0.45, 0.18}},
    {"Applications", "app.badge.fill", {0.22, 0.58, 0.98}},
    {"Videos", "film.fill", {0.95, 0.25, 0.45}},
    {"Images", "photo.fill", {0.85, 0.35, 0.85}},
    {"Audio", "music.note", {0.98, 0.75, 0.18}},
    {"Documents", "doc.text.fill", {0.35, 0.78, 0.52}},
    {"Archives", "archivebox.fill", {0.65, 0.45, 0.95}},
    {"System Data", "gearshape.2.fill", {0.55, 0.6, 0.68}},
    {"Other", "folder.fill", {0.45, 0.5, 0.55}},
}};

struct ExtensionRule {
    FileCategory category;
    std::initializer_list<std::string_view> extensions;
};

// First list holding the extension wins, so the order of this table matters
// ("key" is a document, not developer; "app" an application).
const std::array<ExtensionRule, 7>& extensionRules() {
    static const std::array<ExtensionRule, 7> rules = {{
        {FileCategory::developer,
         {"swift", "c",   "cpp", "h",    "hpp",  "m",    "mm",  "py",   "js",
          "ts",    "jsx", "tsx", "html", "css",  "json", "xml", "yaml", "yml",
          "sh",    "rb",  "go",  "rs",   "java", "kt",   "o",   "a",    "dylib"}},
        {FileCategory::application, {"app"}},
        {FileCategory::video, {"mp4", "mov", "m4v", "mkv", "avi", "webm", "flv", "wmv"}},
        {FileCategory::image,
         {"png", "jpg", "jpeg", "webp", "gif", "heic", "tiff", "psd", "ai", "svg", "raw", "cr2",
          "nef"}},
        {FileCategory::audio, {"mp3", "wav", "m4a", "flac", "aac", "ogg", "aiff"}},
        {FileCategory::document,
         {"pdf", "docx", "doc", "xlsx", "xls", "pptx", "ppt", "txt", "md", "csv", "rtf", "pages",
          "numbers", "key"}},
        {FileCategory::archive,
         {"zip", "tar", "gz", "tgz", "bz2", "7z", "rar", "dmg", "iso", "pkg"}},
    }};
    return rules;
}

// The extension table as (lower-case extension packed into 8 bytes, category), sorted by key,
// the first rule kept for an extension listed twice. Files are classified by the million during
// a scan, so the lookup neither allocates nor scans the lists.
struct ExtensionKey {
    std::uint64_t key;
    FileCategory category;
};

constexpr std::size_t kMaxExtension = 8;

// Packs up to 8 bytes of `extension`, ASCII letters lower-cased; nullopt when longer.
std::optional<std::uint64_t> packedExtension(std::string_view extension) {
    if (extension.size() > kMaxExtension) {
        return std::nullopt;
    }
    std::uint64_t key = 0;
    for (const char c : extension) {
        const auto byte = static_cast<unsigned char>(c);
        key = key << 8U | ((byte >= 'A' && byte <= 'Z') ? byte + ('a' - 'A') : byte);
    }
    return key;
}

const std::vector<ExtensionKey>& extensionKeys() {
    static const std::vector<ExtensionKey> keys = [] {
        std::vector<ExtensionKey> list;
        for (const ExtensionRule& rule : extensionRules()) {
            for (const std::string_view extension : rule.extensions) {
                list.push_back({*packedExtension(extension), rule.category});
            }
        }
        std::stable_sort(
            list.begin(), list.end(),
            [](const ExtensionKey& a, const ExtensionKey& b) { return a.key < b.key; });
        list.erase(std::unique(
                       list.begin(), list.end(),
                       [](const ExtensionKey& a, const ExtensionKey& b) { return a.key == b.key; }),
                   list.end());
        return list;
    }();
    return keys;
}

FileCategory categoryOfExtension(std::string_view extension) {
    const std::optional<std::uint64_t> key = packedExtension(extension);
    if (extension.empty() || !key) {
        return FileCategory::other;
    }
    const std::vector<ExtensionKey>& keys = extensionKeys();
    const auto found = std::lower_bound(
        keys.begin(), keys.end(), *key,
        [](const ExtensionKey& entry, std::uint64_t wanted) { return entry.key < wanted; });
    return found != keys.end() && found->key == *key ? found->category : FileCategory::other;
}

const CategoryInfo& info(FileCategory category) {
    return kInfo[static_cast<std::size_t>(category)];
}

} // namespace

FileCategory categoryFrom(std::string_view path, bool isDirectory) {
    if (isDirectory) {
        const std::string p = asciiLower(path);
        if (endsWith(p, ".app")) {
            return FileCategory::application;
        }
        for (std::string_view word : {"/xcode", "deriveddata", "node_modules", ".git", ".cargo"}) {
            if (contains(p, word)) {
                return FileCategory::developer;
            }
        }
        return FileCategory::other;
    }
    return categoryOfExtension(pathExtension(path));
}

std::string_view displayName(FileCategory category) {
    return info(category).name;
}

std::string_view iconName(FileCategory category) {
    return info(category).icon;
}

Rgb color(FileCategory category) {
    return info(category).rgb;
}

std::optional<FileCategory> categoryFromDisplayName(std::string_view name) {
    for (FileCategory category : kAllFileCategories) {
        if (displayName(category) == name) {
            return category;
        }
    }
    return std::nullopt;
}

} // namespace sondrel
