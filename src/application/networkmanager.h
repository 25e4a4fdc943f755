// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QMap>
#include <QNetworkConfigurationManager>
#include <QNetworkSession>
#include <QObject>
#include <QPair>

class EasAccount;
class QAuthenticator;
class QBuffer;
class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

/**
 * The network of all accounts: each has an access manager and a session of its own, so that cookies,
 * connections and the state of one server stay apart from those of another.
 *
 * It follows the device's online state and answers the challenges of servers, at most twice a request. A
 * reply in flight dies with its access manager, without finished(), when the account's session goes down.
 * Owned by the RequestManager, main thread only.
 */
class NetworkManager : public QObject
{
    Q_OBJECT

public:
    explicit NetworkManager(QObject *parent);
    ~NetworkManager() override;

    /** Null while the device is offline. The caller owns the reply and has to give it its account with
     * ProtocolUtils::setAccountId(), which the answers to challenges need. */
    virtual QNetworkReply *post(
        EasAccountId accountId, const QNetworkRequest &request, const QByteArray &data);
    /** As post(), with any verb; the body, which may be null, has to outlive the reply. */
    virtual QNetworkReply *sendCustomRequest(
        EasAccountId accountId, const QNetworkRequest &request, const QByteArray &verb, QBuffer *body);
    /** Never null; its state tells whether requests can run. Do not keep the pointer. */
    virtual QNetworkSession *networkSession(EasAccountId accountId);
    virtual bool isOnline() const;

Q_SIGNALS:
    void networkStateChanged(EasAccountId accountId, bool enabled);

public Q_SLOTS:
    void onAuthenticationRequired(QNetworkReply *reply, QAuthenticator *authenticator);
    void onAccountDeleted(EasAccountId accountId);
    void onNetworkStateChanged(QNetworkSession::State state);
    void onCheckNetworkState();
    void onOnlineStateChanged(bool isOnline);

private:
    using Connection = QPair<QNetworkAccessManager *, QNetworkSession *>;
    using Connections = QMap<EasAccountId, Connection>;

    void onReplyFinished(EasAccountId accountId, const QNetworkReply *reply);
    static void blockAccount(EasAccount *account);
    QNetworkReply *watched(EasAccountId accountId, QNetworkReply *reply);
    QNetworkAccessManager *networkManager(EasAccountId accountId);
    QNetworkAccessManager *managerForRequest(EasAccountId accountId);
    Connection createNetworkManager(EasAccountId accountId);
    void deleteNetworkManager(Connections::iterator entry, bool removeEntry);

    Connections mConnections;
    QMap<EasAccountId, uint> mAuthenticationFailures;
    QMap<EasAccountId, bool> mConnected;
    QNetworkConfigurationManager mConfigurationManager;
};
