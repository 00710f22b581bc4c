#include "update/Appcast.h"

#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace appcast {

namespace {

const QString sparkleNamespace = u"http://www.andymatuschak.org/xml-namespaces/sparkle"_s;

enum class PartType { Number, Period, Text };

PartType typeOf(QChar c)
{
    if (c.isDigit())
        return PartType::Number;
    return c == u'.' ? PartType::Period : PartType::Text;
}

QList<QString> splitVersion(const QString &version)
{
    QList<QString> parts;
    for (const QChar c : version) {
        const PartType type = typeOf(c);
        if (!parts.isEmpty() && type != PartType::Period && typeOf(parts.last().front()) == type)
            parts.last().append(c);
        else
            parts.append(QString(c));
    }
    return parts;
}

int compareNumbers(QString a, QString b)
{
    // Any length of digits, without overflow: leading zeros off, then the longer is larger.
    while (a.size() > 1 && a.front() == u'0')
        a.remove(0, 1);
    while (b.size() > 1 && b.front() == u'0')
        b.remove(0, 1);
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

int sign(int value)
{
    return (value > 0) - (value < 0);
}

void readItem(QXmlStreamReader &reader, Feed &feed)
{
    Item item;
    QString version;
    QString shortVersion;
    QUrl link;
    QUrl enclosure;
    while (reader.readNextStartElement()) {
        const bool isSparkle = reader.namespaceUri() == sparkleNamespace;
        const QStringView name = reader.name();
        if (!isSparkle && name == u"title") {
            item.title = reader.readElementText().trimmed();
        } else if (!isSparkle && name == u"link") {
            link = QUrl(reader.readElementText().trimmed());
        } else if (!isSparkle && name == u"enclosure") {
            const QXmlStreamAttributes attributes = reader.attributes();
            enclosure = QUrl(attributes.value(u"url"_s).toString().trimmed());
            if (version.isEmpty())
                version = attributes.value(sparkleNamespace, u"version"_s).toString().trimmed();
            if (shortVersion.isEmpty())
                shortVersion = attributes.value(sparkleNamespace, u"shortVersionString"_s).toString().trimmed();
            reader.skipCurrentElement();
        } else if (isSparkle && name == u"version") {
            version = reader.readElementText().trimmed();
        } else if (isSparkle && name == u"shortVersionString") {
            shortVersion = reader.readElementText().trimmed();
        } else {
            reader.skipCurrentElement();
        }
    }
    if (version.isEmpty())
        version = shortVersion;
    if (version.isEmpty())
        return;
    item.version = version;
    item.displayVersion = shortVersion.isEmpty() ? version : shortVersion;
    const QUrl page = link.isValid() && !link.isEmpty() ? link : enclosure;
    // Only a web page or a download is offered to the user, never a local or script URL.
    if (page.scheme() == u"https" || page.scheme() == u"http")
        item.downloadPage = page;
    feed.items.append(item);
}

} // namespace

std::optional<Feed> parse(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    if (!reader.readNextStartElement() || reader.name() != u"rss")
        return std::nullopt;
    Feed feed;
    while (reader.readNextStartElement()) {
        if (reader.name() != u"channel") {
            reader.skipCurrentElement();
            continue;
        }
        while (reader.readNextStartElement()) {
            if (reader.name() == u"item")
                readItem(reader, feed);
            else
                reader.skipCurrentElement();
        }
    }
    if (reader.hasError())
        return std::nullopt;
    return feed;
}

std::optional<Item> newestItem(const Feed &feed)
{
    std::optional<Item> newest;
    for (const Item &item : feed.items)
        if (!newest || compareVersions(item.version, newest->version) > 0)
            newest = item;
    return newest;
}

int compareVersions(const QString &a, const QString &b)
{
    const QList<QString> partsA = splitVersion(a);
    const QList<QString> partsB = splitVersion(b);
    const qsizetype common = std::min(partsA.size(), partsB.size());
    for (qsizetype i = 0; i < common; ++i) {
        const PartType typeA = typeOf(partsA.at(i).front());
        const PartType typeB = typeOf(partsB.at(i).front());
        if (typeA == typeB) {
            int order = 0;
            if (typeA == PartType::Number)
                order = compareNumbers(partsA.at(i), partsB.at(i));
            else if (typeA == PartType::Text)
                order = partsA.at(i).compare(partsB.at(i));
            if (order != 0)
                return sign(order);
            continue;
        }
        // Text is a pre-release: anything else at the same place is newer. A number beats a period.
        if (typeB == PartType::Text)
            return 1;
        if (typeA == PartType::Text)
            return -1;
        return typeA == PartType::Number ? 1 : -1;
    }
    if (partsA.size() == partsB.size())
        return 0;
    const bool aIsLonger = partsA.size() > partsB.size();
    const QString &next = aIsLonger ? partsA.at(common) : partsB.at(common);
    // More text after the end of the other (a pre-release suffix) makes it older; more numbers newer.
    const bool longerIsNewer = typeOf(next.front()) != PartType::Text;
    return aIsLonger == longerIsNewer ? 1 : -1;
}

} // namespace appcast
