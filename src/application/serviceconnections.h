// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class DBusInterfaceThread;
class RequestManager;

/** Which call of a client goes to which handler, and which result to which signal of the bus. */
namespace ServiceConnections {

/** The two live on different threads, so that every signal that crosses is queued with a copy of its values.
 */
void make(RequestManager &manager, DBusInterfaceThread &service);

} // namespace ServiceConnections
