#pragma once

#include "platform/OpenPanel.h"

#include <QImage>
#include <QUrl>

#include <optional>

class AlertPresenter;
class DiagnosticsLog;
class Pasteboard;

// Where the empty editor gets its picture: a file the user picks or drops, or the clipboard. A picture
// that cannot be had is explained to the user in an alert. Main thread only.
class EditorImageSources final
{
public:
    EditorImageSources(Pasteboard &pasteboard, AlertPresenter &alerts, OpenPanel &openPanel,
                       DiagnosticsLog &diagnostics);

    // One file, no folders, any image type the decoders know, confirmed with "開く".
    static OpenPanel::Request imagePanelRequest();
    std::optional<QUrl> chooseImageFile();
    // The decoded picture, or nothing after an alert.
    std::optional<QImage> loadImageFile(const QUrl &url);
    // The clipboard's image, else its raw image data decoded (PNG first, then the other image types in
    // the order offered); nothing after an alert.
    std::optional<QImage> readClipboardImage();

private:
    Pasteboard &m_pasteboard;
    AlertPresenter &m_alerts;
    OpenPanel &m_openPanel;
    DiagnosticsLog &m_diagnostics;
};
