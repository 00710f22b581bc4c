#pragma once

#include <QIcon>
#include <QImage>

// The application's camera symbol, drawn rather than loaded so that every size is crisp and no image
// plugin is needed. resources/icons/vistrel.svg is the same drawing for the desktop's launchers.
namespace cameraicon {

// size × size pixels, transparent around the camera.
QImage render(int size);
// Every size a tray or a title bar asks for.
QIcon icon();

} // namespace cameraicon
