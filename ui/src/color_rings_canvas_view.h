#pragma once
// ColorRingsCanvasView: the viewed folder as up to three rings of sectors around a centre hole,
// in the fixed ring palette. The centre display (drawn in QML over the hole) reads the hud*
// properties: the hovered sector's item, otherwise the selection, otherwise the folder.
// Sectors and their outlines are computed only when the size, the folder or the threshold
// changes; hovering only repaints.

#include "core/layout/sunburst_layout.h"
#include "ui/src/storage_canvas.h"

#include <QPainterPath>
#include <QtQml/qqmlregistration.h>
#include <array>
#include <vector>

namespace sondrel {

class ColorRingsCanvasView : public StorageCanvas {
    Q_OBJECT
    QML_ELEMENT
    /// True while the pointer is over a sector.
    Q_PROPERTY(bool hudIsHover READ hudIsHover NOTIFY hudChanged)
    /// Symbol name of the centre icon.
    Q_PROPERTY(QString hudIcon READ hudIcon NOTIFY hudChanged)
    Q_PROPERTY(QString hudName READ hudName NOTIFY hudChanged)
    Q_PROPERTY(QString hudSizeText READ hudSizeText NOTIFY hudChanged)
    /// "12.3% of folder" for a hovered sector, otherwise "".
    Q_PROPERTY(QString hudShareText READ hudShareText NOTIFY hudChanged)
    /// "N items" for a hovered folder, otherwise "".
    Q_PROPERTY(QString hudItemsText READ hudItemsText NOTIFY hudChanged)
    /// Radius of the centre hole in item coordinates (0.28 R).
    Q_PROPERTY(qreal holeRadius READ holeRadius NOTIFY contentChanged)

public:
    explicit ColorRingsCanvasView(QQuickItem* parent = nullptr);

    bool hudIsHover() const;
    QString hudIcon() const;
    QString hudName() const;
    QString hudSizeText() const;
    QString hudShareText() const;
    QString hudItemsText() const;
    qreal holeRadius() const;

    /// The sectors of the last computation (for tests and benchmarks).
    const std::vector<SunburstSector>& sectors() const;

signals:
    void hudChanged();

protected:
    void computeShapes(const std::vector<FileItem>& items, QSizeF size) override;
    int shapeCountImpl() const override { return static_cast<int>(m_sectors.size()); }
    int shapeAt(QPointF point) const override;
    FileItem itemOfShape(int index) const override;
    QPointF shapeCenter(int index) const override;
    void paintShapes(QPainter* painter, const QColor& background, int band) const override;
    int layerBands() const override { return kLayerBands; }
    void paintEmphasis(QPainter* painter, int hovered, int selected) const override;
    int selectedShape() const override;

private:
    // Paints sector `index` with band `band`'s copy of its outline; `background` is the opaque
    // colour beneath it (pre-blended shading) or invalid to paint translucent colours.
    void paintSector(QPainter* painter, std::size_t index, bool hovered, bool selected,
                     const QColor& background, int band) const;

    // The cached layer is painted in two bands at once (one per core of the machines we aim at;
    // four bands measured no better).
    static constexpr int kLayerBands = 2;

    std::shared_ptr<FileTree> m_tree; // keeps the sectors' nodes alive
    std::vector<SunburstSector> m_sectors;
    // One outline per sector, built separately for every band: a QPainterPath fills caches
    // lazily when drawn, so bands painting at the same time must not share one.
    std::array<std::vector<QPainterPath>, kLayerBands> m_paths;
    std::vector<QRectF> m_bounds; // each outline's bounding rectangle
    LayoutPoint m_centre;
    double m_radius = 0.0;
};

} // namespace sondrel
