#pragma once
// TreemapCanvasView: the squarified treemap of the viewed folder's children. Each tile is a
// rounded rectangle in its category's colour (a gradient; a folder's is the category holding most
// of its subtree's bytes), with the name when the tile is wider
// than 50 and taller than 35 points and the size and share when it is wider than 80 and taller
// than 55. Tiles are laid out only when the size, the folder or the threshold changes.

#include "core/layout/treemap_layout.h"
#include "ui/src/storage_canvas.h"

#include <QImage>
#include <QStaticText>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <array>
#include <vector>

namespace sondrel {

class TreemapCanvasView : public StorageCanvas {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit TreemapCanvasView(QQuickItem* parent = nullptr);

protected:
    void computeShapes(const std::vector<FileItem>& items, QSizeF size) override;
    int shapeCountImpl() const override { return static_cast<int>(m_nodes.size()); }
    int shapeAt(QPointF point) const override;
    FileItem itemOfShape(int index) const override;
    QPointF shapeCenter(int index) const override;
    void paintShapes(QPainter* painter, const QColor& background, int band) const override;
    void paintEmphasis(QPainter* painter, int hovered, int selected) const override;
    int selectedShape() const override;

private:
    // Drawing facts of one tile, parallel to m_nodes.
    struct Tile {
        QStaticText name;   ///< elided display name (empty for tiles too small for text)
        QStaticText detail; ///< elided "size • share" (empty for tiles too small for it)
        QColor color;       ///< category colour
        FileCategory category;
    };
    void paintTile(QPainter* painter, const TreemapNode& node, const Tile& tile, bool hovered,
                   bool selected) const;

    std::vector<FileItem> m_items; // the laid-out items; TreemapNode::index points here
    std::vector<TreemapNode> m_nodes;
    std::vector<Tile> m_tiles;
    // Category icons in white, rendered once on first use (indexed by FileCategory).
    mutable std::array<QImage, kAllFileCategories.size()> m_icons;
};

} // namespace sondrel
