#pragma once

#include "platform/KeyValueStore.h"

#include <QJsonObject>
#include <QString>

class SystemLog;

// The preferences database on Linux: one JSON object in a file under ~/.config, keeping text, numbers
// and booleans apart. Every sync() replaces the file whole through atomicfile::write, so a crash or a
// kill at any moment leaves either the previous or the new contents.
//
// A file that cannot be parsed is moved aside (".unreadable") rather than overwritten, reported in the
// system log, and the application starts from the defaults. A file that cannot be read at all is left
// where it is and never written: the session starts from the defaults and keeps its changes in memory.
class JsonFileKeyValueStore final : public KeyValueStore
{
public:
    JsonFileKeyValueStore(const QString &path, SystemLog &systemLog);

    std::optional<QVariant> value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;
    QStringList keys() const override;
    bool sync() override;

    const QString &path() const { return m_path; }

private:
    void load();

    QString m_path;
    SystemLog &m_systemLog;
    QJsonObject m_values;
    bool m_isDirty = false;
    bool m_isUnreadable = false;
};
