// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessage.h>

/** Messages that the user has written on the device, as a mail application leaves them in the store. */
namespace OutgoingMail {

/** From Alice, with a date; a body in UTF-8 that is encoded for the way. */
QMailMessage plain(const QString &subject, const QString &to, const QString &text = QStringLiteral("Hello"));

/** Makes it a mixed message, with the text that it has and a file. */
void attach(QMailMessage *message, const QString &fileName, const QByteArray &bytes,
    const QByteArray &type = "application/octet-stream");

/** Makes it an answer to a stored message; with that message as a part, by reference, if it is to be added.
 */
void answer(QMailMessage *message, const QMailMessageId &source, QMailMessage::ResponseType type,
    bool withSource = true);

/** Stores it in a folder, as waiting to be sent. */
QMailMessageId store(QMailMessage message, const QMailAccountId &account, const QMailFolderId &folder);

/** Stores it in the account's Outbox. */
QMailMessageId putIntoOutbox(const QMailMessage &message, const QMailAccountId &account);

} // namespace OutgoingMail
