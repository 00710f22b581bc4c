#include "capture/CaptureSaver.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureServices.h"
#include "capture/ClipboardCopy.h"
#include "capture/EditorHandOff.h"
#include "capture/FileNaming.h"
#include "platform/Clock.h"
#include "platform/PngWriter.h"
#include "platform/Scheduler.h"
#include "platform/SoundPlayer.h"
#include "platform/SystemLog.h"
#include "settings/AppSettings.h"

#include <QColorSpace>
#include <QFile>
#include <QUrl>

#include <filesystem>
#include <system_error>

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

std::filesystem::path fileSystemPath(const QString &path)
{
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

} // namespace

void CaptureSaver::completeCapture(const QImage &image, QSizeF logicalSize)
{
    const QImage shown = withLogicalSize(image, logicalSize);
    playShutterSound();
    copyImageToClipboard(shown);

    const SaveSettings settings = currentSaveSettings();
    m_services.scheduler.runInBackground([this, image, shown, settings] {
        const std::optional<QString> path = saveImage(image, settings);
        if (!path)
            return;
        m_services.scheduler.postToMain([this, shown, url = QUrl::fromLocalFile(*path)] {
            m_services.diagnostics.write(u"capture saved and scheduleEditNotification"_s);
            if (m_editorHandOff)
                m_editorHandOff->scheduleEditNotification(shown, url);
        });
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

std::optional<QString> CaptureSaver::saveImage(const QImage &image, const SaveSettings &settings) const
{
    const QString fileName = makeFileName(settings);
    const QString folder = filenaming::resolvedFolderPath(settings.saveFolderPath);
    const QString filePath = folder.endsWith(u'/') ? QString(folder % fileName) : QString(folder % u'/' % fileName);

    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(fileSystemPath(folder), error);
    if (!std::filesystem::exists(status)) {
        std::filesystem::create_directories(fileSystemPath(folder), error);
        if (error) {
            const QString description = QString::fromStdString(error.message());
            m_services.systemLog.log(u"Vistrel: ファイル保存に失敗しました: "_s % description);
            m_services.diagnostics.write(u"saveImage failed path="_s % folder % u" error="_s % description);
            return std::nullopt;
        }
    } else if (!std::filesystem::is_directory(status)) {
        m_services.systemLog.log(u"Vistrel: 保存先がディレクトリではありません: "_s % folder);
        m_services.diagnostics.write(u"saveImage failed: destination is not directory path="_s % folder);
        return std::nullopt;
    }

    if (const std::optional<PngWriter::Failure> failure = m_services.pngWriter.writeFile(image, filePath)) {
        if (failure->kind == PngWriter::Failure::Kind::CannotCreateDestination) {
            m_services.systemLog.log(u"Vistrel: 画像書き込み先の生成に失敗しました。"_s);
            m_services.diagnostics.write(u"saveImage failed: CGImageDestinationCreateWithURL path="_s % filePath);
        } else {
            m_services.systemLog.log(u"Vistrel: PNGデータの書き込みに失敗しました。"_s);
            m_services.diagnostics.write(u"saveImage failed: CGImageDestinationFinalize path="_s % filePath);
        }
        return std::nullopt;
    }
    m_services.diagnostics.write(u"saveImage success path="_s % filePath);
    return filePath;
}
