#pragma once

#include "platform/SoundPlayer.h"

#include <memory>

// Sounds on macOS: NSSound from a file or by its system name, and NSBeep. Main thread.
class MacSoundPlayer final : public SoundPlayer
{
public:
    MacSoundPlayer();
    ~MacSoundPlayer() override;

    bool playFile(const QString &path) override;
    bool playNamed(const QString &name) override;
    bool beep() override;

private:
    struct Playing;
    // The last sound loaded from a file, kept until the next one so it is not released while it plays.
    std::unique_ptr<Playing> m_playing;
};
