// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/engine.h"
#include "application/clientcalls.h"
#include "application/networkmanager.h"
#include "common/easaccountid.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

class AccountQueue;
class AccountStorage;
class DBusInterfaceThread;
class EasAccount;
class QNetworkSession;
class Request;

/**
 * The hub of the daemon: takes every client call from the service thread as the request that ClientCalls
 * builds for it, and runs the requests of each account strictly one after another, those of different
 * accounts side by side.
 *
 * There is one a process, on the main thread. It owns the account storage, the network manager, the service
 * thread and all requests; a finished request is deleted later. A queue exists exactly while its account is
 * busy, and its head is the request that runs. Requests that come before the account storage is ready wait.
 *
 * Another implementation can stand in through initializeInstance(RequestManager *): accounts(), account(),
 * networkManager() and init() are virtual for it, and the protected constructor builds a manager without a
 * service thread.
 */
class RequestManager : public ClientCalls, public Engine
{
    Q_OBJECT
    Q_INTERFACES(Engine)

public:
    explicit RequestManager(QObject *parent);
    ~RequestManager() override;

    /** Creates and initialises the manager at the first call; needs the application object. */
    static RequestManager *instance();
    /** Creates the manager if there is none; the caller calls init(). */
    static void initializeInstance(QObject *parent);
    /** Puts an implementation in; releaseInstance() deletes it. */
    static void initializeInstance(RequestManager *manager);
    static void releaseInstance();

    NetworkManager *networkManager() override;
    virtual QList<EasAccountId> accounts() const;
    EasAccount *account(EasAccountId accountId) const override;
    virtual void init();
    virtual bool isReady() const;
    QNetworkSession *networkSession(EasAccountId accountId);

    /** Whether a sync of the whole account waits or runs. */
    bool hasFullSync(EasAccountId accountId) const;

    /** Takes a request over: it starts at once if its account is idle. A request that heads the queue for too
     * long is cancelled. */
    void processNewRequest(Request *request, const EndReport &report) override;
    using ClientCalls::processNewRequest;

public Q_SLOTS:
    virtual void onAccountStorageReady();
    virtual void onAccountUpdated(EasAccountId accountId);
    virtual void onAccountDeleted(EasAccountId accountId);

    void onQuitRequest();
    void onReconfigRequest();
    void onCancelRequest(EasAccountId accountId, qulonglong requestId);
    void onAlwaysOnStatus(uint accountId, const QString &profile, bool enabled);

Q_SIGNALS:
    void changesAvailable();
    void requestProgress(
        EasAccountId accountId, qulonglong requestId, qlonglong maxValue, qlonglong currentValue);
    /** The values of a document under their published names, before the verdict on it goes out. */
    void policyDocumentReceived(EasAccountId accountId, qulonglong requestId, const QVariantMap &policies);
    /** The state as it goes to clients; an empty one for an account that has gone. */
    void pushStateChanged(EasAccountId accountId, const QVariantMap &state);
    void accountAdded(EasAccountId accountId);
    void accountUpdated(EasAccountId accountId);
    void accountDeleted(EasAccountId accountId);
    void networkStateChanged(EasAccountId accountId, bool enabled);

protected:
    /** A manager that serves the clients of this thread; null for none. */
    RequestManager(std::unique_ptr<DBusInterfaceThread> thread, QObject *parent);

    /** Takes the storage over as a child and follows it. */
    void setAccountStorage(AccountStorage *storage);

private Q_SLOTS:
    void onRequestDownloadProgress(
        EasAccountId accountId, qulonglong requestId, qlonglong bytesReceived, qlonglong bytesTotal);
    void onCheckAccountsCount();

private:
    void openAccountStorage();
    void checkAccountsCount();
    void quitApplication();
    void addRequestInQueue(Request *request);
    void onRequestCompleted(
        Request *request, EasAccountId accountId, qulonglong requestId, const EndReport &report);
    bool endRequest(Request *request, EasAccountId accountId);
    void dropPendingRequests(EasAccountId accountId, const std::function<bool(const Request &)> &matches);

    QPointer<AccountStorage> mAccountStorage;
    std::unique_ptr<DBusInterfaceThread> mDBusThread;
    QPointer<NetworkManager> mNetworkManager;
    QList<Request *> mPendingRequests;
    QMap<EasAccountId, AccountQueue *> mRequestQueues;
};
