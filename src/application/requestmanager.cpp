// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"

#include "application/account/easaccount.h"
#include "application/accountqueue.h"
#include "application/base/clock.h"
#include "application/base/fetchedoctets.h"
#include "application/base/logging.h"
#include "application/networkmanager.h"
#include "application/serviceconnections.h"
#include "application/storagesfactory.h"
#include "common/easrequeststatus.h"
#include "dbus/dbusinterfacethread.h"
#include "protocol/wbxml/debugtools.h"
#include "requests/attendeesavailablerequest.h"
#include "requests/request.h"
#include "requests/syncrequest.h"
#include "storages/accountstorage.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int CheckAccountsDelay = 5000;
constexpr int QuitDelay = 500;

RequestManager *theInstance = nullptr;

/** Whether clients hear of the end of a request that never got as far as a queue; of others they do not. */
bool tellsEveryEnd(const Request &request)
{
    return request.isProvisioning() || qobject_cast<const AttendeesAvailableRequest *>(&request);
}

} // namespace

RequestManager *RequestManager::instance()
{
    if (!theInstance) {
        initializeInstance(QCoreApplication::instance());
        theInstance->init();
    }
    return theInstance;
}

void RequestManager::initializeInstance(QObject *parent)
{
    if (!theInstance)
        theInstance = new RequestManager(parent);
}

void RequestManager::initializeInstance(RequestManager *manager)
{
    theInstance = manager;
}

void RequestManager::releaseInstance()
{
    // The destructor clears the pointer: what the manager owns asks for the instance while it goes.
    const std::unique_ptr<RequestManager> released(theInstance);
}

RequestManager::RequestManager(QObject *parent)
    : RequestManager(std::make_unique<DBusInterfaceThread>(), parent)
{
}

RequestManager::RequestManager(std::unique_ptr<DBusInterfaceThread> thread, QObject *parent)
    : ClientCalls(parent)
    , mDBusThread(std::move(thread))
{
    qRegisterMetaType<EasAccountId>("EasAccountId");
    qRegisterMetaType<FailedPolicyMap>("FailedPolicyMap");
    qRegisterMetaType<EasOofContainer>("EasOofContainer");
    qRegisterMetaType<GalItem>("GalItem");
    setObjectName(QStringLiteral("RequestManager"));
    if (mDBusThread) {
        mDBusThread->moveToThread(mDBusThread.get());
        ServiceConnections::make(*this, *mDBusThread);
        mDBusThread->start(QThread::InheritPriority);
    }
    checkAccountsCount();
}

RequestManager::~RequestManager()
{
    if (mDBusThread) {
        mDBusThread->exit(1);
        mDBusThread->wait();
    }
    // No result of a request reaches anybody any more; requests go first, because they use all the others.
    disconnect();
    qDeleteAll(findChildren<Request *>(QString(), Qt::FindDirectChildrenOnly));
    qDeleteAll(findChildren<NetworkManager *>(QString(), Qt::FindDirectChildrenOnly));
    qDeleteAll(findChildren<AccountStorage *>(QString(), Qt::FindDirectChildrenOnly));
    if (theInstance == this)
        theInstance = nullptr;
    // The process ends with its service; a stand-in that serves nobody leaves it alone.
    QCoreApplication *const application = QCoreApplication::instance();
    if (mDBusThread && application)
        QTimer::singleShot(Clock::instance().timerInterval(QuitDelay, Clock::Timer::ProcessEnd), application,
            &QCoreApplication::quit);
}

void RequestManager::init()
{
    FetchedOctets::removeLeftBehind();
    if (!mDBusThread)
        return openAccountStorage();
    // Behind the thread's way to the bus: each account asks the scheduler at once, whose answer comes as a
    // signal that is lost to a thread that does not listen yet.
    QMetaObject::invokeMethod(
        mDBusThread.get(),
        [this] {
            QMetaObject::invokeMethod(this, &RequestManager::openAccountStorage, Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
}

void RequestManager::openAccountStorage()
{
    setAccountStorage(StoragesFactory::createAccountStorage(this));
    qCInfo(eas()) << "Initialization done";
}

void RequestManager::setAccountStorage(AccountStorage *storage)
{
    storage->setParent(this);
    mAccountStorage = storage;
    connect(storage, &AccountStorage::accountAdded, this, &RequestManager::accountAdded);
    connect(storage, &AccountStorage::accountDeleted, this, &RequestManager::onAccountDeleted);
    connect(storage, &AccountStorage::accountUpdated, this, &RequestManager::onAccountUpdated);
    connect(storage, &AccountStorage::ready, this, &RequestManager::onAccountStorageReady);
}

bool RequestManager::isReady() const
{
    return mAccountStorage && mAccountStorage->isReady();
}

QList<EasAccountId> RequestManager::accounts() const
{
    return mAccountStorage ? mAccountStorage->accounts() : QList<EasAccountId>();
}

EasAccount *RequestManager::account(EasAccountId accountId) const
{
    return mAccountStorage ? mAccountStorage->account(accountId) : nullptr;
}

NetworkManager *RequestManager::networkManager()
{
    if (!mNetworkManager) {
        mNetworkManager = new NetworkManager(this);
        connect(mNetworkManager, &NetworkManager::networkStateChanged, this,
            &RequestManager::networkStateChanged);
    }
    return mNetworkManager;
}

QNetworkSession *RequestManager::networkSession(EasAccountId accountId)
{
    return networkManager()->networkSession(accountId);
}

void RequestManager::processNewRequest(Request *request, const EndReport &report)
{
    if (!request->parent())
        request->setParent(this);
    connect(request, &Request::requestCompleted, this,
        [this, request, report](EasAccountId accountId, qulonglong requestId) {
            onRequestCompleted(request, accountId, requestId, report);
        });
    connect(request, &Request::requestDownloadProgress, this, &RequestManager::onRequestDownloadProgress);
    connect(request, &Request::policyDocumentReceived, this, &RequestManager::policyDocumentReceived);
    if (!isReady()) {
        mPendingRequests.append(request);
        qCDebug(eas()) << "Request" << request->id() << "was added to the queue for account"
                       << request->accountId();
        return;
    }
    const EasAccountId accountId = request->accountId();
    addRequestInQueue(request);
    if (AccountQueue *const queue = mRequestQueues.value(accountId))
        queue->cancelHungHead();
}

bool RequestManager::hasFullSync(EasAccountId accountId) const
{
    const auto isFullSync = [accountId](const Request *request) {
        const auto *const sync = qobject_cast<const SyncRequest *>(request);
        return sync && sync->accountId() == accountId && sync->isFull();
    };
    const AccountQueue *const queue = mRequestQueues.value(accountId);
    return std::any_of(mPendingRequests.cbegin(), mPendingRequests.cend(), isFullSync)
        || (queue && queue->containsAny(isFullSync));
}

void RequestManager::addRequestInQueue(Request *request)
{
    // A client may be quicker than the account store's signal of a new account.
    if (!account(request->accountId()) && mAccountStorage)
        mAccountStorage->findAccount(request->accountId());
    AccountQueue *&queue = mRequestQueues[request->accountId()];
    if (!queue)
        queue = new AccountQueue(request->accountId(), this);
    queue->enter(request);
}

void RequestManager::onRequestCompleted(
    Request *request, EasAccountId accountId, qulonglong requestId, const EndReport &report)
{
    qCDebug(eas()) << "onRequestCompleted:" << requestId << "for account" << accountId;
    if (request->id() != requestId)
        qCCritical(eas()) << "Wrong requestId" << requestId << "of request" << request->id();
    report(accountId, requestId,
        request->successfullyFinished() ? EasRequestStatus::RequestStatusSuccess : request->status());
    endRequest(request, accountId);
}

void RequestManager::onRequestDownloadProgress(
    EasAccountId accountId, qulonglong requestId, qlonglong bytesReceived, qlonglong bytesTotal)
{
    // Clients get the maximum first.
    Q_EMIT requestProgress(accountId, requestId, bytesTotal, bytesReceived);
}

bool RequestManager::endRequest(Request *request, EasAccountId accountId)
{
    AccountQueue *const queue = mRequestQueues.value(accountId);
    if (!queue) {
        qCWarning(eas()) << "Request queue does not exist for account" << accountId;
        return false;
    }
    const bool wasHead = queue->head() == request;
    if (!queue->remove(request))
        return false;
    // Whatever it still says until it is deleted, its end has been reported.
    request->disconnect(this);
    request->deleteLater();
    if (queue->isEmpty()) {
        mRequestQueues.remove(accountId);
        // It may be starting a head further up the stack.
        queue->deleteLater();
    } else if (wasHead) {
        queue->startHead();
    }
    return true;
}

void RequestManager::onCancelRequest(EasAccountId accountId, qulonglong requestId)
{
    dropPendingRequests(accountId, [requestId](const Request &request) { return request.id() == requestId; });
    const AccountQueue *const queue = mRequestQueues.value(accountId);
    if (!queue) {
        qCWarning(eas()) << "Request queue does not exist for account" << accountId;
        return;
    }
    Request *const request = queue->find(requestId);
    if (!request)
        return;
    qCInfo(eas()) << "Cancel request" << requestId << "for account:" << accountId;
    request->cancel();
}

void RequestManager::dropPendingRequests(
    EasAccountId accountId, const std::function<bool(const Request &)> &matches)
{
    const QList<Request *> pending = mPendingRequests;
    for (Request *const request : pending) {
        if (request->accountId() != accountId || !matches(*request))
            continue;
        mPendingRequests.removeAll(request);
        if (tellsEveryEnd(*request))
            request->cancel();
        request->deleteLater();
    }
}

void RequestManager::onAccountStorageReady()
{
    qCInfo(eas()) << "Ready";
    if (!isReady())
        return;
    const QList<Request *> pending = mPendingRequests;
    mPendingRequests.clear();
    for (Request *const request : pending)
        addRequestInQueue(request);
}

void RequestManager::onAccountUpdated(EasAccountId accountId)
{
    checkAccountsCount();
    Q_EMIT accountUpdated(accountId);
}

void RequestManager::onAccountDeleted(EasAccountId accountId)
{
    dropPendingRequests(accountId, [](const Request &) { return true; });
    if (AccountQueue *const queue = mRequestQueues.value(accountId))
        queue->cancelAll();
    else
        qCInfo(eas()) << "Request queue does not exist for account" << accountId;
    checkAccountsCount();
    Q_EMIT accountDeleted(accountId);
}

void RequestManager::checkAccountsCount()
{
    qCDebug(eas()) << "requesting to check accounts count";
    QTimer::singleShot(Clock::instance().timerInterval(CheckAccountsDelay, Clock::Timer::AccountsCheck), this,
        &RequestManager::onCheckAccountsCount);
}

void RequestManager::onCheckAccountsCount()
{
    if (!mAccountStorage || mAccountStorage->enabledAccountsCount() > 0)
        return;
    qCInfo(eas()) << "we don't have any enabled accounts, quiting";
    quitApplication();
}

void RequestManager::onQuitRequest()
{
    qCInfo(eas()) << "Quit request";
    quitApplication();
}

void RequestManager::quitApplication()
{
    qCInfo(eas()) << "closing application";
    releaseInstance();
}

void RequestManager::onReconfigRequest()
{
    qCInfo(eas()) << "Applying config";
    DebugTools::init();
}

void RequestManager::onAlwaysOnStatus(uint accountId, const QString &profile, bool enabled)
{
    qCInfo(eas()) << "onAlwaysOnStatus" << accountId << profile << enabled;
    if (EasAccount *const switched = account(accountId))
        switched->setAlwaysOn(enabled);
    else
        qCInfo(eas()) << "Not found account with ID:" << accountId;
}
