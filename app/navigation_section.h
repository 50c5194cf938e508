#pragma once
// NavigationSection: the window's sections and the one table that describes them (title, icon
// symbol, page). The sidebar lists the table's rows in order, the page stack shows the page the
// table names for the selected section, Ctrl+1..Ctrl+8 follow the table's order, and QML names a
// section by its enumerator (`Section.Storage`), never by a number.
//
// Threading: constant data; any thread.

#include <QObject>
#include <QVariantList>
#include <array>

namespace sondrel {

class NavigationSection {
    Q_GADGET

public:
    /// The sections in sidebar order; the values are the rows of table(). The window opens on
    /// SmartCare.
    enum Id : int {
        SmartCare,
        Storage,
        Duplicates,
        Uninstaller,
        Junk,
        Search,
        Monitor,
        Settings,
    };
    Q_ENUM(Id)

    /// Number of sections (rows of table()).
    static constexpr int kCount = 8;

    /// One section as the sidebar and the page stack show it.
    struct Row {
        Id id;
        /// Sidebar title, also the page's heading ("Smart Care").
        const char* title;
        /// Icon symbol name of the sidebar row and the page heading ("bolt.shield.fill").
        const char* symbol;
        /// objectName of the section's page in the window's page stack ("smartCarePage").
        const char* page;
    };

    /// The table, one row per section in Id order (table()[id].id == id).
    static const std::array<Row, kCount>& table();
    /// True when `value` is one of the Id values.
    static constexpr bool isValid(int value) { return value >= 0 && value < kCount; }
    /// The table for QML: one map per row with "section" (the Id as an int), "title", "symbol"
    /// and "page".
    static QVariantList toVariantList();
};

} // namespace sondrel
