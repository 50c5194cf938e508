#include "ui/src/color_rings_canvas_view.h"

#include "app/qt_conversions.h"
#include "app/storage_details.h"
#include "core/layout/annular_sector.h"
#include "core/model/byte_format.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <cmath>
#include <numbers>

namespace sondrel {

namespace {

// Sectors at most this wide (degrees) are shaded with a linear gradient (see paintSector).
constexpr double kLinearShadeSweep = 12.0;
constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

QPainterPath outlinePath(const AnnularSectorOutline& o) {
    // Qt measures arc angles counter-clockwise on screen; the layout's grow clockwise.
    const auto circle = [&](double radius) {
        return QRectF(o.centre.x - radius, o.centre.y - radius, 2 * radius, 2 * radius);
    };
    QPainterPath path;
    const LayoutPoint start = pointOnCircle(o.centre, o.outer.radius, o.outer.fromAngle);
    path.moveTo(start.x, start.y);
    path.arcTo(circle(o.outer.radius), -o.outer.fromAngle, -(o.outer.toAngle - o.outer.fromAngle));
    path.lineTo(o.lineTo.x, o.lineTo.y);
    path.arcTo(circle(o.inner.radius), -o.inner.fromAngle, o.inner.fromAngle - o.inner.toAngle);
    path.closeSubpath();
    return path;
}

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

// `color` at `opacity` composed over the opaque `background`, as an opaque colour.
QColor blendOver(const QColor& color, double opacity, const QColor& background) {
    const auto mix = [opacity](float top, float bottom) {
        return static_cast<float>(top * opacity + bottom * (1.0 - opacity));
    };
    return QColor::fromRgbF(mix(color.redF(), background.redF()),
                            mix(color.greenF(), background.greenF()),
                            mix(color.blueF(), background.blueF()));
}

} // namespace

ColorRingsCanvasView::ColorRingsCanvasView(QQuickItem* parent) : StorageCanvas(parent) {
    connect(this, &StorageCanvas::hoverChanged, this, &ColorRingsCanvasView::hudChanged);
    connect(this, &StorageCanvas::selectionChanged, this, &ColorRingsCanvasView::hudChanged);
    connect(this, &StorageCanvas::contentChanged, this, &ColorRingsCanvasView::hudChanged);
}

void ColorRingsCanvasView::computeShapes(const std::vector<FileItem>& items, QSizeF size) {
    m_tree = items.empty() ? nullptr : items.front().tree();
    std::vector<const FileNode*> nodes;
    nodes.reserve(items.size());
    for (const FileItem& item : items) {
        nodes.push_back(item.node());
    }
    const FileItem folder = navigator() ? navigator()->currentFolder() : FileItem{};
    m_radius = ringRadius(size.width(), size.height());
    m_centre = {size.width() / 2, size.height() / 2};
    m_sectors.clear();
    for (std::vector<QPainterPath>& paths : m_paths) {
        paths.clear();
    }
    m_bounds.clear();
    if (!folder || m_radius <= 0) {
        return;
    }
    m_sectors = computeSunburstSectors(nodes, folder.size());
    const LayoutRect canvas{0, 0, size.width(), size.height()};
    for (std::vector<QPainterPath>& paths : m_paths) {
        paths.reserve(m_sectors.size());
        for (const SunburstSector& s : m_sectors) {
            const AnnularSectorShape shape{s.startAngle, s.endAngle, s.innerRadiusRatio * m_radius,
                                           s.outerRadiusRatio * m_radius};
            paths.push_back(outlinePath(shape.outline(canvas)));
        }
    }
    m_bounds.reserve(m_sectors.size());
    for (const QPainterPath& path : m_paths[0]) {
        m_bounds.push_back(path.boundingRect());
    }
}

const std::vector<SunburstSector>& ColorRingsCanvasView::sectors() const {
    ensureShapes();
    return m_sectors;
}

int ColorRingsCanvasView::shapeAt(QPointF point) const {
    const auto hit = hitTestSector({point.x(), point.y()}, m_centre, m_radius, m_sectors);
    return hit ? static_cast<int>(*hit) : -1;
}

FileItem ColorRingsCanvasView::itemOfShape(int index) const {
    // The tree is only read through this handle's const accessors in the views.
    return FileItem(m_tree, const_cast<FileNode*>(m_sectors[static_cast<std::size_t>(index)].node));
}

QPointF ColorRingsCanvasView::shapeCenter(int index) const {
    const SunburstSector& s = m_sectors[static_cast<std::size_t>(index)];
    const LayoutPoint p =
        pointOnCircle(m_centre, (s.innerRadiusRatio + s.outerRadiusRatio) / 2 * m_radius,
                      (s.startAngle + s.endAngle) / 2);
    return {p.x, p.y};
}

int ColorRingsCanvasView::selectedShape() const {
    if (!navigator() || !navigator()->hasSelection()) {
        return -1;
    }
    const FileNode* selection = navigator()->selectedItem().node();
    for (std::size_t i = 0; i < m_sectors.size(); ++i) {
        if (m_sectors[i].node == selection) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void ColorRingsCanvasView::paintShapes(QPainter* painter, const QColor& background,
                                       int band) const {
    painter->setRenderHint(QPainter::Antialiasing, true);
    // Qt rasterises a whole outline even where it is clipped away, so a band skips the sectors
    // that lie entirely outside it.
    const QRectF visible = painter->clipBoundingRect();
    for (std::size_t i = 0; i < m_sectors.size(); ++i) {
        if (m_bounds[i].intersects(visible)) {
            paintSector(painter, i, false, false, background, band);
        }
    }
}

void ColorRingsCanvasView::paintEmphasis(QPainter* painter, int hovered, int selected) const {
    // The selection is drawn last so that its outline stays on top.
    for (const int index : {hovered == selected ? -1 : hovered, selected}) {
        if (index < 0) {
            continue;
        }
        const auto i = static_cast<std::size_t>(index);
        paintSector(painter, i, index == hovered, index == selected, {}, 0);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(index == selected ? themeColor("textPrimary", Qt::white)
                                               : QColor(255, 255, 255, 170),
                             index == selected ? 2.0 : 1.5));
        painter->drawPath(m_paths[0][i]);
    }
}

void ColorRingsCanvasView::paintSector(QPainter* painter, std::size_t index, bool hovered,
                                       bool selected, const QColor& background, int band) const {
    const SunburstSector& s = m_sectors[index];
    QColor base = toQColor(s.color);
    if (hovered || selected) {
        base = base.lighter(125);
    }
    const double opacity = hovered || selected ? 1.0 : s.opacity;
    // Over a known opaque background the translucent colours are blended here, so the raster
    // engine copies opaque pixels instead of blending each one.
    const auto shade = [&](const QColor& color) {
        return background.isValid() && background.alpha() == 255
                   ? blendOver(color, opacity, background)
                   : withOpacity(color, opacity);
    };
    const QColor inner = shade(base.lighter(112));
    const QColor outer = shade(base.darker(118));
    const double innerRadius = s.innerRadiusRatio * m_radius;
    const double outerRadius = s.outerRadiusRatio * m_radius;
    // Across the ring: brighter at the inner edge, deeper at the outer. A narrow sector gets a
    // linear gradient along its bisector, which is cheaper to fill and, below kLinearShadeSweep,
    // differs from the radial one by under two percent of the ring's width at its corners.
    QGradient gradient;
    if (s.endAngle - s.startAngle <= kLinearShadeSweep) {
        const double middle = (s.startAngle + s.endAngle) / 2;
        const double reach = std::cos((s.endAngle - s.startAngle) / 2 * kRadiansPerDegree);
        const LayoutPoint from = pointOnCircle(m_centre, innerRadius, middle);
        const LayoutPoint to = pointOnCircle(m_centre, outerRadius * reach, middle);
        gradient = QLinearGradient(QPointF(from.x, from.y), QPointF(to.x, to.y));
        gradient.setColorAt(0.0, inner);
    } else {
        gradient = QRadialGradient(QPointF(m_centre.x, m_centre.y), outerRadius);
        gradient.setColorAt(innerRadius / outerRadius, inner);
    }
    gradient.setColorAt(1.0, outer);
    painter->setPen(Qt::NoPen);
    painter->setBrush(gradient);
    painter->drawPath(m_paths[static_cast<std::size_t>(band)][index]);
}

bool ColorRingsCanvasView::hudIsHover() const {
    return static_cast<bool>(hoveredItem());
}

QString ColorRingsCanvasView::hudIcon() const {
    if (const FileItem item = hoveredItem()) {
        return item.isDirectory() ? QStringLiteral("folder.fill") : QStringLiteral("doc.fill");
    }
    // Without a hovered sector: the gear-badged folder for a selected folder, the drive for a
    // selected file and when nothing is selected.
    if (navigator() && navigator()->hasSelection() && navigator()->selectedItem().isDirectory()) {
        return QStringLiteral("folder.badge.gearshape.fill");
    }
    return QStringLiteral("internaldrive.fill");
}

namespace {

// The item the centre display describes: hovered, else selected (else none: the display then
// shows "Internal Drive").
FileItem hudItem(const FileItem& hovered, const StorageNavigator* navigator) {
    if (hovered) {
        return hovered;
    }
    return navigator != nullptr ? navigator->selectedItem() : FileItem{};
}

} // namespace

QString ColorRingsCanvasView::hudName() const {
    const FileItem item = hudItem(hoveredItem(), navigator());
    return StorageDetails::displayNameOf(item);
}

QString ColorRingsCanvasView::hudSizeText() const {
    const FileItem item = hudItem(hoveredItem(), navigator());
    return item ? QString::fromStdString(item.formattedSize()) : QString();
}

QString ColorRingsCanvasView::hudShareText() const {
    const int index = hoveredShape();
    if (index < 0 || index >= static_cast<int>(m_sectors.size())) {
        return {};
    }
    return QString::fromStdString(
               formatPercent(m_sectors[static_cast<std::size_t>(index)].percentage)) +
           QStringLiteral(" of folder");
}

QString ColorRingsCanvasView::hudItemsText() const {
    const FileItem item = hoveredItem();
    return item && item.isDirectory() ? QString::number(item.fileCount()) + QStringLiteral(" items")
                                      : QString();
}

qreal ColorRingsCanvasView::holeRadius() const {
    ensureShapes();
    return std::max(0.0, kRingGeometry[0].innerRadiusRatio * m_radius);
}

} // namespace sondrel
