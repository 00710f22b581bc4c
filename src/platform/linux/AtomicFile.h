#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace atomicfile {

// Replaces the file at `path` with `contents` so that readers, and a process killed at any moment, see
// either the old file or the new one. The new contents go to "<path>.saving" first, are flushed to
// disk and renamed over the old file. The fixed name means an interrupted write leaves at most one
// stale temporary, which the next write overwrites. Returns the error's description on failure.
std::optional<QString> write(const QString &path, const QByteArray &contents);

} // namespace atomicfile
