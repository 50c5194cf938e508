#pragma once
// DuplicateGroupsModel: the duplicate groups as a list model for the page, one row per group in
// the scanner's order. It owns the groups (plain core values); toggling a file, "Keep Newest"
// and "Keep Oldest" change them in place and update the affected rows. Groups are never
// re-sorted after a scan.
//
// Threading: GUI thread only.

#include "core/duplicates/duplicate_group.h"

#include <QAbstractListModel>
#include <vector>

namespace sondrel {

class DuplicateGroupsModel : public QAbstractListModel {
    Q_OBJECT

public:
    /// Roles of a row. `files` is a list of maps with "fileId", "name", "path", "dateText",
    /// "isSelected", "thumbnailUrl" (a file URL for images Qt can decode, else empty).
    enum Role {
        groupIdRole = Qt::UserRole + 1,
        headingRole,    ///< "Each file: 5 MB"
        copiesTextRole, ///< "3 copies"
        wastedTextRole, ///< the group's wastedSize, formatted
        filesRole,
    };

    explicit DuplicateGroupsModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// The groups as they stand (read by a trash run when it starts).
    const std::vector<DuplicateGroup>& groups() const { return m_groups; }
    /// Replaces every group (a reset).
    void setGroups(std::vector<DuplicateGroup> groups);
    /// Flips one file's selection; false when no file has that id.
    bool toggleFile(std::uint64_t fileId);
    /// Keep Newest (true) / Keep Oldest (false) over every group.
    void autoSelect(bool keepNewest);
    /// The path (bytes) of the file with `fileId`, empty when unknown.
    std::string pathOf(std::uint64_t fileId) const;

    /// The date text of a modification time: medium date and short time ("Mar 9, 2024 at 16:00").
    static QString dateText(std::int64_t modifiedNs);

signals:
    /// Any selection or the set of groups changed.
    void selectionChanged();

private:
    std::vector<DuplicateGroup> m_groups;
};

} // namespace sondrel
