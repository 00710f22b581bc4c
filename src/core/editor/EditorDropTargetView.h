#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

class Scheduler;

// The empty editor: a panel that takes an image file dropped onto it and offers to choose a file, to
// paste from the clipboard or to cancel. Every action is a callback of the window manager; this class
// holds the drop rules and everything the widgets show, as data. Main thread only.
class EditorDropTargetView final : public QObject
{
    Q_OBJECT

public:
    enum class ButtonRole { PickFile, PasteImage, Cancel };
    struct Button
    {
        QString title;
        ButtonRole role;
        // Return triggers the default button.
        bool isDefault = false;
        QKeySequence shortcut;
    };
    // What a drag carries, one entry per dragged item: its URL when it has one.
    struct DropItem
    {
        std::optional<QUrl> url;
    };
    enum class FillRole { Accent, Secondary };
    struct Fill
    {
        FillRole role;
        double opacity;
    };

    // The layout: a symbol, the heading, a line of explanation and a row of buttons, stacked in the
    // centre over a rounded panel inset from the window's edges.
    static inline const QString symbolName = QStringLiteral("photo.on.rectangle.angled");
    static constexpr double symbolPointSize = 54;
    static constexpr double stackSpacing = 18;
    static constexpr double panelCornerRadius = 14;
    static constexpr double panelInset = 18;

    static QString heading();
    static QString explanation();
    static QList<Button> buttons();

    explicit EditorDropTargetView(Scheduler &scheduler, QObject *parent = nullptr);

    std::function<void()> onPickFile;
    std::function<void()> onPasteImage;
    std::function<void(const QUrl &url)> onOpenURL;
    std::function<void()> onCancel;

    // A drag hovers over the panel with something it would take.
    bool isTargeted() const { return m_isTargeted; }
    Fill panelFill() const;

    void trigger(ButtonRole role);

    // True when the drag carries a file; the panel then shows itself targeted.
    bool dragEntered(const QList<DropItem> &items);
    void dragExited();
    // Takes the first item only, and only a file: true when the drop is accepted. The file is opened
    // once the current event is over, so the drag source is released first.
    bool performDrop(const QList<DropItem> &items);

signals:
    void isTargetedChanged();

private:
    static bool isFile(const DropItem &item);
    void setTargeted(bool targeted);

    Scheduler &m_scheduler;
    bool m_isTargeted = false;
};
