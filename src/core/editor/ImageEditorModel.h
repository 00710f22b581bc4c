#pragma once

#include "editor/EditorTool.h"
#include "editor/Overlay.h"
#include "settings/UserDefaults.h"

#include <QColor>
#include <QFlags>
#include <QImage>
#include <QList>
#include <QObject>
#include <QUuid>

#include <optional>

class KeyValueStore;

// The document of one editor window: the image, its overlays in drawing order (last on top), the
// styles for new overlays, and a snapshot undo/redo history of the overlay list. Owned by the editor
// window and the window manager; main thread only.
//
// Every change happens inside an edit. A caller that changes several things as one step, or over
// several events (a drag), opens an edit and commits it; a change made with no edit open is an edit
// of its own. The commit records one undo step when the overlays differ from those at the start of
// the edit (or the edit asked for a step in any case), none otherwise, and announces all that the
// edit changed with one changed().
class ImageEditorModel final : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype maxUndoSteps = 100;
    using Snapshot = QList<Overlay>;

    enum class Change {
        Image = 0x1,
        Overlays = 0x2,
        // The undo or redo history moved: what undo and redo can do may differ.
        History = 0x4,
        // The tool, colours or font for new overlays.
        Style = 0x8,
    };
    Q_DECLARE_FLAGS(Changes, Change)

    // An edit for the length of a scope.
    class Edit final
    {
    public:
        explicit Edit(ImageEditorModel &model) : m_model(model) { m_model.beginEdit(); }
        ~Edit() { m_model.commitEdit(); }
        Edit(const Edit &) = delete;
        Edit &operator=(const Edit &) = delete;

    private:
        ImageEditorModel &m_model;
    };

    // The style defaults come from the saved editor preferences in `store` at this moment.
    ImageEditorModel(const QImage &image, KeyValueStore &store, QObject *parent = nullptr);

    // What an edit leaves in the history when its overlays end as they began.
    enum class Step {
        WhenChanged,
        // A drag that moved something is one step even when it ends where it started.
        Always,
    };

    // Edits nest: only the outermost commit records and announces; any of them may ask for Always.
    void beginEdit(Step step = Step::WhenChanged);
    void commitEdit();

    const QImage &image() const { return m_image; }
    // Keeps the overlays and the history; a different picture gets a new model instead.
    void setImage(const QImage &image);

    const QList<Overlay> &overlays() const { return m_overlays; }
    // New overlays go on top.
    void appendOverlay(const Overlay &overlay);
    // Replaces the overlay with the same id; nothing when there is none.
    void replaceOverlay(const Overlay &overlay);
    void removeOverlay(const QUuid &id);
    std::optional<qsizetype> indexOfOverlay(const QUuid &id) const;

    EditorTool selectedTool() const { return m_selectedTool; }
    void setSelectedTool(EditorTool tool);
    QColor selectedColor() const { return m_selectedColor; }
    void setSelectedColor(const QColor &color);
    QColor selectedTextFillColor() const { return m_selectedTextFillColor; }
    void setSelectedTextFillColor(const QColor &color);
    QString selectedTextFontFamily() const { return m_selectedTextFontFamily; }
    void setSelectedTextFontFamily(const QString &family);
    double selectedTextFontSize() const { return m_selectedTextFontSize; }
    void setSelectedTextFontSize(double size);

    // A new overlay whose text fill colour is the one saved in the preferences now.
    Overlay makeOverlay(EditorTool type, QPointF startPoint, QPointF endPoint, const QColor &color,
                        const QString &text) const;

    bool canUndo() const { return !m_undoStack.isEmpty(); }
    bool canRedo() const { return !m_redoStack.isEmpty(); }
    // Oldest first.
    const QList<Snapshot> &undoStack() const { return m_undoStack; }
    // Both do nothing when their history is empty. An edit still open is settled first: its change
    // becomes the step that undo takes back, and the edit goes on from the state undo leaves.
    void undoLastAction();
    void redoLastAction();

    // The image with every overlay painted on it; the unedited image when that fails.
    QImage renderEditedImage() const;

    UserDefaults &defaults() { return m_defaults; }

signals:
    // Once per committed edit that changed anything, and once per undo or redo.
    void changed(ImageEditorModel::Changes changes);

private:
    void noteChange(Changes changes);
    // Records the open edit's change as one step when there is one; true then.
    bool settleOpenEdit();
    void stepThroughHistory(QList<Snapshot> &from, QList<Snapshot> &to);

    UserDefaults m_defaults;
    QImage m_image;
    QList<Overlay> m_overlays;
    EditorTool m_selectedTool = EditorTool::Rectangle;
    QColor m_selectedColor;
    QColor m_selectedTextFillColor;
    QString m_selectedTextFontFamily = Overlay::defaultFontFamily;
    double m_selectedTextFontSize = Overlay::defaultFontSize;
    QList<Snapshot> m_undoStack;
    QList<Snapshot> m_redoStack;
    int m_editDepth = 0;
    // The overlays as the open edit found them, and what it has changed so far.
    Snapshot m_editStart;
    Changes m_pendingChanges;
    bool m_editRecordsAlways = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ImageEditorModel::Changes)
