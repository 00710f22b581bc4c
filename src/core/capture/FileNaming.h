#pragma once

#include <QDateTime>
#include <QString>

// Names and folders of saved captures.
namespace filenaming {

// "yyyy-MM-dd_HH-mm-ss" in local time, with POSIX digits whatever the user's locale.
QString fileNameDate(const QDateTime &time);
// The prefix trimmed ("Vistrel" when blank), "_" and the date when `includeDate`, then ".png":
// "Vistrel_2024-05-01_13-07-42.png", or "Vistrel.png" without the date.
QString makeFileName(const QString &prefix, bool includeDate, const QDateTime &now);
// The folder as an absolute, clean path with symbolic links resolved as far as the folder exists; a
// leading "~" stands for the home folder.
QString resolvedFolderPath(const QString &path);

} // namespace filenaming
