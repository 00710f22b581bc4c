#pragma once

#include "output/ImageWriter.h"

#include <QImage>
#include <QSizeF>
#include <QString>

class EditorHandOff;
struct CaptureServices;

// What happens to a captured image: the shutter sound and the clipboard at once, the PNG file through
// the image writer on a worker thread, then, back on the main thread, the file's bytes in the
// clipboard in place of the frame and the hand-off to the editor. Owned by the capture controller;
// main thread.
class CaptureSaver final
{
public:
    static inline const QString shutterSoundPath = QStringLiteral(
        "/System/Library/Components/CoreAudio.component/Contents/SharedSupport/SystemSounds/system/Shutter.aif");
    static inline const QString shutterSoundName = QStringLiteral("Shutter");

    // The settings a save reads, taken on the main thread before the worker starts.
    struct SaveSettings
    {
        QString saveFolderPath;
        QString filenamePrefix;
        bool includeDate = true;
    };

    explicit CaptureSaver(const CaptureServices &services);

    // Null until the editor is there; saved captures are then only saved.
    void setEditorHandOff(EditorHandOff *handOff) { m_editorHandOff = handOff; }

    // Main thread. `logicalSize` is the capture's size in points.
    void completeCapture(const QImage &image, QSizeF logicalSize);
    // The shutter sound file, else the named system sound, else the beep.
    void playShutterSound();
    // Replaces the clipboard's content with the image.
    void copyImageToClipboard(const QImage &image);

    SaveSettings currentSaveSettings() const;
    QString makeFileName(const SaveSettings &settings) const;

private:
    ImageWriter::Request saveRequest(const QImage &image, const SaveSettings &settings) const;

    const CaptureServices &m_services;
    ImageWriter m_writer;
    EditorHandOff *m_editorHandOff = nullptr;
};
