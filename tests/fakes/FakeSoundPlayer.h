#pragma once

#include "platform/SoundPlayer.h"

#include <QStringList>

// Records "file:<path>", "named:<name>" and "beep" in `played`, and in the journal when there is one.
class FakeSoundPlayer final : public SoundPlayer
{
public:
    explicit FakeSoundPlayer(QStringList *journal = nullptr) : m_journal(journal) {}

    bool playFile(const QString &path) override
    {
        record(QStringLiteral("file:") + path);
        return fileWorks;
    }
    bool playNamed(const QString &name) override
    {
        record(QStringLiteral("named:") + name);
        return namedWorks;
    }
    bool beep() override
    {
        record(QStringLiteral("beep"));
        return true;
    }
    int beepCount() const { return int(played.count(QStringLiteral("beep"))); }

    bool fileWorks = true;
    bool namedWorks = true;
    QStringList played;

private:
    void record(const QString &call)
    {
        played.append(call);
        if (m_journal)
            m_journal->append(QStringLiteral("sound.") + call);
    }
    QStringList *m_journal;
};
