// Started by the single-instance test as "vistrel" would be: listens when it is the first, and
// otherwise forwards its command and exits (0 forwarded, 3 not taken, 4 no session bus). The first
// prints "listening", then one JSON line per command it receives, and quits on "quit".
//
//   instance_child [COMMAND [ARGUMENT...]]
#include "InstanceChannel.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QStringList arguments = app.arguments().mid(1);
    const QString command = arguments.isEmpty() ? QStringLiteral("activate") : arguments.takeFirst();

    InstanceChannel channel(QDBusConnection::sessionBus());
    switch (channel.listen([](const QString &received, const QStringList &receivedArguments) {
        QJsonArray line{received};
        for (const QString &argument : receivedArguments)
            line.append(argument);
        std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
        if (received == QStringLiteral("quit"))
            QCoreApplication::quit();
    })) {
    case InstanceChannel::Outcome::Listening:
        std::printf("listening\n");
        std::fflush(stdout);
        return app.exec();
    case InstanceChannel::Outcome::AnotherInstanceRuns:
        return channel.tryForward(command, arguments) ? 0 : 3;
    case InstanceChannel::Outcome::NoSessionBus:
        return 4;
    }
    return 5;
}
