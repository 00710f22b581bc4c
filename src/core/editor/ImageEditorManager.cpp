#include "editor/ImageEditorManager.h"

#include "editor/EditNotificationCategory.h"
#include "editor/EditorDropTargetView.h"
#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"
#include "platform/ApplicationControl.h"
#include "platform/DisplayProvider.h"
#include "platform/EditorWindowFactory.h"
#include "platform/Scheduler.h"
#include "platform/SystemLog.h"
#include "platform/UserNotifier.h"
#include "settings/AppSettings.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

ImageEditorManager::ImageEditorManager(const ImageEditorServices &services)
    : m_services(services),
      m_saver(services),
      m_sources(services.pasteboard, services.alerts, services.openPanel, services.diagnostics)
{
}

ImageEditorManager::~ImageEditorManager() = default;

QList<EditorWindow *> ImageEditorManager::detachedEditorWindows() const
{
    QList<EditorWindow *> windows;
    for (const std::shared_ptr<EditorWindow> &window : m_detachedEditorWindows)
        windows.append(window.get());
    return windows;
}

void ImageEditorManager::prepareEditor(const QImage &image, const std::optional<QUrl> &sourceURL)
{
    m_model = std::make_shared<ImageEditorModel>(image, m_services.store);
    m_sourceFileURL = sourceURL;
    m_savedCapture.reset();
}

void ImageEditorManager::scheduleEditNotification(const QImage &image, const QUrl &sourceURL)
{
    const AppSettings &settings = m_services.settings;
    if (!settings.openEditorViaNotification()) {
        prepareEditor(image, sourceURL);
        const bool openInNew = settings.keepExistingEditorWindowOnAutoOpen() && m_editorWindow;
        m_services.scheduler.postToMain([this, openInNew] { showEditorWindow(openInNew); });
        return;
    }
    m_model.reset();
    m_sourceFileURL = sourceURL;
    m_savedCapture = SavedCapture{sourceURL, image.devicePixelRatio(), image.colorSpace()};

    UserNotifier::Request request;
    request.identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    request.title = u"Vistrel: 編集できます"_s;
    request.body = u"通知をクリックして編集画面を開きます。"_s;
    request.categoryIdentifier = editnotification::categoryIdentifier;
    request.playsDefaultSound = true;
    request.triggerDelaySeconds = 0.8;
    m_services.notifier.add(request, [this](std::optional<QString> error) {
        // The notification centre answers on a thread of its own.
        m_services.scheduler.postToMain([this, error] {
            if (!error) {
                m_services.systemLog.log(u"Vistrel: 通知スケジュール成功"_s);
                return;
            }
            m_services.systemLog.log(u"Vistrel: 通知スケジュール失敗: "_s % *error);
            // The user would never hear of the capture: open the editor instead.
            openEditor(false);
        });
    });
}

void ImageEditorManager::openEditor(bool openInNewWindow)
{
    if (const std::optional<SavedCapture> saved = std::exchange(m_savedCapture, std::nullopt)) {
        // Moved or deleted since: the alert says so, and the launcher is not offered in its place.
        std::optional<QImage> image = m_sources.loadImageFile(saved->url);
        if (!image)
            return;
        image->setDevicePixelRatio(saved->devicePixelRatio);
        image->setColorSpace(saved->colorSpace);
        prepareEditor(*image, saved->url);
    }
    showEditorWindow(openInNewWindow);
}

void ImageEditorManager::openEditorLauncher()
{
    m_model.reset();
    m_sourceFileURL.reset();
    m_savedCapture.reset();
    showEditorWindow(false);
}

void ImageEditorManager::showEditorWindow(bool openInNewWindow)
{
    if (openInNewWindow && m_model) {
        openDetachedEditorWindow(m_model, m_sourceFileURL);
        m_model.reset();
        m_sourceFileURL.reset();
        return;
    }

    const QSizeF contentSize = editorContentSize(m_model ? std::optional(imageSize(*m_model)) : std::nullopt);
    const EditorRootView root = makePrimaryEditorRootView();
    if (m_editorWindow) {
        m_editorWindow->setContent(root);
    } else {
        std::shared_ptr<EditorWindow> window = makeWindow(contentSize);
        window->setContent(root);
        window->onQuitShortcut = [this] { closePrimaryEditor(); };
        // Its close button closes it as surely as the editor's own cancel.
        m_editorWindowCloseObserver = window->addWillCloseObserver([this] { forgetPrimaryEditor(); });
        m_editorWindow = std::move(window);
    }
    m_editorWindow->setMinimumSize(minimumWindowSize);
    m_editorWindow->setContentSize(contentSize);
    m_editorWindow->center();
    m_services.application.activate();
    m_editorWindow->makeKeyAndOrderFront();
}

void ImageEditorManager::openDetachedEditorWindow(const std::shared_ptr<ImageEditorModel> &model,
                                                  const std::optional<QUrl> &sourceURL)
{
    std::shared_ptr<EditorWindow> window = makeWindow(editorContentSize(imageSize(*model)));
    const std::weak_ptr<EditorWindow> weakWindow = window;
    const QUuid key = QUuid::createUuid();
    auto close = [this, weakWindow] {
        if (const std::shared_ptr<EditorWindow> target = weakWindow.lock())
            closeDetachedEditorWindow(target.get());
    };

    std::shared_ptr<ImageEditorView> view = makeEditorView(model);
    view->onSave = [this, sourceURL, close](const QImage &image) {
        // `close` finds nothing to close when the window went while the file was written.
        m_saver.saveEditedImage(image, sourceURL, [close](bool saved) {
            if (saved)
                close();
        });
    };
    view->onCancel = close;
    window->onQuitShortcut = close;
    window->setContent(view);

    m_detachedEditorWindows.insert(key, window);
    m_detachedWindowCloseObservers.insert(key, window->addWillCloseObserver([this, key] {
        m_detachedWindowCloseObservers.remove(key);
        releaseLater(m_detachedEditorWindows.take(key));
    }));
    window->makeKeyAndOrderFront();
    m_services.application.activate();
}

void ImageEditorManager::closeDetachedEditorWindow(EditorWindow *window)
{
    const auto found = std::find_if(m_detachedEditorWindows.cbegin(), m_detachedEditorWindows.cend(),
                                    [window](const std::shared_ptr<EditorWindow> &w) { return w.get() == window; });
    if (found == m_detachedEditorWindows.cend()) {
        window->close();
        return;
    }
    const QUuid key = found.key();
    std::shared_ptr<EditorWindow> held = m_detachedEditorWindows.take(key);
    held->removeWillCloseObserver(m_detachedWindowCloseObservers.take(key));
    held->close();
    releaseLater(std::move(held));
}

void ImageEditorManager::closePrimaryEditor()
{
    if (!m_editorWindow)
        return;
    m_editorWindow->removeWillCloseObserver(m_editorWindowCloseObserver);
    m_editorWindow->close();
    forgetPrimaryEditor();
}

void ImageEditorManager::forgetPrimaryEditor()
{
    std::shared_ptr<EditorWindow> window = std::exchange(m_editorWindow, nullptr);
    // The document it showed goes too (a 4K picture is 32 MiB, more with its undo history); one
    // prepared since for a click on a later notification stays. A later click opens the picture
    // again from the file it was saved to.
    const std::shared_ptr<ImageEditorView> shown = std::exchange(m_primaryView, {}).lock();
    if (m_model && shown && &shown->model() == m_model.get()) {
        if (m_sourceFileURL) {
            const QImage &image = m_model->image();
            m_savedCapture = SavedCapture{*m_sourceFileURL, image.devicePixelRatio(), image.colorSpace()};
        }
        m_model.reset();
        m_sourceFileURL.reset();
    }
    releaseLater(std::move(window));
}

EditorRootView ImageEditorManager::makePrimaryEditorRootView()
{
    if (!m_model) {
        m_primaryView.reset();
        auto dropTarget = std::make_shared<EditorDropTargetView>(m_services.scheduler);
        dropTarget->onPickFile = [this] { openImagePanel(); };
        dropTarget->onPasteImage = [this] { openImageFromClipboard(); };
        dropTarget->onOpenURL = [this](const QUrl &url) { openImageFile(url); };
        dropTarget->onCancel = [this] { closePrimaryEditor(); };
        return dropTarget;
    }
    std::shared_ptr<ImageEditorView> view = makeEditorView(m_model);
    m_primaryView = view;
    view->onSave = [this, saving = std::weak_ptr(view)](const QImage &image) {
        // The source as it is now: a later capture opened in an extra window has cleared it, and the
        // picture then goes to the capture folder under a capture-style name.
        m_saver.saveEditedImage(image, m_sourceFileURL, [this, saving](bool saved) {
            // The primary window may show another document, or none, by the time the file is written.
            const std::shared_ptr<ImageEditorView> savingView = saving.lock();
            if (saved && savingView && m_primaryView.lock() == savingView)
                closePrimaryEditor();
        });
    };
    view->onCancel = [this] { closePrimaryEditor(); };
    return view;
}

QSizeF ImageEditorManager::editorContentSize(std::optional<QSizeF> imageSize) const
{
    const std::optional<DisplayInfo> screen = m_services.displays.mainScreen();
    const QSizeF visible = screen ? screen->visibleFrame.size() : QSizeF(1000, 1000);
    if (!imageSize)
        return {std::min(1000.0, visible.width()), std::min(1000.0, visible.height())};
    return {std::min(std::max(1000.0, imageSize->width() + 500), visible.width()),
            std::min(std::max(1000.0, imageSize->height() + 680), visible.height())};
}

void ImageEditorManager::openImagePanel()
{
    if (const std::optional<QUrl> url = m_sources.chooseImageFile())
        openImageFile(*url);
}

void ImageEditorManager::openImageFile(const QUrl &url)
{
    const std::optional<QImage> image = m_sources.loadImageFile(url);
    if (!image)
        return;
    prepareEditor(*image, url);
    showEditorWindow(false);
}

void ImageEditorManager::openImageFromClipboard()
{
    const std::optional<QImage> image = m_sources.readClipboardImage();
    if (!image)
        return;
    prepareEditor(*image, std::nullopt);
    showEditorWindow(false);
}

std::shared_ptr<EditorWindow> ImageEditorManager::makeWindow(QSizeF contentSize)
{
    std::shared_ptr<EditorWindow> window =
        m_services.windows.makeEditorWindow({windowTitle, contentSize, minimumWindowSize});
    window->center();
    window->setMinimumSize(minimumWindowSize);
    return window;
}

std::shared_ptr<ImageEditorView> ImageEditorManager::makeEditorView(const std::shared_ptr<ImageEditorModel> &model)
{
    return std::make_shared<ImageEditorView>(model, ImageEditorView::Services{m_services.systemLog, m_services.scheduler});
}

void ImageEditorManager::releaseLater(std::shared_ptr<EditorWindow> window)
{
    if (window)
        m_services.scheduler.postToMain([window] {});
}

QSizeF ImageEditorManager::imageSize(const ImageEditorModel &model)
{
    // The size the picture had on screen: a HiDPI capture's window is no larger than a plain one's.
    return model.image().deviceIndependentSize();
}
