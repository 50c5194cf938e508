#pragma once
// HealthRing: Smart Care's score gauge, a ring filled clockwise from the top to `fraction`,
// drawn with QPainter so that it renders the same with the software backend used offscreen.

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace sondrel {

/// A ring of width `lineWidth` inside the item: the whole ring in `trackColor`, and from the top
/// clockwise over `fraction` (clamped to 0..1) a round-capped arc whose colour runs from
/// `startColor` to `endColor`. GUI thread.
class HealthRing : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double fraction READ fraction WRITE setFraction NOTIFY changed)
    Q_PROPERTY(QColor startColor READ startColor WRITE setStartColor NOTIFY changed)
    Q_PROPERTY(QColor endColor READ endColor WRITE setEndColor NOTIFY changed)
    Q_PROPERTY(QColor trackColor READ trackColor WRITE setTrackColor NOTIFY changed)
    Q_PROPERTY(double lineWidth READ lineWidth WRITE setLineWidth NOTIFY changed)

public:
    explicit HealthRing(QQuickItem* parent = nullptr);

    double fraction() const { return m_fraction; }
    void setFraction(double fraction);
    QColor startColor() const { return m_startColor; }
    void setStartColor(const QColor& color);
    QColor endColor() const { return m_endColor; }
    void setEndColor(const QColor& color);
    QColor trackColor() const { return m_trackColor; }
    void setTrackColor(const QColor& color);
    double lineWidth() const { return m_lineWidth; }
    void setLineWidth(double width);

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    double m_fraction = 0;
    QColor m_startColor = Qt::green;
    QColor m_endColor = Qt::blue;
    QColor m_trackColor = QColor(255, 255, 255, 30);
    double m_lineWidth = 14;
};

} // namespace sondrel
