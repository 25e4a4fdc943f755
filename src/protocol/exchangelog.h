// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class EasAccount;
class QByteArray;
class QNetworkReply;

/** What a server sent, for the log: without the credentials that it may have repeated. */
namespace ExchangeLog {

/** The head of a reply with a body of so many bytes, under the line that names its command. */
void received(const QNetworkReply &reply, const char *text, int size, const EasAccount *account);
/** "Headers: " and the header pairs of a reply, cookies without their values. The account may be null. */
void headers(const QNetworkReply &reply, const EasAccount *account);
QByteArray withoutCredentials(const QByteArray &text, const EasAccount *account);

} // namespace ExchangeLog
