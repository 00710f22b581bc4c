#pragma once

#include <QImage>
#include <QUrl>

// Where a saved capture goes next: the editor window manager offers it for editing (by notification
// or at once). Main thread.
class EditorHandOff
{
public:
    virtual ~EditorHandOff() = default;

    // `image` carries its on-screen size as its device pixel ratio; `sourceURL` is the saved PNG file.
    virtual void scheduleEditNotification(const QImage &image, const QUrl &sourceURL) = 0;
};
