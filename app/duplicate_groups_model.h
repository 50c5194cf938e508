#pragma once
// DuplicateGroupsModel: the duplicate groups as a list model for the page, one row per group in
// the scanner's order. It owns the groups (plain core values); toggling a file, "Keep Newest"
// and "Keep Oldest" change them in place and update the affected rows. Groups are never
// re-sorted after a scan.
//
// Threading: GUI thread only.

#include "core/duplicates/duplicate_group.h"

#include <QAbstractListModel>
#include <unordered_set>
#include <vector>

namespace sondrel {

class DuplicateGroupsModel : public QAbstractListModel {
    Q_OBJECT

public:
    /// Roles of a row. `files` is a list of maps with "fileId", "name", "path", "dateText",
    /// "isSelected", "thumbnailUrl" (a file URL for the files setGroups() was told have a
    /// thumbnail, else empty).
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
    /// Replaces every group with a new scan's result (a reset). `thumbnailFiles` holds the ids
    /// of the files whose rows show a thumbnail (see thumbnailFiles()).
    void setGroups(std::vector<DuplicateGroup> groups,
                   std::unordered_set<std::uint64_t> thumbnailFiles = {});
    /// Replaces every group with what is left of them after a trash run (a reset); the files
    /// keep their thumbnails.
    void setRemainingGroups(std::vector<DuplicateGroup> groups);
    /// Flips one file's selection; false when no file has that id.
    bool toggleFile(std::uint64_t fileId);
    /// Keep Newest (true) / Keep Oldest (false) over every group.
    void autoSelect(bool keepNewest);
    /// The path (bytes) of the file with `fileId`, empty when unknown.
    std::string pathOf(std::uint64_t fileId) const;

    /// The ids of the files of `groups` that show a thumbnail: image files of at most 40 MB
    /// whose contents a Qt image reader of this build accepts in the format their name says
    /// (a ".jpg" that is not a JPEG, or a ".webp" without a WebP reader, has none). Opens each
    /// image file (no-follow, regular files only) and reads its header. Any thread: the
    /// engine calls it on its worker when a scan's groups are built.
    static std::unordered_set<std::uint64_t>
    thumbnailFiles(const std::vector<DuplicateGroup>& groups);

    /// The date text of a modification time: medium date and short time ("Mar 9, 2024 at 16:00").
    static QString dateText(std::int64_t modifiedNs);

signals:
    /// Any selection or the set of groups changed.
    void selectionChanged();

private:
    std::vector<DuplicateGroup> m_groups;
    std::unordered_set<std::uint64_t> m_thumbnailFiles;
};

} // namespace sondrel
