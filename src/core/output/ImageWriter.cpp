#include "output/ImageWriter.h"

#include "platform/DiagnosticsLog.h"
#include "platform/PngWriter.h"
#include "platform/Scheduler.h"
#include "platform/SystemLog.h"

#include <QFile>
#include <QStringList>

#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace {

std::filesystem::path fileSystemPath(const QString &path)
{
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

// The text with the failure's path and reason in place, in one pass: a path may hold "{reason}".
QString filledIn(const QString &text, const QString &path, const QString &reason)
{
    QStringList parts = text.split(u"{path}"_s);
    for (QString &part : parts)
        part.replace(u"{reason}"_s, reason);
    return parts.join(path);
}

const ImageWriter::Texts::Lines &linesFor(const ImageWriter::Texts &texts, ImageWriter::Failure::Kind kind)
{
    using Kind = ImageWriter::Failure::Kind;
    switch (kind) {
    case Kind::FolderNotCreatable: return texts.folderNotCreatable;
    case Kind::NotAFolder: return texts.notAFolder;
    case Kind::NoPixels: return texts.noPixels;
    case Kind::CannotCreateDestination: return texts.cannotCreateDestination;
    case Kind::CannotWrite: break;
    }
    return texts.cannotWrite;
}

// The folder as it must be before the file goes in; the failure when it cannot be.
std::optional<ImageWriter::Failure> prepareFolder(const QString &folder)
{
    using Kind = ImageWriter::Failure::Kind;
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(fileSystemPath(folder), error);
    if (std::filesystem::exists(status)) {
        if (std::filesystem::is_directory(status))
            return std::nullopt;
        const std::error_code notAFolder = std::make_error_code(std::errc::not_a_directory);
        return ImageWriter::Failure{Kind::NotAFolder, folder, QString::fromStdString(notAFolder.message())};
    }
    std::filesystem::create_directories(fileSystemPath(folder), error);
    if (error)
        return ImageWriter::Failure{Kind::FolderNotCreatable, folder, QString::fromStdString(error.message())};
    return std::nullopt;
}

} // namespace

ImageWriter::ImageWriter(const Services &services) : m_services(services) {}

ImageWriter::~ImageWriter() = default;

ImageWriter::Outcome ImageWriter::write(const Request &request) const
{
    return perform(m_services, request);
}

void ImageWriter::writeInBackground(Request request, Completion completion)
{
    // The worker holds only the services (they outlive every write) and copies, never this writer.
    const Services services = m_services;
    const std::weak_ptr<bool> lifetime = m_lifetime;
    m_services.scheduler.runInBackground([services, request = std::move(request), lifetime,
                                          completion = std::move(completion)] {
        const Outcome outcome = perform(services, request);
        services.scheduler.postToMain([lifetime, outcome, completion] {
            if (lifetime.lock())
                completion(outcome);
        });
    });
}

ImageWriter::Outcome ImageWriter::perform(const Services &services, const Request &request)
{
    const QString &folder = request.folder;
    Outcome outcome;
    outcome.filePath = folder.endsWith(u'/') ? QString(folder % request.fileName)
                                             : QString(folder % u'/' % request.fileName);
    outcome.failure = prepareFolder(folder);
    if (!outcome.failure && request.image.isNull())
        outcome.failure = Failure{Failure::Kind::NoPixels, outcome.filePath, {}};
    if (!outcome.failure) {
        const std::optional<PngWriter::Failure> png = services.pngWriter.writeFile(request.image, outcome.filePath);
        if (png) {
            const Failure::Kind kind = png->kind == PngWriter::Failure::Kind::CannotCreateDestination
                                           ? Failure::Kind::CannotCreateDestination
                                           : Failure::Kind::CannotWrite;
            outcome.failure = Failure{kind, outcome.filePath, png->description};
        }
    }

    if (!outcome.failure) {
        if (QFile file(outcome.filePath); request.readsBack && file.open(QIODevice::ReadOnly))
            outcome.fileBytes = file.readAll();
        if (!request.texts.written.isEmpty())
            services.diagnostics.write(filledIn(request.texts.written, outcome.filePath, {}));
        return outcome;
    }
    const Failure &failure = *outcome.failure;
    const Texts::Lines &lines = linesFor(request.texts, failure.kind);
    if (!lines.systemLog.isEmpty())
        services.systemLog.log(filledIn(lines.systemLog, failure.path, failure.reason));
    if (!lines.diagnostics.isEmpty())
        services.diagnostics.write(filledIn(lines.diagnostics, failure.path, failure.reason));
    return outcome;
}
