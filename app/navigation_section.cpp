#include "app/navigation_section.h"

#include <QVariantMap>

namespace sondrel {

namespace {

using Section = NavigationSection;

constexpr std::array<Section::Row, Section::kCount> kTable{{
    {Section::SmartCare, "Smart Care", "bolt.shield.fill", "smartCarePage"},
    {Section::Storage, "Storage Scopix", "square.grid.2x2.fill", "storagePage"},
    {Section::Duplicates, "Duplicate Hunter", "doc.on.doc.fill", "duplicatesPage"},
    {Section::Uninstaller, "App Uninstaller", "trash.fill", "uninstallerPage"},
    {Section::Junk, "Junk & Dev Cache", "sparkles", "junkPage"},
    {Section::Search, "Intelligent Search", "magnifyingglass", "searchPage"},
    {Section::Monitor, "Live Telemetry", "gauge.with.needle.fill", "monitorPage"},
    {Section::Settings, "Themes & Settings", "paintpalette.fill", "settingsPage"},
}};

constexpr bool rowsFollowIds() {
    for (int i = 0; i < Section::kCount; ++i) {
        if (kTable[static_cast<std::size_t>(i)].id != i) {
            return false;
        }
    }
    return true;
}
static_assert(rowsFollowIds(), "the table's rows are in Id order");

} // namespace

const std::array<NavigationSection::Row, NavigationSection::kCount>& NavigationSection::table() {
    return kTable;
}

QVariantList NavigationSection::toVariantList() {
    QVariantList rows;
    for (const Row& row : kTable) {
        rows.append(QVariantMap{
            {QStringLiteral("section"), static_cast<int>(row.id)},
            {QStringLiteral("title"), QString::fromUtf8(row.title)},
            {QStringLiteral("symbol"), QString::fromUtf8(row.symbol)},
            {QStringLiteral("page"), QString::fromUtf8(row.page)},
        });
    }
    return rows;
}

} // namespace sondrel
