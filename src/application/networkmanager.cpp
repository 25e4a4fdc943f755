// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/networkmanager.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/base/onewaybody.h"
#include "application/requestmanager.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/base/protocolutils.h"

#include <QAuthenticator>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace {

const char *boolText(bool value)
{
    return value ? "true" : "false";
}

bool isSuccess(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() / 100 == 2;
}

bool isConnected(const QNetworkSession *session)
{
    return session && session->state() == QNetworkSession::Connected;
}

template <class Object> void dismiss(Object *&object)
{
    if (!object)
        return;
    object->disconnect();
    object->deleteLater();
    object = nullptr;
}

QString loginName(const EasAccount &account)
{
    const auto connection = account.connectionConfiguration();
    const QString domain = connection ? connection->domainName() : QString();
    return domain.isEmpty() ? account.userName() : QStringLiteral("%1\\%2").arg(domain, account.userName());
}

} // namespace

NetworkManager::NetworkManager(QObject *parent)
    : QObject(parent)
{
    connect(
        RequestManager::instance(), &RequestManager::accountDeleted, this, &NetworkManager::onAccountDeleted);
    connect(&mConfigurationManager, &QNetworkConfigurationManager::onlineStateChanged, this,
        &NetworkManager::onOnlineStateChanged);
    connect(&mConfigurationManager, &QNetworkConfigurationManager::configurationChanged,
        &mConfigurationManager, &QNetworkConfigurationManager::updateConfigurations);
}

NetworkManager::~NetworkManager() = default;

QNetworkReply *NetworkManager::post(
    EasAccountId accountId, const QNetworkRequest &request, const QByteArray &data)
{
    QNetworkAccessManager *manager = managerForRequest(accountId);
    return manager ? watched(accountId, manager->post(request, data)) : nullptr;
}

QNetworkReply *NetworkManager::sendCustomRequest(
    EasAccountId accountId, const QNetworkRequest &request, const QByteArray &verb, QIODevice *body)
{
    QNetworkAccessManager *manager = managerForRequest(accountId);
    return manager ? watched(accountId, manager->sendCustomRequest(request, verb, body)) : nullptr;
}

QNetworkSession *NetworkManager::networkSession(EasAccountId accountId)
{
    const auto entry = mConnections.find(accountId);
    if (entry != mConnections.end()) {
        if (entry->second)
            return entry->second;
        deleteNetworkManager(entry, true);
    }
    return mConnections.insert(accountId, createNetworkManager(accountId))->second;
}

bool NetworkManager::isOnline() const
{
    return mConfigurationManager.isOnline();
}

void NetworkManager::onAuthenticationRequired(QNetworkReply *reply, QAuthenticator *authenticator)
{
    const EasAccountId accountId = ProtocolUtils::accountId(reply);
    qCDebug(easNetwork()) << "accountId: " << accountId;
    EasAccount *account = RequestManager::instance()->account(accountId);
    if (!account)
        return;
    PasswordTrial &trial = mTrials[accountId];
    if (trial.hasAnswered())
        account->onAuthenticationFailedError();
    // The sign-on service has not given one: an answer would look like a wrong password.
    if (account->password().isEmpty()) {
        qCWarning(easNetwork()) << "there is no password for account" << accountId;
        return;
    }
    if (!trial.answer(account->password()))
        return;
    authenticator->setUser(loginName(*account));
    authenticator->setPassword(account->password());
    if (auto *const body = reply->findChild<OneWayBody *>())
        body->allowAnotherStart();
}

void NetworkManager::onReplyError(EasAccountId accountId, const QNetworkReply *reply)
{
    PasswordTrial &trial = mTrials[accountId];
    if (reply->error() != QNetworkReply::AuthenticationRequiredError || !trial.hasAnswered())
        return;
    if (!trial.refuse()) {
        qCWarning(easNetwork()) << "the server refuses a password that it has accepted before, account"
                                << accountId;
        return;
    }
    qCWarning(easNetwork()) << "too many failed authentication attempts";
    if (EasAccount *const account = RequestManager::instance()->account(accountId))
        account->credentialsNeedUpdate();
}

void NetworkManager::onAccountDeleted(EasAccountId accountId)
{
    const auto entry = mConnections.find(accountId);
    if (entry != mConnections.end())
        deleteNetworkManager(entry, true);
    mTrials.remove(accountId);
    mConnected.remove(accountId);
}

void NetworkManager::onNetworkStateChanged(QNetworkSession::State state)
{
    qCDebug(easNetwork()) << "New network session state:" << state;
    auto entry = mConnections.begin();
    while (entry != mConnections.end() && entry->second != sender())
        ++entry;
    if (entry == mConnections.end() || !sender())
        return;
    const EasAccountId accountId = entry.key();
    const bool connected = state == QNetworkSession::Connected;
    const bool wasConnected = mConnected.value(accountId);
    mConnected[accountId] = connected;
    if (state == QNetworkSession::Invalid || state == QNetworkSession::NotAvailable
        || state == QNetworkSession::Disconnected) {
        qCInfo(easNetwork()) << "Deleting connection for account:" << accountId;
        deleteNetworkManager(entry, false);
    }
    if (connected || wasConnected)
        Q_EMIT networkStateChanged(accountId, connected);
}

void NetworkManager::onOnlineStateChanged(bool isOnline)
{
    qCInfo(easNetwork()) << "Device is online:" << boolText(isOnline);
    onCheckNetworkState();
}

void NetworkManager::onCheckNetworkState()
{
    qCDebug(easNetwork()) << "Checking connection state";
    // Whoever hears of a state may ask for a session, which changes the map.
    const QList<EasAccountId> accountIds = mConnections.keys();
    for (const EasAccountId accountId : accountIds) {
        const auto entry = mConnections.find(accountId);
        if (entry == mConnections.end())
            continue;
        const bool connected = isConnected(entry->second);
        const QNetworkSession::State state =
            entry->second ? entry->second->state() : QNetworkSession::Invalid;
        qCDebug(easNetwork()) << "Session state for account" << accountId << ", state" << state
                              << "session connected:" << boolText(connected);
        if (!connected) {
            qCWarning(easNetwork()) << "No active network session!";
            deleteNetworkManager(entry, false);
        } else if (isOnline() && !(entry->first && entry->second)) {
            deleteNetworkManager(entry, false);
            *entry = createNetworkManager(accountId);
            qCInfo(easNetwork()) << "New network manager created for account" << accountId;
        }
        mConnected[accountId] = connected;
        Q_EMIT networkStateChanged(accountId, isOnline());
    }
}

QNetworkReply *NetworkManager::watched(EasAccountId accountId, QNetworkReply *reply)
{
    // Heard before the command ends its request: the next one of the queue would start unblocked.
    connect(reply, &QNetworkReply::errorOccurred, this,
        [this, accountId, reply] { onReplyError(accountId, reply); });
    connect(reply, &QNetworkReply::finished, this, [this, accountId, reply] {
        if (isSuccess(*reply))
            mTrials[accountId].accept();
    });
    return reply;
}

QNetworkAccessManager *NetworkManager::networkManager(EasAccountId accountId)
{
    const auto entry = mConnections.find(accountId);
    if (entry != mConnections.end() && entry->first && entry->second)
        return entry->first;
    if (!isOnline())
        return nullptr;
    if (entry != mConnections.end())
        deleteNetworkManager(entry, true);
    return mConnections.insert(accountId, createNetworkManager(accountId))->first;
}

QNetworkAccessManager *NetworkManager::managerForRequest(EasAccountId accountId)
{
    QNetworkAccessManager *manager = networkManager(accountId);
    if (!manager) {
        qCCritical(easNetwork()) << "Network manager is null for account" << accountId;
        return nullptr;
    }
    const EasAccount *const account = RequestManager::instance()->account(accountId);
    mTrials[accountId].begin(account ? account->password() : QString());
    return manager;
}

NetworkManager::Connection NetworkManager::createNetworkManager(EasAccountId accountId)
{
    const auto manager = new QNetworkAccessManager(this);
    connect(manager, &QNetworkAccessManager::authenticationRequired, this,
        &NetworkManager::onAuthenticationRequired, Qt::UniqueConnection);
    const auto session = new QNetworkSession(mConfigurationManager.defaultConfiguration(), this);
    connect(session, &QNetworkSession::stateChanged, this, &NetworkManager::onNetworkStateChanged,
        Qt::UniqueConnection);
    mConnected[accountId] = isConnected(session);
    return Connection(manager, session);
}

void NetworkManager::deleteNetworkManager(Connections::iterator entry, bool removeEntry)
{
    dismiss(entry->first);
    dismiss(entry->second);
    if (removeEntry)
        mConnections.erase(entry);
}
