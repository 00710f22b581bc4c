#include "EditorZoomControls.h"

#include "editor/EditorViewport.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

#include <cmath>

namespace {
// The slider works in whole steps of its step size.
int sliderPosition(double value, double step)
{
    return int(std::lround(value / step));
}
} // namespace

EditorZoomControls::EditorZoomControls(EditorViewport &viewport, QWidget *parent)
    : QWidget(parent), m_viewport(viewport)
{
    const EditorViewport::ZoomControls controls = m_viewport.zoomControls();
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    auto *heading = new QLabel(controls.heading, this);
    QFont font = heading->font();
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    row->addWidget(heading);

    m_reset = new QPushButton(controls.resetTitle, this);
    connect(m_reset, &QPushButton::clicked, this, [this] { m_viewport.resetZoom(); });
    row->addWidget(m_reset);
    for (const EditorViewport::ZoomButton &preset : controls.presets) {
        auto *button = new QPushButton(preset.title, this);
        connect(button, &QPushButton::clicked, this, [this, zoom = preset.zoomScale] { m_viewport.setZoomScale(zoom); });
        m_presets.append(button);
        row->addWidget(button);
    }

    m_slider = new QSlider(Qt::Horizontal, this);
    m_slider->setAccessibleName(controls.heading);
    m_slider->setRange(sliderPosition(controls.sliderMinimum, controls.sliderStep),
                       sliderPosition(controls.sliderMaximum, controls.sliderStep));
    m_slider->setPageStep(1);
    m_slider->setMinimumWidth(120);
    connect(m_slider, &QSlider::valueChanged, this, [this, step = controls.sliderStep](int position) {
        m_viewport.setZoomFromSlider(position * step);
    });
    row->addWidget(m_slider);
    refresh();
}

void EditorZoomControls::refresh()
{
    const EditorViewport::ZoomControls controls = m_viewport.zoomControls();
    m_reset->setEnabled(controls.isResetEnabled);
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(sliderPosition(controls.sliderValue, controls.sliderStep));
}
