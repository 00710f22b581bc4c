#pragma once

#include <QAbstractButton>
#include <QColor>

// One colour of a palette: a round swatch, ringed while it is the chosen one. Colours with alpha are
// shown over a checkerboard. Main thread.
class ColorSwatchButton final : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int diameter = 20;

    explicit ColorSwatchButton(QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    bool isChosen() const { return m_isChosen; }
    void setChosen(bool chosen);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
    bool m_isChosen = false;
};
