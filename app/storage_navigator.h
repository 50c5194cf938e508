#pragma once
// StorageNavigator: the storage section's view state over the scanned tree, owned by the
// composition root. It holds the folder being viewed (drill-down position), the selected item
// and the visualiser mode, and it carries out trashing from the visualisers.
//
// Threading: GUI thread only. Ownership: it holds FileItem handles, which keep their tree
// alive; a new root replaces the old state (a folder or selection from an old tree is never
// shown against a new root).

#include "core/model/file_item.h"

#include <QObject>
#include <QString>
#include <functional>
#include <string>

namespace sondrel {

class StorageContentsModel;
class StorageDetails;

class StorageNavigator : public QObject {
    Q_OBJECT
    /// True when a scanned tree is present.
    Q_PROPERTY(bool hasTree READ hasTree NOTIFY treeChanged)
    /// 0 = colour rings (the initial mode), 1 = treemap.
    Q_PROPERTY(
        int visualizerMode READ visualizerMode WRITE setVisualizerMode NOTIFY visualizerModeChanged)
    /// True while an item is selected.
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectionChanged)
    /// Texts of the details pane and breadcrumb (owned by the navigator).
    Q_PROPERTY(sondrel::StorageDetails* details READ details CONSTANT)
    /// The viewed folder's children, largest first (owned by the navigator).
    Q_PROPERTY(sondrel::StorageContentsModel* contents READ contents CONSTANT)

public:
    /// Moves one path to the Trash; true when nothing remains at the path afterwards.
    using Trasher = std::function<bool(const std::string& path)>;
    /// True when the path is an installed application the uninstaller knows.
    using ApplicationMatcher = std::function<bool(const std::string& path)>;

    explicit StorageNavigator(QObject* parent = nullptr);
    ~StorageNavigator() override;
    StorageNavigator(const StorageNavigator&) = delete;
    StorageNavigator& operator=(const StorageNavigator&) = delete;

    /// Publishes a new tree (or none). The viewed folder and the selection are cleared because
    /// they belong to the previous tree.
    void setRoot(FileItem root);
    /// Root of the current tree (null item when there is none).
    const FileItem& root() const { return m_root; }
    bool hasTree() const { return static_cast<bool>(m_root); }

    /// The folder the visualisers show: the drill-down position, or the root.
    FileItem currentFolder() const { return m_current ? m_current : m_root; }
    /// Drills into `folder` (ignored unless it is a folder of the current tree).
    void setCurrentFolder(const FileItem& folder);
    /// Goes up one level; at the root nothing changes.
    Q_INVOKABLE void goUp();
    /// Back to the scan root.
    Q_INVOKABLE void goToRoot();

    /// The selected item (null item when none).
    const FileItem& selectedItem() const { return m_selected; }
    bool hasSelection() const { return static_cast<bool>(m_selected); }
    /// Selects `item` (a null item clears the selection).
    void setSelectedItem(const FileItem& item);
    Q_INVOKABLE void clearSelection() { setSelectedItem({}); }

    /// Selects the item `delta` places after the selection among the viewed folder's children
    /// (largest first); with no selection, the first (delta > 0) or last child. Clamped at the
    /// ends; nothing happens in an empty folder.
    Q_INVOKABLE void selectAdjacent(int delta);
    /// Drills into the selection when it is a folder; otherwise nothing changes.
    Q_INVOKABLE void zoomIntoSelection();

    int visualizerMode() const { return m_mode; }
    void setVisualizerMode(int mode);

    /// Sets the function that moves a path to the Trash (wired to the removal module).
    void setTrasher(Trasher trasher) { m_trasher = std::move(trasher); }
    /// Moves `item` to the Trash. On success removes it from its parent's children and
    /// subtracts its size from the direct parent only (ancestors and file counts keep their
    /// values until the next scan), clears a selection or viewed folder inside it, and emits
    /// treeMutated. On failure nothing changes and false is returned.
    bool trashFileItem(const FileItem& item);

    /// Sets the test that tells which items the uninstaller can take (none by default).
    void setApplicationMatcher(ApplicationMatcher matcher) { m_isApplication = std::move(matcher); }
    /// True when `item` is an application the uninstaller knows (offers "Uninstall App").
    bool isKnownApplication(const FileItem& item) const;

    StorageDetails* details() const { return m_details; }
    StorageContentsModel* contents() const { return m_contents; }

signals:
    void treeChanged();
    void currentFolderChanged();
    void selectionChanged();
    void visualizerModeChanged();
    /// The tree's contents changed in place (an item was trashed).
    void treeMutated();

private:
    bool belongsToTree(const FileItem& item) const;

    FileItem m_root;
    FileItem m_current;
    FileItem m_selected;
    int m_mode = 0;
    Trasher m_trasher;
    ApplicationMatcher m_isApplication;
    StorageDetails* m_details = nullptr;
    StorageContentsModel* m_contents = nullptr;
};

} // namespace sondrel
