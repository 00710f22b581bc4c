#include "MacSoundPlayer.h"

#include "MacConversions.h"

#import <AppKit/AppKit.h>

using namespace macconversions;

struct MacSoundPlayer::Playing
{
    NSSound *sound = nil;
};

MacSoundPlayer::MacSoundPlayer() : m_playing(std::make_unique<Playing>()) {}
MacSoundPlayer::~MacSoundPlayer() = default;

bool MacSoundPlayer::playFile(const QString &path)
{
    NSSound *sound = [[NSSound alloc] initWithContentsOfURL:[NSURL fileURLWithPath:toNSString(path)] byReference:YES];
    if (!sound || ![sound play])
        return false;
    m_playing->sound = sound;
    return true;
}

bool MacSoundPlayer::playNamed(const QString &name)
{
    // The system keeps named sounds; one that is still playing refuses to start again.
    NSSound *sound = [NSSound soundNamed:toNSString(name)];
    return sound && [sound play];
}

bool MacSoundPlayer::beep()
{
    NSBeep();
    return true;
}
