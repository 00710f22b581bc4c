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

    // A drag of `urls` (none: of text) entering the widget, dropped there when `drops`.
    bool drag(const QList<QUrl> &urls, bool drops = false)
    {
        QMimeData data;
        if (urls.isEmpty())
            data.setText(u"not a file"_s);
        else
            data.setUrls(urls);
        QDragEnterEvent enter(widget.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&widget, &enter);
        if (!drops)
            return enter.isAccepted();
        QDropEvent drop(widget.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&widget, &drop);
        scheduler.runUntilIdle();
        return enter.isAccepted() && drop.isAccepted();
    }
    // The panel's colour as painted, at a point inside the panel away from the texts.
    QColor panelPixel() { return widget.grab().toImage().pixelColor(30, 30); }

    FakeScheduler scheduler;
    std::shared_ptr<EditorDropTargetView> view = std::make_shared<EditorDropTargetView>(scheduler);
    EditorDropTargetWidget widget{view};
    QList<QUrl> opened;
    QStringList calls;
};

} // namespace

class EditorDropTargetWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheTextsAndButtonsThatReachTheCallbacks();
    void panelIsTintedWhileAFileHovers();
    void dropsOpenALocalFileOnly_data();
    void dropsOpenALocalFileOnly();
};

void EditorDropTargetWidgetTest::showsTheTextsAndButtonsThatReachTheCallbacks()
{
    Fixture f;
    f.widget.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&f.widget));
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
    for (QPushButton *button : f.widget.findChildren<QPushButton *>()) {
        titles.append(button->text() + (button->isDefault() ? u"*"_s : QString()));
        button->click();
    }
    QCOMPARE(titles, (QStringList{u"画像を選択*"_s, u"クリップボードから貼り付け"_s, u"キャンセル"_s}));
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
    QVERIFY(f.drag({QUrl::fromLocalFile(u"/tmp/a.png"_s)}));
    QVERIFY(f.view->isTargeted());
    QVERIFY(f.panelPixel() != resting);
    // The accent colour at 0.18 (alpha is kept in 16 bits).
    QCOMPARE(f.widget.panelColor().rgb(), f.widget.palette().color(QPalette::Highlight).rgb());
    QVERIFY(qAbs(f.widget.panelColor().alphaF() - 0.18) < 0.001);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&f.widget, &leave);
    QCOMPARE(f.panelPixel(), resting);
    QCOMPARE(f.widget.panelColor(), restingFill);
}

void EditorDropTargetWidgetTest::dropsOpenALocalFileOnly_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<bool>("accepted");
    const QUrl first = QUrl::fromLocalFile(u"/tmp/first.png"_s);
    QTest::newRow("the first of two files") << QList<QUrl>{first, QUrl::fromLocalFile(u"/tmp/second.png"_s)} << true;
    QTest::newRow("text") << QList<QUrl>() << false;
}

void EditorDropTargetWidgetTest::dropsOpenALocalFileOnly()
{
    QFETCH(QList<QUrl>, urls);
    QFETCH(bool, accepted);
    Fixture f;
    QCOMPARE(f.drag(urls, true), accepted);
    QCOMPARE(f.opened, accepted ? QList<QUrl>{urls.first()} : QList<QUrl>());
    QVERIFY(!f.view->isTargeted());
}

QTEST_MAIN(EditorDropTargetWidgetTest)
#include "tst_editordroptargetwidget.moc"
