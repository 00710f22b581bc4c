#include "helpers/EditorWindowsFixture.h"

#include "EditorDropTargetWidget.h"
#include "ImageEditorWidget.h"

#include "editor/ImageEditorModel.h"

#include <QAbstractButton>
#include <QGuiApplication>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

class QtEditorWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void launcherShowsTheDropTargetInAnEditorWindow();
    void controlQClosesOnlyThatWindow_data();
    void controlQClosesOnlyThatWindow();
    void closingADetachedWindowForgetsIt();
    void aNewEditorDrawsWithTheStylesCachedByTheLastOne();
};

void QtEditorWindowTest::launcherShowsTheDropTargetInAnEditorWindow()
{
    EditorWindowsFixture f;
    f.displays.main = FakeDisplayProvider::display(1, Rect(0, 0, 1440, 875));
    f.manager.openEditorLauncher();
    QtEditorWindow *window = f.primary();
    QVERIFY(window && window->widget()->isVisible());
    QCOMPARE(window->widget()->windowTitle(), u"Vistrel 編集"_s);
    QVERIFY(qobject_cast<EditorDropTargetWidget *>(window->contentWidget()));
    const Qt::WindowFlags flags = window->widget()->windowFlags();
    QVERIFY(flags.testFlags(Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint));
    const QSize screen = QGuiApplication::primaryScreen()->availableGeometry().size();
    QCOMPARE(window->widget()->minimumSize(), QSize(1000, 1000).boundedTo(screen));
    // The size the window manager asked for, no larger than the visible frame it was given.
    QCOMPARE(window->widget()->size(), QSize(1000, 875));
    QVERIFY(QTest::qWaitForWindowExposed(window->widget()));

    // The same window takes the editor.
    f.openCapture(EditorWindowsFixture::picture());
    f.settle();
    QCOMPARE(f.primary(), window);
    QVERIFY(qobject_cast<ImageEditorWidget *>(window->contentWidget()));
    QCOMPARE(window->widget()->findChildren<EditorDropTargetWidget *>().size(), 0);
}

void QtEditorWindowTest::controlQClosesOnlyThatWindow_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<bool>("closes");
    QTest::newRow("Ctrl+Q") << Qt::Key_Q << Qt::KeyboardModifiers(Qt::ControlModifier) << true;
    QTest::newRow("Ctrl+Shift+Q") << Qt::Key_Q << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::ShiftModifier) << true;
    QTest::newRow("Ctrl+Alt+Q") << Qt::Key_Q << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::AltModifier) << true;
    QTest::newRow("Q alone") << Qt::Key_Q << Qt::KeyboardModifiers() << false;
    QTest::newRow("Alt+Q") << Qt::Key_Q << Qt::KeyboardModifiers(Qt::AltModifier) << false;
    QTest::newRow("Ctrl+W") << Qt::Key_W << Qt::KeyboardModifiers(Qt::ControlModifier) << false;
}

void QtEditorWindowTest::controlQClosesOnlyThatWindow()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(bool, closes);
    EditorWindowsFixture f;
    QSignalSpy quitting(qApp, &QCoreApplication::aboutToQuit);
    f.openCapture(EditorWindowsFixture::picture());
    QtEditorWindow *primary = f.primary();
    f.openCapture(EditorWindowsFixture::picture(), true);
    QCOMPARE(f.manager.detachedEditorWindows().size(), 1);
    auto *detached = static_cast<QtEditorWindow *>(f.manager.detachedEditorWindows().first());
    QWidget *primaryWidget = primary->widget();

    primaryWidget->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(primaryWidget));
    f.key(primary, key, modifiers);
    QCOMPARE(f.manager.editorWindow() == nullptr, closes);
    QCOMPARE(primaryWidget->isVisible(), !closes);
    // The other window and the application go on.
    QVERIFY(detached->widget()->isVisible());
    QCOMPARE(f.manager.detachedEditorWindows().size(), 1);
    QCOMPARE(quitting.count(), 0);

    f.key(detached, key, modifiers);
    QCOMPARE(f.manager.detachedEditorWindows().isEmpty(), closes);
    QCOMPARE(quitting.count(), 0);
}

void QtEditorWindowTest::closingADetachedWindowForgetsIt()
{
    EditorWindowsFixture f;
    f.openCapture(EditorWindowsFixture::picture());
    f.openCapture(EditorWindowsFixture::picture(), true);
    QCOMPARE(f.manager.detachedEditorWindows().size(), 1);
    auto *window = static_cast<QtEditorWindow *>(f.manager.detachedEditorWindows().first());
    QVERIFY(window->widget()->close());
    f.settle();
    QVERIFY(f.manager.detachedEditorWindows().isEmpty());
}

// The widget style keeps what it drew under keys made of the icon and the palette: an editor whose
// icons or scroll bar palette were new each time would fill the style's cache with dead entries.
void QtEditorWindowTest::aNewEditorDrawsWithTheStylesCachedByTheLastOne()
{
    EditorWindowsFixture f;
    const auto styleKeys = [](QWidget *editor) {
        QList<qint64> keys;
        for (const QAbstractButton *button : editor->findChildren<QAbstractButton *>())
            if (!button->icon().isNull())
                keys.append(button->icon().cacheKey());
        for (const QScrollBar *bar : editor->findChildren<QScrollBar *>())
            keys.append(qint64(bar->palette().cacheKey()));
        return keys;
    };
    f.openCapture(EditorWindowsFixture::picture());
    QPointer<QWidget> first = f.primary()->contentWidget();
    const QList<qint64> firstKeys = styleKeys(first);
    QVERIFY(!firstKeys.isEmpty());
    f.key(f.primary(), Qt::Key_Q, Qt::ControlModifier);
    QVERIFY(!f.manager.editorWindow());
    QVERIFY(!first);

    f.openCapture(EditorWindowsFixture::picture());
    QCOMPARE(styleKeys(f.primary()->contentWidget()), firstKeys);
}

QTEST_MAIN(QtEditorWindowTest)
#include "tst_qteditorwindow.moc"
