// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/connections.h"

#include <QDir>

#include <arpa/inet.h>
#include <netinet/in.h>
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

} // namespace

void shutDownConnections(int localPort, int peerPort)
{
    const QStringList descriptors = QDir(QStringLiteral("/proc/self/fd"))
                                        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &descriptor : descriptors) {
        const int socket = descriptor.toInt();
        if (portOf(socket, getsockname) != localPort)
            continue;
        const int peer = portOf(socket, getpeername);
        if (peer > 0 && (peerPort < 0 || peer == peerPort))
            shutdown(socket, SHUT_RDWR);
    }
}

void allowReuse(int socket)
{
    const int on = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
}

} // namespace Simulator
