// Feeds arbitrary bytes to the preferences file reader as the file's contents. A JSON object must come
// back whole, every key with its value and kind; anything else must leave the store empty, say so in
// the system log and keep the bytes aside in "<file>.unreadable". The settings' conversions then read
// every key, whatever type it holds.
#include "FakeSystemLog.h"
#include "JsonFileKeyValueStore.h"
#include "settings/UserDefaults.h"

#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void check(bool isHeld, const char *what)
{
    if (!isHeld) {
        std::fprintf(stderr, "violated: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/vistrel-fuzz-XXXXXX"));
    const QString path = folder.filePath(QStringLiteral("settings.json"));
    const QString aside = path + QStringLiteral(".unreadable");
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QFile::remove(aside);
    QFile file(path);
    check(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size(), "written");
    file.close();

    FakeSystemLog log;
    JsonFileKeyValueStore store(path, log);
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (document.isObject()) {
        const QJsonObject object = document.object();
        check(store.keys() == object.keys() && log.messages().isEmpty() && contents(path) == bytes, "kept");
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            const std::optional<QVariant> value = store.value(it.key());
            check(value && QJsonValue::fromVariant(*value) == it.value(), "value and kind");
        }
    } else {
        check(store.keys().isEmpty() && log.messages().size() == 1, "defaults");
        check(!QFile::exists(path) && contents(aside) == bytes, "set aside");
    }
    const UserDefaults defaults(store);
    for (const QString &key : store.keys()) {
        defaults.string(key);
        defaults.boolValue(key);
        defaults.doubleValue(key);
        defaults.unsignedInteger(key);
    }
    return 0;
}
