#include "app/storage_details.h"

#include "app/file_reveal.h"
#include "app/qt_conversions.h"
#include "app/storage_navigator.h"
#include "core/model/byte_format.h"
#include "core/model/platform_terms.h"

#include <algorithm>
#include <array>
#include <vector>

namespace sondrel {

StorageDetails::StorageDetails(StorageNavigator* navigator)
    : QObject(navigator), m_navigator(navigator) {
    connect(navigator, &StorageNavigator::treeChanged, this, &StorageDetails::changed);
    connect(navigator, &StorageNavigator::currentFolderChanged, this, &StorageDetails::changed);
    connect(navigator, &StorageNavigator::selectionChanged, this, &StorageDetails::changed);
    connect(navigator, &StorageNavigator::treeMutated, this, &StorageDetails::changed);
}

QString StorageDetails::displayNameOf(const FileItem& item) {
    if (!item || item.name().empty()) {
        return QStringLiteral("Internal Drive");
    }
    return toDisplayQString(item.name());
}

QString StorageDetails::platformText(const QString& text) {
    return QString::fromStdString(withPlatformTerms(text.toStdString(), currentTextPlatform()));
}

QString StorageDetails::folderName() const {
    return displayNameOf(m_navigator->currentFolder());
}

QString StorageDetails::folderSizeText() const {
    const FileItem folder = m_navigator->currentFolder();
    return folder ? QString::fromStdString(folder.formattedSize()) : QString();
}

QString StorageDetails::folderItemsText() const {
    const FileItem folder = m_navigator->currentFolder();
    return folder ? QString::number(folder.fileCount()) + QStringLiteral(" items") : QString();
}

QVariantList StorageDetails::breakdown() const {
    const FileItem folder = m_navigator->currentFolder();
    if (!folder) {
        return {};
    }
    // The whole subtree, not only the direct children: a folder of folders is not all "Other".
    std::array<std::int64_t, kAllFileCategories.size()> sums = folder.categoryBreakdown();
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < sums.size(); ++i) {
        if (sums[i] > 0) {
            order.push_back(i);
        }
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return sums[a] > sums[b]; });
    const double total = static_cast<double>(std::max<std::int64_t>(folder.size(), 1));
    QVariantList rows;
    for (const std::size_t i : order) {
        const FileCategory category = kAllFileCategories[i];
        rows.append(QVariantMap{
            {QStringLiteral("name"), QString::fromUtf8(displayName(category))},
            {QStringLiteral("color"), toQColor(color(category))},
            {QStringLiteral("sizeText"), QString::fromStdString(formatBytes(sums[i]))},
            {QStringLiteral("shareText"),
             QString::fromStdString(formatPercent(static_cast<double>(sums[i]) / total))},
        });
    }
    return rows;
}

QStringList StorageDetails::breadcrumbNames() const {
    QStringList names;
    for (FileItem node = m_navigator->currentFolder(); node; node = node.parent()) {
        names.prepend(displayNameOf(node));
        if (node == m_navigator->root()) {
            break;
        }
    }
    return names;
}

void StorageDetails::setBreadcrumbCapacity(int capacity) {
    if (capacity != m_breadcrumbCapacity) {
        m_breadcrumbCapacity = capacity;
        emit changed();
    }
}

QVariantList StorageDetails::breadcrumbElements() const {
    return collapseBreadcrumb(breadcrumbNames(), m_breadcrumbCapacity);
}

QVariantList StorageDetails::collapseBreadcrumb(const QStringList& names, int capacity) {
    const auto element = [](const QString& name, int index) {
        return QVariantMap{{QStringLiteral("name"), name},
                           {QStringLiteral("index"), index},
                           {QStringLiteral("isEllipsis"), false},
                           {QStringLiteral("hidden"), QVariantList()}};
    };
    const int count = static_cast<int>(names.size());
    const int room = std::max(capacity, 3);
    QVariantList shown;
    if (count <= room) {
        for (int i = 0; i < count; ++i) {
            shown << element(names[i], i);
        }
        return shown;
    }
    const int tail = room - 2;
    QVariantList hidden;
    for (int i = 1; i < count - tail; ++i) {
        hidden << QVariantMap{{QStringLiteral("name"), names[i]}, {QStringLiteral("index"), i}};
    }
    shown << element(names[0], 0);
    shown << QVariantMap{{QStringLiteral("name"), QStringLiteral("\u2026")},
                         {QStringLiteral("index"), -1},
                         {QStringLiteral("isEllipsis"), true},
                         {QStringLiteral("hidden"), hidden}};
    for (int i = count - tail; i < count; ++i) {
        shown << element(names[i], i);
    }
    return shown;
}

void StorageDetails::navigateToBreadcrumb(int index) {
    std::vector<FileItem> chain;
    for (FileItem node = m_navigator->currentFolder(); node; node = node.parent()) {
        chain.insert(chain.begin(), node);
        if (node == m_navigator->root()) {
            break;
        }
    }
    if (index < 0 || index >= static_cast<int>(chain.size())) {
        return;
    }
    const FileItem& target = chain[static_cast<std::size_t>(index)];
    if (target == m_navigator->root()) {
        m_navigator->goToRoot();
    } else {
        m_navigator->setCurrentFolder(target);
    }
}

bool StorageDetails::hasSelection() const {
    return m_navigator->hasSelection();
}

QString StorageDetails::selectedName() const {
    return hasSelection() ? displayNameOf(m_navigator->selectedItem()) : QString();
}

QString StorageDetails::selectedPath() const {
    return hasSelection() ? toDisplayQString(m_navigator->selectedItem().url()) : QString();
}

QString StorageDetails::selectedSizeText() const {
    return hasSelection() ? QString::fromStdString(m_navigator->selectedItem().formattedSize())
                          : QString();
}

QString StorageDetails::selectedItemsText() const {
    return hasSelection()
               ? QString::number(m_navigator->selectedItem().fileCount()) + QStringLiteral(" items")
               : QString();
}

QString StorageDetails::selectedShareText() const {
    return hasSelection() ? QString::fromStdString(
                                formatPercent(m_navigator->selectedItem().percentageOfParent()))
                          : QString();
}

QString StorageDetails::selectedCategoryName() const {
    return hasSelection() ? QString::fromUtf8(displayName(m_navigator->selectedItem().category()))
                          : QString();
}

QColor StorageDetails::selectedCategoryColor() const {
    return hasSelection() ? toQColor(color(m_navigator->selectedItem().category())) : QColor();
}

QString StorageDetails::selectedCategoryIcon() const {
    return hasSelection() ? QString::fromUtf8(iconName(m_navigator->selectedItem().category()))
                          : QString();
}

bool StorageDetails::selectedIsDirectory() const {
    return hasSelection() && m_navigator->selectedItem().isDirectory();
}

bool StorageDetails::selectedIsApplication() const {
    return hasSelection() && m_navigator->isKnownApplication(m_navigator->selectedItem());
}

QString StorageDetails::selectedRationale() const {
    if (!hasSelection()) {
        return {};
    }
    return QString::fromStdString(
        withPlatformTerms(m_navigator->selectedItem().removalRationale(), currentTextPlatform()));
}

QString StorageDetails::selectedStatusText() const {
    return hasSelection()
               ? QString::fromUtf8(displayName(m_navigator->selectedItem().reclaimableStatus()))
               : QString();
}

QColor StorageDetails::selectedStatusColor() const {
    return hasSelection() ? toQColor(badgeColor(m_navigator->selectedItem().reclaimableStatus()))
                          : QColor();
}

void StorageDetails::copySelectedPath() {
    if (hasSelection()) {
        copyTextToClipboard(toFileQString(m_navigator->selectedItem().url()));
    }
}

void StorageDetails::revealSelected() {
    if (hasSelection()) {
        revealInFileManager(toFileQString(m_navigator->selectedItem().url()));
    }
}

void StorageDetails::openSelectedInRings() {
    if (selectedIsDirectory()) {
        m_navigator->setCurrentFolder(m_navigator->selectedItem());
        m_navigator->setVisualizerMode(0);
    }
}

void StorageDetails::clearSelection() {
    m_navigator->clearSelection();
}

bool StorageDetails::trashSelected() {
    return hasSelection() && m_navigator->trashFileItem(m_navigator->selectedItem());
}

} // namespace sondrel
