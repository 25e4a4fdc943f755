// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The file of the bundled contact store, for faults that no interface makes. */
namespace StoreDatabase {

/** Over a connection of its own; a statement that fails ends the process. */
void execute(const QString &statement);

} // namespace StoreDatabase
