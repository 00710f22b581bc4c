#include "ElidedLabel.h"

#include <QResizeEvent>

#include <algorithm>

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void ElidedLabel::setFullText(const QString &text, qsizetype keptLength)
{
    if (text == m_fullText && keptLength == m_keptLength && !this->text().isEmpty())
        return;
    m_fullText = text;
    m_keptLength = std::clamp<qsizetype>(keptLength, 0, text.size());
    setToolTip(text);
    elide();
}

QSize ElidedLabel::minimumSizeHint() const
{
    return QSize(0, QLabel::minimumSizeHint().height());
}

void ElidedLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    elide();
}

void ElidedLabel::elide()
{
    const QString kept = m_fullText.left(m_keptLength);
    const int room = std::max(0, contentsRect().width() - fontMetrics().horizontalAdvance(kept));
    setText(kept + fontMetrics().elidedText(m_fullText.mid(m_keptLength), Qt::ElideMiddle, room));
}
