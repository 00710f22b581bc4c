#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// The desktop's own custom keyboard shortcuts (GNOME's media-keys custom keybindings): a list of paths,
// each naming one entry with a name, the command it runs and its binding in the desktop's accelerator
// syntax. Completions come on the main thread; failures carry the reason as text.
class CustomKeybindingStore
{
public:
    struct Keybinding
    {
        QString path;
        QString name;
        QString command;
        QString binding;
        bool operator==(const Keybinding &) const = default;
    };
    struct Listing
    {
        // In the desktop's order.
        QList<Keybinding> keybindings;
        // Why the list could not be read; the list is then empty.
        std::optional<QString> error;
    };
    using ReadCompletion = std::function<void(const Listing &listing)>;
    using WriteCompletion = std::function<void(std::optional<QString> error)>;

    virtual ~CustomKeybindingStore() = default;

    virtual void read(ReadCompletion completion) = 0;
    // Writes the fields of each entry, then the list of paths, so no path is listed before its entry exists.
    virtual void write(const QList<Keybinding> &entries, const QStringList &paths, WriteCompletion completion) = 0;
};
