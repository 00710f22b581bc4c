#pragma once

// What the application shell asks of the updater.
class UpdateCommands
{
public:
    virtual ~UpdateCommands() = default;
    // A check the user asked for.
    virtual void checkForUpdates() = 0;
};
