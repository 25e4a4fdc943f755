// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"
#include "common/galitem.h"

#include <QList>
#include <QString>

namespace ExchangeActiveSync {

/** Tells Qt D-Bus the types of the daemon's interfaces. Done when the library is loaded; harmless again. */
void registerDBusTypes();

} // namespace ExchangeActiveSync
