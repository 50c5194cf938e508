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
    painter->setPen(QPen(QBrush(drawn), m_lineWidth, Qt::SolidLine, Qt::FlatCap));
    const double sweep = m_fraction * 360;
    painter->drawArc(ring, 90 * 16, -static_cast<int>(std::lround(sweep * 16)));
    // Round ends in the colours the arc has there (a round cap would take the gradient's colour
    // at the top, where its two ends meet).
    const auto endPoint = [&ring](double clockwiseDegrees) {
        const double radians = (90 - clockwiseDegrees) * M_PI / 180;
        return QPointF(ring.center().x() + ring.width() / 2 * std::cos(radians),
                       ring.center().y() - ring.height() / 2 * std::sin(radians));
    };
    const auto mix = [](const QColor& a, const QColor& b, double t) {
        return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * t),
                                static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * t),
                                static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * t),
                                static_cast<float>(a.alphaF() + (b.alphaF() - a.alphaF()) * t));
    };
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_startColor);
    painter->drawEllipse(endPoint(0), inset, inset);
    painter->setBrush(mix(m_startColor, m_endColor, m_fraction));
    painter->drawEllipse(endPoint(sweep), inset, inset);
}

} // namespace sondrel
