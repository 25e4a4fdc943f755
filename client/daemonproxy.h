// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easdbusinterfaceproxy.h"

#include <memory>

class QDBusError;

/** How the commands reach the daemon. */
namespace DaemonProxy {

/** Calls through it start the daemon, and give up after half a minute. */
std::unique_ptr<EasDBusInterfaceProxy> create();

/** Looks without starting it; needs a session bus. */
bool isDaemonRunning();

QString whyUnreachable(const QDBusError &error);
/** Prints why; the exit status. */
int unreachable(const QDBusError &error);

} // namespace DaemonProxy
