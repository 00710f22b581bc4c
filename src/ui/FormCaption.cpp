#include "FormCaption.h"

#include <QLabel>

namespace formcaption {

QLabel *make(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.85);
    label->setFont(font);
    QPalette colors = label->palette();
    colors.setColor(QPalette::WindowText, colors.color(QPalette::PlaceholderText));
    label->setPalette(colors);
    return label;
}

} // namespace formcaption
