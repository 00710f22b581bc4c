#pragma once

#include <QDateTime>
#include <QString>

// Names and folders of saved pictures: captures, and edited pictures without a source file.
namespace filenaming {

// "yyyy-MM-dd_HH-mm-ss" in local time, with POSIX digits whatever the user's locale.
QString fileNameDate(const QDateTime &time);
// The prefix trimmed of spaces and line breaks ("Vistrel" when blank), then "_" and the date when
// `includeDate`: "Vistrel_2024-05-01_13-07-42", or "Vistrel" without the date.
QString makeBaseName(const QString &prefix, bool includeDate, const QDateTime &now);
// The base name and ".png": "Vistrel_2024-05-01_13-07-42.png".
QString makeFileName(const QString &prefix, bool includeDate, const QDateTime &now);
// The folder as an absolute, clean path with symbolic links resolved as far as the folder exists; a
// leading "~" stands for the home folder.
QString resolvedFolderPath(const QString &path);

} // namespace filenaming
