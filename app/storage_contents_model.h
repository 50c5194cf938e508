#pragma once
// StorageContentsModel: the rows "Contents (N)" of the storage details pane, one per child of
// the folder being viewed, largest first. Owned by its StorageNavigator and refreshed whenever
// the viewed folder, the tree or the selection changes. GUI thread only.

#include "core/model/file_item.h"

#include <QAbstractListModel>
#include <vector>

namespace sondrel {

class StorageNavigator;

class StorageContentsModel : public QAbstractListModel {
    Q_OBJECT
    /// Number of rows.
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    /// Row roles, also named for QML: name, sizeText, shareText, isDirectory, categoryName,
    /// categoryColor, categoryIcon, path, isSelected.
    enum Role {
        NameRole = Qt::UserRole + 1,
        SizeTextRole,
        ShareTextRole,
        IsDirectoryRole,
        CategoryNameRole,
        CategoryColorRole,
        CategoryIconRole,
        PathRole,
        IsSelectedRole,
    };

    /// Observes `navigator`, which owns this model.
    explicit StorageContentsModel(StorageNavigator* navigator);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return static_cast<int>(m_rows.size()); }
    /// The item of `row`, or a null item when out of range.
    FileItem itemAt(int row) const;

    /// Selects the row's item ("inspect"). Out-of-range rows are ignored.
    Q_INVOKABLE void select(int row);
    /// Drills into the row's item when it is a folder ("Zoom into this folder").
    Q_INVOKABLE void zoom(int row);
    /// Puts the row's full path on the clipboard ("Copy Path").
    Q_INVOKABLE void copyPath(int row);

signals:
    void countChanged();

private:
    void reload();
    void refreshSelection();

    StorageNavigator* m_navigator;
    std::vector<FileItem> m_rows;
};

} // namespace sondrel
