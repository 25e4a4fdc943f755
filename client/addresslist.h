// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QStringList>
#include <qmailaddress.h>

/** Mail addresses as users write them. */
namespace AddressList {

/**
 * Reads lists such as 'Bob <bob@example.org>, "Doe, Jane" <jane@example.org>'; the members of groups count by
 * themselves. False, after an error was printed, if not every word of them belongs to a mail address.
 */
bool read(const QStringList &lists, const QString &option, QList<QMailAddress> *addresses);

/** The addresses of a message that was received, as far as mail can be sent there; members of groups by
 * themselves. */
QList<QMailAddress> sendable(const QList<QMailAddress> &received);

/** Whether a text holds line breaks or other characters that control something. */
bool hasControlCharacters(const QString &text);
/** With blanks in their place. */
QString withoutControlCharacters(const QString &text);

/** Whether both lead to the same mailbox. */
bool isSame(const QMailAddress &one, const QMailAddress &other);

/** Adds an address unless it stands in one of the lists. */
void addOnce(const QMailAddress &address, QList<QMailAddress> *list, const QList<QMailAddress> &others = {});

} // namespace AddressList
