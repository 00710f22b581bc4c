#include "XdgFolders.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace xdgfolders {

namespace {
QString baseFolder(const QProcessEnvironment &environment, const QString &variable, const QString &fallback)
{
    const QString value = environment.value(variable);
    if (QDir::isAbsolutePath(value))
        return QDir::cleanPath(value);
    const QString home = environment.value(u"HOME"_s, QDir::homePath());
    return QDir::cleanPath(home + u'/' + fallback);
}
} // namespace

QString diagnosticsLogFolder(const QProcessEnvironment &environment)
{
    return baseFolder(environment, u"XDG_STATE_HOME"_s, u".local/state"_s) + u"/Vistrel"_s;
}

QString settingsPath(const QProcessEnvironment &environment)
{
    return baseFolder(environment, u"XDG_CONFIG_HOME"_s, u".config"_s) + u"/Vistrel/settings.json"_s;
}

QString autostartFolder(const QProcessEnvironment &environment)
{
    return baseFolder(environment, u"XDG_CONFIG_HOME"_s, u".config"_s) + u"/autostart"_s;
}

} // namespace xdgfolders
