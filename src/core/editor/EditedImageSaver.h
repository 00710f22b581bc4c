#pragma once

#include <QImage>
#include <QString>
#include <QUrl>

#include <optional>

class AppSettings;
class Clock;
class Pasteboard;
class PngWriter;
class SystemLog;

// Where edited pictures are written and how: beside their source as "<name>_edited.png", or, for
// pictures without a source file (the clipboard), in the capture folder under a capture-style name.
// A saved picture also goes to the clipboard. Failures are logged and leave the editor open; the user
// sees nothing. Main thread only.
class EditedImageSaver final
{
public:
    EditedImageSaver(const AppSettings &settings, SystemLog &systemLog, Clock &clock, const PngWriter &pngWriter,
                     Pasteboard &pasteboard);

    // Writes the PNG (replacing a file of that name) and copies the picture to the clipboard; false
    // after logging why when that failed.
    bool saveEditedImage(const QImage &image, const std::optional<QUrl> &sourceURL) const;

    std::optional<QUrl> makeSaveDestinationURL(const std::optional<QUrl> &source) const;
    // In the source's folder, its name without the last extension and "_edited.png":
    // a.b.png → a.b_edited.png.
    static QUrl makeEditedURL(const QUrl &source);
    // In the capture folder; nothing (after logging) when a file that is no folder is in the way.
    std::optional<QUrl> makeClipboardCaptureStyleURL() const;
    // "Vistrel_2025-03-01_09-05-07_edited.png", or "Vistrel_edited.png" without the date.
    QString makeClipboardCaptureStyleFileName(const AppSettings &settings) const;

private:
    const AppSettings &m_settings;
    SystemLog &m_systemLog;
    Clock &m_clock;
    const PngWriter &m_pngWriter;
    Pasteboard &m_pasteboard;
};
