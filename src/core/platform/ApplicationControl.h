#pragma once

// The application object: activation policy, activation and termination.
class ApplicationControl
{
public:
    virtual ~ApplicationControl() = default;

    // No Dock icon and no application menu (an agent in the menu bar).
    virtual void setAccessoryActivationPolicy() = 0;
    // Brings the application to the front, ignoring other applications.
    virtual void activate() = 0;
    virtual void terminate() = 0;
};
