#pragma once
// LargeFileResultsModel: the rows of the search page. It holds the found files (a
// LargeFileList), the user's filter (name text, size option, category, order), the display cap
// and the selection, and refilters with the core filter whenever one of them changes: typing
// never starts a new search.
//
// Threading: GUI thread only. Ownership: owned by its LargeFileSearch engine.

#include "core/search/large_file_filter.h"

#include <QAbstractListModel>
#include <QString>
#include <QStringList>
#include <set>
#include <string>
#include <vector>

namespace sondrel {

class LargeFileResultsModel : public QAbstractListModel {
    Q_OBJECT
    /// The search field's text, as typed (trimmed only when matching).
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY filterChanged)
    /// Index into sizeOptionLabels (0: "All Sizes").
    Q_PROPERTY(int sizeOption READ sizeOption WRITE setSizeOption NOTIFY filterChanged)
    /// Index into categoryOptionLabels (0: "All Categories", then each category in order).
    Q_PROPERTY(int categoryOption READ categoryOption WRITE setCategoryOption NOTIFY filterChanged)
    /// Index into sortOptionLabels (0: size, 1: name, 2: date).
    Q_PROPERTY(int sortOption READ sortOption WRITE setSortOption NOTIFY filterChanged)
    Q_PROPERTY(QStringList sizeOptionLabels READ sizeOptionLabels CONSTANT)
    Q_PROPERTY(QStringList categoryOptionLabels READ categoryOptionLabels CONSTANT)
    Q_PROPERTY(QStringList sortOptionLabels READ sortOptionLabels CONSTANT)
    /// Files that pass the filter (shown or not) and the files found in all.
    Q_PROPERTY(int filteredCount READ filteredCount NOTIFY rowsChanged)
    Q_PROPERTY(int totalCount READ totalCount NOTIFY rowsChanged)
    /// "Showing N files · Total: SIZE" (see searchFooterText).
    Q_PROPERTY(QString footerText READ footerText NOTIFY rowsChanged)
    /// True while the cap hides filtered files; then showAllText reads "Show All (N Files)".
    Q_PROPERTY(bool canShowAll READ canShowAll NOTIFY rowsChanged)
    Q_PROPERTY(QString showAllText READ showAllText NOTIFY rowsChanged)
    /// What the list says when it has no rows: "No large files found" when there are no files
    /// at all, "No files match the filters" when the filter hides every one; "" with rows.
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY rowsChanged)
    /// Selected files, all among the shown rows (a refilter drops those it hides).
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    /// The row that keyboard actions apply to (-1: none).
    Q_PROPERTY(int currentRow READ currentRow WRITE setCurrentRow NOTIFY currentRowChanged)

public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        PathRole,     ///< display text of the whole path
        FolderRole,   ///< display text of the parent folder
        SizeTextRole, ///< formatted size
        DateTextRole, ///< content modification date, short local format
        CategoryRole, ///< category display name
        SymbolRole,   ///< category icon symbol
        ColorRole,    ///< category colour
        SelectedRole,
    };

    explicit LargeFileResultsModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Replaces the found files (a new search); the filter stays, the cap and selection reset.
    void setFiles(LargeFileList files);
    /// Drops the files at `paths` (trashed).
    void removePaths(const std::vector<std::string>& paths);
    /// The files shown, in order.
    const LargeFile* fileAt(int row) const;
    /// Paths of the selected files, in results order.
    std::vector<std::string> selectedPaths() const;
    /// Summed size of the selected files.
    std::int64_t selectedBytes() const;

    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    int sizeOption() const { return m_sizeOption; }
    void setSizeOption(int option);
    int categoryOption() const { return m_categoryOption; }
    void setCategoryOption(int option);
    int sortOption() const { return m_sortOption; }
    void setSortOption(int option);
    static QStringList sizeOptionLabels();
    static QStringList categoryOptionLabels();
    static QStringList sortOptionLabels();

    int filteredCount() const { return static_cast<int>(m_filtered.rows.size()); }
    int totalCount() const { return static_cast<int>(m_files.files().size()); }
    QString footerText() const;
    bool canShowAll() const { return m_shown < m_filtered.rows.size(); }
    QString showAllText() const;
    QString emptyText() const;
    int selectedCount() const { return static_cast<int>(m_selected.size()); }
    int currentRow() const { return m_currentRow; }
    void setCurrentRow(int row);

    /// Raises the cap to every filtered file.
    Q_INVOKABLE void showAll();
    /// Selects `row` the way a click does: alone; with `toggle` (Ctrl) added or removed; with
    /// `extend` (Shift) the range from the current row. Makes it the current row.
    Q_INVOKABLE void select(int row, bool toggle = false, bool extend = false);
    /// Selects every shown row.
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE void clearSelection();
    /// Selection for a trash request of `row`: the selection when `row` is part of it,
    /// otherwise `row` alone (which becomes the selection).
    Q_INVOKABLE void prepareTrash(int row);

signals:
    void filterChanged();
    void rowsChanged();
    void selectionChanged();
    void currentRowChanged();

private:
    void refilter(bool resetCap);
    void emitSelectionRoles();

    LargeFileList m_files;
    FilteredFiles m_filtered;
    std::size_t m_shown = 0;
    std::size_t m_cap = kInitialDisplayCount;
    QString m_query;
    int m_sizeOption = 0;
    int m_categoryOption = 0;
    int m_sortOption = 0;
    std::set<std::string> m_selected;
    int m_currentRow = -1;
};

} // namespace sondrel
