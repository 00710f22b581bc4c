#include "XvfbServer.h"

using namespace Qt::StringLiterals;

XvfbServer::XvfbServer(QSize size)
{
    QByteArray number;
    const QString screen = u"%1x%2x24"_s.arg(size.width()).arg(size.height());
    if (m_process.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, screen, u"-nolisten"_s, u"tcp"_s,
                                    u"-noreset"_s},
                        {}, &number)) {
        m_display = u":"_s + QString::fromLatin1(number.trimmed());
    }
}
