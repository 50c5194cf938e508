#include "app/duplicate_groups_model.h"

#include "app/qt_conversions.h"
#include "core/duplicates/duplicate_texts.h"
#include "core/model/byte_format.h"
#include "core/util/path_text.h"

#include <QDateTime>
#include <QLocale>
#include <QUrl>
#include <QVariantMap>

namespace sondrel {

namespace {

// Image files whose thumbnail Qt decodes cheaply at a small size; large files are left out.
bool hasCheapThumbnail(const DuplicateFile& file) {
    constexpr std::int64_t kLargestThumbnailSource = 40 * 1000 * 1000;
    const std::string extension = asciiLower(pathExtension(file.path));
    return file.size <= kLargestThumbnailSource &&
           (extension == "jpg" || extension == "jpeg" || extension == "png" || extension == "gif" ||
            extension == "bmp" || extension == "webp");
}

QVariantList filesOf(const DuplicateGroup& group) {
    QVariantList files;
    for (const DuplicateFile& file : group.files) {
        const QString path = toFileQString(file.path);
        files.append(QVariantMap{
            {"fileId", QString::number(file.id)},
            {"name", toDisplayQString(lastPathComponent(file.path))},
            {"path", toDisplayQString(file.path)},
            {"dateText", DuplicateGroupsModel::dateText(file.modifiedNs)},
            {"isSelected", file.isSelected},
            {"thumbnailUrl", hasCheapThumbnail(file) ? QUrl::fromLocalFile(path) : QUrl()},
        });
    }
    return files;
}

} // namespace

DuplicateGroupsModel::DuplicateGroupsModel(QObject* parent) : QAbstractListModel(parent) {}

int DuplicateGroupsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_groups.size());
}

QVariant DuplicateGroupsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const DuplicateGroup& group = m_groups[static_cast<std::size_t>(index.row())];
    switch (role) {
    case groupIdRole:
        return QString::number(group.id);
    case headingRole:
        return QString::fromStdString(duplicateEachFileText(group.size));
    case copiesTextRole:
        return QString::number(group.files.size()) + QStringLiteral(" copies");
    case wastedTextRole:
        return QString::fromStdString(formatBytes(group.wastedSize()));
    case filesRole:
        return filesOf(group);
    default:
        return {};
    }
}

QHash<int, QByteArray> DuplicateGroupsModel::roleNames() const {
    return {{groupIdRole, "groupId"},
            {headingRole, "heading"},
            {copiesTextRole, "copiesText"},
            {wastedTextRole, "wastedText"},
            {filesRole, "files"}};
}

void DuplicateGroupsModel::setGroups(std::vector<DuplicateGroup> groups) {
    beginResetModel();
    m_groups = std::move(groups);
    endResetModel();
    emit selectionChanged();
}

bool DuplicateGroupsModel::toggleFile(std::uint64_t fileId) {
    for (std::size_t row = 0; row < m_groups.size(); ++row) {
        for (DuplicateFile& file : m_groups[row].files) {
            if (file.id == fileId) {
                file.isSelected = !file.isSelected;
                const QModelIndex changed = index(static_cast<int>(row));
                emit dataChanged(changed, changed, {filesRole, wastedTextRole});
                emit selectionChanged();
                return true;
            }
        }
    }
    return false;
}

void DuplicateGroupsModel::autoSelect(bool keepNewest) {
    sondrel::autoSelect(m_groups, keepNewest);
    if (!m_groups.empty()) {
        emit dataChanged(index(0), index(rowCount() - 1), {filesRole, wastedTextRole});
    }
    emit selectionChanged();
}

std::string DuplicateGroupsModel::pathOf(std::uint64_t fileId) const {
    for (const DuplicateGroup& group : m_groups) {
        for (const DuplicateFile& file : group.files) {
            if (file.id == fileId) {
                return file.path;
            }
        }
    }
    return {};
}

QString DuplicateGroupsModel::dateText(std::int64_t modifiedNs) {
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(modifiedNs / 1000000);
    const QLocale locale;
    return locale.toString(when, QStringLiteral("MMM d, yyyy 'at' HH:mm"));
}

} // namespace sondrel
