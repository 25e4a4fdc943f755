// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

namespace Simulator {

/**
 * Shuts down connections that this process accepted on @p localPort, all of them or that of one peer.
 *
 * The HTTP library has no call for it: it always answers, and it waits for idle connections when it stops.
 */
void shutDownConnections(int localPort, int peerPort = -1);

/**
 * Has that connection's headers acknowledged at once. A client that sends the body on its own waits for it,
 * which otherwise takes 40 ms of each request.
 */
void acknowledgeAtOnce(int localPort, int peerPort);

/** Whether the client of that connection has closed its side, or is gone altogether. */
bool isPeerGone(int localPort, int peerPort);

/** Lets a server listen again on the port it just left. */
void allowReuse(int socket);

} // namespace Simulator
