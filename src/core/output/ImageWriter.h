#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class DiagnosticsLog;
class PngWriter;
class Scheduler;
class SystemLog;

// Writes one picture as a PNG file into a folder, creating the folder and its parents when they are
// missing. Captures and edited pictures both go through here, each with log lines of its own. Owned
// by the capture saver and by the edited-picture saver. write() runs on any thread;
// writeInBackground() is called on the main thread, writes on a worker and hands the outcome back on
// the main thread.
class ImageWriter final
{
public:
    struct Failure
    {
        enum class Kind { FolderNotCreatable, NotAFolder, NoPixels, CannotCreateDestination, CannotWrite };
        Kind kind;
        // The folder for the two folder failures, the file otherwise.
        QString path;
        // The system's words ("Not a directory"); empty when it gave none.
        QString reason;
    };

    // One caller's log lines. "{path}" and "{reason}" stand for the failure's; an empty text writes
    // no line.
    struct Texts
    {
        struct Lines
        {
            QString systemLog;
            QString diagnostics;
        };
        Lines folderNotCreatable;
        Lines notAFolder;
        Lines noPixels;
        Lines cannotCreateDestination;
        Lines cannotWrite;
        // The diagnostics line after a write; "{path}" is the file.
        QString written;
    };

    struct Request
    {
        QImage image;
        QString folder;
        QString fileName;
        Texts texts;
        // Hands the written file's bytes back in the outcome, read on the writing thread.
        bool readsBack = false;
    };

    struct Outcome
    {
        QString filePath;
        // Empty when the file was written.
        std::optional<Failure> failure;
        // The file as written, when the request asked for it and it could be read back.
        QByteArray fileBytes;
    };
    using Completion = std::function<void(const Outcome &outcome)>;

    struct Services
    {
        const PngWriter &pngWriter;
        SystemLog &systemLog;
        DiagnosticsLog &diagnostics;
        Scheduler &scheduler;
    };

    explicit ImageWriter(const Services &services);
    ~ImageWriter();

    ImageWriter(const ImageWriter &) = delete;
    ImageWriter &operator=(const ImageWriter &) = delete;

    // Writes the file (replacing one of that name) and logs the request's lines. Any thread.
    Outcome write(const Request &request) const;
    // Main thread. The write runs on a worker and always finishes; `completion` then runs on the main
    // thread, unless this writer is gone by then.
    void writeInBackground(Request request, Completion completion);

private:
    static Outcome perform(const Services &services, const Request &request);

    Services m_services;
    // Expires with the writer, so that outcomes arriving later find no one to call.
    std::shared_ptr<bool> m_lifetime = std::make_shared<bool>(true);
};
