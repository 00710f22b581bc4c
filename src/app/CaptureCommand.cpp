#include "CaptureCommand.h"

#include "DesktopSession.h"
#include "JsonFileKeyValueStore.h"
#include "LinuxSystemLog.h"
#include "PngEncoder.h"
#include "WaylandCaptureSource.h"
#include "X11CaptureSource.h"
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

// How the PNG is compressed. On X11 the writer's own settings, its fastest deflate on two threads,
// already give files smaller than scrot's. On Wayland grim writes at zlib's default level, which that
// would leave 9 % behind; a stronger deflate on one thread comes within 5 % of grim's files and is still
// three times as fast.
struct Compression
{
    int level = 1;
    bool mayUseSecondThread = true;
};
constexpr Compression x11Compression{1, true};
constexpr Compression waylandCompression{6, false};

struct Failure
{
    QString reason;
};

int fail(const QString &reason)
{
    std::fprintf(stderr, "vistrel: %s\n", reason.toLocal8Bit().constData());
    return commandline::exitFailure;
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
std::optional<QString> writeOutput(const PngPixels &pixels, Compression compression, const QString &path)
{
    const QByteArray png = pngencoder::encode(pixels, compression.level, compression.mayUseSecondThread);
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
    const std::variant<desktopsession::Kind, QString> session = desktopsession::choose(environment);
    if (const QString *missing = std::get_if<QString>(&session))
        return fail(*missing);
    const bool onWayland = std::get<desktopsession::Kind>(session) == desktopsession::Kind::Wayland;
    const CaptureRead read =
        onWayland ? waylandcapturesource::read(options) : x11capturesource::read(options, environment);
    const Compression compression = onWayland ? waylandCompression : x11Compression;
    if (const QString *failure = std::get_if<QString>(&read))
        return fail(*failure);
    const PngPixels &pixels = std::get<CapturedPixels>(read).pixels;

    if (options.output) {
        const std::optional<QString> problem = writeOutput(pixels, compression, *options.output);
        return problem ? fail(*problem) : commandline::exitSuccess;
    }
    const std::variant<QString, Failure> saved = destination(environment);
    if (const Failure *failure = std::get_if<Failure>(&saved))
        return fail(failure->reason);
    const QString &path = std::get<QString>(saved);
    // Saved as the application saves: a failed write never replaces an earlier capture of that name.
    if (const std::optional<PngWriter::Failure> failure =
            pngencoder::writeFile(pixels, path, compression.level, compression.mayUseSecondThread))
        return fail(u"cannot write %1: %2"_s.arg(path, failure->description));

    std::printf("%s\n", QFile::encodeName(path).constData());
    std::fflush(stdout);
    if (const std::optional<QString> note = copyToClipboard(path))
        std::fprintf(stderr, "vistrel: %s\n", note->toLocal8Bit().constData());
    return commandline::exitSuccess;
}

} // namespace capturecommand
