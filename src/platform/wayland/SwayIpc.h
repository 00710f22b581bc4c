#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// One request and its reply on sway's IPC socket (the i3 framing: "i3-ipc", payload length and
// message type as native 32-bit integers, then the payload). Blocking, bounded by a timeout; any thread.
namespace swayipc {

constexpr quint32 runCommand = 0;
constexpr quint32 getTree = 4;

// The reply's payload; nothing when the socket is missing, refuses, or does not answer in time.
std::optional<QByteArray> request(const QString &socketPath, quint32 type, const QByteArray &payload,
                                  int timeoutMs);

} // namespace swayipc
