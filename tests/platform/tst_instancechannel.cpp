// Starts the program twice, as a user would, on a private session bus.
#include "DBusSession.h"

#include <QProcess>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
std::unique_ptr<QProcess> start(const QString &busAddress, const QStringList &arguments)
{
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, busAddress);
    process->setProcessEnvironment(environment);
    process->start(QStringLiteral(INSTANCE_CHILD), arguments);
    return process;
}

// Runs a second start to its end and returns its exit code.
int runSecond(const QString &busAddress, const QStringList &arguments)
{
    std::unique_ptr<QProcess> second = start(busAddress, arguments);
    if (!second->waitForFinished(10000))
        return -1;
    return second->exitStatus() == QProcess::NormalExit ? second->exitCode() : -2;
}

bool waitForLine(QProcess &process, QByteArray expected)
{
    return QTest::qWaitFor([&] {
        if (!process.canReadLine())
            process.waitForReadyRead(100);
        return process.canReadLine() && process.readLine().trimmed() == expected;
    }, 10000);
}
} // namespace

class InstanceChannelTest : public QObject
{
    Q_OBJECT

private slots:
    void secondStartHandsItsCommandToTheFirst();
    void withoutASessionBusEachStartRunsAlone();
};

void InstanceChannelTest::secondStartHandsItsCommandToTheFirst()
{
    DBusSession bus;
    QVERIFY(bus.isRunning());
    std::unique_ptr<QProcess> crashed = start(bus.address(), {});
    QVERIFY(waitForLine(*crashed, "listening"));
    crashed->kill();
    QVERIFY(crashed->waitForFinished(10000));

    // Even after a crash the bus releases the name, so the next start becomes the instance.
    std::unique_ptr<QProcess> first = start(bus.address(), {});
    QVERIFY(waitForLine(*first, "listening"));
    QCOMPARE(runSecond(bus.address(), {}), 0);
    QVERIFY(waitForLine(*first, R"(["activate"])"));
    QCOMPARE(runSecond(bus.address(), {u"edit"_s, u"/tmp/スクリーン ショット.png"_s, u""_s}), 0);
    QVERIFY(waitForLine(*first, R"(["edit","/tmp/スクリーン ショット.png",""])"));

    QCOMPARE(runSecond(bus.address(), {u"quit"_s}), 0);
    QVERIFY(first->waitForFinished(10000));
    QCOMPARE(first->exitCode(), 0);
}

void InstanceChannelTest::withoutASessionBusEachStartRunsAlone()
{
    QCOMPARE(runSecond(u"unix:path=/nonexistent/bus"_s, {}), 4);
}

QTEST_GUILESS_MAIN(InstanceChannelTest)
#include "tst_instancechannel.moc"
