// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QUrl>

class ConnectionAccountConfiguration;
class EasAccount;
class QNetworkReply;

/** Where a server says that an account's requests belong: the value of the header X-MS-Location. */
class ServerLocation
{
public:
    explicit ServerLocation(const QByteArray &header);

    /** Writes host, port and scheme, as far as they are named, into the account's record. False, logged, for
     * what is no address of a server, and for one that would send a password over a wire in the open that
     * was encrypted so far. */
    bool apply(ConnectionAccountConfiguration &configuration) const;

    /** Takes the account to where a reply says its requests belong; false if it says nothing of it, or,
     * logged, if the account cannot follow. */
    static bool follow(const QNetworkReply &reply, const EasAccount *account);

private:
    const char *refusal(const ConnectionAccountConfiguration &configuration) const;

    QUrl mUrl;
};
