#include "app/storage_navigator.h"

#include "app/qt_conversions.h"
#include "app/storage_contents_model.h"
#include "app/storage_details.h"

#include <algorithm>
#include <vector>

namespace sondrel {

namespace {

// True when `item` is `ancestor` or lies below it.
bool isWithin(const FileItem& item, const FileItem& ancestor) {
    for (FileItem node = item; node; node = node.parent()) {
        if (node == ancestor) {
            return true;
        }
    }
    return false;
}

} // namespace

StorageNavigator::StorageNavigator(QObject* parent)
    : QObject(parent), m_restorer([](const std::string& trashedPath, const std::string& infoPath) {
          return restoreFromTrash(trashedPath, infoPath);
      }),
      m_details(new StorageDetails(this)), m_contents(new StorageContentsModel(this)) {}

StorageNavigator::~StorageNavigator() = default;

void StorageNavigator::setRoot(FileItem root) {
    m_root = std::move(root);
    if (m_root) {
        m_root.tree()->setMeasure(m_apparentSize ? SizeMeasure::apparent : SizeMeasure::allocated);
    }
    const bool hadSelection = static_cast<bool>(m_selected);
    m_current = {};
    m_selected = {};
    emit treeChanged();
    emit currentFolderChanged();
    if (hadSelection) {
        emit selectionChanged();
    }
}

void StorageNavigator::setApparentSize(bool apparent) {
    if (apparent == m_apparentSize) {
        return;
    }
    m_apparentSize = apparent;
    emit apparentSizeChanged();
    if (m_root) {
        m_root.tree()->setMeasure(apparent ? SizeMeasure::apparent : SizeMeasure::allocated);
        emit treeMutated();
    }
}

bool StorageNavigator::belongsToTree(const FileItem& item) const {
    return item && m_root && item.tree() == m_root.tree() && isWithin(item, m_root);
}

void StorageNavigator::setCurrentFolder(const FileItem& folder) {
    if (!belongsToTree(folder) || !folder.isDirectory() || folder == currentFolder()) {
        return;
    }
    m_current = folder == m_root ? FileItem{} : folder;
    emit currentFolderChanged();
    // A zoom shows the folder's overview: whatever was selected belongs to the old view.
    setSelectedItem({});
}

void StorageNavigator::goUp() {
    if (!m_current) {
        return;
    }
    const FileItem up = m_current.parent();
    m_current = (!up || up == m_root) ? FileItem{} : up;
    emit currentFolderChanged();
}

void StorageNavigator::goToRoot() {
    if (!m_current) {
        return;
    }
    m_current = {};
    emit currentFolderChanged();
}

void StorageNavigator::setSelectedItem(const FileItem& item) {
    if (item && !belongsToTree(item)) {
        return;
    }
    if (item == m_selected && static_cast<bool>(item) == static_cast<bool>(m_selected)) {
        return;
    }
    m_selected = item;
    emit selectionChanged();
}

void StorageNavigator::selectAdjacent(int delta) {
    const FileItem folder = currentFolder();
    if (!folder || delta == 0) {
        return;
    }
    std::vector<FileItem> children = folder.children();
    if (children.empty()) {
        return;
    }
    std::stable_sort(children.begin(), children.end(),
                     [](const FileItem& a, const FileItem& b) { return a.size() > b.size(); });
    const auto count = static_cast<long>(children.size());
    long next = delta > 0 ? 0 : count - 1;
    if (m_selected) {
        const auto it = std::find(children.begin(), children.end(), m_selected);
        if (it != children.end()) {
            next = std::clamp(static_cast<long>(it - children.begin()) + delta, 0L, count - 1);
        }
    }
    setSelectedItem(children[static_cast<std::size_t>(next)]);
}

void StorageNavigator::zoomIntoSelection() {
    if (m_selected && m_selected.isDirectory()) {
        setCurrentFolder(m_selected);
    }
}

bool StorageNavigator::isKnownApplication(const FileItem& item) const {
    return item && m_isApplication && m_isApplication(item.url());
}

void StorageNavigator::setVisualizerMode(int mode) {
    if (mode == m_mode || mode < 0 || mode > 1) {
        return;
    }
    m_mode = mode;
    emit visualizerModeChanged();
}

bool StorageNavigator::trashFileItem(const FileItem& item) {
    if (!item || !m_trasher) {
        return false;
    }
    const QString name = toDisplayQString(item.name());
    const TrashResult result = m_trasher(item.url());
    if (!result.ok) {
        setNotice(QStringLiteral("Could not move %1 to the Trash: %2")
                      .arg(name, QString::fromStdString(result.error)));
        return false;
    }
    const bool selectionInside = m_selected && isWithin(m_selected, item);
    const bool currentInside = m_current && isWithin(m_current, item);
    item.removeFromParent();
    if (currentInside) {
        m_current = {};
        emit currentFolderChanged();
    }
    if (selectionInside) {
        m_selected = {};
        emit selectionChanged();
    }
    m_undoTrash = result;
    setNotice(QStringLiteral("Moved %1 to the Trash").arg(name), item);
    emit treeMutated();
    return true;
}

void StorageNavigator::undoTrash() {
    if (!m_undoItem || !m_restorer) {
        return;
    }
    const FileItem item = m_undoItem;
    const QString name = toDisplayQString(item.name());
    const RestoreResult result = m_restorer(m_undoTrash.trashedPath, m_undoTrash.infoPath);
    if (!result.ok) {
        setNotice(QStringLiteral("Could not restore %1: %2")
                      .arg(name, QString::fromStdString(result.error)));
        return;
    }
    // Back into the tree only when the tree is still the one shown (a rescan already has it).
    const bool shown = m_root && item.tree() == m_root.tree();
    setNotice(QStringLiteral("Restored %1").arg(name));
    if (shown && item.reattachToParent()) {
        emit treeMutated();
    }
}

void StorageNavigator::dismissNotice() {
    setNotice({});
}

void StorageNavigator::setNotice(const QString& notice, const FileItem& undoItem) {
    if (notice == m_notice && undoItem == m_undoItem &&
        static_cast<bool>(undoItem) == static_cast<bool>(m_undoItem)) {
        return;
    }
    m_notice = notice;
    m_undoItem = undoItem;
    if (!undoItem) {
        m_undoTrash = {};
    }
    emit noticeChanged();
}

} // namespace sondrel
