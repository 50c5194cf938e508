#pragma once
// CpuHistoryChart: the area chart of the telemetry screen's CPU history, drawn with QPainter so
// that it renders the same with the software backend used offscreen.

#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace sondrel {

/// Draws `values` (percentages 0..100, oldest first) evenly spread from left to right on a
/// 0..100 vertical scale: grid lines at every quarter, a filled area and a line running from
/// `lineColor` to `secondaryColor`, and a dot on the newest value. Values outside 0..100 are
/// clamped; fewer than two values draw only the grid. GUI thread (paint runs on the render
/// thread with the item's state copied by the scene graph, as QQuickPaintedItem does).
class CpuHistoryChart : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<double> values READ values WRITE setValues NOTIFY valuesChanged)
    Q_PROPERTY(QColor lineColor READ lineColor WRITE setLineColor NOTIFY colorsChanged)
    Q_PROPERTY(
        QColor secondaryColor READ secondaryColor WRITE setSecondaryColor NOTIFY colorsChanged)
    Q_PROPERTY(QColor gridColor READ gridColor WRITE setGridColor NOTIFY colorsChanged)

public:
    explicit CpuHistoryChart(QQuickItem* parent = nullptr);

    const QList<double>& values() const { return m_values; }
    void setValues(const QList<double>& values);
    QColor lineColor() const { return m_lineColor; }
    void setLineColor(const QColor& color);
    QColor secondaryColor() const { return m_secondaryColor; }
    void setSecondaryColor(const QColor& color);
    QColor gridColor() const { return m_gridColor; }
    void setGridColor(const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void valuesChanged();
    void colorsChanged();

private:
    QList<double> m_values;
    QColor m_lineColor{Qt::red};
    QColor m_secondaryColor{Qt::yellow};
    QColor m_gridColor{Qt::gray};
};

} // namespace sondrel
