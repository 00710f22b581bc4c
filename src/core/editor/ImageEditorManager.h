#pragma once

#include "capture/EditorHandOff.h"
#include "editor/EditedImageSaver.h"
#include "editor/EditorCommands.h"
#include "editor/EditorImageSources.h"
#include "editor/ImageEditorServices.h"
#include "platform/EditorWindow.h"

#include <QColorSpace>
#include <QHash>
#include <QImage>
#include <QSizeF>
#include <QUrl>
#include <QUuid>

#include <memory>
#include <optional>

class ImageEditorModel;

// The one owner of the editor windows. It takes a picture (a fresh capture, a chosen file, the
// clipboard), prepares its document, decides whether it opens at once or after the user clicks a
// notification, and whether it replaces what the primary window shows or opens an extra window; and
// it saves the edited result. A capture waiting for the click is kept as its saved file only and read
// again on the click, so no frame stays in memory between captures, nor once the window that showed it
// has closed. Main thread only; notification replies and the outcomes of saves are posted back to it.
class ImageEditorManager final : public EditorCommands, public EditorHandOff
{
public:
    static inline const QString windowTitle = QStringLiteral("Vistrel 編集");
    static constexpr QSizeF minimumWindowSize{1000, 1000};

    // Built in app/SharedInstances.cpp.
    static ImageEditorManager &shared();

    explicit ImageEditorManager(const ImageEditorServices &services);
    ~ImageEditorManager() override;

    ImageEditorManager(const ImageEditorManager &) = delete;
    ImageEditorManager &operator=(const ImageEditorManager &) = delete;

    // The windows open now: the primary one (null before it is first shown and after it closed), and
    // the extra ones.
    EditorWindow *editorWindow() const { return m_editorWindow.get(); }
    QList<EditorWindow *> detachedEditorWindows() const;

    void scheduleEditNotification(const QImage &image, const QUrl &sourceURL) override;
    void openEditor(bool openInNewWindow) override;
    void openEditorLauncher() override;
    // Shows the picture of the file in the primary window; an alert when it cannot be read.
    void openImageFile(const QUrl &url);

private:
    // A saved capture that waits for the notification's click, with what its file does not hold.
    struct SavedCapture
    {
        QUrl url;
        qreal devicePixelRatio = 1;
        QColorSpace colorSpace;
    };

    // A new document for the next showing; shows nothing.
    void prepareEditor(const QImage &image, const std::optional<QUrl> &sourceURL);
    void showEditorWindow(bool openInNewWindow);
    void openDetachedEditorWindow(const std::shared_ptr<ImageEditorModel> &model,
                                  const std::optional<QUrl> &sourceURL);
    void closeDetachedEditorWindow(EditorWindow *window);
    void closePrimaryEditor();
    // The primary window closed: it is released after the current event, with the document it showed.
    void forgetPrimaryEditor();
    EditorRootView makePrimaryEditorRootView();
    // Room for the picture, the canvas margin and the tool bars, never beyond the visible screen.
    QSizeF editorContentSize(std::optional<QSizeF> imageSize) const;
    void openImagePanel();
    void openImageFromClipboard();

    std::shared_ptr<EditorWindow> makeWindow(QSizeF contentSize);
    std::shared_ptr<ImageEditorView> makeEditorView(const std::shared_ptr<ImageEditorModel> &model);
    // After the current event: the window may be what is calling us.
    void releaseLater(std::shared_ptr<EditorWindow> window);
    static QSizeF imageSize(const ImageEditorModel &model);

    ImageEditorServices m_services;
    EditedImageSaver m_saver;
    EditorImageSources m_sources;

    std::shared_ptr<EditorWindow> m_editorWindow;
    EditorWindow::ObserverToken m_editorWindowCloseObserver = 0;
    // The editor the primary window shows: a save closes the window only if it still shows it.
    std::weak_ptr<ImageEditorView> m_primaryView;
    std::shared_ptr<ImageEditorModel> m_model;
    std::optional<QUrl> m_sourceFileURL;
    std::optional<SavedCapture> m_savedCapture;
    QHash<QUuid, std::shared_ptr<EditorWindow>> m_detachedEditorWindows;
    QHash<QUuid, EditorWindow::ObserverToken> m_detachedWindowCloseObservers;
};
