#include "ui/src/treemap_canvas_view.h"

#include "app/qt_conversions.h"
#include "core/model/byte_format.h"
#include "ui/src/symbol_icons.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>

namespace sondrel {

namespace {

// Text rules by tile size (points).
constexpr double kNameMinWidth = 50;
constexpr double kNameMinHeight = 35;
constexpr double kDetailMinWidth = 80;
constexpr double kDetailMinHeight = 55;
// Spacing drawn between tiles, and the tile corner radius.
constexpr qreal kTileInset = 1.0;
constexpr qreal kTileRadius = 4.0;
constexpr qreal kTextPadding = 6.0;
constexpr int kIconSize = 13;
constexpr qreal kIconSpace = kIconSize + 5;
constexpr int kNamePixelSize = 12;
constexpr int kDetailPixelSize = 11;
// Tiles with a side below this are drawn as plain rectangles.
constexpr qreal kSmallTileSide = 16.0;
// Fill opacity of a tile: normal, hovered or selected.
constexpr qreal kNormalOpacity = 0.82;
constexpr qreal kHoverOpacity = 1.0;

QFont tileFont(int pixelSize, bool bold) {
    QFont font;
    font.setPixelSize(pixelSize);
    font.setBold(bold);
    return font;
}

} // namespace

TreemapCanvasView::TreemapCanvasView(QQuickItem* parent) : StorageCanvas(parent) {}

void TreemapCanvasView::computeShapes(const std::vector<FileItem>& items, QSizeF size) {
    m_items = items;
    std::vector<std::int64_t> sizes;
    sizes.reserve(items.size());
    for (const FileItem& item : items) {
        sizes.push_back(item.size());
    }
    m_nodes = computeLayout(sizes, {0, 0, size.width(), size.height()});
    m_tiles.clear();
    m_tiles.reserve(m_nodes.size());
    const QFont nameFont = tileFont(kNamePixelSize, true);
    const QFont detailFont = tileFont(kDetailPixelSize, false);
    const QFontMetricsF nameMetrics(nameFont);
    const QFontMetricsF detailMetrics(detailFont);
    for (const TreemapNode& node : m_nodes) {
        const FileItem& item = m_items[node.index];
        // A folder takes the colour of what fills it; its icon still says it is a folder.
        Tile tile{{}, {}, toQColor(color(item.dominantCategory())), item.category()};
        // Texts are elided and laid out here once; painting only draws the prepared glyphs.
        const double textWidth = node.rect.width - 2 * (kTileInset + kTextPadding);
        if (node.rect.width > kNameMinWidth && node.rect.height > kNameMinHeight) {
            tile.name.setText(nameMetrics.elidedText(toDisplayQString(item.name()), Qt::ElideRight,
                                                     std::max(0.0, textWidth - kIconSpace)));
            tile.name.prepare(QTransform(), nameFont);
            if (node.rect.width > kDetailMinWidth && node.rect.height > kDetailMinHeight) {
                tile.detail.setText(detailMetrics.elidedText(
                    QString::fromStdString(item.formattedSize()) + QStringLiteral(" \u2022 ") +
                        QString::fromStdString(formatPercent(node.percentage)),
                    Qt::ElideRight, std::max(0.0, textWidth)));
                tile.detail.prepare(QTransform(), detailFont);
            }
        }
        m_tiles.push_back(std::move(tile));
    }
}

int TreemapCanvasView::shapeAt(QPointF point) const {
    const auto hit = hitTestTile({point.x(), point.y()}, m_nodes);
    return hit ? static_cast<int>(*hit) : -1;
}

FileItem TreemapCanvasView::itemOfShape(int index) const {
    return m_items[m_nodes[static_cast<std::size_t>(index)].index];
}

QPointF TreemapCanvasView::shapeCenter(int index) const {
    const LayoutRect& r = m_nodes[static_cast<std::size_t>(index)].rect;
    return {r.x + r.width / 2, r.y + r.height / 2};
}

int TreemapCanvasView::selectedShape() const {
    if (!navigator() || !navigator()->hasSelection()) {
        return -1;
    }
    const FileItem& selection = navigator()->selectedItem();
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (m_items[m_nodes[i].index].node() == selection.node()) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void TreemapCanvasView::paintShapes(QPainter* painter, const QColor& /*background*/,
                                    int /*band*/) const {
    // Small tiles first without antialiasing (plain pixel rectangles fill fastest), then the
    // large ones with it. Tiles never overlap, so the order does not change the picture.
    const auto isSmall = [](const TreemapNode& node) {
        return node.rect.width - 2 * kTileInset < kSmallTileSide ||
               node.rect.height - 2 * kTileInset < kSmallTileSide;
    };
    painter->setRenderHint(QPainter::Antialiasing, false);
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (isSmall(m_nodes[i])) {
            paintTile(painter, m_nodes[i], m_tiles[i], false, false);
        }
    }
    painter->setRenderHint(QPainter::Antialiasing, true);
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (!isSmall(m_nodes[i])) {
            paintTile(painter, m_nodes[i], m_tiles[i], false, false);
        }
    }
}

void TreemapCanvasView::paintEmphasis(QPainter* painter, int hovered, int selected) const {
    const QColor textColor = themeColor("textPrimary", Qt::white);
    // The selection is drawn last so that its outline stays on top.
    for (const int index : {hovered == selected ? -1 : hovered, selected}) {
        if (index < 0) {
            continue;
        }
        const auto i = static_cast<std::size_t>(index);
        paintTile(painter, m_nodes[i], m_tiles[i], true, index == selected);
        const LayoutRect& r = m_nodes[i].rect;
        const QRectF rect = QRectF(r.x, r.y, r.width, r.height).adjusted(1, 1, -1, -1);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(index == selected ? textColor : QColor(255, 255, 255, 150),
                             index == selected ? 2.0 : 1.0));
        painter->drawRoundedRect(rect, kTileRadius, kTileRadius);
    }
}

void TreemapCanvasView::paintTile(QPainter* painter, const TreemapNode& node, const Tile& tile,
                                  bool hovered, bool selected) const {
    const QRectF rect = QRectF(node.rect.x, node.rect.y, node.rect.width, node.rect.height)
                            .adjusted(kTileInset, kTileInset, -kTileInset, -kTileInset);
    if (rect.width() <= 0 || rect.height() <= 0) {
        return;
    }
    const qreal opacity = hovered || selected ? kHoverOpacity : kNormalOpacity;
    if (rect.width() < kSmallTileSide || rect.height() < kSmallTileSide) {
        // Small tiles are plain rectangles: a gradient or rounded corners cannot be seen at
        // this size, and skipping them keeps a repaint of thousands of tiles cheap.
        QColor fill = tile.color;
        fill.setAlphaF(static_cast<float>(opacity));
        painter->fillRect(rect, fill);
        return;
    }
    QLinearGradient gradient(rect.topLeft(), rect.bottomRight());
    QColor top = tile.color.lighter(115);
    QColor bottom = tile.color.darker(135);
    top.setAlphaF(static_cast<float>(opacity));
    bottom.setAlphaF(static_cast<float>(opacity));
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    // The inset between tiles separates them; only tiles large enough for text get rounded
    // corners and a thin edge, which cost a path fill and a stroke each.
    if (tile.name.text().isEmpty()) {
        painter->fillRect(rect, gradient);
        return;
    }
    painter->setPen(QPen(QColor(0, 0, 0, 60), 0.5));
    painter->setBrush(gradient);
    painter->drawRoundedRect(rect, kTileRadius, kTileRadius);
    if (tile.name.text().isEmpty()) {
        return;
    }
    const QRectF text = rect.adjusted(kTextPadding, kTextPadding, -kTextPadding, -kTextPadding);
    const QFont nameFont = tileFont(kNamePixelSize, true);
    const qreal lineHeight = QFontMetricsF(nameFont).height();
    QImage& icon = m_icons[static_cast<std::size_t>(tile.category)];
    if (icon.isNull()) {
        icon = SymbolIcons::instance().render(QString::fromUtf8(iconName(tile.category)),
                                              QSize(kIconSize * 2, kIconSize * 2), Qt::white);
    }
    if (!icon.isNull()) {
        painter->drawImage(
            QRectF(text.left(), text.top() + (lineHeight - kIconSize) / 2, kIconSize, kIconSize),
            icon);
    }
    painter->setPen(Qt::white);
    painter->setFont(nameFont);
    painter->drawStaticText(QPointF(text.left() + kIconSpace, text.top()), tile.name);
    if (!tile.detail.text().isEmpty()) {
        painter->setFont(tileFont(kDetailPixelSize, false));
        painter->setPen(QColor(255, 255, 255, 210));
        painter->drawStaticText(QPointF(text.left(), text.top() + lineHeight + 2), tile.detail);
    }
}

} // namespace sondrel
