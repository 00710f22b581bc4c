#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Replaces a file so that readers, and a process killed or a machine losing power at any moment, see
// either the old file or the complete new one. The settings store, the login item and the PNG writer
// (captures, edited pictures, also from a second process) write through here, on any thread.
namespace atomicfile {

struct Failure
{
    // The new file could not be made in the folder (missing or unwritable folder, a folder in the
    // way); otherwise writing, flushing or renaming failed (disk full, file size limit).
    bool isCreating = false;
    QString description;
};

// The new contents go to a file of their own in the same folder, are flushed to disk, named
// "<path>.<random>.saving" and renamed over the file; the folder is flushed too, so the rename itself
// survives a power loss. Where the system allows, the new file has no name until the moment before the
// rename, so a killed write leaves nothing behind; elsewhere it is named from the start and a killed
// write leaves that temporary. A temporary never has the file's name, and a failed write removes it.
// Every write has its own temporary, so writes of one name at once cannot mix their bytes.
std::optional<Failure> replace(const QString &path, const QByteArray &contents);

// The same, with only the error's description.
std::optional<QString> write(const QString &path, const QByteArray &contents);

} // namespace atomicfile
