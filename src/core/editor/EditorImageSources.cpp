#include "editor/EditorImageSources.h"

#include "platform/DiagnosticsLog.h"
#include "editor/ImageLoading.h"
#include "platform/AlertPresenter.h"
#include "platform/Pasteboard.h"

#include <QImageReader>

using namespace Qt::StringLiterals;

namespace {

// The raw types worth decoding, best first: PNG keeps alpha and every pixel.
QStringList imageTypesToTry(const QStringList &offered)
{
    QStringList types;
    if (offered.contains(u"image/png"_s))
        types.append(u"image/png"_s);
    for (const QString &type : offered) {
        if (type.startsWith(u"image/"_s) && !types.contains(type))
            types.append(type);
    }
    return types;
}

} // namespace

EditorImageSources::EditorImageSources(Pasteboard &pasteboard, AlertPresenter &alerts, OpenPanel &openPanel,
                                       DiagnosticsLog &diagnostics)
    : m_pasteboard(pasteboard), m_alerts(alerts), m_openPanel(openPanel), m_diagnostics(diagnostics)
{
}

OpenPanel::Request EditorImageSources::imagePanelRequest()
{
    QStringList types;
    for (const QByteArray &type : QImageReader::supportedMimeTypes())
        types.append(QString::fromLatin1(type));
    return {u"開く"_s, types, false, false, true};
}

std::optional<QUrl> EditorImageSources::chooseImageFile()
{
    return m_openPanel.runModal(imagePanelRequest());
}

std::optional<QImage> EditorImageSources::loadImageFile(const QUrl &url)
{
    QString error = u"not a local file"_s;
    const QImage image = url.isLocalFile() ? imageloading::loadImageFile(url.toLocalFile(), &error) : QImage();
    if (image.isNull()) {
        m_diagnostics.write(u"openImageFile failed url="_s % url.toString() % u" error="_s % error);
        m_alerts.runModalAlert(u"画像を開けませんでした"_s, u"対応している画像ファイルを選択してください。"_s);
        return std::nullopt;
    }
    return image;
}

std::optional<QImage> EditorImageSources::readClipboardImage()
{
    if (const std::optional<QImage> image = m_pasteboard.readImage(); image && !image->isNull())
        return image;
    for (const QString &type : imageTypesToTry(m_pasteboard.availableTypes())) {
        const std::optional<QByteArray> data = m_pasteboard.readData(type);
        if (!data)
            continue;
        QString error;
        const QImage image = imageloading::decodeImageData(*data, &error);
        if (!image.isNull())
            return image;
        m_diagnostics.write(u"clipboard data type="_s % type % u" not decoded: "_s % error);
    }
    m_alerts.runModalAlert(u"クリップボードに画像がありません"_s, u"画像をコピーしてから、もう一度貼り付けてください。"_s);
    return std::nullopt;
}
