#include "ApplicationModule.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <vector>

#include <dlfcn.h>

using namespace Qt::StringLiterals;

namespace applicationmodule {

namespace {

// argv-style copies of the arguments, alive as long as the object.
class ArgumentVector
{
public:
    explicit ArgumentVector(const QList<QByteArray> &arguments) : m_bytes(arguments)
    {
        for (QByteArray &argument : m_bytes)
            m_pointers.push_back(argument.data());
        m_pointers.push_back(nullptr);
    }
    int count() const { return int(m_bytes.size()); }
    char **data() { return m_pointers.data(); }

private:
    QList<QByteArray> m_bytes;
    std::vector<char *> m_pointers;
};

QList<QByteArray> encoded(const QStringList &arguments)
{
    QList<QByteArray> bytes;
    for (const QString &argument : arguments)
        bytes.append(QFile::encodeName(argument));
    return bytes;
}

} // namespace

std::optional<Entries> load(QString &error)
{
    const QString programFolder = QFileInfo(QFile::decodeName(QByteArray("/proc/self/exe"))).canonicalPath();
    const QStringList candidates{programFolder,
                                 QDir::cleanPath(programFolder % u'/' % QStringLiteral(VISTREL_MODULE_RELATIVE_DIR))};
    for (const QString &folder : candidates) {
        const QString path = folder % u'/' % QLatin1StringView(applicationentry::moduleFileName);
        if (!QFileInfo::exists(path))
            continue;
        void *module = dlopen(QFile::encodeName(path).constData(), RTLD_LAZY | RTLD_LOCAL);
        if (!module) {
            error = u"cannot load %1: %2"_s.arg(path, QString::fromLocal8Bit(dlerror()));
            return std::nullopt;
        }
        Entries entries{reinterpret_cast<applicationentry::MainFunction>(dlsym(module, applicationentry::mainSymbol)),
                        reinterpret_cast<applicationentry::ForwardFunction>(
                            dlsym(module, applicationentry::forwardSymbol))};
        if (!entries.main || !entries.forward) {
            error = u"%1 is not Vistrel's application module"_s.arg(path);
            return std::nullopt;
        }
        return entries;
    }
    error = u"the application module %1 is missing from %2"_s.arg(QLatin1StringView(applicationentry::moduleFileName),
                                                                 candidates.join(u" and "_s));
    return std::nullopt;
}

int runApplication(const Entries &entries, const char *programName, const QStringList &arguments)
{
    ArgumentVector argv(QList<QByteArray>{QByteArray(programName)} + encoded(arguments));
    return entries.main(argv.count(), argv.data());
}

applicationentry::ForwardResult forward(const Entries &entries, const QString &command, const QStringList &arguments)
{
    ArgumentVector argv(encoded(QStringList{command} + arguments));
    return applicationentry::ForwardResult(entries.forward(argv.count(), argv.data()));
}

} // namespace applicationmodule
