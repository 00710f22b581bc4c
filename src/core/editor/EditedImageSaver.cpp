#include "editor/EditedImageSaver.h"

#include "output/ClipboardCopy.h"
#include "output/FileNaming.h"
#include "platform/Clock.h"
#include "platform/PngWriter.h"
#include "platform/SystemLog.h"
#include "settings/AppSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace {

std::filesystem::path fileSystemPath(const QString &path)
{
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

} // namespace

EditedImageSaver::EditedImageSaver(const AppSettings &settings, SystemLog &systemLog, Clock &clock,
                                   const PngWriter &pngWriter, Pasteboard &pasteboard)
    : m_settings(settings), m_systemLog(systemLog), m_clock(clock), m_pngWriter(pngWriter), m_pasteboard(pasteboard)
{
}

bool EditedImageSaver::saveEditedImage(const QImage &image, const std::optional<QUrl> &sourceURL) const
{
    const std::optional<QUrl> destination = makeSaveDestinationURL(sourceURL);
    if (!destination)
        return false;
    const QString path = destination->toLocalFile();

    std::error_code error;
    std::filesystem::create_directories(fileSystemPath(QFileInfo(path).path()), error);
    if (error) {
        m_systemLog.log(u"Vistrel: 編集画像の保存に失敗しました: "_s % QString::fromStdString(error.message()));
        return false;
    }
    if (image.isNull()) {
        m_systemLog.log(u"Vistrel: 編集画像のCGImage変換に失敗しました。"_s);
        return false;
    }
    if (const std::optional<PngWriter::Failure> failure = m_pngWriter.writeFile(image, path)) {
        m_systemLog.log(failure->kind == PngWriter::Failure::Kind::CannotCreateDestination
                            ? u"Vistrel: 編集画像の書き込み先生成に失敗しました。"_s
                            : u"Vistrel: 編集画像PNGの書き込みに失敗しました。"_s);
        return false;
    }
    clipboardcopy::copyImageToClipboard(m_pasteboard, image);
    return true;
}

std::optional<QUrl> EditedImageSaver::makeSaveDestinationURL(const std::optional<QUrl> &source) const
{
    if (source)
        return makeEditedURL(*source);
    return makeClipboardCaptureStyleURL();
}

QUrl EditedImageSaver::makeEditedURL(const QUrl &source)
{
    const QFileInfo file(source.toLocalFile());
    // A name that is all extension (".png") keeps it whole, as a hidden file's name has no extension.
    QString stem = file.completeBaseName();
    if (stem.isEmpty())
        stem = file.fileName();
    return QUrl::fromLocalFile(QDir(file.path()).filePath(stem % u"_edited.png"_s));
}

std::optional<QUrl> EditedImageSaver::makeClipboardCaptureStyleURL() const
{
    const QString folder = filenaming::resolvedFolderPath(m_settings.saveFolderPath());
    const QFileInfo info(folder);
    if (info.exists() && !info.isDir()) {
        m_systemLog.log(u"Vistrel: 保存先がディレクトリではありません: "_s % folder);
        return std::nullopt;
    }
    return QUrl::fromLocalFile(QDir(folder).filePath(makeClipboardCaptureStyleFileName(m_settings)));
}

QString EditedImageSaver::makeClipboardCaptureStyleFileName(const AppSettings &settings) const
{
    return filenaming::makeBaseName(settings.filenamePrefix(), settings.includeDate(), m_clock.now())
           % u"_edited.png"_s;
}
