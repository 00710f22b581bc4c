#pragma once

#include <QRect>
#include <QSize>
#include <QString>

#include <memory>
#include <variant>
#include <vector>

struct wl_display;
struct wl_output;
struct wl_registry;
struct wl_shm;
struct zwlr_screencopy_manager_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

// Vistrel's own client connection to the compositor, beside Qt's: for what Qt does not speak (screen
// copies) and for the command line, which runs without Qt's GUI. It keeps the outputs with the names and
// layout geometry the compositor gives them (xdg-output), so they match Qt's screens by name. Not
// thread-safe: one thread uses it at a time.
class WaylandConnection final
{
public:
    struct Output
    {
        wl_output *output = nullptr;
        zxdg_output_v1 *xdgOutput = nullptr;
        quint32 globalName = 0;
        QString name;
        // In layout coordinates (points); its size times the scale is about the mode's size.
        QRect logical;
        int scale = 1;
        QSize modeSize;
    };

    // The compositor named by WAYLAND_DISPLAY, or why there is none.
    static std::variant<std::unique_ptr<WaylandConnection>, QString> open();
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection &) = delete;
    WaylandConnection &operator=(const WaylandConnection &) = delete;

    wl_display *display() const { return m_display; }
    wl_shm *shm() const { return m_shm; }
    // Null where the compositor has no wlr screencopy (GNOME, KWin).
    zwlr_screencopy_manager_v1 *screencopy() const { return m_screencopy; }

    // The outputs as of the last update(), in the order the compositor announced them.
    const std::vector<std::unique_ptr<Output>> &outputs() const { return m_outputs; }
    const Output *output(const QString &name) const;
    // Takes in what changed since (outputs added, removed, moved, rescaled). False when the connection
    // broke.
    bool update();
    // Waits for events for at most `timeoutMs` and handles them. False on a timeout or a broken
    // connection.
    bool dispatch(int timeoutMs);

private:
    explicit WaylandConnection(wl_display *display);
    static void onGlobal(void *data, wl_registry *registry, quint32 name, const char *interface, quint32 version);
    static void onGlobalRemove(void *data, wl_registry *registry, quint32 name);
    void addOutput(quint32 globalName, quint32 version);
    void describe(Output &output);

    wl_display *m_display = nullptr;
    wl_registry *m_registry = nullptr;
    wl_shm *m_shm = nullptr;
    zwlr_screencopy_manager_v1 *m_screencopy = nullptr;
    zxdg_output_manager_v1 *m_xdgOutputs = nullptr;
    std::vector<std::unique_ptr<Output>> m_outputs;
};
