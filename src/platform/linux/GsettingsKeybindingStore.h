#pragma once

#include "platform/CustomKeybindingStore.h"

#include <QObject>

#include <functional>

// GNOME's custom shortcuts through the gsettings program, one call after another without blocking the
// main thread. gsettings goes through whichever settings backend the session uses (dconf on a desktop),
// and a missing schema or backend ends in its exit status and message rather than in our process.
// Made by the Linux platform set; main thread.
class GsettingsKeybindingStore final : public QObject, public CustomKeybindingStore
{
    Q_OBJECT

public:
    static inline const QString listSchema = QStringLiteral("org.gnome.settings-daemon.plugins.media-keys");
    static inline const QString entrySchema = QStringLiteral("org.gnome.settings-daemon.plugins.media-keys.custom-keybinding");

    explicit GsettingsKeybindingStore(QString program = QStringLiteral("gsettings"));

    void read(ReadCompletion completion) override;
    void write(const QList<Keybinding> &entries, const QStringList &paths, WriteCompletion completion) override;

private:
    // Each call's standard output in order, or the first failure.
    using Done = std::function<void(const QStringList &outputs, std::optional<QString> error)>;
    void run(QList<QStringList> calls, QStringList outputs, Done done);
    void readEntries(const QStringList &paths, ReadCompletion completion);

    QString m_program;
};
