// Started by the store test and killed at a random moment: saves generation after generation, each
// generation writing the same number into every key, as fast as it can.
//
//   store_writer_child FILE
#include "JsonFileKeyValueStore.h"

#include "platform/SystemLog.h"

#include <QCoreApplication>

#include <cstdio>

namespace {
class StderrLog final : public SystemLog
{
public:
    void log(const QString &message) override { std::fprintf(stderr, "%s\n", qPrintable(message)); }
};
} // namespace

int main(int argc, char **argv)
{
    if (argc < 2)
        return 2;
    StderrLog log;
    JsonFileKeyValueStore store(QString::fromLocal8Bit(argv[1]), log);
    quint64 generation = store.value(QStringLiteral("generation")).value_or(QVariant(0)).toULongLong();
    for (;;) {
        ++generation;
        store.setValue(QStringLiteral("generation"), generation);
        for (int i = 0; i < 10; ++i)
            store.setValue(QStringLiteral("key%1").arg(i), QStringLiteral("g%1-%2").arg(generation).arg(QString(200, u'x')));
        store.setValue(QStringLiteral("flag"), generation % 2 == 0);
        store.setValue(QStringLiteral("half"), double(generation) + 0.5);
        if (!store.sync())
            return 1;
    }
}
