#include "JsonFileKeyValueStore.h"

#include "AtomicFile.h"

#include "platform/SystemLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonValue>

JsonFileKeyValueStore::JsonFileKeyValueStore(const QString &path, SystemLog &systemLog)
    : m_path(path), m_systemLog(systemLog)
{
    load();
}

void JsonFileKeyValueStore::load()
{
    QFile file(m_path);
    if (!file.exists())
        return;
    const QByteArray contents = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        // The values may be fine, only out of reach (permissions, a failing disk): never write over them.
        m_isUnreadable = true;
        m_systemLog.log(QStringLiteral("Vistrel: 設定ファイルを読み込めませんでした: %1 (%2)。既定値で起動します。"
                                       "ファイルはそのまま残し、この間の変更は保存しません")
                            .arg(m_path, file.errorString()));
        return;
    }
    file.close();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(contents, &error);
    if (document.isObject()) {
        m_values = document.object();
        return;
    }
    // Keep the damaged file for the user instead of overwriting it with the defaults.
    const QString aside = m_path + QStringLiteral(".unreadable");
    QFile::remove(aside);
    QFile::rename(m_path, aside);
    m_systemLog.log(QStringLiteral("Vistrel: 設定ファイルが壊れているため既定値で起動します。元のファイルは %1 に移しました (%2)")
                        .arg(aside, error.error == QJsonParseError::NoError ? QStringLiteral("not an object")
                                                                            : error.errorString()));
}

std::optional<QVariant> JsonFileKeyValueStore::value(const QString &key) const
{
    const auto it = m_values.constFind(key);
    if (it == m_values.constEnd())
        return std::nullopt;
    return it->toVariant();
}

void JsonFileKeyValueStore::setValue(const QString &key, const QVariant &value)
{
    m_values.insert(key, QJsonValue::fromVariant(value));
    m_isDirty = true;
}

void JsonFileKeyValueStore::remove(const QString &key)
{
    if (m_values.contains(key)) {
        m_values.remove(key);
        m_isDirty = true;
    }
}

QStringList JsonFileKeyValueStore::keys() const
{
    return m_values.keys();
}

bool JsonFileKeyValueStore::sync()
{
    if (!m_isDirty)
        return true;
    if (m_isUnreadable)
        return false;
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    if (const std::optional<QString> error = atomicfile::write(m_path, QJsonDocument(m_values).toJson())) {
        m_systemLog.log(QStringLiteral("Vistrel: 設定を保存できませんでした: %1 (%2)").arg(m_path, *error));
        return false;
    }
    m_isDirty = false;
    return true;
}
