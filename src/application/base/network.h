// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

class QByteArray;
class QIODevice;
class QNetworkReply;
class QNetworkRequest;
class QNetworkSession;

/** The network as requests and commands see it: a session and an access of its own for each account. */
class Network
{
public:
    /** Null while the device is offline. The caller owns the reply and has to give it its account with
     * ProtocolUtils::setAccountId(), which the answers to challenges need. */
    virtual QNetworkReply *post(
        EasAccountId accountId, const QNetworkRequest &request, const QByteArray &data) = 0;
    /** As post(), with any verb; the body, which may be null, has to outlive the reply. */
    virtual QNetworkReply *sendCustomRequest(
        EasAccountId accountId, const QNetworkRequest &request, const QByteArray &verb, QIODevice *body) = 0;
    /** Its state tells whether requests can run. Do not keep the pointer. */
    virtual QNetworkSession *networkSession(EasAccountId accountId) = 0;
    virtual bool isOnline() const = 0;

protected:
    ~Network() = default;
};
