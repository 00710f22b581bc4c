#pragma once

#include "platform/CustomKeybindingStore.h"

class FakeCustomKeybindingStore final : public CustomKeybindingStore
{
public:
    void read(ReadCompletion completion) override { completion({keybindings, readError}); }
    void write(const QList<Keybinding> &entries, const QStringList &, WriteCompletion completion) override
    {
        ++writes;
        writtenEntries = entries;
        completion(writeError);
    }

    QList<Keybinding> keybindings;
    std::optional<QString> readError;
    std::optional<QString> writeError;
    int writes = 0;
    QList<Keybinding> writtenEntries;
};
