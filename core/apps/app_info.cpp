#include "core/apps/app_info.h"

namespace sondrel {

std::string_view appKindKey(AppKind kind) {
    switch (kind) {
    case AppKind::bundle:
        return "bundle";
    case AppKind::debian:
        return "debian";
    case AppKind::flatpak:
        return "flatpak";
    case AppKind::snap:
        return "snap";
    case AppKind::appImage:
        return "appimage";
    case AppKind::local:
        return "local";
    }
    return "local";
}

std::int64_t AppInfo::leftoverSize() const {
    std::int64_t sum = 0;
    for (const AssociatedItem& item : associatedItems) {
        sum += item.size;
    }
    return sum;
}

std::string appScanFoundText(std::size_t apps, std::size_t orphans) {
    return "Found " + std::to_string(apps) + " applications, " + std::to_string(orphans) +
           " leftover items";
}

} // namespace sondrel
