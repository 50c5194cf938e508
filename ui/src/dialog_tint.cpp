#include "ui/src/dialog_tint.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <vector>

namespace sondrel {

namespace {

// Sets `colour` on every icon below `item` (the path bar's separator arrows).
void tintIcons(QQuickItem* item, const QColor& colour) {
    const QList<QQuickItem*> children = item->childItems();
    for (QQuickItem* child : children) {
        if (child->inherits("QQuickIconImage")) {
            child->setProperty("color", colour);
        }
        tintIcons(child, colour);
    }
}

} // namespace

int DialogTint::tintPathBars(QQuickItem* anyItem, const QColor& fill, const QColor& border,
                             const QColor& arrows) {
    if (anyItem == nullptr || anyItem->window() == nullptr) {
        return 0;
    }
    int tinted = 0;
    // Open panels live in the window's overlay, below its content item.
    std::vector<QQuickItem*> pending{anyItem->window()->contentItem()};
    while (!pending.empty()) {
        QQuickItem* item = pending.back();
        pending.pop_back();
        if (item->inherits("QQuickFolderBreadcrumbBar")) {
            if (auto* background = item->property("background").value<QQuickItem*>()) {
                background->setProperty("color", fill);
                if (auto* pen = background->property("border").value<QObject*>()) {
                    pen->setProperty("color", border);
                }
                ++tinted;
            }
            tintIcons(item, arrows);
            continue;
        }
        const QList<QQuickItem*> children = item->childItems();
        pending.insert(pending.end(), children.begin(), children.end());
    }
    return tinted;
}

} // namespace sondrel
