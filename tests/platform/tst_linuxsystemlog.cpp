#include "LinuxSystemLog.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class LinuxSystemLogTest : public QObject
{
    Q_OBJECT

private slots:
    void eachMessageIsOneUtf8LineOnStandardError();
};

void LinuxSystemLogTest::eachMessageIsOneUtf8LineOnStandardError()
{
    QTemporaryDir dir;
    const QByteArray path = QFile::encodeName(dir.filePath(u"stderr"_s));
    std::fflush(stderr);
    const int saved = ::dup(STDERR_FILENO);
    const int capture = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    QVERIFY(saved >= 0 && capture >= 0);
    ::dup2(capture, STDERR_FILENO);
    {
        LinuxSystemLog log;
        log.log(u"Vistrel: ホットキーの登録に失敗しました: 10"_s);
        log.log(u"Vistrel: 通知スケジュール成功"_s);
    }
    std::fflush(stderr);
    ::dup2(saved, STDERR_FILENO);
    ::close(saved);
    ::close(capture);

    QFile written(dir.filePath(u"stderr"_s));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), QByteArray("Vistrel: ホットキーの登録に失敗しました: 10\n"
                                           "Vistrel: 通知スケジュール成功\n"));
}

QTEST_APPLESS_MAIN(LinuxSystemLogTest)
#include "tst_linuxsystemlog.moc"
