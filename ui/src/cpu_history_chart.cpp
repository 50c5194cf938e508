#include "ui/src/cpu_history_chart.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace sondrel {

CpuHistoryChart::CpuHistoryChart(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void CpuHistoryChart::setValues(const QList<double>& values) {
    if (values == m_values) {
        return;
    }
    m_values = values;
    emit valuesChanged();
    update();
}

void CpuHistoryChart::setLineColor(const QColor& color) {
    if (color == m_lineColor) {
        return;
    }
    m_lineColor = color;
    emit colorsChanged();
    update();
}

void CpuHistoryChart::setSecondaryColor(const QColor& color) {
    if (color == m_secondaryColor) {
        return;
    }
    m_secondaryColor = color;
    emit colorsChanged();
    update();
}

void CpuHistoryChart::setGridColor(const QColor& color) {
    if (color == m_gridColor) {
        return;
    }
    m_gridColor = color;
    emit colorsChanged();
    update();
}

void CpuHistoryChart::paint(QPainter* painter) {
    // Room for half the line width and the end dot, so neither is clipped at the edges.
    const QRectF area = boundingRect().adjusted(4, 4, -4, -4);
    if (area.width() <= 0 || area.height() <= 0) {
        return;
    }
    painter->setRenderHint(QPainter::Antialiasing, true);

    QPen gridPen(m_gridColor, 1, Qt::DashLine);
    painter->setPen(gridPen);
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const double y = area.top() + area.height() * quarter / 4.0;
        painter->drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    if (m_values.size() < 2) {
        return;
    }

    const auto pointAt = [&](qsizetype index) {
        const double share = std::clamp(m_values[index], 0.0, 100.0) / 100.0;
        const double x = area.left() + area.width() * static_cast<double>(index) /
                                           static_cast<double>(m_values.size() - 1);
        return QPointF(x, area.bottom() - area.height() * share);
    };
    QPainterPath line;
    line.moveTo(pointAt(0));
    for (qsizetype i = 1; i < m_values.size(); ++i) {
        line.lineTo(pointAt(i));
    }

    QPainterPath fill = line;
    fill.lineTo(area.right(), area.bottom());
    fill.lineTo(area.left(), area.bottom());
    fill.closeSubpath();
    QLinearGradient fillGradient(area.topLeft(), area.bottomLeft());
    QColor top = m_lineColor;
    top.setAlphaF(0.45f);
    QColor bottom = m_secondaryColor;
    bottom.setAlphaF(0.03f);
    fillGradient.setColorAt(0, top);
    fillGradient.setColorAt(1, bottom);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fillGradient);
    painter->drawPath(fill);

    QLinearGradient lineGradient(area.topLeft(), area.topRight());
    lineGradient.setColorAt(0, m_secondaryColor);
    lineGradient.setColorAt(1, m_lineColor);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(QBrush(lineGradient), 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPath(line);

    painter->setPen(Qt::NoPen);
    painter->setBrush(m_lineColor);
    painter->drawEllipse(pointAt(m_values.size() - 1), 4, 4);
}

} // namespace sondrel
