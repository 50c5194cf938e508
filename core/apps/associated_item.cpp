#include "core/apps/associated_item.h"

#include <atomic>

namespace sondrel {

namespace {

struct TypeTexts {
    std::string_view name;
    std::string_view icon;
    std::string_view key;
};

constexpr std::array<TypeTexts, 8> kTexts{{
    {"Application", "app.fill", "appBundle"},
    {"Application Support", "folder.badge.gearshape", "appSupport"},
    {"Caches", "bolt.horizontal.fill", "caches"},
    {"Preferences", "slider.horizontal.3", "preferences"},
    {"Saved State", "clock.arrow.circlepath", "savedState"},
    {"Container Sandbox", "shippingbox.fill", "container"},
    {"WebKit Data", "safari.fill", "webkit"},
    {"Logs", "doc.text.magnifyingglass", "logs"},
}};

} // namespace

std::string_view displayName(AssociatedFileType type) {
    return kTexts[static_cast<std::size_t>(type)].name;
}

std::string_view iconName(AssociatedFileType type) {
    return kTexts[static_cast<std::size_t>(type)].icon;
}

std::string_view typeKey(AssociatedFileType type) {
    return kTexts[static_cast<std::size_t>(type)].key;
}

std::uint64_t newItemId() {
    static std::atomic<std::uint64_t> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}

} // namespace sondrel
