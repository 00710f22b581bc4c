#include "OverlayTextField.h"

#include <QKeyEvent>
#include <QTextDocument>

#include <algorithm>

OverlayTextField::OverlayTextField(const QUuid &overlayID, QList<QKeySequence> windowKeys, QWidget *parent)
    : QPlainTextEdit(parent), m_overlayID(overlayID), m_windowKeys(std::move(windowKeys))
{
    setAttribute(Qt::WA_InputMethodEnabled, true);
    setFrameStyle(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    // The document's history would compete with the editor's: every edit is one step there.
    setUndoRedoEnabled(false);
    document()->setDocumentMargin(0);
    setBackgroundVisible(false);
    viewport()->setAutoFillBackground(false);
    setStyleSheet(QStringLiteral("QPlainTextEdit { background: transparent; }"));
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_isShowingText)
            emit textEdited(m_overlayID, toPlainText());
    });
}

void OverlayTextField::showText(const QString &text)
{
    if (toPlainText() == text)
        return;
    m_isShowingText = true;
    setPlainText(text);
    moveCursor(QTextCursor::End);
    m_isShowingText = false;
}

void OverlayTextField::setTextColor(const QColor &color)
{
    QPalette colors = palette();
    colors.setColor(QPalette::Text, color);
    setPalette(colors);
}

bool OverlayTextField::isWindowKey(const QKeyEvent &event) const
{
    const QKeySequence pressed(event.keyCombination());
    return std::any_of(m_windowKeys.cbegin(), m_windowKeys.cend(),
                       [&pressed](const QKeySequence &key) { return key.matches(pressed) == QKeySequence::ExactMatch; });
}

bool OverlayTextField::event(QEvent *event)
{
    // A text field claims most keys before the window's shortcuts see them; these stay the window's.
    if (event->type() == QEvent::ShortcutOverride && isWindowKey(*static_cast<QKeyEvent *>(event))) {
        event->ignore();
        return true;
    }
    return QPlainTextEdit::event(event);
}
