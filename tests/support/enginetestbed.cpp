// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/enginetestbed.h"

#include "application/account/easaccount.h"
#include "application/mapping/easdatabase.h"
#include "application/requestmanager.h"
#include "support/bearer.h"
#include "support/maillisting.h"
#include "support/waiting.h"

#include <QCoreApplication>
#include <QTest>

#include <qmailfolderkey.h>
#include <qmailmessage.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {
constexpr int NeverEnded = -1000;
} // namespace

EngineTestBed::EngineTestBed() = default;

EngineTestBed::~EngineTestBed()
{
    if (mAccountId == 0)
        return;
    stopEngine();
    mAccounts.remove(mAccountId);
    QMailStore::instance()->removeFolders(QMailFolderKey::parentAccountId(QMailAccountId(mAccountId)));
}

bool EngineTestBed::start(const AccountOptions &options)
{
    if (!mHasBus || !Bearer::connectNetwork())
        return false;
    mAccountId = mAccounts.create(options);
    if (mAccountId == 0)
        return false;
    startEngine();
    return true;
}

void EngineTestBed::startEngine()
{
    // The engine ends by itself when it finds no account after a while; that while has to be the real one.
    mClock.setPace(TestClock::Unhurried);
    RequestManager::initializeInstance(static_cast<QObject *>(nullptr));
    RequestManager *manager = RequestManager::instance();
    const auto note = [this](EasAccountId, qulonglong requestId, int status) {
        mFinished.insert(requestId, status);
    };
    connect(manager, &RequestManager::requestFinished, this, note);
    connect(manager, &RequestManager::searchMessagesFinished, this, note);
    connect(manager, &RequestManager::searchGALFinished, this, note);
    connect(manager, &RequestManager::findMessagesFinished, this, note);
    manager->init();
    QVERIFY(Waiting::until([&] { return manager->isReady() && manager->account(mAccountId); }, mPatience));
    mClock.setPace(TestClock::Hurried);
}

void EngineTestBed::stopEngine()
{
    RequestManager::releaseInstance();
    EasDatabase::releaseInstance();
    // The engine ends its process a little later; that must not hit a loop of the next test.
    QCoreApplication::exec();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void EngineTestBed::restartEngine()
{
    withoutEngine([] {});
}

void EngineTestBed::withoutEngine(const std::function<void()> &happening)
{
    stopEngine();
    happening();
    startEngine();
}

bool EngineTestBed::changePassword(const QString &password)
{
    const EasAccount *account = RequestManager::instance()->account(mAccountId);
    return account && Waiting::until([&] { return account->isReady(); }, mPatience)
        && mAccounts.changePassword(mAccountId, password);
}

template <typename Start> int EngineTestBed::run(Start start)
{
    const qulonglong id = ++mLastRequestId;
    start(*RequestManager::instance(), id);
    return waitFor(id);
}

qulonglong EngineTestBed::startSync()
{
    RequestManager::instance()->onFullSyncRequest(mAccountId, ++mLastRequestId);
    return mLastRequestId;
}

qulonglong EngineTestBed::startFoldersSync()
{
    RequestManager::instance()->onFoldersSyncRequest(mAccountId, ++mLastRequestId);
    return mLastRequestId;
}

qulonglong EngineTestBed::startDownloadMessages(const QList<qulonglong> &messageIds, bool attachments)
{
    RequestManager::instance()->onDownloadMessagesRequest(
        mAccountId, messageIds, attachments, ++mLastRequestId);
    return mLastRequestId;
}

qulonglong EngineTestBed::startDownloadPart(qulonglong messageId, const QString &location)
{
    RequestManager::instance()->onDownloadMessagePartRequest(
        mAccountId, messageId, location, ++mLastRequestId);
    return mLastRequestId;
}

qulonglong EngineTestBed::startSendMail(qulonglong messageId)
{
    RequestManager::instance()->onSendMailRequest(mAccountId, messageId, ++mLastRequestId);
    return mLastRequestId;
}

int EngineTestBed::sendMail(qulonglong messageId)
{
    return waitFor(startSendMail(messageId));
}

int EngineTestBed::sync()
{
    return waitFor(startSync());
}

int EngineTestBed::syncFolders(const QStringList &localFolderIds)
{
    return run([&](RequestManager &manager, qulonglong id) {
        manager.onSyncFoldersRequest(mAccountId, localFolderIds, id);
    });
}

int EngineTestBed::syncService(int service)
{
    return run([&](RequestManager &manager, qulonglong id) {
        manager.onSyncServiceRequest(mAccountId, service, id);
    });
}

int EngineTestBed::foldersSync()
{
    return waitFor(startFoldersSync());
}

int EngineTestBed::downloadMessages(const QList<qulonglong> &messageIds, bool attachments)
{
    return waitFor(startDownloadMessages(messageIds, attachments));
}

int EngineTestBed::downloadPart(qulonglong messageId, const QString &location)
{
    return waitFor(startDownloadPart(messageId, location));
}

int EngineTestBed::downloadAttachment(const QString &uri)
{
    return run([&](RequestManager &manager, qulonglong id) {
        manager.onCalendarAttachmentDownloadRequest(mAccountId, id, uri);
    });
}

int EngineTestBed::waitFor(qulonglong requestId)
{
    if (!Waiting::until([&] { return mFinished.contains(requestId); }, mPatience))
        return NeverEnded;
    return mFinished.value(requestId);
}

QStringList EngineTestBed::deviceState() const
{
    return MailListing::deviceMessages(mAccountId);
}

QStringList EngineTestBed::deviceFolders() const
{
    return MailListing::deviceFolders(mAccountId);
}

QMailMessageId EngineTestBed::deviceMessage(const QString &subject) const
{
    return MailListing::deviceMessage(mAccountId, subject);
}

QMailFolderId EngineTestBed::deviceFolder(const QString &path) const
{
    return MailListing::deviceFolder(mAccountId, path);
}

QMailMessageIdList EngineTestBed::deviceMessages() const
{
    return QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(QMailAccountId(mAccountId))
        & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Excludes));
}

QString EngineTestBed::devicePath(QMailFolderId id)
{
    QStringList names;
    while (id.isValid()) {
        const QMailFolder folder(id);
        names.prepend(folder.displayName());
        id = folder.parentFolderId();
    }
    return names.join(QLatin1Char('/'));
}

QString EngineTestBed::stateLine(const QString &folder, const QString &subject, bool read)
{
    return folder + QLatin1Char('|') + subject + QLatin1Char('|')
        + (read ? QStringLiteral("read") : QStringLiteral("unread"));
}
