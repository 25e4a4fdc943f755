// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

class QByteArray;
class QNetworkReply;

/** What a server says in the headers of its reply. */
namespace ReplyHeaders {

/** A header's value; empty if there is none, or one that is longer than any that is meant. */
QByteArray value(const QNetworkReply &reply, const char *name);
/** The protocol versions that a server says it knows, as they came. */
QString versions(const QNetworkReply &reply);
/** The commands that a server says it supports. */
QStringList supportedCommands(const QNetworkReply &reply);
/** The network layer takes whatever is below 400 for an answer. The page that a public network redirects to
 * must not pass for one: its empty body reads as "nothing new" or "done". */
bool isAnswer(const QNetworkReply &reply);

/** HTTP 449 without a location: that is how servers demand provisioning up to 12.1, some at any version. */
bool demandsProvisioning(const QNetworkReply &reply);

} // namespace ReplyHeaders
