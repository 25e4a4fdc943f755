// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The password of an account in the sign-on service. Runs the application's event loop. */
namespace Credentials {

/** Stores a password under an identity, a new one if it is 0 or has gone; its number, or 0 after an error. */
quint32 store(quint32 identity, const QString &caption, const QString &userName, const QString &password);

/** Removes an identity; true if there is none any more, else an error was printed. */
bool remove(quint32 identity);

} // namespace Credentials
