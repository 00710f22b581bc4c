#include "CaptureCommand.h"

#include "JsonFileKeyValueStore.h"
#include "LinuxSystemLog.h"
#include "PngEncoder.h"
#include "X11Monitors.h"
#include "X11RootReader.h"
#include "X11SessionCheck.h"
#include "XdgFolders.h"

#include "output/FileNaming.h"
#include "settings/SaveSettings.h"
#include "settings/UserDefaults.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <variant>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace capturecommand {

namespace {

// The PNG writer's own settings: its fastest deflate, on two threads.
constexpr int compressionLevel = 1;
constexpr bool mayUseSecondThread = true;

struct Failure
{
    QString reason;
};

int fail(const QString &reason)
{
    std::fprintf(stderr, "vistrel: %s\n", reason.toLocal8Bit().constData());
    return commandline::exitFailure;
}

QString describe(const QRect &r)
{
    return u"%1,%2 %3x%4"_s.arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

// The part of the root window to read, or why there is none.
std::variant<QRect, Failure> area(const commandline::CaptureOptions &options, xcb_connection_t *connection,
                                  QSize rootSize)
{
    const QRect screen(QPoint(0, 0), rootSize);
    if (options.region) {
        if (!screen.contains(*options.region))
            return Failure{u"region %1 is not within the screen (%2x%3)"_s.arg(describe(*options.region))
                               .arg(rootSize.width()).arg(rootSize.height())};
        return *options.region;
    }
    if (!options.display)
        return screen;
    const QList<x11monitors::Monitor> monitors = x11monitors::list(connection);
    // Without RandR the whole screen is the one display.
    if (monitors.isEmpty() && *options.display == 0)
        return screen;
    if (*options.display >= monitors.size()) {
        QStringList known;
        for (qsizetype i = 0; i < monitors.size(); ++i)
            known.append(u"%1 %2 %3"_s.arg(i).arg(monitors.at(i).name, describe(monitors.at(i).native)));
        return Failure{u"there is no display %1; the displays are: %2"_s.arg(*options.display)
                           .arg(known.isEmpty() ? u"0 (the whole screen)"_s : known.join(u", "_s))};
    }
    const QRect native = monitors.at(*options.display).native.intersected(screen);
    if (native.isEmpty())
        return Failure{u"display %1 lies outside the screen"_s.arg(*options.display)};
    return native;
}

// Where a capture is saved without -o, creating the folder when it is missing.
std::variant<QString, Failure> destination(const QProcessEnvironment &environment)
{
    LinuxSystemLog systemLog;
    JsonFileKeyValueStore store(xdgfolders::settingsPath(environment), systemLog);
    const UserDefaults defaults(store);
    const QString folder = filenaming::resolvedFolderPath(savesettings::saveFolderPath(defaults));
    const QFileInfo info(folder);
    if (info.exists() && !info.isDir())
        return Failure{u"the save folder %1 is not a folder"_s.arg(folder)};
    if (!info.exists() && !QDir().mkpath(folder))
        return Failure{u"cannot create the save folder %1"_s.arg(folder)};
    const QString name = filenaming::makeFileName(savesettings::filenamePrefix(defaults),
                                                  savesettings::includeDate(defaults), QDateTime::currentDateTime());
    return QDir(folder).filePath(name);
}

// The file named by -o, written where it is, as other tools do: no temporary file and no forced flush
// to the disk, so a pipe or a device serves too. A failed write removes what it left.
std::optional<QString> writeOutput(const PngPixels &pixels, const QString &path)
{
    const QByteArray png = pngencoder::encode(pixels, compressionLevel, mayUseSecondThread);
    if (png.isEmpty())
        return u"the capture could not be encoded as PNG"_s;
    const bool isStandardOutput = path == u"-"_s;
    const QString shownName = isStandardOutput ? u"standard output"_s : path;
    const QByteArray name = QFile::encodeName(path);
    const int fd = isStandardOutput ? STDOUT_FILENO
                                    : ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0)
        return u"cannot write %1: %2"_s.arg(shownName, QString::fromLocal8Bit(std::strerror(errno)));
    int error = 0;
    for (qsizetype written = 0; written < png.size() && !error;) {
        const ssize_t n = ::write(fd, png.constData() + written, size_t(png.size() - written));
        if (n > 0)
            written += n;
        else if (n == 0 || errno != EINTR)
            error = n == 0 ? EIO : errno;
    }
    if (!isStandardOutput && ::close(fd) != 0 && !error)
        error = errno;
    if (!error)
        return std::nullopt;
    if (!isStandardOutput)
        ::unlink(name.constData());
    return u"cannot write %1: %2"_s.arg(shownName, QString::fromLocal8Bit(std::strerror(error)));
}

} // namespace

int run(const commandline::CaptureOptions &options, const QProcessEnvironment &environment,
        const CopyToClipboard &copyToClipboard)
{
    if (const std::optional<QString> missing = x11session::missingDisplayMessage(environment))
        return fail(*missing);
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(nullptr, nullptr),
                                                                                   &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()))
        return fail(x11session::unreachableDisplayText(environment.value(u"DISPLAY"_s)));

    X11RootReader reader(connection.get());
    const std::variant<QRect, Failure> rect = area(options, connection.get(), reader.rootSize());
    if (const Failure *failure = std::get_if<Failure>(&rect))
        return fail(failure->reason);
    // Read once and written from where the server put it: the segment is not needed again.
    const X11RootReader::Read read = reader.read(std::get<QRect>(rect), true);
    if (read.pixels.isNull())
        return fail(u"cannot read the screen: "_s % read.error.value_or(u"unknown error"_s));
    const PngPixels pixels{read.pixels.data, read.pixels.width, read.pixels.height, read.pixels.bytesPerLine,
                           PngPixels::Layout::Opaque32, true};

    if (options.output) {
        const std::optional<QString> problem = writeOutput(pixels, *options.output);
        return problem ? fail(*problem) : commandline::exitSuccess;
    }
    const std::variant<QString, Failure> saved = destination(environment);
    if (const Failure *failure = std::get_if<Failure>(&saved))
        return fail(failure->reason);
    const QString &path = std::get<QString>(saved);
    // Saved as the application saves: a failed write never replaces an earlier capture of that name.
    if (const std::optional<PngWriter::Failure> failure =
            pngencoder::writeFile(pixels, path, compressionLevel, mayUseSecondThread))
        return fail(u"cannot write %1: %2"_s.arg(path, failure->description));

    std::printf("%s\n", QFile::encodeName(path).constData());
    std::fflush(stdout);
    if (const std::optional<QString> note = copyToClipboard(path))
        std::fprintf(stderr, "vistrel: %s\n", note->toLocal8Bit().constData());
    return commandline::exitSuccess;
}

} // namespace capturecommand
