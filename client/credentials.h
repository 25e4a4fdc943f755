// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The password of an account in the sign-on service. Runs the application's event loop. */
namespace Credentials {

/** Stores a password under an identity (0 for a new one); the identity's number, or 0 after an error. */
quint32 store(quint32 identity, const QString &caption, const QString &userName, const QString &password);

/** Removes an identity; true if it is gone. */
bool remove(quint32 identity);

} // namespace Credentials
