#pragma once
// StorageNavigator: the storage section's view state over the scanned tree, owned by the
// composition root. It holds the folder being viewed (drill-down position), the selected item
// and the visualiser mode, and it carries out trashing from the visualisers.
//
// Threading: GUI thread only. Ownership: it holds FileItem handles, which keep their tree
// alive; a new root replaces the old state (a folder or selection from an old tree is never
// shown against a new root).

#include "core/model/file_item.h"
#include "core/removal/trash.h"
#include "core/removal/trash_restore.h"

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
    /// False (the initial value): sizes on disk (allocated blocks); true: apparent sizes (file
    /// lengths). Switching re-lays the views of the current tree without a new scan, and a new
    /// tree is shown in the chosen measure.
    Q_PROPERTY(bool apparentSize READ apparentSize WRITE setApparentSize NOTIFY apparentSizeChanged)
    /// True while the viewed folder is below the scan root (goUp would move).
    Q_PROPERTY(bool canGoUp READ canGoUp NOTIFY currentFolderChanged)
    /// True while an item is selected.
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectionChanged)
    /// Texts of the details pane and breadcrumb (owned by the navigator).
    Q_PROPERTY(sondrel::StorageDetails* details READ details CONSTANT)
    /// The viewed folder's children, largest first (owned by the navigator).
    Q_PROPERTY(sondrel::StorageContentsModel* contents READ contents CONSTANT)
    /// One line about the last move to the Trash ("Moved NAME to the Trash", or why it did not
    /// happen) or its undo; empty when there is nothing to tell.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
    /// True while the notice is about a move that undoTrash() can put back.
    Q_PROPERTY(bool canUndoTrash READ canUndoTrash NOTIFY noticeChanged)

public:
    /// Moves one path to the Trash; the result says where it went, or why it did not.
    using Trasher = std::function<TrashResult(const std::string& path)>;
    /// Puts a trashed item back (restoreFromTrash by default).
    using Restorer =
        std::function<RestoreResult(const std::string& trashedPath, const std::string& infoPath)>;
    /// True when the path is an installed application the uninstaller knows.
    using ApplicationMatcher = std::function<bool(const std::string& path)>;

    explicit StorageNavigator(QObject* parent = nullptr);
    ~StorageNavigator() override;
    StorageNavigator(const StorageNavigator&) = delete;
    StorageNavigator& operator=(const StorageNavigator&) = delete;

    /// Publishes a new tree (or none), shown in the chosen size measure. The viewed folder and
    /// the selection are cleared because they belong to the previous tree.
    void setRoot(FileItem root);
    bool apparentSize() const { return m_apparentSize; }
    /// Shows apparent sizes (true) or sizes on disk (false); emits treeMutated when the tree's
    /// figures change. The viewed folder and the selection stay.
    void setApparentSize(bool apparent);
    /// Root of the current tree (null item when there is none).
    const FileItem& root() const { return m_root; }
    bool hasTree() const { return static_cast<bool>(m_root); }

    /// The folder the visualisers show: the drill-down position, or the root.
    FileItem currentFolder() const { return m_current ? m_current : m_root; }
    /// Drills into `folder` (ignored unless it is a folder of the current tree) and clears the
    /// selection, so that the details pane shows the folder's overview.
    void setCurrentFolder(const FileItem& folder);
    bool canGoUp() const { return static_cast<bool>(m_current); }
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
    /// Replaces the function that puts a trashed item back.
    void setRestorer(Restorer restorer) { m_restorer = std::move(restorer); }
    /// Moves `item` to the Trash. On success removes it from its parent's children and
    /// subtracts its size from the direct parent only (ancestors and file counts keep their
    /// values until the next scan), clears a selection or viewed folder inside it, emits
    /// treeMutated and sets the notice "Moved NAME to the Trash" with undo offered. On failure
    /// the tree is unchanged, the notice gives the reason, and false is returned.
    bool trashFileItem(const FileItem& item);
    /// Puts the item of the last successful move back where it was and, when its tree is still
    /// shown, back into the tree (treeMutated). The notice says "Restored NAME" or why not. Does
    /// nothing unless canUndoTrash.
    Q_INVOKABLE void undoTrash();
    /// Clears the notice (and the undo it offered).
    Q_INVOKABLE void dismissNotice();
    const QString& notice() const { return m_notice; }
    bool canUndoTrash() const { return static_cast<bool>(m_undoItem); }

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
    void apparentSizeChanged();
    /// The tree's contents changed in place (an item was trashed or put back).
    void treeMutated();
    void noticeChanged();

private:
    bool belongsToTree(const FileItem& item) const;
    void setNotice(const QString& notice, const FileItem& undoItem = {});

    FileItem m_root;
    FileItem m_current;
    FileItem m_selected;
    int m_mode = 0;
    bool m_apparentSize = false;
    Trasher m_trasher;
    Restorer m_restorer;
    QString m_notice;
    // The item the notice offers to put back, and where the Trash holds it.
    FileItem m_undoItem;
    TrashResult m_undoTrash;
    ApplicationMatcher m_isApplication;
    StorageDetails* m_details = nullptr;
    StorageContentsModel* m_contents = nullptr;
};

} // namespace sondrel
