#include "WaylandDisplayProvider.h"


std::optional<quint32> WaylandDisplayProvider::displayID(const QString &name) const
{
    if (name.isEmpty())
        return std::nullopt;
    const auto known = m_ids.constFind(name);
    if (known != m_ids.constEnd())
        return *known;
    const quint32 id = quint32(m_ids.size()) + 1;
    m_ids.insert(name, id);
    return id;
}

std::optional<QString> WaylandDisplayProvider::outputName(quint32 displayID) const
{
    for (auto it = m_ids.constBegin(); it != m_ids.constEnd(); ++it) {
        if (it.value() == displayID)
            return it.key();
    }
    return std::nullopt;
}
