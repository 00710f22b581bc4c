#include "geometry/TraceFormat.h"

#include <charconv>
#include <cmath>

namespace trace {

QString number(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
    if (value == 0)
        value = 0; // folds -0 into 0
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    return QString::fromLatin1(buffer, result.ptr - buffer);
}

QString rect(const Rect &r)
{
    return u"{{" % number(r.x()) % u", " % number(r.y()) % u"}, {" % number(r.width()) % u", "
        % number(r.height()) % u"}}";
}

QString size(QSizeF s)
{
    return u"{" % number(s.width()) % u", " % number(s.height()) % u"}";
}

QString point(QPointF p)
{
    return u"{" % number(p.x()) % u", " % number(p.y()) % u"}";
}

QString displayID(std::optional<quint32> id)
{
    return id ? QString::number(*id) : QStringLiteral("nil");
}

} // namespace trace
