#include "app/large_file_results_model.h"

#include "app/qt_conversions.h"
#include "core/model/byte_format.h"
#include "core/search/search_texts.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

namespace sondrel {

namespace {

QString fromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string_view parentOf(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

} // namespace

LargeFileResultsModel::LargeFileResultsModel(QObject* parent) : QAbstractListModel(parent) {}

int LargeFileResultsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_shown);
}

const LargeFile* LargeFileResultsModel::fileAt(int row) const {
    if (row < 0 || static_cast<std::size_t>(row) >= m_shown) {
        return nullptr;
    }
    return &m_files.files()[m_filtered.rows[static_cast<std::size_t>(row)]];
}

QVariant LargeFileResultsModel::data(const QModelIndex& index, int role) const {
    const LargeFile* file = fileAt(index.row());
    if (file == nullptr) {
        return {};
    }
    switch (role) {
    case NameRole:
    case Qt::DisplayRole:
        return toDisplayQString(file->name);
    case PathRole:
        return toDisplayQString(file->path);
    case FolderRole:
        return toDisplayQString(parentOf(file->path));
    case SizeTextRole:
        return fromView(formatBytes(file->size));
    case DateTextRole:
        return QLocale().toString(
            QDateTime::fromSecsSinceEpoch(static_cast<qint64>(file->modified)),
            QLocale::ShortFormat);
    case CategoryRole:
        return fromView(displayName(file->category));
    case SymbolRole:
        return fromView(iconName(file->category));
    case ColorRole:
        return toQColor(color(file->category));
    case SelectedRole:
        return m_selected.count(file->path) != 0;
    default:
        return {};
    }
}

QHash<int, QByteArray> LargeFileResultsModel::roleNames() const {
    return {{NameRole, "name"},         {PathRole, "path"},           {FolderRole, "folder"},
            {SizeTextRole, "sizeText"}, {DateTextRole, "dateText"},   {CategoryRole, "category"},
            {SymbolRole, "symbol"},     {ColorRole, "categoryColor"}, {SelectedRole, "selected"}};
}

void LargeFileResultsModel::setFiles(LargeFileList files) {
    m_files = std::move(files);
    m_selected.clear();
    m_currentRow = -1;
    refilter(true);
    emit selectionChanged();
    emit currentRowChanged();
}

void LargeFileResultsModel::removePaths(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        m_selected.erase(path);
    }
    if (m_files.remove(paths) > 0) {
        refilter(false);
    }
    emit selectionChanged();
}

void LargeFileResultsModel::refilter(bool resetCap) {
    SearchFilter filter;
    filter.query = toPathBytes(m_query);
    filter.minimumSize = kSizeOptions[static_cast<std::size_t>(m_sizeOption)].minimum;
    if (m_categoryOption > 0) {
        filter.category = kAllFileCategories[static_cast<std::size_t>(m_categoryOption - 1)];
    }
    filter.order = static_cast<SearchOrder>(m_sortOption);
    if (resetCap) {
        m_cap = kInitialDisplayCount;
    }
    beginResetModel();
    m_filtered = m_files.filter(filter);
    m_shown = m_filtered.shownCount(m_cap);
    endResetModel();
    // Only what can be seen stays selected, so a trash never takes a file the filter hides.
    std::set<std::string> visible;
    for (int row = 0; row < static_cast<int>(m_shown); ++row) {
        if (m_selected.count(fileAt(row)->path) != 0) {
            visible.insert(fileAt(row)->path);
        }
    }
    if (visible.size() != m_selected.size()) {
        m_selected.swap(visible);
        emit selectionChanged();
    }
    if (m_currentRow >= static_cast<int>(m_shown)) {
        m_currentRow = static_cast<int>(m_shown) - 1;
        emit currentRowChanged();
    }
    emit rowsChanged();
}

void LargeFileResultsModel::setQuery(const QString& query) {
    if (query != m_query) {
        m_query = query;
        emit filterChanged();
        refilter(true);
    }
}

void LargeFileResultsModel::setSizeOption(int option) {
    if (option >= 0 && option < static_cast<int>(kSizeOptions.size()) && option != m_sizeOption) {
        m_sizeOption = option;
        emit filterChanged();
        refilter(true);
    }
}

void LargeFileResultsModel::setCategoryOption(int option) {
    if (option >= 0 && option <= static_cast<int>(kAllFileCategories.size()) &&
        option != m_categoryOption) {
        m_categoryOption = option;
        emit filterChanged();
        refilter(true);
    }
}

void LargeFileResultsModel::setSortOption(int option) {
    if (option >= 0 && option < 3 && option != m_sortOption) {
        m_sortOption = option;
        emit filterChanged();
        refilter(false);
    }
}

QStringList LargeFileResultsModel::sizeOptionLabels() {
    QStringList labels;
    for (const SizeOption& option : kSizeOptions) {
        labels.append(fromView(option.label));
    }
    return labels;
}

QStringList LargeFileResultsModel::categoryOptionLabels() {
    QStringList labels{QStringLiteral("All Categories")};
    for (FileCategory category : kAllFileCategories) {
        labels.append(fromView(displayName(category)));
    }
    return labels;
}

QStringList LargeFileResultsModel::sortOptionLabels() {
    return {QStringLiteral("Size"), QStringLiteral("Name"), QStringLiteral("Date")};
}

QString LargeFileResultsModel::footerText() const {
    return fromView(searchFooterText(m_shown, m_filtered.rows.size(), m_filtered.totalBytes));
}

QString LargeFileResultsModel::showAllText() const {
    return fromView(sondrel::showAllText(m_filtered.rows.size()));
}

QString LargeFileResultsModel::emptyText() const {
    if (m_files.empty()) {
        return fromView(kNoLargeFilesText);
    }
    return m_filtered.rows.empty() ? fromView(kNoMatchesText) : QString();
}

void LargeFileResultsModel::showAll() {
    if (!canShowAll()) {
        return;
    }
    const auto first = static_cast<int>(m_shown);
    beginInsertRows(QModelIndex(), first, static_cast<int>(m_filtered.rows.size()) - 1);
    m_cap = m_filtered.rows.size();
    m_shown = m_cap;
    endInsertRows();
    emit rowsChanged();
}

std::vector<std::string> LargeFileResultsModel::selectedPaths() const {
    std::vector<std::string> paths;
    for (const LargeFile& file : m_files.files()) {
        if (m_selected.count(file.path) != 0) {
            paths.push_back(file.path);
        }
    }
    return paths;
}

std::int64_t LargeFileResultsModel::selectedBytes() const {
    std::int64_t bytes = 0;
    for (const LargeFile& file : m_files.files()) {
        if (m_selected.count(file.path) != 0) {
            bytes += file.size;
        }
    }
    return bytes;
}

void LargeFileResultsModel::setCurrentRow(int row) {
    row = std::clamp(row, -1, static_cast<int>(m_shown) - 1);
    if (row != m_currentRow) {
        m_currentRow = row;
        emit currentRowChanged();
    }
}

void LargeFileResultsModel::select(int row, bool toggle, bool extend) {
    const LargeFile* file = fileAt(row);
    if (file == nullptr) {
        return;
    }
    if (extend && m_currentRow >= 0) {
        if (!toggle) {
            m_selected.clear();
        }
        for (int r = std::min(row, m_currentRow); r <= std::max(row, m_currentRow); ++r) {
            m_selected.insert(fileAt(r)->path);
        }
    } else if (toggle) {
        if (m_selected.erase(file->path) == 0) {
            m_selected.insert(file->path);
        }
    } else {
        m_selected = {file->path};
    }
    if (!extend) {
        setCurrentRow(row);
    }
    emitSelectionRoles();
}

void LargeFileResultsModel::selectAll() {
    for (int row = 0; row < static_cast<int>(m_shown); ++row) {
        m_selected.insert(fileAt(row)->path);
    }
    emitSelectionRoles();
}

void LargeFileResultsModel::clearSelection() {
    m_selected.clear();
    emitSelectionRoles();
}

void LargeFileResultsModel::prepareTrash(int row) {
    const LargeFile* file = fileAt(row);
    if (file != nullptr && m_selected.count(file->path) == 0) {
        select(row);
    }
}

void LargeFileResultsModel::emitSelectionRoles() {
    if (m_shown > 0) {
        emit dataChanged(index(0), index(static_cast<int>(m_shown) - 1), {SelectedRole});
    }
    emit selectionChanged();
}

} // namespace sondrel
