#include "editor/EditedImageSaver.h"

#include "editor/ImageEditorServices.h"
#include "output/ClipboardCopy.h"
#include "output/FileNaming.h"
#include "platform/Clock.h"
#include "settings/AppSettings.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// The editor's lines go to the system log only. A folder in the way of a picture saved beside its
// source reads like any folder that cannot be made; in the capture folder it has a line of its own.
ImageWriter::Texts editedTexts(bool isBesideSource)
{
    const ImageWriter::Texts::Lines notSaved{u"Vistrel: 編集画像の保存に失敗しました: {reason}"_s, {}};
    const ImageWriter::Texts::Lines notAFolder{u"Vistrel: 保存先がディレクトリではありません: {path}"_s, {}};
    return {notSaved,
            isBesideSource ? notSaved : notAFolder,
            {u"Vistrel: 編集画像のCGImage変換に失敗しました。"_s, {}},
            {u"Vistrel: 編集画像の書き込み先生成に失敗しました。"_s, {}},
            {u"Vistrel: 編集画像PNGの書き込みに失敗しました。"_s, {}},
            {}};
}

} // namespace

EditedImageSaver::EditedImageSaver(const ImageEditorServices &services)
    : m_settings(services.settings),
      m_clock(services.clock),
      m_pasteboard(services.pasteboard),
      m_writer({services.pngWriter, services.systemLog, services.diagnostics, services.scheduler})
{
}

void EditedImageSaver::saveEditedImage(const QImage &image, const std::optional<QUrl> &sourceURL, Completion done)
{
    const QFileInfo destination(makeSaveDestinationURL(sourceURL).toLocalFile());
    ImageWriter::Request request{image, destination.path(), destination.fileName(),
                                 editedTexts(sourceURL.has_value())};
    auto copyAndTell = [this, image, done = std::move(done)](const ImageWriter::Outcome &outcome) {
        if (!outcome.failure)
            clipboardcopy::copyImageToClipboard(m_pasteboard, image);
        if (done)
            done(!outcome.failure);
    };
    m_writer.writeInBackground(std::move(request), std::move(copyAndTell));
}

QUrl EditedImageSaver::makeSaveDestinationURL(const std::optional<QUrl> &source) const
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

QUrl EditedImageSaver::makeClipboardCaptureStyleURL() const
{
    const QString folder = filenaming::resolvedFolderPath(m_settings.saveFolderPath());
    return QUrl::fromLocalFile(QDir(folder).filePath(makeClipboardCaptureStyleFileName()));
}

QString EditedImageSaver::makeClipboardCaptureStyleFileName() const
{
    return filenaming::makeBaseName(m_settings.filenamePrefix(), m_settings.includeDate(), m_clock.now())
           % u"_edited.png"_s;
}
