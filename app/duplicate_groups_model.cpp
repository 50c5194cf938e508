#include "app/duplicate_groups_model.h"

#include "app/qt_conversions.h"
#include "core/duplicates/duplicate_texts.h"
#include "core/model/byte_format.h"
#include "core/util/path_text.h"

#include <QDateTime>
#include <QFile>
#include <QImageReader>
#include <QLocale>
#include <QUrl>
#include <QVariantMap>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

// The image reader format named by a file's extension, for the image types whose thumbnail Qt
// decodes cheaply at a small size; empty for any other name.
QByteArray thumbnailFormatOf(const std::string& path) {
    const std::string extension = asciiLower(pathExtension(path));
    if (extension == "jpg" || extension == "jpeg") {
        return QByteArrayLiteral("jpeg");
    }
    if (extension == "png" || extension == "gif" || extension == "bmp" || extension == "webp") {
        return QByteArray::fromStdString(extension);
    }
    return {};
}

// True when `file` is an image of the kind its name says that this build's image readers
// accept. Only the header is read: the reader of the named format alone is asked (no guessing
// from the contents), so a file the page's Image would fail to decode shows the icon instead
// of making the Image report an error.
bool hasCheapThumbnail(const DuplicateFile& file, const QList<QByteArray>& readableFormats) {
    constexpr std::int64_t kLargestThumbnailSource = 40 * 1000 * 1000;
    const QByteArray format = thumbnailFormatOf(file.path);
    if (format.isEmpty() || file.size > kLargestThumbnailSource ||
        !readableFormats.contains(format)) {
        return false;
    }
    // Opened as the scan opens files: a name replaced by a link or a FIFO since is not read.
    const int fd = ::open(file.path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    struct stat info {};
    QFile device;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) ||
        !device.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return false;
    }
    QImageReader reader(&device, format);
    reader.setAutoDetectImageFormat(false);
    return reader.canRead();
}

QVariantList filesOf(const DuplicateGroup& group,
                     const std::unordered_set<std::uint64_t>& thumbnailFiles) {
    QVariantList files;
    for (const DuplicateFile& file : group.files) {
        const QString path = toFileQString(file.path);
        files.append(QVariantMap{
            {"fileId", QString::number(file.id)},
            {"name", toDisplayQString(lastPathComponent(file.path))},
            {"path", toDisplayQString(file.path)},
            {"dateText", DuplicateGroupsModel::dateText(file.modifiedNs)},
            {"isSelected", file.isSelected},
            {"thumbnailUrl", thumbnailFiles.contains(file.id) ? QUrl::fromLocalFile(path) : QUrl()},
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
        return filesOf(group, m_thumbnailFiles);
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

void DuplicateGroupsModel::setGroups(std::vector<DuplicateGroup> groups,
                                     std::unordered_set<std::uint64_t> thumbnailFiles) {
    beginResetModel();
    m_groups = std::move(groups);
    m_thumbnailFiles = std::move(thumbnailFiles);
    endResetModel();
    emit selectionChanged();
}

void DuplicateGroupsModel::setRemainingGroups(std::vector<DuplicateGroup> groups) {
    beginResetModel();
    m_groups = std::move(groups);
    endResetModel();
    emit selectionChanged();
}

std::unordered_set<std::uint64_t>
DuplicateGroupsModel::thumbnailFiles(const std::vector<DuplicateGroup>& groups) {
    const QList<QByteArray> readableFormats = QImageReader::supportedImageFormats();
    std::unordered_set<std::uint64_t> files;
    for (const DuplicateGroup& group : groups) {
        for (const DuplicateFile& file : group.files) {
            if (hasCheapThumbnail(file, readableFormats)) {
                files.insert(file.id);
            }
        }
    }
    return files;
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
