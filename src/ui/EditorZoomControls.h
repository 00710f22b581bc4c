#pragma once

#include <QList>
#include <QWidget>

class EditorViewport;
class QPushButton;
class QSlider;

// "ズーム": the reset button, one button per preset and the slider, from the viewport's zoom
// controls. Main thread.
class EditorZoomControls final : public QWidget
{
    Q_OBJECT

public:
    explicit EditorZoomControls(EditorViewport &viewport, QWidget *parent = nullptr);

    void refresh();

    QPushButton *resetButton() const { return m_reset; }
    const QList<QPushButton *> &presetButtons() const { return m_presets; }
    QSlider *slider() const { return m_slider; }

private:
    EditorViewport &m_viewport;
    QPushButton *m_reset = nullptr;
    QList<QPushButton *> m_presets;
    QSlider *m_slider = nullptr;
};
