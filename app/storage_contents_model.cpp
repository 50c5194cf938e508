#include "app/storage_contents_model.h"

#include "app/file_reveal.h"
#include "app/qt_conversions.h"
#include "app/storage_navigator.h"
#include "core/model/byte_format.h"

#include <algorithm>

namespace sondrel {

StorageContentsModel::StorageContentsModel(StorageNavigator* navigator)
    : QAbstractListModel(navigator), m_navigator(navigator) {
    connect(navigator, &StorageNavigator::treeChanged, this, &StorageContentsModel::reload);
    connect(navigator, &StorageNavigator::currentFolderChanged, this,
            &StorageContentsModel::reload);
    connect(navigator, &StorageNavigator::treeMutated, this, &StorageContentsModel::reload);
    connect(navigator, &StorageNavigator::selectionChanged, this,
            &StorageContentsModel::refreshSelection);
}

void StorageContentsModel::reload() {
    const int before = count();
    beginResetModel();
    m_rows.clear();
    if (const FileItem folder = m_navigator->currentFolder()) {
        m_rows = folder.children();
        std::stable_sort(m_rows.begin(), m_rows.end(),
                         [](const FileItem& a, const FileItem& b) { return a.size() > b.size(); });
    }
    endResetModel();
    if (before != count()) {
        emit countChanged();
    }
}

void StorageContentsModel::refreshSelection() {
    if (!m_rows.empty()) {
        emit dataChanged(index(0), index(count() - 1), {IsSelectedRole});
    }
}

int StorageContentsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

FileItem StorageContentsModel::itemAt(int row) const {
    return row >= 0 && row < count() ? m_rows[static_cast<std::size_t>(row)] : FileItem{};
}

QVariant StorageContentsModel::data(const QModelIndex& index, int role) const {
    const FileItem item = itemAt(index.row());
    if (!item || index.parent().isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return toDisplayQString(item.name());
    case SizeTextRole:
        return QString::fromStdString(item.formattedSize());
    case ShareTextRole:
        return QString::fromStdString(formatPercent(item.percentageOfParent()));
    case IsDirectoryRole:
        return item.isDirectory();
    case CategoryNameRole:
        return QString::fromUtf8(displayName(item.category()));
    case CategoryColorRole:
        return toQColor(color(item.category()));
    case CategoryIconRole:
        return QString::fromUtf8(iconName(item.category()));
    case PathRole:
        return toDisplayQString(item.url());
    case IsSelectedRole:
        return m_navigator->hasSelection() && m_navigator->selectedItem() == item;
    default:
        return {};
    }
}

QHash<int, QByteArray> StorageContentsModel::roleNames() const {
    return {
        {NameRole, "name"},
        {SizeTextRole, "sizeText"},
        {ShareTextRole, "shareText"},
        {IsDirectoryRole, "isDirectory"},
        {CategoryNameRole, "categoryName"},
        {CategoryColorRole, "categoryColor"},
        {CategoryIconRole, "categoryIcon"},
        {PathRole, "path"},
        {IsSelectedRole, "isSelected"},
    };
}

void StorageContentsModel::select(int row) {
    if (const FileItem item = itemAt(row)) {
        m_navigator->setSelectedItem(item);
    }
}

void StorageContentsModel::zoom(int row) {
    if (const FileItem item = itemAt(row); item && item.isDirectory()) {
        m_navigator->setCurrentFolder(item);
    }
}

void StorageContentsModel::copyPath(int row) {
    if (const FileItem item = itemAt(row)) {
        copyTextToClipboard(toFileQString(item.url()));
    }
}

} // namespace sondrel
