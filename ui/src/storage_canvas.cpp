#include "ui/src/storage_canvas.h"

#include "ui/src/serial_painting.h"

#include "app/file_reveal.h"
#include "app/qt_conversions.h"

#include <QFileInfo>
#include <QMetaProperty>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <functional>

namespace sondrel {

namespace {

constexpr qreal kCornerRadius = 12.0;

struct Threshold {
    const char* label;
    qint64 bytes;
};

// The threshold choices; the labels say "MB" but the limits are binary (MiB, GiB).
constexpr std::array<Threshold, 5> kThresholds = {{
    {"All", 0},
    {"> 10 MB", 10'485'760},
    {"> 100 MB", 104'857'600},
    {"> 500 MB", 524'288'000},
    {"> 1 GB", 1'073'741'824},
}};

// The first local folder among the dragged URLs, or "".
QString droppedFolder(const QMimeData* mime) {
    if (mime == nullptr || !mime->hasUrls()) {
        return {};
    }
    for (const QUrl& url : mime->urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isDir()) {
            return url.toLocalFile();
        }
    }
    return {};
}

} // namespace

StorageCanvas::StorageCanvas(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAcceptHoverEvents(true);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::RightButton);
    setFlag(ItemAcceptsDrops, true);
    setAntialiasing(true);
}

void StorageCanvas::setNavigator(StorageNavigator* navigator) {
    if (navigator == m_navigator) {
        return;
    }
    if (m_navigator) {
        disconnect(m_navigator, nullptr, this, nullptr);
    }
    m_navigator = navigator;
    if (navigator != nullptr) {
        connect(navigator, &StorageNavigator::treeChanged, this, &StorageCanvas::invalidate);
        connect(navigator, &StorageNavigator::currentFolderChanged, this,
                &StorageCanvas::invalidate);
        connect(navigator, &StorageNavigator::treeMutated, this, &StorageCanvas::invalidate);
        connect(navigator, &StorageNavigator::selectionChanged, this, [this] {
            emit selectionChanged();
            update();
        });
    }
    emit navigatorChanged();
    invalidate();
}

void StorageCanvas::setTheme(QObject* theme) {
    if (theme == m_theme) {
        return;
    }
    if (m_theme) {
        disconnect(m_theme, nullptr, this, nullptr);
    }
    m_theme = theme;
    if (theme != nullptr) {
        // Repaint whenever the theme's colours change (they all share one notify signal).
        const QMetaObject* meta = theme->metaObject();
        const int accent = meta->indexOfProperty("accent");
        const int repaint = metaObject()->indexOfMethod("update()");
        if (accent >= 0 && meta->property(accent).hasNotifySignal() && repaint >= 0) {
            connect(theme, meta->property(accent).notifySignal(), this,
                    metaObject()->method(repaint));
        }
    }
    m_layerDirty = true;
    emit themeChanged();
    update();
}

void StorageCanvas::setMinSizeThreshold(qint64 bytes) {
    bytes = std::max<qint64>(bytes, 0);
    if (bytes == m_threshold) {
        return;
    }
    m_threshold = bytes;
    emit minSizeThresholdChanged();
    invalidate();
}

QVariantList StorageCanvas::sizeThresholds() {
    QVariantList list;
    for (const Threshold& t : kThresholds) {
        list.append(QVariantMap{{QStringLiteral("label"), QString::fromLatin1(t.label)},
                                {QStringLiteral("bytes"), t.bytes}});
    }
    return list;
}

void StorageCanvas::invalidate() {
    m_dirty = true;
    m_layerDirty = true;
    m_hovered = -1;
    emit contentChanged();
    emit hoverChanged();
    update();
}

void StorageCanvas::ensureShapes() const {
    if (!m_dirty) {
        return;
    }
    // Shapes are caches of the navigator's state; computing them does not change what the
    // canvas shows, so it is allowed from const accessors. The object itself is never const.
    auto* self = const_cast<StorageCanvas*>(this);
    m_dirty = false;
    m_filtered.clear();
    m_childCount = 0;
    const FileItem folder = m_navigator ? m_navigator->currentFolder() : FileItem{};
    if (folder) {
        for (FileItem& child : folder.children()) {
            ++m_childCount;
            if (m_threshold == 0 || child.size() >= m_threshold) {
                m_filtered.push_back(std::move(child));
            }
        }
    }
    self->computeShapes(m_filtered, size());
}

const std::vector<FileItem>& StorageCanvas::filteredItems() const {
    ensureShapes();
    return m_filtered;
}

bool StorageCanvas::isFilteredEmpty() const {
    ensureShapes();
    return m_childCount > 0 && m_filtered.empty();
}

bool StorageCanvas::hasNothingToShow() const {
    ensureShapes();
    return m_childCount == 0;
}

int StorageCanvas::shapeCount() const {
    ensureShapes();
    return shapeCountImpl();
}

QString StorageCanvas::contextName() const {
    return m_contextItem ? toDisplayQString(m_contextItem.name()) : QString();
}

bool StorageCanvas::contextIsApplication() const {
    return m_navigator && m_navigator->isKnownApplication(m_contextItem);
}

FileItem StorageCanvas::itemAt(QPointF point) const {
    ensureShapes();
    const int index = shapeAt(point);
    return index >= 0 ? itemOfShape(index) : FileItem{};
}

QPointF StorageCanvas::centerOf(const FileItem& item) const {
    ensureShapes();
    for (int i = 0; i < shapeCountImpl(); ++i) {
        if (itemOfShape(i) == item) {
            return shapeCenter(i);
        }
    }
    return {-1, -1};
}

FileItem StorageCanvas::hoveredItem() const {
    ensureShapes();
    return m_hovered >= 0 && m_hovered < shapeCountImpl() ? itemOfShape(m_hovered) : FileItem{};
}

QString StorageCanvas::hoverText() const {
    const FileItem item = hoveredItem();
    if (!item) {
        return {};
    }
    return QStringLiteral("%1 — %2 • %3%")
        .arg(toDisplayQString(item.name()), QString::fromStdString(item.formattedSize()),
             QString::number(item.percentageOfParent() * 100.0, 'f', 1));
}

QColor StorageCanvas::themeColor(const char* role, const QColor& fallback) const {
    if (!m_theme) {
        return fallback;
    }
    const QVariant value = m_theme->property(role);
    return value.canConvert<QColor>() ? value.value<QColor>() : fallback;
}

QPainterPath StorageCanvas::cardPath() const {
    QPainterPath path;
    path.addRoundedRect(boundingRect().adjusted(1, 1, -1, -1), kCornerRadius, kCornerRadius);
    return path;
}

void StorageCanvas::renderLayer(QSize pixels, qreal ratio, const QColor& background) {
    if (m_layer.size() != pixels) {
        m_layer = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    }
    m_layer.setDevicePixelRatio(ratio);
    // Horizontal bands of the layer, each painted through its own image over the layer's rows
    // (a painter per image), on as many pool threads as are free.
    uchar* const rows = m_layer.bits();
    const qsizetype stride = m_layer.bytesPerLine();
    const int bands = std::clamp(layerBands(), 1, pixels.height());
    const QRectF card = cardPath().boundingRect();
    std::vector<std::function<void()>> jobs;
    for (int band = 0; band < bands; ++band) {
        const int top = pixels.height() * band / bands;
        const int bottom = pixels.height() * (band + 1) / bands;
        jobs.emplace_back([=, this] {
            QImage view(rows + top * stride, pixels.width(), bottom - top, stride,
                        QImage::Format_ARGB32_Premultiplied);
            view.setDevicePixelRatio(ratio);
            view.fill(background);
            QPainter painter(&view);
            painter.setRenderHint(QPainter::Antialiasing, true);
            painter.translate(0, -top / ratio);
            // The shapes are clipped to the card's rectangle within the band (cheap; shapes may
            // skip themselves by the clip's bounds); the rounded corners are cut afterwards.
            painter.setClipRect(card.intersected(
                QRectF(card.left(), top / ratio, card.width(), (bottom - top) / ratio)));
            paintShapes(&painter, background, band);
        });
    }
    runJobsWithoutParallelFills(jobs);
    runWithoutParallelFills([this] { cutCorners(); });
}

void StorageCanvas::cutCorners() {
    // Pixels inside both of these rectangles are inside the rounded outline whatever the
    // radius; everything else (margin, corners) is multiplied by the outline's coverage, so no
    // full-card composition pass is needed.
    const QPainterPath card = cardPath();
    const QRect inner = card.boundingRect().toAlignedRect();
    const int inset = static_cast<int>(kCornerRadius) + 2;
    const QRegion solid = QRegion(inner.adjusted(inset, 2, -inset, -2)) +
                          QRegion(inner.adjusted(2, inset, -2, -inset));
    QPainter layer(&m_layer);
    layer.setRenderHint(QPainter::Antialiasing, true);
    layer.setClipRegion(QRegion(QRect(QPoint(0, 0), size().toSize())) - solid);
    layer.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    layer.fillPath(card, Qt::black);
}

void StorageCanvas::paint(QPainter* painter) {
    ensureShapes();
    const qreal ratio = painter->device() != nullptr ? painter->device()->devicePixelRatioF() : 1.0;
    const QSize pixels = (size() * ratio).toSize();
    if (pixels.isEmpty()) {
        return;
    }
    if (m_layerDirty || m_layer.size() != pixels) {
        const QColor card = themeColor("cardBackground", QColor(0x1b, 0x1e, 0x25));
        renderLayer(pixels, ratio, card);
        m_layerDirty = false;
    }
    painter->drawImage(QPointF(0, 0), m_layer);
    const int hovered = m_hovered < shapeCountImpl() ? m_hovered : -1;
    const int selected = selectedShape();
    if (hovered >= 0 || selected >= 0) {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing, true);
        painter->setClipPath(cardPath());
        paintEmphasis(painter, hovered, selected);
        painter->restore();
    }
    paintOutline(painter);
}

void StorageCanvas::paintOutline(QPainter* painter) const {
    painter->setClipping(false);
    const qreal width = m_dropTargeted ? 2.0 : 1.0;
    const QRectF card = boundingRect().adjusted(1, 1, -1, -1);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(m_dropTargeted ? themeColor("accent", QColor(0x3d, 0x8b, 0xff))
                                        : themeColor("border", QColor(0x33, 0x37, 0x40)),
                         width));
    painter->drawRoundedRect(card, kCornerRadius, kCornerRadius);
}

void StorageCanvas::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size()) {
        invalidate();
    }
}

void StorageCanvas::setHovered(int index) {
    if (index == m_hovered) {
        return;
    }
    m_hovered = index;
    emit hoverChanged();
    update();
}

void StorageCanvas::hoverEnterEvent(QHoverEvent* event) {
    hoverMoveEvent(event);
}

void StorageCanvas::hoverMoveEvent(QHoverEvent* event) {
    ensureShapes();
    setHovered(shapeAt(event->position()));
}

void StorageCanvas::hoverLeaveEvent(QHoverEvent* /*event*/) {
    setHovered(-1);
}

void StorageCanvas::mousePressEvent(QMouseEvent* event) {
    ensureShapes();
    forceActiveFocus(Qt::MouseFocusReason);
    const FileItem item = itemAt(event->position());
    if (event->button() == Qt::RightButton) {
        if (item) {
            // The menu acts on the item it names, which is the selection from now on.
            if (m_navigator) {
                m_navigator->setSelectedItem(item);
            }
            m_contextItem = item;
            emit contextChanged();
            emit contextMenuRequested(event->position().x(), event->position().y());
        }
        event->accept();
        return;
    }
    event->accept();
}

void StorageCanvas::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_navigator) {
        return;
    }
    // The release that ends a zooming double click lands on an item of the new view: it selects
    // nothing.
    if (m_releaseEndsZoom) {
        m_releaseEndsZoom = false;
        return;
    }
    // A click on an item inspects it; a click on empty space leaves the selection alone.
    if (const FileItem item = itemAt(event->position())) {
        m_navigator->setSelectedItem(item);
    }
}

void StorageCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_navigator) {
        return;
    }
    const FileItem item = itemAt(event->position());
    if (item && item.isDirectory()) {
        m_navigator->setCurrentFolder(item);
        m_releaseEndsZoom = true;
    }
    event->accept();
}

void StorageCanvas::setDropTargeted(bool targeted) {
    if (targeted != m_dropTargeted) {
        m_dropTargeted = targeted;
        emit isTargetedForDropChanged();
        update();
    }
}

void StorageCanvas::dragEnterEvent(QDragEnterEvent* event) {
    if (droppedFolder(event->mimeData()).isEmpty()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    setDropTargeted(true);
}

void StorageCanvas::dragMoveEvent(QDragMoveEvent* event) {
    event->acceptProposedAction();
}

void StorageCanvas::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
    setDropTargeted(false);
}

void StorageCanvas::dropEvent(QDropEvent* event) {
    setDropTargeted(false);
    const QString folder = droppedFolder(event->mimeData());
    if (folder.isEmpty()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    emit folderDropped(folder);
}

void StorageCanvas::zoomIntoContextItem() {
    if (m_navigator && m_contextItem && m_contextItem.isDirectory()) {
        m_navigator->setCurrentFolder(m_contextItem);
    }
}

void StorageCanvas::revealContextItem() {
    if (m_contextItem) {
        revealInFileManager(toFileQString(m_contextItem.url()));
    }
}

void StorageCanvas::copyContextPath() {
    if (m_contextItem) {
        copyTextToClipboard(toFileQString(m_contextItem.url()));
    }
}

void StorageCanvas::trashContextItem() {
    if (m_navigator && m_contextItem) {
        m_navigator->trashFileItem(m_contextItem);
        m_contextItem = {};
        emit contextChanged();
    }
}

void StorageCanvas::uninstallContextItem() {
    if (m_contextItem) {
        emit uninstallRequested(toFileQString(m_contextItem.url()));
    }
}

} // namespace sondrel
