#pragma once

#include "editor/EditorTool.h"
#include "editor/Overlay.h"
#include "geometry/Rect.h"
#include "settings/UserDefaults.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QObject>
#include <QSizeF>
#include <QUuid>

#include <optional>

class KeyValueStore;

// The document of one editor window: the image, its overlays in drawing order (last on top), the
// styles for new overlays, and a snapshot undo/redo history of the overlay list. Owned by the editor
// window and the window manager; main thread only.
//
// No operation records history by itself: the caller calls recordUndoSnapshot() once, right before a
// change that is to be undoable, and not again for the later steps of the same drag.
class ImageEditorModel final : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype maxUndoSteps = 100;
    using Snapshot = QList<Overlay>;

    // The style defaults come from the saved editor preferences in `store` at this moment.
    ImageEditorModel(const QImage &image, KeyValueStore &store, QObject *parent = nullptr);

    const QImage &image() const { return m_image; }
    // Keeps the overlays and the history; a different picture gets a new model instead.
    void setImage(const QImage &image);

    const QList<Overlay> &overlays() const { return m_overlays; }
    void setOverlays(const QList<Overlay> &overlays);
    // New overlays go on top.
    void appendOverlay(const Overlay &overlay);
    // Replaces the overlay with the same id; nothing when there is none.
    void replaceOverlay(const Overlay &overlay);

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

    bool canUndo() const { return m_canUndo; }
    bool canRedo() const { return m_canRedo; }
    const QList<Snapshot> &undoStack() const { return m_undoStack; }
    const QList<Snapshot> &redoStack() const { return m_redoStack; }

    // A new overlay whose text fill colour is the one saved in the preferences now.
    Overlay makeOverlay(EditorTool type, QPointF startPoint, QPointF endPoint, const QColor &color,
                        const QString &text) const;

    std::optional<qsizetype> indexOfOverlay(const QUuid &id) const;
    // Sets the start point when given, then the end point when given.
    void updateOverlay(const QUuid &id, std::optional<QPointF> start, std::optional<QPointF> end);
    // Moves start, end and every freehand point by the translation.
    void moveOverlay(const QUuid &id, QSizeF translation);
    void removeOverlay(const QUuid &id);

    void recordUndoSnapshot();
    void undoLastAction();
    void redoLastAction();

    static Rect overlayRenderBounds(const Overlay &overlay);
    Rect renderContentBounds(QSizeF imageSize) const;
    // The image with every overlay painted on it; the unedited image when that fails.
    QImage renderEditedImage() const;

    UserDefaults &defaults() { return m_defaults; }

signals:
    void imageChanged();
    void overlaysChanged();
    void selectedToolChanged();
    void selectedColorChanged();
    void selectedTextFillColorChanged();
    void selectedTextFontFamilyChanged();
    void selectedTextFontSizeChanged();
    // Emitted after every history operation, whether or not the value changed.
    void canUndoChanged();
    void canRedoChanged();

private:
    static void pushTrimmed(QList<Snapshot> &stack, const Snapshot &snapshot);
    void updateHistoryFlags();

    UserDefaults m_defaults;
    QImage m_image;
    QList<Overlay> m_overlays;
    EditorTool m_selectedTool = EditorTool::Rectangle;
    QColor m_selectedColor;
    QColor m_selectedTextFillColor;
    QString m_selectedTextFontFamily = Overlay::defaultFontFamily;
    double m_selectedTextFontSize = Overlay::defaultFontSize;
    bool m_canUndo = false;
    bool m_canRedo = false;
    QList<Snapshot> m_undoStack;
    QList<Snapshot> m_redoStack;
};
