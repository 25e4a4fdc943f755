// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/**
 * Server identifiers of mail, kept apart where a server does not keep them apart itself.
 *
 * The store and the database know a message by its server identifier alone. Some servers number messages in
 * each folder anew, so that one identifier names a message in several folders; the later ones are then kept
 * under an identifier that also holds the folder. Only the plain one ever goes to the server.
 */
namespace EmailServerId {

/** The identifier of a message whose plain identifier is taken by a message of another folder. */
QString qualified(const QString &collectionId, const QString &wireId);

/** What the server calls the message that is kept under this identifier. */
QString onWire(const QString &keptId);

} // namespace EmailServerId
