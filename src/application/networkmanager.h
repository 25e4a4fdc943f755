// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/network.h"
#include "application/passwordtrial.h"
#include "common/easaccountid.h"

#include <QMap>
#include <QNetworkConfigurationManager>
#include <QNetworkSession>
#include <QObject>
#include <QPair>

class QAuthenticator;
class QBuffer;
class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

/**
 * The network of all accounts: each has an access manager and a session of its own, so that cookies,
 * connections and the state of one server stay apart from those of another.
 *
 * It follows the device's online state. It answers the challenges of servers, at most twice a request and
 * never without a password; which refusal blocks an account is decided by its PasswordTrial. A reply in
 * flight dies with its access manager, without finished(), when the account's session goes down.
 * Owned by the RequestManager, main thread only.
 */
class NetworkManager : public QObject, public Network
{
    Q_OBJECT

public:
    explicit NetworkManager(QObject *parent);
    ~NetworkManager() override;

    QNetworkReply *post(
        EasAccountId accountId, const QNetworkRequest &request, const QByteArray &data) override;
    QNetworkReply *sendCustomRequest(EasAccountId accountId, const QNetworkRequest &request,
        const QByteArray &verb, QIODevice *body) override;
    /** Never null. */
    QNetworkSession *networkSession(EasAccountId accountId) override;
    bool isOnline() const override;

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

    void onReplyError(EasAccountId accountId, const QNetworkReply *reply);
    QNetworkReply *watched(EasAccountId accountId, QNetworkReply *reply);
    QNetworkAccessManager *networkManager(EasAccountId accountId);
    QNetworkAccessManager *managerForRequest(EasAccountId accountId);
    Connection createNetworkManager(EasAccountId accountId);
    void deleteNetworkManager(Connections::iterator entry, bool removeEntry);

    Connections mConnections;
    QMap<EasAccountId, PasswordTrial> mTrials;
    QMap<EasAccountId, bool> mConnected;
    QNetworkConfigurationManager mConfigurationManager;
};
