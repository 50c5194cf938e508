#include "app/junk_groups_model.h"

#include "app/qt_conversions.h"
#include "core/junk/junk_texts.h"

#include <QVariantList>
#include <QVariantMap>
#include <ctime>

namespace sondrel {

namespace {

QString text(const std::string& bytes) {
    return toDisplayQString(bytes);
}

QVariantList itemRows(const JunkGroup& group) {
    const std::int64_t now = std::time(nullptr);
    QVariantList rows;
    for (const JunkItem& item : group.items) {
        rows.append(QVariantMap{
            {"itemId", QString::number(item.id)},
            {"title", text(item.title)},
            {"detail", text(item.detail)},
            {"sizeText", QString::fromStdString(item.formattedSize())},
            {"lastUsedText", QString::fromStdString(junkLastUsedText(item.modifiedSeconds, now))},
            {"isSelected", item.isSelected},
            {"isLocked", item.isPermissionLocked},
            {"path", text(item.path)},
        });
    }
    return rows;
}

} // namespace

JunkGroupsModel::JunkGroupsModel(QObject* parent) : QAbstractListModel(parent) {}

int JunkGroupsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_groups.size());
}

QVariant JunkGroupsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) {
        return {};
    }
    const JunkGroup& group = m_groups[static_cast<std::size_t>(index.row())];
    switch (role) {
    case groupIdRole:
        return QString::number(group.id);
    case titleRole:
        return text(group.title);
    case descriptionRole:
        return text(group.description);
    case iconRole:
        return QString::fromUtf8(junkTypeIcon(group.type).data(),
                                 static_cast<qsizetype>(junkTypeIcon(group.type).size()));
    case totalTextRole:
        return QString::fromStdString(group.formattedTotalSize());
    case countTextRole:
        return QStringLiteral("(%1/%2 selected)")
            .arg(group.selectedCount())
            .arg(group.items.size());
    case selectionIconRole:
        return group.allSelected()       ? QStringLiteral("checkmark.square.fill")
               : group.hasSomeSelected() ? QStringLiteral("minus.square.fill")
                                         : QStringLiteral("square");
    case allSelectedRole:
        return group.allSelected();
    case hasSelectionRole:
        return group.hasSomeSelected();
    case itemsRole:
        return itemRows(group);
    default:
        return {};
    }
}

QHash<int, QByteArray> JunkGroupsModel::roleNames() const {
    return {
        {groupIdRole, "groupId"},
        {titleRole, "title"},
        {descriptionRole, "groupDescription"},
        {iconRole, "icon"},
        {totalTextRole, "totalText"},
        {countTextRole, "countText"},
        {selectionIconRole, "selectionIcon"},
        {allSelectedRole, "allSelected"},
        {hasSelectionRole, "hasSelection"},
        {itemsRole, "items"},
    };
}

void JunkGroupsModel::setGroups(std::vector<JunkGroup> groups) {
    beginResetModel();
    m_groups = std::move(groups);
    endResetModel();
    emit selectionChanged();
}

bool JunkGroupsModel::toggleItem(std::uint64_t groupId, std::uint64_t itemId) {
    if (!toggleItemSelection(m_groups, groupId, itemId)) {
        return false;
    }
    groupChanged(groupId);
    return true;
}

bool JunkGroupsModel::toggleGroup(std::uint64_t groupId) {
    if (!toggleGroupSelection(m_groups, groupId)) {
        return false;
    }
    groupChanged(groupId);
    return true;
}

std::string JunkGroupsModel::pathOf(std::uint64_t itemId) const {
    for (const JunkGroup& group : m_groups) {
        for (const JunkItem& item : group.items) {
            if (item.id == itemId) {
                return item.path;
            }
        }
    }
    return {};
}

void JunkGroupsModel::groupChanged(std::uint64_t groupId) {
    for (std::size_t row = 0; row < m_groups.size(); ++row) {
        if (m_groups[row].id == groupId) {
            const QModelIndex at = index(static_cast<int>(row));
            emit dataChanged(at, at);
        }
    }
    emit selectionChanged();
}

} // namespace sondrel
