#include "app/NotificationCenter.h"

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::post(const QString &name)
{
    emit posted(name);
}

QMetaObject::Connection NotificationCenter::addObserver(const QString &name, QObject *context,
                                                        std::function<void()> observer)
{
    return connect(this, &NotificationCenter::posted, context,
                   [name, observer = std::move(observer)](const QString &posted) {
                       if (posted == name)
                           observer();
                   });
}
