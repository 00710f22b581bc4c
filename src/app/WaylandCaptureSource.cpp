#include "WaylandCaptureSource.h"

#include "KWinCaptureSource.h"
#include "WaylandConnection.h"
#include "WlrScreencopy.h"

#include <QStringList>

#include <algorithm>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace waylandcapturesource {

namespace {

using Output = WaylandConnection::Output;

QString describe(const QRect &r)
{
    return u"%1,%2 %3x%4"_s.arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

QString outputList(const std::vector<std::unique_ptr<Output>> &outputs)
{
    QStringList known;
    for (size_t i = 0; i < outputs.size(); ++i)
        known.append(u"%1 %2 %3"_s.arg(i).arg(outputs[i]->name, describe(outputs[i]->logical)));
    return known.join(u", "_s);
}

CapturedPixels fromScreencopy(const wlrscreencopy::Pixels &p, std::shared_ptr<WaylandConnection> connection)
{
    struct Hold
    {
        std::shared_ptr<WaylandConnection> connection;
        std::shared_ptr<const void> pixels;
    };
    return CapturedPixels{std::make_shared<Hold>(Hold{std::move(connection), p.owner}),
                          PngPixels{p.data, p.width, p.height, p.bytesPerLine, PngPixels::Layout::Opaque32, true}};
}

// Copies `part` into `target` at `at`, each of its pixels repeated `factor` times in both directions
// (the parts of lower-scale outputs in a picture made at a higher scale).
void place(const wlrscreencopy::Pixels &part, int factor, std::vector<quint32> &target, int targetWidth, QPoint at)
{
    for (int y = 0; y < part.height * factor; ++y) {
        const auto *source = reinterpret_cast<const quint32 *>(part.data + qsizetype(y / factor) * part.bytesPerLine);
        quint32 *row = target.data() + qsizetype(at.y() + y) * targetWidth + at.x();
        if (factor == 1) {
            std::memcpy(row, source, size_t(part.width) * 4);
            continue;
        }
        for (int x = 0; x < part.width * factor; ++x)
            row[x] = source[x / factor];
    }
}

} // namespace

CaptureRead read(const commandline::CaptureOptions &options)
{
    auto opened = WaylandConnection::open();
    if (QString *failure = std::get_if<QString>(&opened))
        return *failure;
    std::shared_ptr<WaylandConnection> connection = std::move(std::get<std::unique_ptr<WaylandConnection>>(opened));
    if (!connection->screencopy())
        return kwincapturesource::read(options, *connection);
    const auto &outputs = connection->outputs();
    if (outputs.empty())
        return u"the compositor reports no outputs"_s;

    if (options.display) {
        if (size_t(*options.display) >= outputs.size())
            return u"there is no display %1; the displays are: %2"_s.arg(*options.display).arg(outputList(outputs));
        std::vector<wlrscreencopy::Result> results =
            wlrscreencopy::copy(*connection, {{outputs[size_t(*options.display)].get(), std::nullopt}});
        if (const QString *failure = std::get_if<QString>(&results.front()))
            return u"cannot read the screen: "_s + *failure;
        return fromScreencopy(std::get<wlrscreencopy::Pixels>(results.front()), connection);
    }

    QRect layout;
    for (const std::unique_ptr<Output> &output : outputs)
        layout |= output->logical;
    const QRect area = options.region.value_or(layout);
    if (!layout.contains(area))
        return u"region %1 is not within the layout of the outputs (%2)"_s.arg(describe(area), describe(layout));

    // Each output the area touches, with the part of the area on it in its own coordinates.
    std::vector<wlrscreencopy::Request> requests;
    int scale = 1;
    for (const std::unique_ptr<Output> &output : outputs) {
        const QRect part = output->logical.intersected(area);
        if (part.isEmpty())
            continue;
        requests.push_back({output.get(), part.translated(-output->logical.topLeft())});
        scale = std::max(scale, output->scale);
    }
    std::vector<wlrscreencopy::Result> results = wlrscreencopy::copy(*connection, requests);
    for (const wlrscreencopy::Result &result : results) {
        if (const QString *failure = std::get_if<QString>(&result))
            return u"cannot read the screen: "_s + *failure;
    }
    if (results.size() == 1 && requests.front().output->scale == scale)
        return fromScreencopy(std::get<wlrscreencopy::Pixels>(results.front()), connection);

    // Gaps between outputs stay black.
    const int width = area.width() * scale;
    const int height = area.height() * scale;
    auto canvas = std::make_shared<std::vector<quint32>>(size_t(width) * size_t(height), 0xff000000u);
    for (size_t i = 0; i < requests.size(); ++i) {
        const Output &output = *requests[i].output;
        const wlrscreencopy::Pixels &part = std::get<wlrscreencopy::Pixels>(results[i]);
        const QPoint at = (output.logical.topLeft() + requests[i].region->topLeft() - area.topLeft()) * scale;
        // A fractional output scale leaves a part a little off its nominal size; it is cut to fit.
        wlrscreencopy::Pixels fitted = part;
        const int factor = std::max(1, scale / output.scale);
        fitted.width = std::min(part.width, (width - at.x()) / factor);
        fitted.height = std::min(part.height, (height - at.y()) / factor);
        place(fitted, factor, *canvas, width, at);
    }
    return CapturedPixels{canvas, PngPixels{reinterpret_cast<const uchar *>(canvas->data()), width, height,
                                            std::ptrdiff_t(width) * 4, PngPixels::Layout::Opaque32, true}};
}

} // namespace waylandcapturesource
