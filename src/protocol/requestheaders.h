// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class ConnectionAccountConfiguration;
class EasAccount;
class QByteArray;
class QNetworkRequest;
class QString;
class QUrl;
class QUrlQuery;

/** The address and the headers of a command's request. */
namespace RequestHeaders {

/** Scheme, host, port and path of an account's server, without a query. */
QUrl serverUrl(const ConnectionAccountConfiguration &configuration);
/** Adds a name with its value, encoded in full. */
void addQueryItem(QUrlQuery &query, const QString &name, const QString &value);

/** Whether a value stays in the line of its header. */
bool fits(const QByteArray &value);
/** Sets a header, unless its value does not fit. */
bool set(QNetworkRequest &request, const char *name, const QByteArray &value);
/** The headers that all commands of a known protocol version have, in their order. */
bool setCommon(
    QNetworkRequest &request, const EasAccount &account, const ConnectionAccountConfiguration &configuration);
/** The cookie of the basic authentication, if there is one. */
void setAuthorization(QNetworkRequest &request, const EasAccount &account);

} // namespace RequestHeaders
