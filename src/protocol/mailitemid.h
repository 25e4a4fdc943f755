// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/**
 * The ids of mail items inside the engine, which are unique in an account.
 *
 * Exchange gives such ids itself ("5:12"). Servers that stand before an IMAP store number the messages of
 * each folder, so that "12" is one message here and another one there, while the mapping and the device's
 * mail store know one message by a name. A number is therefore kept together with its collection. Ids change
 * their form where they leave and enter the protocol; what comes from fromServer() goes back through
 * toServer().
 */
namespace MailItemId {

/** The id by which the engine knows the item that the server names in this collection. */
QString fromServer(const QString &collectionId, const QString &serverId);

/**
 * What the server calls the item. An item of another collection keeps its form: the server then answers that
 * it does not know it, which is better than to name a stranger.
 */
QString toServer(const QString &collectionId, const QString &itemId);

} // namespace MailItemId
