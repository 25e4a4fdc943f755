// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/connections.h"

#include <QDir>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace Simulator {
namespace {

using NameOfSocket = int (*)(int, sockaddr *, socklen_t *);

int portOf(int socket, NameOfSocket name)
{
    sockaddr_in address {};
    socklen_t length = sizeof(address);
    if (name(socket, reinterpret_cast<sockaddr *>(&address), &length) != 0 || address.sin_family != AF_INET)
        return -1;
    return ntohs(address.sin_port);
}

/** Calls @p action with each socket between these ports; any peer with -1. */
template <class Action> void forConnections(int localPort, int peerPort, Action action)
{
    const QStringList descriptors = QDir(QStringLiteral("/proc/self/fd"))
                                        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &descriptor : descriptors) {
        const int socket = descriptor.toInt();
        if (portOf(socket, getsockname) != localPort)
            continue;
        const int peer = portOf(socket, getpeername);
        if (peer > 0 && (peerPort < 0 || peer == peerPort))
            action(socket);
    }
}

} // namespace

void shutDownConnections(int localPort, int peerPort)
{
    forConnections(localPort, peerPort, [](int socket) { shutdown(socket, SHUT_RDWR); });
}

void acknowledgeAtOnce(int localPort, int peerPort)
{
    forConnections(localPort, peerPort, [](int socket) {
        const int on = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof(on));
    });
}

bool isPeerGone(int localPort, int peerPort)
{
    bool isThere = false;
    forConnections(localPort, peerPort, [&isThere](int socket) {
        pollfd state { socket, POLLRDHUP, 0 };
        isThere = poll(&state, 1, 0) == 0;
    });
    return !isThere;
}

void allowReuse(int socket)
{
    const int on = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
}

} // namespace Simulator
