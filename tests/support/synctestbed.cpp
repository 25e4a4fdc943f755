// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/synctestbed.h"

#include "application/easdatabase.h"
#include "application/requestmanager.h"
#include "support/bearer.h"
#include "support/maillisting.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include <qmailfolderkey.h>
#include <qmailstore.h>

namespace {

constexpr int NeverEnded = -1000;
constexpr int Patience = 60000;

} // namespace

SyncTestBed::SyncTestBed(const QStringList &versions)
{
    if (!mHasBus || !Bearer::connectNetwork())
        return;
    mServer.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    mServer.setVersions(versions);
    if (!mServer.start())
        return;
    AccountOptions options;
    options.port = mServer.port();
    options.preferredVersion = versions.last();
    mAccountId = mAccounts.create(options);
    startEngine();
}

SyncTestBed::~SyncTestBed()
{
    stopEngine();
    if (mAccountId != 0)
        mAccounts.remove(mAccountId);
    QMailStore::instance()->removeFolders(QMailFolderKey::parentAccountId(QMailAccountId(mAccountId)));
}

void SyncTestBed::startEngine()
{
    // The engine ends by itself when it finds no account after a while; that while has to be the real one.
    mClock.setFast(false);
    RequestManager::initializeInstance(static_cast<QObject *>(nullptr));
    RequestManager *manager = RequestManager::instance();
    connect(manager, &RequestManager::requestFinished, this,
        [this](EasAccountId, qulonglong requestId, int status) { mFinished.insert(requestId, status); });
    manager->init();
    QTRY_VERIFY(manager->isReady() && manager->account(mAccountId));
    mClock.setFast(true);
}

void SyncTestBed::stopEngine()
{
    RequestManager::releaseInstance();
    EasDatabase::releaseInstance();
    // The engine ends its process a little later; that must not hit a loop of the next test.
    QCoreApplication::exec();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void SyncTestBed::restartEngine()
{
    stopEngine();
    startEngine();
}

template <typename Start> int SyncTestBed::run(Start start)
{
    const qulonglong id = ++mLastRequestId;
    start(*RequestManager::instance(), id);
    return waitFor(id);
}

qulonglong SyncTestBed::startSync()
{
    RequestManager::instance()->onFullSyncRequest(mAccountId, ++mLastRequestId);
    return mLastRequestId;
}

qulonglong SyncTestBed::startFoldersSync()
{
    RequestManager::instance()->onFoldersSyncRequest(mAccountId, ++mLastRequestId);
    return mLastRequestId;
}

int SyncTestBed::sync()
{
    return waitFor(startSync());
}

int SyncTestBed::syncFolders(const QStringList &localFolderIds)
{
    return run([&](RequestManager &manager, qulonglong id) {
        manager.onSyncFoldersRequest(mAccountId, localFolderIds, id);
    });
}

int SyncTestBed::syncService(int service)
{
    return run([&](RequestManager &manager, qulonglong id) {
        manager.onSyncServiceRequest(mAccountId, service, id);
    });
}

int SyncTestBed::foldersSync()
{
    return waitFor(startFoldersSync());
}

qulonglong SyncTestBed::startDownloadMessages(const QList<qulonglong> &messageIds, bool attachments)
{
    RequestManager::instance()->onDownloadMessagesRequest(
        mAccountId, messageIds, attachments, ++mLastRequestId);
    return mLastRequestId;
}

qulonglong SyncTestBed::startDownloadPart(qulonglong messageId, const QString &location)
{
    RequestManager::instance()->onDownloadMessagePartRequest(
        mAccountId, messageId, location, ++mLastRequestId);
    return mLastRequestId;
}

int SyncTestBed::downloadMessages(const QList<qulonglong> &messageIds, bool attachments)
{
    return waitFor(startDownloadMessages(messageIds, attachments));
}

int SyncTestBed::downloadPart(qulonglong messageId, const QString &location)
{
    return waitFor(startDownloadPart(messageId, location));
}

int SyncTestBed::waitFor(qulonglong requestId)
{
    if (!QTest::qWaitFor([&] { return mFinished.contains(requestId); }, Patience))
        return NeverEnded;
    return mFinished.value(requestId);
}

QStringList SyncTestBed::deviceState() const
{
    return MailListing::deviceMessages(mAccountId);
}

QStringList SyncTestBed::serverState()
{
    return MailListing::serverMessages(mailbox());
}

QStringList SyncTestBed::deviceFolders() const
{
    return MailListing::deviceFolders(mAccountId);
}

QStringList SyncTestBed::serverFolders()
{
    return MailListing::serverFolders(mailbox());
}

QByteArray SyncTestBed::message(const QString &subject, const QString &text)
{
    return QStringLiteral("From: Bob <bob@example.com>\r\nTo: Alice <alice@example.com>\r\nSubject: %1\r\n"
                          "Date: Tue, 2 Jan 2024 03:04:05 +0000\r\nMIME-Version: 1.0\r\n"
                          "Content-Type: text/plain; charset=utf-8\r\n\r\n%2\r\n")
        .arg(subject, text)
        .toUtf8();
}

QMailMessageId SyncTestBed::deviceMessage(const QString &subject) const
{
    return MailListing::deviceMessage(mAccountId, subject);
}

QMailFolderId SyncTestBed::deviceFolder(const QString &path) const
{
    return MailListing::deviceFolder(mAccountId, path);
}
