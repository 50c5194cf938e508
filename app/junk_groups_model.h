#pragma once
// JunkGroupsModel: the junk groups as a list model for the page, one row per group in the
// scan's order. It owns the groups (plain core values); selection changes update the affected
// row in place, so a card keeps its own state (expanded or not) while items are toggled.
//
// Threading: GUI thread only.

#include "core/junk/junk_group.h"

#include <QAbstractListModel>
#include <vector>

namespace sondrel {

class JunkGroupsModel : public QAbstractListModel {
    Q_OBJECT

public:
    /// Roles of a row. `items` is a list of maps with "itemId", "title", "detail", "sizeText",
    /// "lastUsedText" ("last used 3 months ago"), "isSelected", "isLocked" and "path" (display
    /// text).
    enum Role {
        groupIdRole = Qt::UserRole + 1,
        titleRole,
        descriptionRole,
        iconRole,          ///< the type's symbol ("hammer.fill")
        totalTextRole,     ///< the group's total size, formatted
        countTextRole,     ///< "(2/5 selected)"
        selectionIconRole, ///< "checkmark.square.fill", "minus.square.fill" or "square"
        allSelectedRole,   ///< bool
        hasSelectionRole,  ///< bool
        itemsRole,
    };

    explicit JunkGroupsModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// The groups as they stand.
    const std::vector<JunkGroup>& groups() const { return m_groups; }
    /// Replaces every group (a reset).
    void setGroups(std::vector<JunkGroup> groups);
    /// Flips one item's selection; false when not found.
    bool toggleItem(std::uint64_t groupId, std::uint64_t itemId);
    /// Selects or deselects a whole group (see toggleGroupSelection); false when not found.
    bool toggleGroup(std::uint64_t groupId);
    /// The path (bytes) of item `itemId`, empty when unknown.
    std::string pathOf(std::uint64_t itemId) const;

signals:
    /// Any selection or the set of groups changed.
    void selectionChanged();

private:
    void groupChanged(std::uint64_t groupId);

    std::vector<JunkGroup> m_groups;
};

} // namespace sondrel
