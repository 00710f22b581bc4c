#include "QtFolderChooser.h"
#include "QtOpenPanel.h"
#include "QtUpdateUserDriver.h"

#include "editor/EditorImageSources.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

// Runs `answer` on the modal dialog once it is up.
template<typename Dialog>
void whenShown(std::function<void(Dialog *)> answer)
{
    QTimer::singleShot(0, qApp, [answer] {
        QTRY_VERIFY(qobject_cast<Dialog *>(QApplication::activeModalWidget()));
        answer(qobject_cast<Dialog *>(QApplication::activeModalWidget()));
    });
}

struct FileDialogSeen
{
    QString prompt;
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
    QStringList filters;
};

// Notes what the file dialog offers, then chooses `path` in it or cancels.
void answerFileDialog(FileDialogSeen &seen, const QString &path, bool accepted)
{
    whenShown<QFileDialog>([&seen, path, accepted](QFileDialog *dialog) {
        seen = {dialog->labelText(QFileDialog::Accept), dialog->fileMode(), dialog->mimeTypeFilters()};
        dialog->selectFile(path);
        QMetaObject::invokeMethod(dialog, accepted ? "accept" : "reject");
    });
}

} // namespace

class QtDialogsTest : public QObject
{
    Q_OBJECT

private slots:
    void fileDialogsOfferWhatIsAskedFor_data();
    void fileDialogsOfferWhatIsAskedFor();
    void offerTellsWhichButtonWasChosen_data();
    void offerTellsWhichButtonWasChosen();
    void noticeShowsItsTexts();
};

void QtDialogsTest::fileDialogsOfferWhatIsAskedFor_data()
{
    QTest::addColumn<bool>("folder"); // else an image to open
    QTest::addColumn<bool>("accepted");
    QTest::newRow("folder chosen") << true << true;
    QTest::newRow("folder chooser cancelled") << true << false;
    QTest::newRow("image chosen") << false << true;
    QTest::newRow("open panel cancelled") << false << false;
}

void QtDialogsTest::fileDialogsOfferWhatIsAskedFor()
{
    QFETCH(bool, folder);
    QFETCH(bool, accepted);
    QTemporaryDir dir;
    const QString path = dir.filePath(folder ? u"shots"_s : u"shot.png"_s);
    QVERIFY(folder ? QDir(dir.path()).mkdir(u"shots"_s) : QImage(4, 4, QImage::Format_RGB32).save(path));
    FileDialogSeen seen;
    answerFileDialog(seen, path, accepted);
    if (folder) {
        QCOMPARE(QtFolderChooser().chooseFolder(dir.path(), u"選択"_s), accepted ? std::optional(path) : std::nullopt);
        QCOMPARE(seen.prompt, u"選択"_s);
        QCOMPARE(seen.mode, QFileDialog::Directory);
        return;
    }
    const OpenPanel::Request request = EditorImageSources::imagePanelRequest();
    QCOMPARE(QtOpenPanel().runModal(request), accepted ? std::optional(QUrl::fromLocalFile(path)) : std::nullopt);
    QCOMPARE(seen.prompt, u"開く"_s);
    QCOMPARE(seen.mode, QFileDialog::ExistingFile);
    QCOMPARE(seen.filters, request.allowedContentTypes);
    QVERIFY(seen.filters.contains(u"image/png"_s));
}

void QtDialogsTest::offerTellsWhichButtonWasChosen_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("accept") << 0 << true;
    QTest::newRow("decline") << 1 << false;
}

void QtDialogsTest::offerTellsWhichButtonWasChosen()
{
    QFETCH(int, button);
    QStringList seen;
    whenShown<QMessageBox>([&](QMessageBox *box) {
        seen << box->text() << box->informativeText() << box->defaultButton()->text();
        const QStringList order{u"開く"_s, u"あとで"_s};
        for (QAbstractButton *candidate : box->buttons())
            if (candidate->text() == order.at(button))
                candidate->click();
    });
    QtUpdateUserDriver driver;
    QTEST(driver.runModalOffer(u"新しい"_s, u"説明"_s, u"開く"_s, u"あとで"_s), "accepted");
    QCOMPARE(seen, (QStringList{u"新しい"_s, u"説明"_s, u"開く"_s}));
}

void QtDialogsTest::noticeShowsItsTexts()
{
    // Alerts the end-to-end tests read on screen.
    QStringList seen;
    whenShown<QMessageBox>([&seen](QMessageBox *box) {
        seen << box->windowTitle() << box->text() << box->informativeText() << QString::number(box->buttons().size());
        box->accept();
    });
    QtUpdateUserDriver().runModalNotice(u"最新のバージョンです"_s, u"Vistrel 1.0"_s);
    QCOMPARE(seen, (QStringList{u"Vistrel"_s, u"最新のバージョンです"_s, u"Vistrel 1.0"_s, u"1"_s}));
}

QTEST_MAIN(QtDialogsTest)
#include "tst_qtdialogs.moc"
