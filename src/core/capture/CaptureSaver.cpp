#include "capture/CaptureSaver.h"

#include "capture/CaptureServices.h"
#include "capture/EditorHandOff.h"
#include "output/ClipboardCopy.h"
#include "output/FileNaming.h"
#include "platform/Clock.h"
#include "platform/DiagnosticsLog.h"
#include "platform/Pasteboard.h"
#include "platform/SoundPlayer.h"
#include "settings/AppSettings.h"

#include <QColorSpace>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

// The same pixels, shown at `logicalSize`. Setting the ratio on a shared QImage would copy every
// pixel, so the result reads the original's buffer and keeps the original alive until it is released.
QImage withLogicalSize(const QImage &image, QSizeF logicalSize)
{
    if (image.isNull() || !(logicalSize.width() > 0))
        return image;
    auto *owner = new QImage(image);
    QImage shown(owner->constBits(), owner->width(), owner->height(), owner->bytesPerLine(), owner->format(),
                 [](void *info) { delete static_cast<QImage *>(info); }, owner);
    shown.setColorSpace(owner->colorSpace());
    shown.setDevicePixelRatio(owner->width() / logicalSize.width());
    return shown;
}

// The capture's log lines; a null image cannot occur here and reads as a failed write.
const ImageWriter::Texts &captureTexts()
{
    static const ImageWriter::Texts texts{
        {u"Vistrel: ファイル保存に失敗しました: {reason}"_s, u"saveImage failed path={path} error={reason}"_s},
        {u"Vistrel: 保存先がディレクトリではありません: {path}"_s,
         u"saveImage failed: destination is not directory path={path}"_s},
        {u"Vistrel: PNGデータの書き込みに失敗しました。"_s, u"saveImage failed: CGImageDestinationFinalize path={path}"_s},
        {u"Vistrel: 画像書き込み先の生成に失敗しました。"_s,
         u"saveImage failed: CGImageDestinationCreateWithURL path={path}"_s},
        {u"Vistrel: PNGデータの書き込みに失敗しました。"_s, u"saveImage failed: CGImageDestinationFinalize path={path}"_s},
        u"saveImage success path={path}"_s};
    return texts;
}

} // namespace

CaptureSaver::CaptureSaver(const CaptureServices &services)
    : m_services(services),
      m_writer({services.pngWriter, services.systemLog, services.diagnostics, services.scheduler})
{
}

void CaptureSaver::completeCapture(const QImage &image, QSizeF logicalSize)
{
    const QImage shown = withLogicalSize(image, logicalSize);
    playShutterSound();
    copyImageToClipboard(shown);

    m_writer.writeInBackground(saveRequest(image, currentSaveSettings()),
                               [this, shown](const ImageWriter::Outcome &outcome) {
                                   if (outcome.failure)
                                       return;
                                   // From here the clipboard serves the file's bytes, not the frame.
                                   m_services.pasteboard.replaceImageWithPng(outcome.fileBytes);
                                   m_services.diagnostics.write(u"capture saved and scheduleEditNotification"_s);
                                   if (m_editorHandOff)
                                       m_editorHandOff->scheduleEditNotification(
                                           shown, QUrl::fromLocalFile(outcome.filePath));
                               });
}

void CaptureSaver::playShutterSound()
{
    if (m_services.sounds.playFile(shutterSoundPath))
        return;
    if (m_services.sounds.playNamed(shutterSoundName))
        return;
    m_services.sounds.beep();
}

void CaptureSaver::copyImageToClipboard(const QImage &image)
{
    clipboardcopy::copyImageToClipboard(m_services.pasteboard, image);
}

CaptureSaver::SaveSettings CaptureSaver::currentSaveSettings() const
{
    const AppSettings &settings = m_services.settings;
    return {settings.saveFolderPath(), settings.filenamePrefix(), settings.includeDate()};
}

QString CaptureSaver::makeFileName(const SaveSettings &settings) const
{
    return filenaming::makeFileName(settings.filenamePrefix, settings.includeDate, m_services.clock.now());
}

ImageWriter::Request CaptureSaver::saveRequest(const QImage &image, const SaveSettings &settings) const
{
    return {image, filenaming::resolvedFolderPath(settings.saveFolderPath), makeFileName(settings), captureTexts(),
            true};
}
