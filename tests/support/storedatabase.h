// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The files of the bundled stores, for faults that no interface makes. */
namespace StoreDatabase {

enum Store { Contacts, Mail };

/** Over a connection of its own; a statement that fails ends the process. */
void execute(Store store, const QString &statement);

} // namespace StoreDatabase
