#pragma once
// StorageDetails: the texts of the storage details pane and breadcrumb, derived from its
// StorageNavigator's viewed folder and selection, plus the pane's actions on the selection.
// Owned by the navigator; every property changes together with `changed`. GUI thread only.

#include <QColor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace sondrel {

class FileItem;
class StorageNavigator;

class StorageDetails : public QObject {
    Q_OBJECT
    // The viewed folder.
    Q_PROPERTY(QString folderName READ folderName NOTIFY changed)
    Q_PROPERTY(QString folderSizeText READ folderSizeText NOTIFY changed)
    /// File count followed by " items".
    Q_PROPERTY(QString folderItemsText READ folderItemsText NOTIFY changed)
    /// "Breakdown by Category": maps {name, color, sizeText, shareText}, largest first.
    Q_PROPERTY(QVariantList breakdown READ breakdown NOTIFY changed)
    /// Names from the scan root to the viewed folder.
    Q_PROPERTY(QStringList breadcrumbNames READ breadcrumbNames NOTIFY changed)
    /// How many elements the breadcrumb has room for (set by the view from its width).
    Q_PROPERTY(
        int breadcrumbCapacity READ breadcrumbCapacity WRITE setBreadcrumbCapacity NOTIFY changed)
    /// The breadcrumb as shown: collapseBreadcrumb(breadcrumbNames, breadcrumbCapacity).
    Q_PROPERTY(QVariantList breadcrumbElements READ breadcrumbElements NOTIFY changed)
    // The selection (empty texts without one).
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY changed)
    Q_PROPERTY(QString selectedName READ selectedName NOTIFY changed)
    Q_PROPERTY(QString selectedPath READ selectedPath NOTIFY changed)
    Q_PROPERTY(QString selectedSizeText READ selectedSizeText NOTIFY changed)
    Q_PROPERTY(QString selectedItemsText READ selectedItemsText NOTIFY changed)
    /// Share of the parent folder, "12.3%".
    Q_PROPERTY(QString selectedShareText READ selectedShareText NOTIFY changed)
    Q_PROPERTY(QString selectedCategoryName READ selectedCategoryName NOTIFY changed)
    Q_PROPERTY(QColor selectedCategoryColor READ selectedCategoryColor NOTIFY changed)
    Q_PROPERTY(QString selectedCategoryIcon READ selectedCategoryIcon NOTIFY changed)
    Q_PROPERTY(bool selectedIsDirectory READ selectedIsDirectory NOTIFY changed)
    /// True when the uninstaller knows the selected item.
    Q_PROPERTY(bool selectedIsApplication READ selectedIsApplication NOTIFY changed)
    /// The removal rationale sentence, with this platform's terms.
    Q_PROPERTY(QString selectedRationale READ selectedRationale NOTIFY changed)
    Q_PROPERTY(QString selectedStatusText READ selectedStatusText NOTIFY changed)
    Q_PROPERTY(QColor selectedStatusColor READ selectedStatusColor NOTIFY changed)

public:
    /// Observes `navigator`, which owns this object.
    explicit StorageDetails(StorageNavigator* navigator);

    QString folderName() const;
    QString folderSizeText() const;
    QString folderItemsText() const;
    /// Rows (name, color, sizeText, shareText) of the viewed folder's whole subtree by
    /// category, largest first; empty without a folder.
    QVariantList breakdown() const;
    QStringList breadcrumbNames() const;
    int breadcrumbCapacity() const { return m_breadcrumbCapacity; }
    void setBreadcrumbCapacity(int capacity);
    QVariantList breadcrumbElements() const;

    /// The breadcrumb `names` (scan root first) shown in at most `capacity` elements: all of
    /// them when they fit; otherwise the scan root, one ellipsis element standing for the middle
    /// folders, and the last capacity - 2 folders, so the viewed folder is always shown. A
    /// capacity below 3 counts as 3. Each element is a map {name, index (position in `names`,
    /// -1 for the ellipsis), isEllipsis, hidden (for the ellipsis: maps {name, index} of the
    /// folders it stands for, outermost first)}.
    static QVariantList collapseBreadcrumb(const QStringList& names, int capacity);

    bool hasSelection() const;
    QString selectedName() const;
    QString selectedPath() const;
    QString selectedSizeText() const;
    QString selectedItemsText() const;
    QString selectedShareText() const;
    QString selectedCategoryName() const;
    QColor selectedCategoryColor() const;
    QString selectedCategoryIcon() const;
    bool selectedIsDirectory() const;
    bool selectedIsApplication() const;
    QString selectedRationale() const;
    QString selectedStatusText() const;
    QColor selectedStatusColor() const;

    /// Display name of an item: its name, or "Internal Drive" when it has none.
    static QString displayNameOf(const FileItem& item);
    /// `text` with this platform's words for macOS-only things ("Reveal in Finder" becomes
    /// "Show in Files" on Linux).
    Q_INVOKABLE static QString platformText(const QString& text);

    /// Makes the breadcrumb element `index` (0 = scan root) the viewed folder.
    Q_INVOKABLE void navigateToBreadcrumb(int index);
    /// Puts the selection's full path on the clipboard.
    Q_INVOKABLE void copySelectedPath();
    /// Shows the selection in the file manager.
    Q_INVOKABLE void revealSelected();
    /// "Open Rings": drills into the selected folder and shows the colour rings.
    Q_INVOKABLE void openSelectedInRings();
    /// "Clear selection".
    Q_INVOKABLE void clearSelection();
    /// Moves the selection to the Trash through the navigator; false when that failed.
    Q_INVOKABLE bool trashSelected();

signals:
    void changed();

private:
    StorageNavigator* m_navigator;
    int m_breadcrumbCapacity = 1000;
};

} // namespace sondrel
