#pragma once

#include <QLabel>

// A one-line label whose text, when it does not fit, is shortened with an ellipsis in the middle
// (the start and the end of a path say the most), leaving a leading part of it whole. The whole text
// is its tooltip. Main thread.
class ElidedLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QString fullText() const { return m_fullText; }
    // The first `keptLength` characters are never shortened.
    void setFullText(const QString &text, qsizetype keptLength = 0);

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void elide();

    QString m_fullText;
    qsizetype m_keptLength = 0;
};
