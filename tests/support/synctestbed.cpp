// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/synctestbed.h"

#include "application/easdatabase.h"
#include "application/requestmanager.h"
#include "support/bearer.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include <qmailfolderkey.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

constexpr int NeverEnded = -1000;
constexpr int Patience = 60000;

QString line(const QString &folder, const QString &subject, bool read)
{
    return folder + QLatin1Char('|') + subject + QLatin1Char('|')
        + (read ? QStringLiteral("read") : QStringLiteral("unread"));
}

QString devicePath(QMailFolderId id)
{
    QStringList names;
    while (id.isValid()) {
        const QMailFolder folder(id);
        names.prepend(folder.displayName());
        id = folder.parentFolderId();
    }
    return names.join(QLatin1Char('/'));
}

bool isMailFolder(int type)
{
    return (type >= Simulator::GenericFolder && type <= Simulator::OutboxFolder)
        || type == Simulator::UserMailFolder;
}

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
    return run([&](RequestManager &manager, qulonglong id) { manager.onFoldersSyncRequest(mAccountId, id); });
}

int SyncTestBed::downloadMessages(const QList<qulonglong> &messageIds, bool attachments)
{
    return run([&](RequestManager &manager, qulonglong id) {
        manager.onDownloadMessagesRequest(mAccountId, messageIds, attachments, id);
    });
}

int SyncTestBed::downloadPart(qulonglong messageId, const QString &location)
{
    return run([&](RequestManager &manager, qulonglong id) {
        manager.onDownloadMessagePartRequest(mAccountId, messageId, location, id);
    });
}

int SyncTestBed::waitFor(qulonglong requestId)
{
    if (!QTest::qWaitFor([&] { return mFinished.contains(requestId); }, Patience))
        return NeverEnded;
    return mFinished.value(requestId);
}

QStringList SyncTestBed::deviceState() const
{
    QStringList lines;
    const QMailMessageIdList ids =
        QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(QMailAccountId(mAccountId)));
    for (const QMailMessageId &id : ids) {
        const QMailMessageMetaData message(id);
        lines.append(line(
            devicePath(message.parentFolderId()), message.subject(), message.status() & QMailMessage::Read));
    }
    lines.sort();
    return lines;
}

QStringList SyncTestBed::serverState()
{
    QStringList lines;
    const auto folders = mailbox().folders();
    for (const Simulator::MailFolder &folder : folders) {
        if (!isMailFolder(folder.type))
            continue;
        QString path = folder.name;
        for (QString parent = folder.parentId; parent != QLatin1String("0");
             parent = mailbox().folder(parent).parentId)
            path.prepend(mailbox().folder(parent).name + QLatin1Char('/'));
        const auto items = mailbox().items(folder.id);
        for (const Simulator::ItemEntry &entry : items) {
            const auto email = std::static_pointer_cast<const Simulator::Email>(entry.item);
            lines.append(line(path, email->content().headers().subject, email->isRead()));
        }
    }
    lines.sort();
    return lines;
}

QStringList SyncTestBed::deviceFolders() const
{
    QStringList paths;
    const QMailFolderIdList ids =
        QMailStore::instance()->queryFolders(QMailFolderKey::parentAccountId(QMailAccountId(mAccountId)));
    for (const QMailFolderId &id : ids)
        paths.append(devicePath(id));
    paths.sort();
    return paths;
}

QStringList SyncTestBed::serverFolders()
{
    QStringList paths;
    const auto folders = mailbox().folders();
    for (const Simulator::MailFolder &folder : folders) {
        if (!isMailFolder(folder.type))
            continue;
        QString path = folder.name;
        for (QString parent = folder.parentId; parent != QLatin1String("0");
             parent = mailbox().folder(parent).parentId)
            path.prepend(mailbox().folder(parent).name + QLatin1Char('/'));
        paths.append(path);
    }
    paths.sort();
    return paths;
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
    const QMailMessageIdList ids =
        QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(QMailAccountId(mAccountId)));
    for (const QMailMessageId &id : ids) {
        if (QMailMessageMetaData(id).subject() == subject)
            return id;
    }
    return {};
}

QMailFolderId SyncTestBed::deviceFolder(const QString &path) const
{
    const QMailFolderIdList ids =
        QMailStore::instance()->queryFolders(QMailFolderKey::parentAccountId(QMailAccountId(mAccountId)));
    for (const QMailFolderId &id : ids) {
        if (devicePath(id) == path)
            return id;
    }
    return {};
}
