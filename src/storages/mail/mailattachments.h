// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easattachmentcontainer.h"
#include "easitems/easitemscommon.h"

#include <QList>
#include <QString>
#include <QStringList>

class EasEmailItem;
class FetchedOctets;
class QMailMessage;
class QMailMessagePart;

/**
 * The attachments of a message as parts of its structure.
 *
 * An attachment that has not been fetched is a proxy part: it has a name, a size and, in the place of its
 * file name, the server's reference, but no body. The type of its content tells it from a fetched one. What
 * of names and references is more than plain ASCII stands there as an encoded word.
 *
 * Locations are texts such as "2" or "7-1.2". Each operation checks the text first and knows no part for one
 * that is malformed or names another message.
 */
namespace MailAttachments {

/** Writes proxy parts for the item's attachments and returns the sum of their sizes. */
int setAttachmentsToMailMessage(QMailMessage *message, const EasEmailItem &item);

/**
 * The same for a stored message. Attachments that were there before, by order and name, keep their parts, and
 * so their content if it has been fetched.
 */
int updateAttachments(QMailMessage *message, const EasEmailItem &item);

/** What the structure tells of the attachments. */
QList<EasAttachmentContainer> attachments(const QMailMessage &message);

/** The sum of their sizes, as the structure tells them. */
qint64 totalSize(const QMailMessage &message);

/** Locations of those that are fetched, or of those that still have to be. */
QStringList locations(const QMailMessage &message, bool downloaded);

/** The part at this location, or null. It lives as long as the message and its structure. */
const QMailMessagePart *partAt(const QMailMessage &message, const QString &location);

bool isDownloaded(const QMailMessagePart &part);
bool isAttachment(const QMailMessagePart &part);

/** The server's name for the content; empty once that has been fetched. */
QString fileReference(const QMailMessagePart &part);

/** Puts the fetched content into a part; false, logged, if there is no such part or it cannot be read. */
bool fillPart(QMailMessage *message, const QString &location, const QString &contentType,
    const FetchedOctets &octets, const QString &fileName);

} // namespace MailAttachments
