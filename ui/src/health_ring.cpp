#include "health_ring.h"

#include <QConicalGradient>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>

namespace sondrel {

HealthRing::HealthRing(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &HealthRing::changed, this, [this] { update(); });
}

void HealthRing::setFraction(double fraction) {
    fraction = std::isnan(fraction) ? 0.0 : std::clamp(fraction, 0.0, 1.0);
    if (fraction != m_fraction) {
        m_fraction = fraction;
        emit changed();
    }
}

void HealthRing::setStartColor(const QColor& color) {
    if (color != m_startColor) {
        m_startColor = color;
        emit changed();
    }
}

void HealthRing::setEndColor(const QColor& color) {
    if (color != m_endColor) {
        m_endColor = color;
        emit changed();
    }
}

void HealthRing::setTrackColor(const QColor& color) {
    if (color != m_trackColor) {
        m_trackColor = color;
        emit changed();
    }
}

void HealthRing::setLineWidth(double width) {
    width = std::max(1.0, width);
    if (width != m_lineWidth) {
        m_lineWidth = width;
        emit changed();
    }
}

void HealthRing::paint(QPainter* painter) {
    const double side = std::min(width(), height());
    if (side <= m_lineWidth) {
        return;
    }
    const double inset = m_lineWidth / 2;
    const QRectF ring((width() - side) / 2 + inset, (height() - side) / 2 + inset,
                      side - m_lineWidth, side - m_lineWidth);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(m_trackColor, m_lineWidth, Qt::SolidLine, Qt::FlatCap));
    painter->drawEllipse(ring);
    if (m_fraction <= 0) {
        return;
    }
    // Qt's angles run counter-clockwise from three o'clock in 1/16 degrees; the arc starts at
    // the top and runs clockwise. A conical gradient's stops also run counter-clockwise from its
    // angle, so the start colour sits at stop 1 (just before the top, going the gradient's way)
    // and the end colour at stop 0, where a full ring would close.
    QConicalGradient drawn(ring.center(), 90);
    drawn.setColorAt(0, m_endColor);
    drawn.setColorAt(1, m_startColor);
    painter->setPen(QPen(QBrush(drawn), m_lineWidth, Qt::SolidLine, Qt::RoundCap));
    painter->drawArc(ring, 90 * 16, -static_cast<int>(std::lround(m_fraction * 360 * 16)));
}

} // namespace sondrel
