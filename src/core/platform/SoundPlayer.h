#pragma once

#include <QString>

// Short system sounds (NSSound on macOS; libcanberra and the display bell on X11). Each call starts the
// sound and returns at once; false when it could not be played (missing file, unknown name, no sound
// service), so the caller can try the next way.
class SoundPlayer
{
public:
    virtual ~SoundPlayer() = default;

    // A sound file by path.
    virtual bool playFile(const QString &path) = 0;
    // A named system sound ("Shutter"; X11 maps it to the theme's "camera-shutter").
    virtual bool playNamed(const QString &name) = 0;
    // The system alert sound.
    virtual bool beep() = 0;
};
