#pragma once

#include "output/ImageWriter.h"

#include <QImage>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

class AppSettings;
class Clock;
class Pasteboard;
struct ImageEditorServices;

// Where edited pictures are written and how: beside their source as "<name>_edited.png", or, for
// pictures without a source file (the clipboard), in the capture folder under a capture-style name.
// A saved picture also goes to the clipboard. Failures are logged and leave the editor open; the user
// sees nothing. Owned by the editor window manager; main thread, the file itself is written on a worker.
class EditedImageSaver final
{
public:
    using Completion = std::function<void(bool saved)>;

    explicit EditedImageSaver(const ImageEditorServices &services);

    // Writes the PNG on a worker (replacing a file of that name); back on the main thread, copies the
    // picture to the clipboard when it was written and tells `done` whether it was. Once this saver is
    // gone nothing is called back, though the file is still written.
    void saveEditedImage(const QImage &image, const std::optional<QUrl> &sourceURL, Completion done);

    // In the source's folder, its name without the last extension and "_edited.png":
    // a.b.png → a.b_edited.png.
    static QUrl makeEditedURL(const QUrl &source);

private:
    QUrl makeSaveDestinationURL(const std::optional<QUrl> &source) const;
    // In the capture folder; the writer finds out whether that is a folder.
    QUrl makeClipboardCaptureStyleURL() const;
    // "Vistrel_2025-03-01_09-05-07_edited.png", or "Vistrel_edited.png" without the date.
    QString makeClipboardCaptureStyleFileName() const;

    const AppSettings &m_settings;
    Clock &m_clock;
    Pasteboard &m_pasteboard;
    ImageWriter m_writer;
};
