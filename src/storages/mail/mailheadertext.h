// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailaddress.h>

#include <QList>
#include <QString>
#include <QStringList>

/** Texts of the server on their way into header fields of stored messages. */
namespace MailHeaderText {

/** Turns each run of control characters into one blank: a line break would begin another header field. */
QString singleLine(const QString &text);

/** Splits at the separator outside quotes, since display names hold commas; entries are trimmed. */
QStringList splitMailList(const QString &text, char separator);

/** The addresses of a list; empty entries are left out. */
QList<QMailAddress> addresses(const QString &text, char separator);

} // namespace MailHeaderText
