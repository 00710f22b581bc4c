#include "output/FileNaming.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace filenaming {

namespace {

// Made once and shared by every save, on whichever thread it runs.
const QLocale &fileNameDateLocale()
{
    static const QLocale posix = QLocale::c();
    return posix;
}

} // namespace

QString fileNameDate(const QDateTime &time)
{
    return fileNameDateLocale().toString(time.toLocalTime(), u"yyyy-MM-dd_HH-mm-ss"_s);
}

QString makeBaseName(const QString &prefix, bool includeDate, const QDateTime &now)
{
    QString trimmed = prefix.trimmed();
    if (trimmed.isEmpty())
        trimmed = u"Vistrel"_s;
    if (!includeDate)
        return trimmed;
    return trimmed % u'_' % fileNameDate(now);
}

QString makeFileName(const QString &prefix, bool includeDate, const QDateTime &now)
{
    return makeBaseName(prefix, includeDate, now) % u".png"_s;
}

QString resolvedFolderPath(const QString &path)
{
    QString expanded = path;
    if (expanded == u"~"_s || expanded.startsWith(u"~/"_s))
        expanded = QDir::homePath() % expanded.mid(1);
    const QString absolute = QDir::cleanPath(QDir(expanded).absolutePath());

    // Resolve the part that exists; the rest is created by the save.
    QString existing = absolute;
    QStringList missing;
    while (!QFileInfo::exists(existing)) {
        const QFileInfo info(existing);
        const QString parent = info.path();
        if (parent == existing)
            return absolute;
        missing.prepend(info.fileName());
        existing = parent;
    }
    const QString canonical = QFileInfo(existing).canonicalFilePath();
    if (canonical.isEmpty())
        return absolute;
    if (missing.isEmpty())
        return canonical;
    return QDir::cleanPath(canonical % u'/' % missing.join(u'/'));
}

} // namespace filenaming
