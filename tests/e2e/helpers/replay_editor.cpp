// The edited picture that an editor session should produce, made in-process by the product's own
// editor logic: the user's known pointer drags, tool and mode choices, typed text, undo and redo are
// replayed through an editor view on the same picture, and the flattened result is written with the
// product's PNG writer.
//
//   replay_editor SCRIPT.json
//
// SCRIPT: {"source": PNG, "output": PNG, "steps": [{"tool": "矢印"}, {"mode": "edit"}, {"zoom": 2},
//          {"drag": [[x, y], ...]}, {"text": "..."}, {"undo": 1}, {"redo": 1}]}
// Drag points are image points (origin bottom-left, y up): a press at the first, moves through the
// others, a release at the last.
#include "FakeKeyValueStore.h"

#include "FastPngWriter.h"

#include "editor/EditorTool.h"
#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"
#include "platform/QtScheduler.h"
#include "platform/SystemLog.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

class StandardErrorLog final : public SystemLog
{
public:
    void log(const QString &message) override { std::fprintf(stderr, "%s\n", qUtf8Printable(message)); }
};

int fail(const QString &message)
{
    std::fprintf(stderr, "replay_editor: %s\n", qUtf8Printable(message));
    return 1;
}

void settle()
{
    // The view posts focus changes to the event loop, as in the application.
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2)
        return fail(QStringLiteral("usage: replay_editor SCRIPT.json"));
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read ") + file.fileName());
    const QJsonObject script = QJsonDocument::fromJson(file.readAll()).object();
    const QImage source(script.value(QStringLiteral("source")).toString());
    if (source.isNull())
        return fail(QStringLiteral("cannot decode the source picture"));

    FakeKeyValueStore store;
    QtScheduler scheduler;
    StandardErrorLog systemLog;
    auto model = std::make_shared<ImageEditorModel>(source, store);
    ImageEditorView view(model, {systemLog, scheduler});

    for (const QJsonValue &value : script.value(QStringLiteral("steps")).toArray()) {
        const QJsonObject step = value.toObject();
        if (step.contains(QStringLiteral("tool"))) {
            const std::optional<EditorTool> tool = editortool::fromRawValue(step.value(QStringLiteral("tool")).toString());
            if (!tool)
                return fail(QStringLiteral("unknown tool"));
            view.toolbar().selectTool(*tool);
        } else if (step.contains(QStringLiteral("mode"))) {
            view.toolbar().setDrawMode(step.value(QStringLiteral("mode")).toString() == QStringLiteral("draw"));
        } else if (step.contains(QStringLiteral("zoom"))) {
            view.viewport().setZoomScale(step.value(QStringLiteral("zoom")).toDouble());
        } else if (step.contains(QStringLiteral("drag"))) {
            const QJsonArray path = step.value(QStringLiteral("drag")).toArray();
            QList<QPointF> points;
            for (const QJsonValue &point : path)
                points.append(view.viewport().convertToViewPoint(
                    QPointF(point.toArray().at(0).toDouble(), point.toArray().at(1).toDouble())));
            if (points.isEmpty())
                return fail(QStringLiteral("empty drag"));
            view.pointerPressed(points.first());
            for (qsizetype i = 1; i < points.size(); ++i)
                view.pointerMoved(points.at(i));
            view.pointerReleased(points.last());
        } else if (step.contains(QStringLiteral("text"))) {
            const std::optional<QUuid> &focused = view.interaction().focusedTextOverlayID();
            if (!focused)
                return fail(QStringLiteral("no text box has the focus"));
            view.toolbar().setText(*focused, step.value(QStringLiteral("text")).toString());
        } else if (step.contains(QStringLiteral("undo"))) {
            view.toolbar().undo();
        } else if (step.contains(QStringLiteral("redo"))) {
            view.toolbar().redo();
        }
        settle();
    }

    const QString output = script.value(QStringLiteral("output")).toString();
    if (FastPngWriter().writeFile(model->renderEditedImage(), output))
        return fail(QStringLiteral("cannot write ") + output);
    std::printf("%d overlays\n", int(model->overlays().size()));
    return 0;
}
