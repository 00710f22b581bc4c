#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

// An update feed in Sparkle's appcast format: an RSS channel whose items each describe one release,
// with the version in the sparkle namespace, on the item or on its enclosure.
namespace appcast {

struct Item
{
    QString title;
    // The build that the version comparison uses (sparkle:version).
    QString version;
    // The version as users read it (sparkle:shortVersionString); the build when there is none.
    QString displayVersion;
    // The release's page (link), else the download itself (enclosure url).
    QUrl downloadPage;
};

struct Feed
{
    QList<Item> items;
};

// The items that name a version; nothing when the text is not an RSS feed at all.
std::optional<Feed> parse(const QByteArray &xml);

// The item with the highest version, when there is one.
std::optional<Item> newestItem(const Feed &feed);

// Sparkle's ordering of version texts: runs of digits compare as numbers, other runs as text, and
// each period stands on its own; a number beats text at the same place, and a version that goes on
// with text after the other ends is the older one ("1.0" is newer than "1.0b1"). Negative when `a` is
// older than `b`, zero when they are the same, positive when `a` is newer.
int compareVersions(const QString &a, const QString &b);

} // namespace appcast
