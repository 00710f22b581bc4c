#include "FakeSystemLog.h"
#include "FastPngWriter.h"
#include "JsonFileKeyValueStore.h"
#include "UnprivilegedUser.h"

#include "settings/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class JsonFileKeyValueStoreTest : public QObject
{
    Q_OBJECT

private slots:
    void typesSurviveARestart();
    void corruptFileIsKeptAsideAndDefaultsApply();
    void unreadableFileIsNeverWrittenOver();
    void unwritableLocationKeepsValuesInMemory();
    void killedWriterLeavesTheOldOrTheNewFile_data();
    void killedWriterLeavesTheOldOrTheNewFile();
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

namespace {

// Noise seeded by the generation, whose first pixel holds the generation number, so a file read back
// names the one picture it must be. Large enough that many kills land inside a write.
QImage generationPicture(quint32 generation, bool hasAlpha)
{
    QImage image(256, 192, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    quint32 state = generation * 2654435761u + 1;
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            state = state * 1664525u + 1013904223u;
            row[x] = hasAlpha ? state : (state | 0xff000000u); // every alpha, see-through included
        }
    }
    image.setPixel(0, 0, 0xff000000u | (generation & 0xffffffu));
    return image;
}

QString captureName(const QString &folder, quint64 generation)
{
    return folder + u"/Vistrel_%1.png"_s.arg(qulonglong(generation), 6, 10, QChar(u'0'));
}

// The forked child: generation after generation through the real writer, as fast as it can, until
// killed. Settings write the same number into every key; captures each go under a new name, edited
// pictures over the same one.
[[noreturn]] void writeForever(const QByteArray &writer, const QString &path, quint64 generation)
{
    if (writer == "settings") {
        FakeSystemLog log;
        JsonFileKeyValueStore store(path, log);
        for (;; ++generation) {
            store.setValue(u"generation"_s, generation);
            for (int i = 0; i < 10; ++i)
                store.setValue(u"key%1"_s.arg(i), u"g%1-%2"_s.arg(generation).arg(QString(200, u'x')));
            store.setValue(u"flag"_s, generation % 2 == 0);
            store.setValue(u"half"_s, double(generation) + 0.5);
            if (!store.sync())
                ::_exit(1);
        }
    }
    const bool isCapture = writer == "capture";
    const FastPngWriter pngWriter(1, false);
    for (;; ++generation) {
        if (pngWriter.writeFile(generationPicture(quint32(generation), !isCapture),
                                isCapture ? captureName(path, generation) : path))
            ::_exit(1);
    }
}

// The generation of the settings file at `path`, or 0 when it is not whole: every key must belong to
// one and the same generation.
quint64 settingsGeneration(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    QJsonParseError error;
    const QJsonObject values = QJsonDocument::fromJson(file.readAll(), &error).object();
    const quint64 generation = quint64(values.value(u"generation"_s).toInteger());
    bool isWhole = error.error == QJsonParseError::NoError && generation > 0
                   && values.value(u"flag"_s).toBool() == (generation % 2 == 0)
                   && values.value(u"half"_s).toDouble() == double(generation) + 0.5;
    for (int i = 0; i < 10; ++i)
        isWhole = isWhole && values.value(u"key%1"_s.arg(i)).toString().startsWith(u"g%1-"_s.arg(generation));
    return isWhole ? generation : 0;
}

// The generation of the PNG at `path` when it decodes whole to exactly that generation's picture.
quint64 pictureGeneration(const QString &path, bool hasAlpha)
{
    const QImage image(path);
    const quint32 generation = image.isNull() ? 0 : image.pixel(0, 0) & 0xffffffu;
    const QImage expected = generationPicture(generation, hasAlpha);
    return generation > 0 && image.convertToFormat(expected.format()) == expected ? generation : 0;
}

} // namespace

void JsonFileKeyValueStoreTest::killedWriterLeavesTheOldOrTheNewFile_data()
{
    QTest::addColumn<QByteArray>("writer");
    QTest::newRow("settings") << QByteArray("settings");
    QTest::newRow("capture") << QByteArray("capture");
    QTest::newRow("edited image") << QByteArray("edited");
}

// The writer runs in a forked child killed at a random moment, again and again. Whatever the moment,
// a file under its final name is the previous one or the complete next one; a kill between naming the
// new file and the rename leaves a temporary "<name>.<random>.saving" (only then, where files can be
// made without a name), and a capture killed before its rename leaves no file under its name at all.
// VISTREL_KILL_ROUNDS sets the kills per writer (334 for the full thousand; fewer by default).
void JsonFileKeyValueStoreTest::killedWriterLeavesTheOldOrTheNewFile()
{
    QFETCH(QByteArray, writer);
    const int rounds = qEnvironmentVariableIsSet("VISTREL_KILL_ROUNDS") ? qEnvironmentVariableIntValue("VISTREL_KILL_ROUNDS")
                                                                        : 100;
    const bool isSettings = writer == "settings";
    const bool isCapture = writer == "capture";
    QTemporaryDir dir;
    QDir folder(dir.path());
    const QString path = isSettings ? dir.filePath(u"settings.json"_s)
                         : isCapture ? dir.path() : dir.filePath(u"Shot_edited.png"_s);
    quint64 lastGeneration = 0;
    int killsAfterAWrite = 0;
    QSet<QString> temporaries;
    for (int round = 0; round < rounds; ++round) {
        const pid_t pid = ::fork();
        QVERIFY(pid >= 0);
        if (pid == 0)
            writeForever(writer, path, lastGeneration + 1);
        ::usleep(useconds_t(QRandomGenerator::global()->bounded(100, 8000)));
        ::kill(pid, SIGKILL);
        int status = 0;
        ::waitpid(pid, &status, 0);
        QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL, "the writer stopped on its own");

        quint64 newest = lastGeneration;
        for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden)) {
            if (name.endsWith(u".saving"_s)) {
                // A capture killed before its rename has no file under its name.
                if (isCapture)
                    QVERIFY2(!folder.exists(name.section(u'.', 0, -3)), qPrintable(name));
                temporaries.insert(name);
                continue;
            }
            const quint64 generation =
                isSettings ? settingsGeneration(folder.filePath(name)) : pictureGeneration(folder.filePath(name), !isCapture);
            QVERIFY2(generation > 0, qPrintable(name + u" is torn"_s));
            QVERIFY(generation >= lastGeneration);
            newest = std::max(newest, generation);
        }
        killsAfterAWrite += newest > lastGeneration;
        lastGeneration = newest;
        // Each round's captures checked, the folder starts afresh.
        if (isCapture) {
            for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden))
                QVERIFY(folder.remove(name));
        }
    }
    qInfo("%s: %d kills, %d after a complete write, %d temporaries left", writer.constData(), rounds,
          killsAfterAWrite, int(temporaries.size()));
    QVERIFY(killsAfterAWrite > rounds / 10);
}

QTEST_GUILESS_MAIN(JsonFileKeyValueStoreTest)
#include "tst_jsonfilekeyvaluestore.moc"
