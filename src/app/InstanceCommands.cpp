#include "InstanceCommands.h"

#include "app/AppDelegate.h"
#include "app/CrashDiagnostics.h"
#include "capture/ScreenshotManager.h"
#include "editor/ImageEditorManager.h"

#include <QImage>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace instancecommands {

void perform(AppDelegate &delegate, const QString &command, const QStringList &arguments)
{
    const QString file = arguments.value(0);
    if (command == u"edit"_s && !file.isEmpty()) {
        ImageEditorManager::shared().openImageFile(QUrl::fromLocalFile(file));
    } else if (command == u"edit"_s) {
        delegate.openEditorLauncher();
    } else if (command == u"settings"_s) {
        delegate.showSettings();
    } else if (command == u"select"_s) {
        delegate.triggerScreenshot();
    } else if (command == u"repeat"_s) {
        ScreenshotManager::shared().captureLastSelection();
    } else if (command == u"quit"_s) {
        delegate.terminateApp();
    } else if (command == u"copy"_s && !file.isEmpty()) {
        const QImage image(file);
        if (image.isNull())
            CrashDiagnostics::shared().write(u"instance command copy: cannot read "_s % file);
        else
            ScreenshotManager::shared().copyImageToClipboard(image);
    } else {
        CrashDiagnostics::shared().write(u"instance command "_s % command % u": already running"_s);
    }
}

} // namespace instancecommands
