#include "GsettingsKeybindingStore.h"

#include "GVariantText.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

QString entryAt(const QString &path)
{
    return GsettingsKeybindingStore::entrySchema + u':' + path;
}

// One line of `gsettings list-recursively`: "SCHEMA KEY VALUE".
void readLine(QStringView line, CustomKeybindingStore::Keybinding &entry)
{
    const qsizetype keyStart = line.indexOf(u' ') + 1;
    const qsizetype valueStart = keyStart > 0 ? line.indexOf(u' ', keyStart) + 1 : 0;
    if (valueStart <= 0)
        return;
    const QStringView key = line.mid(keyStart, valueStart - keyStart - 1);
    const QString value = gvarianttext::parseString(line.mid(valueStart)).value_or(QString());
    if (key == u"name")
        entry.name = value;
    else if (key == u"command")
        entry.command = value;
    else if (key == u"binding")
        entry.binding = value;
}

} // namespace

GsettingsKeybindingStore::GsettingsKeybindingStore(QString program) : m_program(std::move(program)) {}

void GsettingsKeybindingStore::read(ReadCompletion completion)
{
    run({{u"get"_s, listSchema, u"custom-keybindings"_s}}, {},
        [this, completion](const QStringList &outputs, std::optional<QString> error) {
            if (error) {
                completion({{}, error});
                return;
            }
            const std::optional<QStringList> paths = gvarianttext::parseStringArray(outputs.value(0));
            if (!paths) {
                completion({{}, u"gsettings: "_s + outputs.value(0).trimmed()});
                return;
            }
            readEntries(*paths, completion);
        });
}

void GsettingsKeybindingStore::readEntries(const QStringList &paths, ReadCompletion completion)
{
    QList<QStringList> calls;
    for (const QString &path : paths)
        calls.append({u"list-recursively"_s, entryAt(path)});
    run(calls, {}, [paths, completion](const QStringList &outputs, std::optional<QString> error) {
        Listing listing;
        listing.error = error;
        for (qsizetype i = 0; !error && i < paths.size(); ++i) {
            Keybinding entry{paths.at(i)};
            for (const QString &line : outputs.value(i).split(u'\n', Qt::SkipEmptyParts))
                readLine(line, entry);
            listing.keybindings.append(entry);
        }
        completion(listing);
    });
}

void GsettingsKeybindingStore::write(const QList<Keybinding> &entries, const QStringList &paths,
                                     WriteCompletion completion)
{
    QList<QStringList> calls;
    for (const Keybinding &entry : entries) {
        calls.append({u"set"_s, entryAt(entry.path), u"name"_s, gvarianttext::quoted(entry.name)});
        calls.append({u"set"_s, entryAt(entry.path), u"command"_s, gvarianttext::quoted(entry.command)});
        calls.append({u"set"_s, entryAt(entry.path), u"binding"_s, gvarianttext::quoted(entry.binding)});
    }
    calls.append({u"set"_s, listSchema, u"custom-keybindings"_s, gvarianttext::stringArray(paths)});
    run(calls, {}, [completion](const QStringList &, std::optional<QString> error) { completion(std::move(error)); });
}

void GsettingsKeybindingStore::run(QList<QStringList> calls, QStringList outputs, Done done)
{
    if (calls.isEmpty()) {
        done(outputs, std::nullopt);
        return;
    }
    auto *process = new QProcess(this);
    connect(process, &QProcess::finished, this,
            [this, process, calls, outputs, done](int exitCode, QProcess::ExitStatus status) mutable {
                process->deleteLater();
                if (status != QProcess::NormalExit || exitCode != 0) {
                    const QString message = QString::fromUtf8(process->readAllStandardError()).trimmed();
                    done(outputs, u"gsettings: "_s + (message.isEmpty() ? u"exit status %1"_s.arg(exitCode) : message));
                    return;
                }
                outputs.append(QString::fromUtf8(process->readAllStandardOutput()));
                calls.removeFirst();
                run(std::move(calls), std::move(outputs), std::move(done));
            });
    connect(process, &QProcess::errorOccurred, this, [process, outputs, done](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        process->deleteLater();
        done(outputs, u"gsettings を起動できません: "_s + process->errorString());
    });
    process->start(m_program, calls.first());
}
