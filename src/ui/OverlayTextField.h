#pragma once

#include <QKeySequence>
#include <QList>
#include <QPlainTextEdit>
#include <QUuid>

// The editable text of one text box, laid over the box on the canvas: no frame, no background (the
// canvas paints the box), wrapping like the flattened picture. It takes input-method text, so
// Japanese is typed through the desktop's input method. Keys that belong to the editor window
// (undo, redo, delete, Return for "決定", Ctrl+Q) pass through it. Main thread.
class OverlayTextField final : public QPlainTextEdit
{
    Q_OBJECT

public:
    OverlayTextField(const QUuid &overlayID, QList<QKeySequence> windowKeys, QWidget *parent = nullptr);

    const QUuid &overlayID() const { return m_overlayID; }
    // Replaces the text only when it differs, so the caret and a running composition stay put.
    void showText(const QString &text);
    void setTextColor(const QColor &color);

signals:
    // The user changed the text (typing, pasting, a committed composition).
    void textEdited(const QUuid &overlayID, const QString &text);

protected:
    bool event(QEvent *event) override;

private:
    bool isWindowKey(const QKeyEvent &event) const;

    QUuid m_overlayID;
    QList<QKeySequence> m_windowKeys;
    bool m_isShowingText = false;
};
