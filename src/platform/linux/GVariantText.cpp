#include "GVariantText.h"

using namespace Qt::StringLiterals;

namespace gvarianttext {

namespace {

// Reads one quoted string at pos and moves past it.
std::optional<QString> readString(QStringView text, qsizetype &pos)
{
    if (pos >= text.size() || (text[pos] != u'\'' && text[pos] != u'"'))
        return std::nullopt;
    const QChar quote = text[pos++];
    QString out;
    while (pos < text.size()) {
        const QChar c = text[pos++];
        if (c == quote)
            return out;
        if (c != u'\\') {
            out.append(c);
            continue;
        }
        if (pos >= text.size())
            return std::nullopt;
        const QChar e = text[pos++];
        const qsizetype digits = e == u'u' ? 4 : e == u'U' ? 8 : 0;
        if (digits > 0) {
            bool ok = false;
            const char32_t code = text.mid(pos, digits).toUInt(&ok, 16);
            if (!ok || pos + digits > text.size())
                return std::nullopt;
            out.append(QString::fromUcs4(&code, 1));
            pos += digits;
            continue;
        }
        switch (e.unicode()) {
        case u'n': out.append(u'\n'); break;
        case u't': out.append(u'\t'); break;
        case u'r': out.append(u'\r'); break;
        case u'a': out.append(u'\a'); break;
        case u'b': out.append(u'\b'); break;
        case u'f': out.append(u'\f'); break;
        case u'v': out.append(u'\v'); break;
        default: out.append(e); break;
        }
    }
    return std::nullopt;
}

void skipSpaces(QStringView text, qsizetype &pos)
{
    while (pos < text.size() && text[pos].isSpace())
        ++pos;
}

} // namespace

QString quoted(const QString &text)
{
    QString out = u"'"_s;
    for (const QChar c : text) {
        if (c == u'\\' || c == u'\'')
            out.append(u'\\');
        out.append(c);
    }
    return out + u'\'';
}

QString stringArray(const QStringList &items)
{
    QStringList parts;
    for (const QString &item : items)
        parts.append(quoted(item));
    return u"["_s + parts.join(u", "_s) + u']';
}

std::optional<QString> parseString(QStringView text)
{
    const QStringView trimmed = text.trimmed();
    qsizetype pos = 0;
    std::optional<QString> value = readString(trimmed, pos);
    return value && pos == trimmed.size() ? value : std::nullopt;
}

std::optional<QStringList> parseStringArray(QStringView text)
{
    QStringView rest = text.trimmed();
    if (rest.startsWith(u"@as"))
        rest = rest.mid(3).trimmed();
    if (!rest.startsWith(u'[') || !rest.endsWith(u']'))
        return std::nullopt;
    const QStringView inner = rest.mid(1, rest.size() - 2);
    QStringList items;
    qsizetype pos = 0;
    skipSpaces(inner, pos);
    while (pos < inner.size()) {
        std::optional<QString> item = readString(inner, pos);
        if (!item)
            return std::nullopt;
        items.append(*item);
        skipSpaces(inner, pos);
        if (pos < inner.size() && inner[pos] != u',')
            return std::nullopt;
        ++pos;
        skipSpaces(inner, pos);
    }
    return items;
}

} // namespace gvarianttext
