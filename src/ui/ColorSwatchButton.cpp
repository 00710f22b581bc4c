#include "ColorSwatchButton.h"

#include <QPainter>
#include <QPainterPath>

ColorSwatchButton::ColorSwatchButton(QWidget *parent) : QAbstractButton(parent)
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
}

void ColorSwatchButton::setColor(const QColor &color)
{
    if (color == m_color)
        return;
    m_color = color;
    setAccessibleName(color.name(QColor::HexArgb));
    update();
}

void ColorSwatchButton::setChosen(bool chosen)
{
    if (chosen == m_isChosen)
        return;
    m_isChosen = chosen;
    update();
}

QSize ColorSwatchButton::sizeHint() const
{
    return QSize(diameter + 6, diameter + 6);
}

void ColorSwatchButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF swatch = QRectF(0, 0, diameter, diameter).translated(QRectF(rect()).center() - QPointF(diameter, diameter) / 2);
    QPainterPath circle;
    circle.addEllipse(swatch);
    if (m_color.alpha() < 255) {
        painter.save();
        painter.setClipPath(circle);
        painter.fillRect(swatch, Qt::white);
        const double cell = diameter / 4.0;
        for (int row = 0; row < 4; ++row)
            for (int column = row % 2; column < 4; column += 2)
                painter.fillRect(QRectF(swatch.left() + column * cell, swatch.top() + row * cell, cell, cell),
                                 QColor(200, 200, 200));
        painter.restore();
    }
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(m_color);
    painter.drawPath(circle);
    if (m_isChosen) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(swatch.adjusted(-2.5, -2.5, 2.5, 2.5));
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
}
