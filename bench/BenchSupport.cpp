#include "BenchSupport.h"

#include <QRandomGenerator>

#include <cmath>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace benchsupport {

namespace {

double between(QRandomGenerator &random, double low, double high)
{
    return low + random.bounded(high - low);
}

} // namespace

const QImage &deskImage()
{
    static const QImage image = [] {
        QImage loaded(QStringLiteral(VISTREL_DESK_IMAGE));
        if (loaded.isNull()) {
            std::fprintf(stderr, "benchmark picture missing: %s\n", VISTREL_DESK_IMAGE);
            std::exit(1);
        }
        return loaded.convertToFormat(QImage::Format_RGB32);
    }();
    return image;
}

Overlay freehandStroke(QPointF start, int count, quint32 seed)
{
    QRandomGenerator random(seed);
    Overlay stroke(EditorTool::Freehand, start, start, QColor(255, 59, 48), QString(), QColor(85, 190, 240));
    QPointF point = start;
    for (int i = 0; i < count; ++i) {
        point += QPointF(between(random, -4.0, 6.0), between(random, -5.0, 5.0));
        stroke.points.append(point);
    }
    stroke.endPoint = point;
    return stroke;
}

QList<Overlay> busyDocument(QSize size)
{
    QRandomGenerator random(2024);
    auto anywhere = [&](double margin) {
        return QPointF(between(random, margin, size.width() - margin),
                       between(random, margin, size.height() - margin));
    };
    const QColor red(255, 59, 48);
    const QColor fill(85, 190, 240, 200);
    QList<Overlay> overlays;
    for (int i = 0; i < 20; ++i) {
        const QPointF start = anywhere(400);
        overlays.append(Overlay(EditorTool::Rectangle, start,
                                start + QPointF(between(random, 80.0, 600.0), between(random, 60.0, 400.0)), red,
                                QString(), fill));
        const QPointF centre = anywhere(400);
        overlays.append(Overlay(EditorTool::Circle, centre,
                                centre + QPointF(between(random, 60.0, 400.0), between(random, 60.0, 300.0)), red,
                                QString(), fill));
        const QPointF tail = anywhere(700);
        const double length = between(random, 80, 600);
        const double angle = between(random, 0, 2 * M_PI);
        overlays.append(Overlay(EditorTool::Arrow, tail, tail + QPointF(length * std::cos(angle), length * std::sin(angle)),
                                red, QString(), fill));
        overlays.append(freehandStroke(anywhere(700), 500, quint32(i + 1)));
    }
    const QStringList texts = {u"ここを確認してください"_s, u"Check this value"_s, u"設定画面 (Settings)"_s,
                               u"再現手順: 1. 開く 2. 保存"_s, u"Build 6.4.2 fails here"_s};
    for (int i = 0; i < 10; ++i) {
        const QPointF start = anywhere(700);
        overlays.append(Overlay(EditorTool::Mosaic, start,
                                start + QPointF(between(random, 200.0, 640.0), between(random, 120.0, 400.0)), red,
                                QString(), fill));
        Overlay text(EditorTool::Text, anywhere(400), {}, red, texts.at(i % texts.size()), fill);
        text.endPoint = text.startPoint + QPointF(between(random, 260.0, 600.0), between(random, 72.0, 160.0));
        text.fontSize = random.bounded(20, 40);
        overlays.append(text);
    }
    return overlays;
}

void measureEncoding(benchmark::State &state, const std::function<QByteArray()> &encode)
{
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray png = encode();
        bytes = png.size();
        benchmark::DoNotOptimize(png.constData());
    }
    state.counters["png_bytes"] = double(bytes);
}

} // namespace benchsupport
