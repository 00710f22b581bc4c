#include "FakeScheduler.h"

#include "EditorDropTargetWidget.h"

#include "editor/EditorDropTargetView.h"

#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct Fixture
{
    Fixture()
    {
        view->onOpenURL = [this](const QUrl &url) { opened.append(url); };
        view->onPickFile = [this] { calls.append(u"pick"_s); };
        view->onPasteImage = [this] { calls.append(u"paste"_s); };
        view->onCancel = [this] { calls.append(u"cancel"_s); };
        widget.resize(800, 600);
        widget.show();
    }

    bool enter(const QMimeData &data)
    {
        QDragEnterEvent event(widget.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    }
    bool drop(const QMimeData &data)
    {
        QDropEvent event(widget.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&widget, &event);
        scheduler.runUntilIdle();
        return event.isAccepted();
    }
    // The panel's colour as painted, at a point inside the panel away from the texts.
    QColor panelPixel()
    {
        return widget.grab().toImage().pixelColor(30, 30);
    }

    FakeScheduler scheduler;
    std::shared_ptr<EditorDropTargetView> view = std::make_shared<EditorDropTargetView>(scheduler);
    EditorDropTargetWidget widget{view};
    QList<QUrl> opened;
    QStringList calls;
};

QMimeData *files(const QStringList &paths)
{
    auto *data = new QMimeData;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data->setUrls(urls);
    return data;
}

} // namespace

class EditorDropTargetWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheSymbolTextsAndButtons();
    void buttonsAndKeysReachTheCallbacks();
    void panelIsTintedWhileAFileHovers();
    void dropOpensTheFirstFileOnly();
    void refusesWhatIsNoFile();
};

void EditorDropTargetWidgetTest::showsTheSymbolTextsAndButtons()
{
    Fixture f;
    QStringList texts;
    bool hasSymbol = false;
    for (const QLabel *label : f.widget.findChildren<QLabel *>()) {
        if (!label->pixmap().isNull())
            hasSymbol = label->pixmap().deviceIndependentSize() == QSizeF(54, 54);
        else
            texts.append(label->text());
    }
    QVERIFY(hasSymbol);
    QCOMPARE(texts, (QStringList{u"画像をドラッグ＆ドロップ"_s, u"または「画像を選択」から開いて編集"_s}));
    QStringList titles;
    for (const QPushButton *button : f.widget.findChildren<QPushButton *>())
        titles.append(button->text() + (button->isDefault() ? u"*"_s : QString()));
    QCOMPARE(titles, (QStringList{u"画像を選択*"_s, u"クリップボードから貼り付け"_s, u"キャンセル"_s}));
}

void EditorDropTargetWidgetTest::buttonsAndKeysReachTheCallbacks()
{
    Fixture f;
    f.widget.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&f.widget));
    for (QPushButton *button : f.widget.findChildren<QPushButton *>())
        button->click();
    QCOMPARE(f.calls, (QStringList{u"pick"_s, u"paste"_s, u"cancel"_s}));
    f.calls.clear();
    QTest::keyClick(f.widget.windowHandle(), Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(f.widget.windowHandle(), Qt::Key_Return);
    QTest::keyClick(f.widget.windowHandle(), Qt::Key_V);
    QCOMPARE(f.calls, (QStringList{u"paste"_s, u"pick"_s}));
}

void EditorDropTargetWidgetTest::panelIsTintedWhileAFileHovers()
{
    Fixture f;
    QVERIFY(QTest::qWaitForWindowExposed(&f.widget));
    const QColor resting = f.panelPixel();
    const QColor restingFill = f.widget.panelColor();
    std::unique_ptr<QMimeData> data(files({u"/tmp/a.png"_s}));
    QVERIFY(f.enter(*data));
    QVERIFY(f.view->isTargeted());
    const QColor tinted = f.panelPixel();
    QVERIFY(tinted != resting);
    // The accent colour at 0.18 (alpha is kept in 16 bits).
    QCOMPARE(f.widget.panelColor().rgb(), f.widget.palette().color(QPalette::Highlight).rgb());
    QVERIFY(qAbs(f.widget.panelColor().alphaF() - 0.18) < 0.001);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&f.widget, &leave);
    QCOMPARE(f.panelPixel(), resting);
    QCOMPARE(f.widget.panelColor(), restingFill);
}

void EditorDropTargetWidgetTest::dropOpensTheFirstFileOnly()
{
    Fixture f;
    std::unique_ptr<QMimeData> data(files({u"/tmp/first.png"_s, u"/tmp/second.png"_s}));
    QVERIFY(f.enter(*data));
    QVERIFY(f.drop(*data));
    QCOMPARE(f.opened, QList<QUrl>{QUrl::fromLocalFile(u"/tmp/first.png"_s)});
    QVERIFY(!f.view->isTargeted());
}

void EditorDropTargetWidgetTest::refusesWhatIsNoFile()
{
    Fixture f;
    QMimeData text;
    text.setText(u"not a file"_s);
    QVERIFY(!f.enter(text));
    QVERIFY(!f.view->isTargeted());
    QVERIFY(!f.drop(text));
    QMimeData web;
    web.setUrls({QUrl(u"https://example.org/picture.png"_s)});
    QVERIFY(!f.enter(web));
    QVERIFY(!f.drop(web));
    QVERIFY(f.opened.isEmpty());
}

QTEST_MAIN(EditorDropTargetWidgetTest)
#include "tst_editordroptargetwidget.moc"
