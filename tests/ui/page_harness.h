#pragma once
// What the offscreen page tests share: one page shown in its own window over a fixed dark test
// theme, lookups of named objects that also reach list delegates and popup contents (which have
// no QObject parent), and writers for the files a temporary home is made of. GUI thread only.

#include "ui/src/shell_setup.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QPointF>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QQuickWindow>
#include <QSet>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QUrl>
#include <QVariant>
#include <QVariantMap>
#include <algorithm>
#include <memory>

namespace sondrel::test {

/// The test theme as QML: the colour roles every page reads (dark background, red accent).
inline constexpr const char* kThemeQml = R"(
import QtQuick
QtObject {
    property color background: Qt.rgba(0.05, 0.05, 0.07, 1)
    property color cardBackground: Qt.rgba(1, 1, 1, 0.04)
    property color border: Qt.rgba(1, 1, 1, 0.08)
    property color accent: Qt.rgba(1.0, 0.2, 0.35, 1)
    property color secondaryAccent: Qt.rgba(1.0, 0.45, 0.2, 1)
    property color textPrimary: Qt.rgba(0.95, 0.95, 0.97, 1)
    property color textSecondary: Qt.rgba(1, 1, 1, 0.6)
}
)";

/// One QML page shown offscreen in a window of its own, with the main window's image providers
/// and the test theme as its `theme`. Owns the view and the theme; the theme is destroyed after
/// the view, whose bindings read it until the end. Not copyable; hold it in a unique_ptr to
/// show a fresh page per test.
class PageView {
public:
    /// An empty, hidden view with the shell's image providers installed on its engine.
    PageView() { installShellImageProviders(*m_view.engine()); }
    PageView(const PageView&) = delete;
    PageView& operator=(const PageView&) = delete;

    /// Creates the theme, loads `qrcUrl` with `properties` (plus `theme`) as the root's initial
    /// properties, sizes the root to the view at `size`, shows the window and waits until it is
    /// exposed. Returns an empty string when the page is up, else what went wrong (the first QML
    /// error), so that `QCOMPARE(view.load(...), QString())` fails with the reason. Call once.
    [[nodiscard]] QString load(const QString& qrcUrl, QVariantMap properties, QSize size) {
        QQmlComponent themeComponent(m_view.engine());
        themeComponent.setData(kThemeQml, QUrl());
        m_theme.reset(themeComponent.create());
        if (!m_theme) {
            return QStringLiteral("test theme: ") + themeComponent.errorString();
        }
        properties.insert(QStringLiteral("theme"), QVariant::fromValue<QObject*>(m_theme.get()));
        m_view.setInitialProperties(properties);
        m_view.setResizeMode(QQuickView::SizeRootObjectToView);
        m_view.resize(size);
        m_view.setSource(QUrl(qrcUrl));
        if (m_view.status() != QQuickView::Ready) {
            const QList<QQmlError> errors = m_view.errors();
            return errors.isEmpty() ? qrcUrl + QStringLiteral(" did not load")
                                    : errors.first().toString();
        }
        m_view.show();
        if (!QTest::qWaitForWindowExposed(&m_view)) {
            return qrcUrl + QStringLiteral(": the window was never exposed");
        }
        return {};
    }

    /// The window, for grabs, events and the overlay's popups (contentItem()).
    QQuickView& view() { return m_view; }
    /// The page's root item; null before a successful load().
    QQuickItem* page() const { return m_view.rootObject(); }
    /// The theme the page was given; null before load().
    QObject* theme() const { return m_theme.get(); }

private:
    std::unique_ptr<QObject> m_theme; // declared first: destroyed after the view
    QQuickView m_view;
};

namespace detail {

/// Appends `object` when it is named `name`, then walks its child items and QObject children;
/// `seen` keeps an object reached through both trees from being listed twice.
inline void collectNamed(QObject* object, const QString& name, QList<QObject*>& found,
                         QSet<QObject*>& seen) {
    if (object == nullptr || seen.contains(object)) {
        return;
    }
    seen.insert(object);
    if (object->objectName() == name) {
        found.append(object);
    }
    if (auto* item = qobject_cast<QQuickItem*>(object)) {
        const QList<QQuickItem*> children = item->childItems();
        for (QQuickItem* child : children) {
            collectNamed(child, name, found, seen);
        }
    }
    const QObjectList children = object->children();
    for (QObject* child : children) {
        collectNamed(child, name, found, seen);
    }
}

/// Appends the text of every visible Text item at or below `item`, in tree order.
inline void collectShownTexts(QQuickItem* item, QStringList& texts) {
    if (item->inherits("QQuickText") && item->isVisible()) {
        texts.append(item->property("text").toString());
    }
    const QList<QQuickItem*> children = item->childItems();
    for (QQuickItem* child : children) {
        collectShownTexts(child, texts);
    }
}

} // namespace detail

/// Every object named `name` at or below `root`, shown or not, each once, depth first in tree
/// order: an object's child items first, then its QObject children. Walking both trees reaches
/// list delegates and popup contents as well as dialogs and other non-item objects. Empty for a
/// null `root`.
inline QList<QObject*> findAllObjects(QObject* root, const QString& name) {
    QList<QObject*> found;
    QSet<QObject*> seen;
    detail::collectNamed(root, name, found, seen);
    return found;
}

/// The first of findAllObjects(), or null when there is none.
inline QObject* findObject(QObject* root, const QString& name) {
    const QList<QObject*> found = findAllObjects(root, name);
    return found.isEmpty() ? nullptr : found.first();
}

/// The items among findAllObjects(), shown or not, in the same order.
inline QList<QQuickItem*> findAll(QObject* root, const QString& name) {
    QList<QQuickItem*> items;
    for (QObject* object : findAllObjects(root, name)) {
        if (auto* item = qobject_cast<QQuickItem*>(object)) {
            items.append(item);
        }
    }
    return items;
}

/// The first item of findAll(), shown or not; null when there is none or `root` is null.
inline QQuickItem* findItem(QObject* root, const QString& name) {
    const QList<QQuickItem*> found = findAll(root, name);
    return found.isEmpty() ? nullptr : found.first();
}

/// findItem() below the window's content item (where the overlay's popups hang too).
inline QQuickItem* findItem(QQuickWindow* window, const QString& name) {
    return findItem(window->contentItem(), name);
}

/// The visible items of findAll() (effectively visible: every ancestor shown too).
inline QList<QQuickItem*> findShown(QObject* root, const QString& name) {
    QList<QQuickItem*> shown;
    for (QQuickItem* item : findAll(root, name)) {
        if (item->isVisible()) {
            shown.append(item);
        }
    }
    return shown;
}

/// The items of findAll(), shown or not, from the top of the window to the bottom (the order
/// the user reads cards in; equal heights keep tree order).
inline QList<QQuickItem*> findAllTopToBottom(QObject* root, const QString& name) {
    QList<QQuickItem*> found = findAll(root, name);
    std::stable_sort(found.begin(), found.end(), [](QQuickItem* a, QQuickItem* b) {
        return a->mapToScene(QPointF()).y() < b->mapToScene(QPointF()).y();
    });
    return found;
}

/// True when findItem() finds an item and it is visible.
inline bool isShown(QObject* root, const QString& name) {
    const QQuickItem* item = findItem(root, name);
    return item != nullptr && item->isVisible();
}

/// The `text` property of findObject(), or "<missing NAME>" when there is no such object, so
/// that a comparison fails naming what is absent.
inline QString textOf(QObject* root, const QString& name) {
    const QObject* object = findObject(root, name);
    return object ? object->property("text").toString() : QStringLiteral("<missing %1>").arg(name);
}

/// The texts of the visible Text items at or below `root` (child items only), in tree order.
inline QStringList shownTexts(QQuickItem* root) {
    QStringList texts;
    if (root != nullptr) {
        detail::collectShownTexts(root, texts);
    }
    return texts;
}

/// The first scan on a scanner page (Duplicate Hunter, Junk Cleaner): checks that `page` starts
/// on its empty state without a summary bar, clicks its scan button, checks that `scanner` is
/// scanning, waits up to 20 s for the scan to end and checks that the summary bar replaced the
/// empty state. A failure fails the running test; the caller checks QTest::currentTestFailed().
template <typename Scanner> void scanFromEmptyState(QQuickItem* page, const Scanner& scanner) {
    QVERIFY(isShown(page, "emptyState"));
    QVERIFY(!isShown(page, "summaryBar"));
    QVERIFY(QMetaObject::invokeMethod(findObject(page, "scanButton"), "clicked"));
    QVERIFY(scanner.isScanning());
    QVERIFY(QTest::qWaitFor([&] { return !scanner.isScanning(); }, 20000));
    QVERIFY(!isShown(page, "emptyState"));
    QVERIFY(isShown(page, "summaryBar"));
}

/// Sets the modification time of the existing file `path` to `secs` since the epoch. A failure
/// fails the running test (and returns from this helper only).
inline void setModified(const QString& path, qint64 secs) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(
        file.setFileTime(QDateTime::fromSecsSinceEpoch(secs), QFileDevice::FileModificationTime));
}

/// Writes `size` bytes of 'x' to `path`, creating its folders and replacing any file there; with
/// `modifiedSecs` > 0 the file's modification time is set to it, else it is left at now. A
/// failure fails the running test.
inline void writeFile(const QString& path, qint64 size, qint64 modifiedSecs = 0) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(static_cast<int>(size), 'x'));
    file.close();
    if (modifiedSecs > 0) {
        setModified(path, modifiedSecs);
    }
}

/// Writes `text` to `path`, creating its folders and replacing any file there. A failure fails
/// the running test.
inline void writeText(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

} // namespace sondrel::test
