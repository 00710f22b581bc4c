#include "FakeSystemLog.h"
#include "JsonFileKeyValueStore.h"
#include "UnprivilegedUser.h"

#include "settings/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

extern char **environ;

class JsonFileKeyValueStoreTest : public QObject
{
    Q_OBJECT

private slots:
    void typesSurviveARestart();
    void corruptFileIsKeptAsideAndDefaultsApply();
    void unreadableFileIsNeverWrittenOver();
    void unwritableLocationKeepsValuesInMemory();
    void killedWriterNeverLeavesAnUnreadableFile();
};

void JsonFileKeyValueStoreTest::typesSurviveARestart()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"config/Vistrel/settings.json"_s);
    FakeSystemLog log;
    {
        JsonFileKeyValueStore store(path, log);
        store.setValue(u"text"_s, u"⇧⌘ 日本語, = ; \""_s);
        store.setValue(u"modifiers"_s, quint64(0x120000));
        store.setValue(u"off"_s, false);
        store.setValue(u"opacity"_s, 0.3);
        store.setValue(u"whole"_s, 1.0);
        store.setValue(u"emptyText"_s, QString());
        QVERIFY(store.sync());
    }
    JsonFileKeyValueStore reopened(path, log);
    UserDefaults defaults(reopened);
    QCOMPARE(defaults.string(u"text"_s), std::optional<QString>(u"⇧⌘ 日本語, = ; \""_s));
    QCOMPARE(defaults.unsignedInteger(u"modifiers"_s), std::optional<quint64>(0x120000));
    QVERIFY(defaults.contains(u"off"_s));
    QVERIFY(!defaults.boolValue(u"off"_s));
    QCOMPARE(reopened.value(u"off"_s)->typeId(), int(QMetaType::Bool));
    QCOMPARE(defaults.doubleValue(u"opacity"_s), 0.3);
    QCOMPARE(defaults.doubleValue(u"whole"_s), 1.0);
    QCOMPARE(defaults.string(u"emptyText"_s), std::optional<QString>(QString()));
    QVERIFY(!defaults.contains(u"missing"_s));
    // A string never passes for a number.
    QVERIFY(!defaults.unsignedInteger(u"text"_s));
    QVERIFY(log.messages().isEmpty());
}

void JsonFileKeyValueStoreTest::corruptFileIsKeptAsideAndDefaultsApply()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"settings.json"_s);
    const QByteArray garbage = "{\"VistrelFilenamePrefix\": \"Shot\", trunc";
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(garbage);
    }
    FakeSystemLog log;
    JsonFileKeyValueStore store(path, log);
    QVERIFY(store.keys().isEmpty());
    QCOMPARE(log.messages().size(), 1);
    QVERIFY(log.messages().first().startsWith(u"Vistrel: 設定ファイルが壊れているため既定値で起動します。"_s));
    QFile aside(path + u".unreadable"_s);
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), garbage);
    store.setValue(u"VistrelIncludeDate"_s, true);
    QVERIFY(store.sync());
    QVERIFY(JsonFileKeyValueStore(path, log).value(u"VistrelIncludeDate"_s));
}

void JsonFileKeyValueStoreTest::unreadableFileIsNeverWrittenOver()
{
    QTemporaryDir dir;
    QVERIFY(UnprivilegedUser::openFolder(dir.path()));
    const QString path = dir.filePath(u"settings.json"_s);
    const QByteArray saved = "{\"VistrelFilenamePrefix\": \"Shot\"}";
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(saved);
    }
    QVERIFY(QFile::setPermissions(path, {}));
    FakeSystemLog log;
    {
        UnprivilegedUser user;
        QVERIFY(user.isEffective());
        JsonFileKeyValueStore store(path, log);
        QVERIFY(store.keys().isEmpty());
        store.setValue(u"VistrelIncludeDate"_s, true);
        QVERIFY(!store.sync());
        QVERIFY(!store.sync());
        QCOMPARE(store.value(u"VistrelIncludeDate"_s), std::optional<QVariant>(true));
    }
    // Said once, at start-up, with what becomes of the file and of the session's changes.
    QCOMPARE(log.messages().size(), 1);
    QVERIFY2(log.messages().first().startsWith(u"Vistrel: 設定ファイルを読み込めませんでした: "_s + path),
             qPrintable(log.messages().first()));
    QVERIFY2(log.messages().first().endsWith(u"ファイルはそのまま残し、この間の変更は保存しません"_s),
             qPrintable(log.messages().first()));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{u"settings.json"_s});
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), saved);
}

void JsonFileKeyValueStoreTest::unwritableLocationKeepsValuesInMemory()
{
    QTemporaryDir dir;
    QFile blocker(dir.filePath(u"file"_s));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    FakeSystemLog log;
    JsonFileKeyValueStore store(dir.filePath(u"file/settings.json"_s), log);
    store.setValue(u"k"_s, u"v"_s);
    QVERIFY(!store.sync());
    QCOMPARE(store.value(u"k"_s), std::optional<QVariant>(u"v"_s));
    QCOMPARE(log.messages().size(), 1);
    QVERIFY(log.messages().first().startsWith(u"Vistrel: 設定を保存できませんでした: "_s));
}

void JsonFileKeyValueStoreTest::killedWriterNeverLeavesAnUnreadableFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"settings.json"_s);
    const QByteArray pathBytes = QFile::encodeName(path);
    quint64 lastGeneration = 0;
    int killsAfterAWrite = 0;
    for (int round = 0; round < 60; ++round) {
        char *argv[] = {const_cast<char *>(STORE_WRITER_CHILD), const_cast<char *>(pathBytes.constData()), nullptr};
        pid_t pid = 0;
        QCOMPARE(posix_spawn(&pid, STORE_WRITER_CHILD, nullptr, nullptr, argv, environ), 0);
        ::usleep(useconds_t(QRandomGenerator::global()->bounded(2000, 25000)));
        ::kill(pid, SIGKILL);
        int status = 0;
        ::waitpid(pid, &status, 0);
        QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL, "the writer stopped on its own");

        QFile file(path);
        if (!file.exists())
            continue; // killed before its first save
        QVERIFY(file.open(QIODevice::ReadOnly));
        QJsonParseError error;
        const QJsonObject values = QJsonDocument::fromJson(file.readAll(), &error).object();
        QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));
        // Every key belongs to one and the same generation: old or new, never a mix.
        const quint64 generation = quint64(values.value(u"generation"_s).toInteger());
        QVERIFY(generation >= lastGeneration);
        for (int i = 0; i < 10; ++i)
            QVERIFY(values.value(u"key%1"_s.arg(i)).toString().startsWith(u"g%1-"_s.arg(generation)));
        QCOMPARE(values.value(u"flag"_s).toBool(), generation % 2 == 0);
        QCOMPARE(values.value(u"half"_s).toDouble(), double(generation) + 0.5);
        if (generation > lastGeneration)
            ++killsAfterAWrite;
        lastGeneration = generation;
    }
    QVERIFY(killsAfterAWrite > 10);
    // At most the one temporary of an interrupted write is left beside it.
    const QStringList files = QDir(dir.path()).entryList(QDir::Files);
    QVERIFY2(files.size() <= 2 && files.contains(u"settings.json"_s), qPrintable(files.join(u' ')));
}

QTEST_GUILESS_MAIN(JsonFileKeyValueStoreTest)
#include "tst_jsonfilekeyvaluestore.moc"
