#pragma once
// StorageCanvas: what the treemap and colour-ring canvases share. It reads the viewed folder's
// children straight from the navigator's FileItem tree, applies the size threshold, keeps the
// hovered shape, turns pointer input into inspect / zoom / context-menu requests and accepts a
// dropped folder. Subclasses compute their shapes (only when the size, the folder or the
// threshold changes; hovering only repaints) and paint them. All shapes in their normal state
// are drawn once into a cached layer; a repaint (hover, selection) blits that layer and draws
// only the emphasised shapes over it.
//
// Threading: GUI thread for everything except paint(), which the software renderer calls on the
// GUI thread too and the threaded renderer calls on the render thread while the GUI thread is
// blocked, so no locking is needed.

#include "app/storage_navigator.h"
#include "core/model/file_item.h"

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QVariantList>
#include <vector>

namespace sondrel {

class StorageCanvas : public QQuickPaintedItem {
    Q_OBJECT
    /// The storage state to show and change; not owned. Null shows nothing.
    Q_PROPERTY(sondrel::StorageNavigator* navigator READ navigator WRITE setNavigator NOTIFY
                   navigatorChanged)
    /// The theme holder (QColor properties background, cardBackground, border, accent,
    /// textPrimary, textSecondary); not owned. Without one, fixed dark colours are used.
    Q_PROPERTY(QObject* theme READ theme WRITE setTheme NOTIFY themeChanged)
    /// Items smaller than this many bytes are hidden; 0 shows everything.
    Q_PROPERTY(qint64 minSizeThreshold READ minSizeThreshold WRITE setMinSizeThreshold NOTIFY
                   minSizeThresholdChanged)
    /// The threshold choices: maps {label, bytes}, "All" first.
    Q_PROPERTY(QVariantList sizeThresholds READ sizeThresholds CONSTANT)
    /// True when the folder has children but the threshold hides all of them.
    Q_PROPERTY(bool isFilteredEmpty READ isFilteredEmpty NOTIFY contentChanged)
    /// True when there is nothing at all to show (no tree, or an empty folder).
    Q_PROPERTY(bool hasNothingToShow READ hasNothingToShow NOTIFY contentChanged)
    /// Number of drawn shapes (tiles or sectors).
    Q_PROPERTY(int shapeCount READ shapeCount NOTIFY contentChanged)
    /// True while a dragged folder hovers over the canvas.
    Q_PROPERTY(bool isTargetedForDrop READ isTargetedForDrop NOTIFY isTargetedForDropChanged)
    /// Facts of the item whose context menu is open.
    Q_PROPERTY(bool contextIsDirectory READ contextIsDirectory NOTIFY contextChanged)
    Q_PROPERTY(bool contextIsApplication READ contextIsApplication NOTIFY contextChanged)
    /// The name of that item, shown as the menu's first line (empty when there is none).
    Q_PROPERTY(QString contextName READ contextName NOTIFY contextChanged)
    /// "NAME — SIZE • SHARE%" of the hovered item (its share of its folder, one decimal), so
    /// that shapes too small for a label still tell what they are; "" when nothing is hovered.
    Q_PROPERTY(QString hoverText READ hoverText NOTIFY hoverChanged)

public:
    explicit StorageCanvas(QQuickItem* parent = nullptr);

    /// Draws the cached layer of shapes (re-rendered after the shapes or the theme changed),
    /// then the hovered and selected shapes and the card outline.
    void paint(QPainter* painter) final;

    StorageNavigator* navigator() const { return m_navigator; }
    void setNavigator(StorageNavigator* navigator);
    QObject* theme() const { return m_theme; }
    void setTheme(QObject* theme);
    qint64 minSizeThreshold() const { return m_threshold; }
    void setMinSizeThreshold(qint64 bytes);
    static QVariantList sizeThresholds();

    bool isFilteredEmpty() const;
    bool hasNothingToShow() const;
    int shapeCount() const;
    bool isTargetedForDrop() const { return m_dropTargeted; }
    bool contextIsDirectory() const { return m_contextItem && m_contextItem.isDirectory(); }
    bool contextIsApplication() const;
    QString contextName() const;

    /// The children of the viewed folder that pass the threshold (an item of exactly the
    /// threshold is kept), in the tree's order (largest first).
    const std::vector<FileItem>& filteredItems() const;
    /// The item drawn under `point` (item coordinates), or a null item.
    FileItem itemAt(QPointF point) const;
    /// The centre of the shape of `item` in item coordinates; (-1, -1) when it has none.
    QPointF centerOf(const FileItem& item) const;
    /// The hovered item (null when none).
    FileItem hoveredItem() const;
    QString hoverText() const;

    /// Sets the threshold back to 0 ("Reset Filter").
    Q_INVOKABLE void resetFilter() { setMinSizeThreshold(0); }
    /// Context-menu actions on the item the menu was opened for.
    Q_INVOKABLE void zoomIntoContextItem();
    Q_INVOKABLE void revealContextItem();
    Q_INVOKABLE void copyContextPath();
    Q_INVOKABLE void trashContextItem();
    Q_INVOKABLE void uninstallContextItem();

signals:
    void navigatorChanged();
    void themeChanged();
    void minSizeThresholdChanged();
    void contentChanged();
    void hoverChanged();
    /// The navigator's selection changed.
    void selectionChanged();
    void isTargetedForDropChanged();
    void contextChanged();
    /// Right click on an item: the menu should open at (x, y) in item coordinates.
    void contextMenuRequested(qreal x, qreal y);
    /// A folder was dropped; `path` is its local path.
    void folderDropped(const QString& path);
    /// "Uninstall App & Clean Leftovers" was chosen for the item at `path`.
    void uninstallRequested(const QString& path);

protected:
    /// Recomputes the shapes for `items` in the current size. Called lazily, only after the
    /// size, the folder, the tree or the threshold changed.
    virtual void computeShapes(const std::vector<FileItem>& items, QSizeF size) = 0;
    /// Number of shapes of the last computation.
    virtual int shapeCountImpl() const = 0;
    /// Index of the shape under `point`, or -1.
    virtual int shapeAt(QPointF point) const = 0;
    /// Item of shape `index`.
    virtual FileItem itemOfShape(int index) const = 0;
    /// Centre of shape `index`.
    virtual QPointF shapeCenter(int index) const = 0;
    /// Paints every shape in its normal state into horizontal band `band` of the cached layer
    /// (the painter is clipped and translated to it; shapes outside painter->clipBoundingRect()
    /// may be skipped), where the card is already filled with
    /// `background` (so a translucent shape may be drawn pre-blended and opaque). Runs on a Qt
    /// pool thread while the painting thread waits; with layerBands() > 1 the bands run at the
    /// same time, so each band may only read shared state, and objects with lazy caches
    /// (QPainterPath, QStaticText) must be the band's own.
    virtual void paintShapes(QPainter* painter, const QColor& background, int band) const = 0;
    /// Number of bands the cached layer is painted in (1 by default: no concurrency).
    virtual int layerBands() const { return 1; }
    /// Paints the emphasised shapes over the layer; -1 means none.
    virtual void paintEmphasis(QPainter* painter, int hovered, int selected) const = 0;
    /// Index of the shape of the navigator's selection, or -1.
    virtual int selectedShape() const = 0;

    /// Makes sure the shapes match the current input (call first in paint()).
    void ensureShapes() const;
    /// Index of the hovered shape, or -1.
    int hoveredShape() const { return m_hovered; }
    /// A colour of the theme by role name, or `fallback` when the theme lacks it.
    QColor themeColor(const char* role, const QColor& fallback) const;
    /// The card's rounded outline, inset by one point.
    QPainterPath cardPath() const;
    /// Strokes the card's outline: accent, 2 wide while a drop hovers; border, 1 wide otherwise.
    void paintOutline(QPainter* painter) const;

    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void hoverEnterEvent(QHoverEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void invalidate();
    void setHovered(int index);
    void setDropTargeted(bool targeted);

    QPointer<StorageNavigator> m_navigator;
    QPointer<QObject> m_theme;
    qint64 m_threshold = 0;
    int m_hovered = -1;
    bool m_dropTargeted = false;
    FileItem m_contextItem;
    // Set by a double click that zoomed: its closing release must not select in the new view.
    bool m_releaseEndsZoom = false;
    // Lazily recomputed input and shapes (mutable: computed on first use after a change).
    mutable bool m_dirty = true;
    mutable std::vector<FileItem> m_filtered;
    mutable std::size_t m_childCount = 0;
    // Renders m_layer: the card in `background`, every shape in its normal state, the rounded
    // corners cut. The painting runs on Qt pool threads while paint() waits (serial_painting.h).
    void renderLayer(QSize pixels, qreal ratio, const QColor& background);
    // Makes the layer's margin and rounded corners transparent.
    void cutCorners();
    // The shapes in their normal state, in device pixels; rebuilt when m_layerDirty.
    QImage m_layer;
    bool m_layerDirty = true;
};

} // namespace sondrel
