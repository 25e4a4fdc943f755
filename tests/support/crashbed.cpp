// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashbed.h"

#include "simulator/email.h"
#include "support/bearer.h"
#include "support/maillisting.h"
#include "support/storecheck.h"
#include "support/synctestbed.h"

#include <QDir>
#include <QTest>

#include <qmaildisconnected.h>
#include <qmailfolderkey.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

QString textOf(const QString &subject)
{
    return QStringLiteral("The text of ") + subject;
}

} // namespace

CrashBed::CrashBed()
{
    if (mHasBus && Bearer::connectNetwork() && startServer())
        mAccountId = createAccount();
}

CrashBed::~CrashBed()
{
    if (mAccountId == 0)
        return;
    clearDevice();
    mAccounts.remove(mAccountId);
}

bool CrashBed::isPim(Scenario scenario)
{
    return scenario >= FirstPimSync;
}

bool CrashBed::isNewStart(Scenario scenario)
{
    return scenario == RefusedCollection || scenario == RefusedKeys || scenario == ForgottenDevice
        || scenario == ForgottenPimDevice;
}

QStringList CrashBed::durableFiles(Scenario scenario)
{
    // The account store is another program's.
    return isPim(scenario)
        ? CrashPim::durableFiles()
        : QStringList { QStringLiteral("fennel_eas.db*"), QStringLiteral("mailstore.db*") };
}

QString CrashBed::version() const
{
    // From 16.0 on events have attachments.
    return mHasPim ? QStringLiteral("16.1") : QStringLiteral("14.1");
}

EasAccountId CrashBed::createAccount()
{
    AccountOptions options;
    options.port = mPort;
    options.preferredVersion = version();
    options.calendarsEnabled = mHasPim;
    options.contactsEnabled = mHasPim;
    return mAccounts.create(options);
}

bool CrashBed::useAccountFor(Scenario scenario)
{
    if (isPim(scenario) == mHasPim)
        return true;
    mAccounts.remove(mAccountId);
    mHasPim = isPim(scenario);
    mAccountId = createAccount();
    return mAccountId != 0;
}

void CrashBed::addScenarioRows()
{
    QTest::addColumn<CrashBed::Scenario>("scenario");
    QTest::newRow("first sync") << FirstSync;
    QTest::newRow("later sync") << LaterSync;
    QTest::newRow("move") << Move;
    QTest::newRow("the key of a collection is refused") << RefusedCollection;
    QTest::newRow("the keys of a sync are refused") << RefusedKeys;
    QTest::newRow("the device is forgotten") << ForgottenDevice;
    QTest::newRow("first sync of events and contacts") << FirstPimSync;
    QTest::newRow("later sync of events and contacts") << LaterPimSync;
    QTest::newRow("the device of events and contacts is forgotten") << ForgottenPimDevice;
    QTest::newRow("more contacts go up than one Sync carries") << LongPimUpload;
}

void CrashBed::clearDevice()
{
    QMailStore *store = QMailStore::instance();
    const QMailAccountId account(mAccountId);
    store->removeMessages(QMailMessageKey::parentAccountId(account));
    store->removeFolders(QMailFolderKey::parentAccountId(account));
    store->purgeMessageRemovalRecords(account);
    if (mHasPim)
        CrashPim::clearDevice();
    for (const char *suffix : { "", "-journal", "-wal", "-shm" })
        QFile::remove(StoreCheck::mappingFile() + QLatin1String(suffix));
}

bool CrashBed::startServer()
{
    mServer.reset();
    mServer.reset(new Simulator::ExchangeServer);
    mServer->addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    mServer->setVersions({ version() });
    // So that a first sync takes more than one reply.
    if (mHasPim)
        mServer->setWindowSize(3);
    if (!mServer->start(Simulator::ExchangeServer::Http, mPort))
        return false;
    mPort = mServer->port();
    return true;
}

bool CrashBed::begin(Scenario scenario)
{
    clearDevice();
    if (!useAccountFor(scenario) || !startServer())
        return false;
    mPim.begin(mAccountId, mailbox(), version());
    mWanted.clear();
    mHasPim ? mPim.fillMailbox() : fillMailbox();
    if (scenario != FirstSync && scenario != FirstPimSync) {
        if (!synchronizeOnce())
            return false;
        change(scenario);
    }
    mWanted.sort();
    return true;
}

void CrashBed::change(Scenario scenario)
{
    switch (scenario) {
    case FirstSync:
    case FirstPimSync:
        break;
    case LaterSync:
        changeForLaterSync();
        break;
    case Move:
        changeForMove();
        break;
    case RefusedCollection:
        changeServer();
        mServer->overrideNext(QStringLiteral("Sync"), Simulator::Override::collectionStatus(3));
        break;
    case RefusedKeys:
        changeServer();
        mServer->overrideNext(QStringLiteral("Sync"), Simulator::Override::topStatus(3));
        break;
    case ForgottenDevice:
        changeServer();
        mServer->forgetDevices();
        break;
    case LaterPimSync:
        mPim.changeBothSides();
        break;
    case LongPimUpload:
        mPim.addManyContacts();
        break;
    case ForgottenPimDevice:
        mPim.changeBothSides();
        mPim.wantServersEdits(CrashPim::Alone);
        mServer->forgetDevices();
        break;
    }
}

void CrashBed::fillMailbox()
{
    const QString inbox = mailbox().inboxId();
    const QString projects = mailbox().addFolder(QStringLiteral("Projects"), 12, inbox);
    const QString archive = mailbox().addFolder(QStringLiteral("Archive"));
    deliver(mailbox().addFolder(QStringLiteral("Old")), QStringLiteral("zero"));
    for (const char *subject : { "one", "two", "three", "four" })
        deliver(inbox, QLatin1String(subject));
    deliver(projects, QStringLiteral("five"));
    deliver(archive, QStringLiteral("six"));
    mailbox().setRead(deliver(archive, QStringLiteral("seven")), true);
    mWanted = QStringList { "Inbox|one|unread", "Inbox|two|unread", "Inbox|three|unread", "Inbox|four|unread",
        "Inbox/Projects|five|unread", "Archive|six|unread", "Archive|seven|read", "Old|zero|unread" };
}

bool CrashBed::synchronizeOnce()
{
    DaemonProcess daemon;
    const int status = daemon.sync(mAccountId);
    if (status != 0)
        qWarning("the first sync ended with %d:\n%s", status, daemon.log().constData());
    return status == 0;
}

void CrashBed::changeServer()
{
    Simulator::Mailbox &server = mailbox();
    deliver(server.inboxId(), QStringLiteral("eight"));
    server.setRead(serverItem(QStringLiteral("one")), true);
    server.remove(serverItem(QStringLiteral("two")));
    server.remove(serverItem(QStringLiteral("six")));
    server.renameFolder(server.folderByPath(QStringLiteral("Archive")).id, QStringLiteral("Kept"));
    server.removeFolder(server.folderByPath(QStringLiteral("Old")).id);
    mWanted = QStringList { "Inbox|one|read", "Inbox|three|unread", "Inbox|four|unread", "Inbox|eight|unread",
        "Inbox/Projects|five|unread", "Kept|seven|read" };
}

void CrashBed::changeForLaterSync()
{
    changeServer();
    deliver(mailbox().addFolder(QStringLiteral("New")), QStringLiteral("nine"));
    QMailStore *store = QMailStore::instance();
    const auto here = [this](const char *subject) {
        return MailListing::deviceMessage(mAccountId, QLatin1String(subject));
    };
    store->updateMessagesMetaData(QMailMessageKey::id(here("three")), QMailMessage::Read, true);
    store->updateMessagesMetaData(QMailMessageKey::id(here("seven")), QMailMessage::Read, false);
    store->removeMessage(here("four"), QMailStore::CreateRemovalRecord);

    mWanted = QStringList { "Inbox|one|read", "Inbox|three|read", "Inbox|eight|unread",
        "Inbox/Projects|five|unread", "Kept|seven|unread", "New|nine|unread" };
}

void CrashBed::changeForMove()
{
    QMailStore *store = QMailStore::instance();
    const auto here = [this](const char *subject) {
        return MailListing::deviceMessage(mAccountId, QLatin1String(subject));
    };
    const auto move = [&](const char *subject, const char *path) {
        QMailDisconnected::moveToFolder(
            QMailMessageIdList { here(subject) }, MailListing::deviceFolder(mAccountId, QLatin1String(path)));
    };
    move("one", "Archive");
    move("two", "Inbox/Projects");
    // Not on a moved message: when the answer to the move is lost, the server reports it as a new one.
    store->updateMessagesMetaData(QMailMessageKey::id(here("five")), QMailMessage::Read, true);
    move("six", "Inbox");
    mailbox().setRead(serverItem(QStringLiteral("three")), true);
    mailbox().move(serverItem(QStringLiteral("four")), mailbox().folderByPath(QStringLiteral("Old")).id);

    mWanted = QStringList { "Archive|one|unread", "Inbox/Projects|two|unread", "Inbox|six|unread",
        "Inbox|three|read", "Old|four|unread", "Inbox/Projects|five|read", "Archive|seven|read",
        "Old|zero|unread" };
}

QString CrashBed::run(Scenario scenario, const QProcessEnvironment &environment, After after)
{
    if (!begin(scenario))
        return QStringLiteral("the run cannot begin");
    DaemonProcess daemon(environment);
    return finish(daemon, after);
}

QString CrashBed::runUntil(Scenario scenario, std::chrono::microseconds moment)
{
    if (!begin(scenario))
        return QStringLiteral("the run cannot begin");
    DaemonProcess daemon;
    daemon.killAfterStart(moment);
    return finish(daemon, NewDaemon);
}

QString CrashBed::finish(DaemonProcess &daemon, After after)
{
    const auto start = std::chrono::steady_clock::now();
    mSyncStatus = daemon.sync(mAccountId);
    mSyncDuration =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    QString wrong;
    if (after == SameDaemon) {
        wrong = whatIsWrong(daemon);
    } else {
        daemon.kill();
        DaemonProcess next;
        wrong = whatIsWrong(next);
    }
    if (wrong.isEmpty())
        return wrong;
    return QStringLiteral("the sync with the fault ended with %1, and the daemon said:\n%2\n%3")
        .arg(mSyncStatus)
        .arg(QString::fromUtf8(daemon.log()), wrong);
}

QString CrashBed::deliver(const QString &folderId, const QString &subject)
{
    return mailbox().deliver(folderId, SyncTestBed::message(subject, textOf(subject)));
}

QString CrashBed::serverItem(const QString &subject)
{
    const auto folders = mailbox().folders();
    for (const Simulator::MailFolder &folder : folders) {
        const auto items = mailbox().items(folder.id);
        for (const Simulator::ItemEntry &entry : items) {
            const auto email = std::dynamic_pointer_cast<const Simulator::Email>(entry.item);
            if (email && email->content().headers().subject == subject)
                return entry.serverId;
        }
    }
    return QString();
}

QString CrashBed::whatIsWrong(DaemonProcess &daemon)
{
    mServer->clearRequests();
    int status = daemon.sync(mAccountId);
    // A run has a few statements more or less than another; the fault may come as late as in this sync.
    if (status != 0 && mSyncStatus == 0)
        status = daemon.sync(mAccountId);
    QString wrong;
    if (status != 0)
        wrong += QStringLiteral("the sync after the fault ended with %1\n").arg(status);
    wrong += wrongState();
    QString story;
    for (const Simulator::RecordedRequest &request : mServer->requests())
        story += request.dump() + QLatin1Char('\n');
    // A deletion beside one that the server does not know is not acknowledged, and goes up once more.
    if (mHasPim)
        daemon.sync(mAccountId);
    mServer->clearRequests();
    status = daemon.sync(mAccountId);
    daemon.kill();
    if (status != 0)
        wrong += QStringLiteral("a further sync after the fault ended with %1\n").arg(status);
    wrong += wrongRequests() + wrongState() + wrongMapping() + (mHasPim ? mPim.wrongStores() : QString())
        + StoreCheck::damage(StoreCheck::mappingFile())
        + StoreCheck::damage(qEnvironmentVariable("QMF_DATA") + QStringLiteral("/mailstore.db"));
    if (wrong.isEmpty())
        return wrong;
    return wrong + QStringLiteral("the requests of the first sync after the fault:\n") + story
        + QStringLiteral("what the daemon said:\n") + QString::fromUtf8(daemon.log());
}

QString CrashBed::wrongState()
{
    return (mHasPim ? mPim.wrongState() : QString())
        + StoreCheck::difference("messages of the device", MailListing::deviceMessages(mAccountId), mWanted)
        + StoreCheck::difference("messages of the server", MailListing::serverMessages(mailbox()), mWanted)
        + StoreCheck::difference("folders of the device", MailListing::deviceFolders(mAccountId),
            MailListing::serverFolders(mailbox()))
        + wrongContent();
}

QString CrashBed::wrongContent() const
{
    QString wrong;
    QMailStore *store = QMailStore::instance();
    const QMailAccountId account(mAccountId);
    const QMailMessageIdList ids = store->queryMessages(QMailMessageKey::parentAccountId(account));
    for (const QMailMessageId &id : ids) {
        const QMailMessage message(id);
        if (message.body().data().trimmed() != textOf(message.subject()))
            wrong +=
                QStringLiteral("the text of %1 is \"%2\"\n").arg(message.subject(), message.body().data());
        if (message.previousParentFolderId().isValid())
            wrong += QStringLiteral("%1 still waits to be moved\n").arg(message.subject());
    }
    if (!store->messageRemovalRecords(account).isEmpty())
        wrong += QStringLiteral("a deletion still waits to be told\n");
    return wrong;
}

QString CrashBed::wrongMapping() const
{
    const auto numbers = [](const auto &ids) {
        QStringList list;
        for (const auto &id : ids)
            list.append(QString::number(id.toULongLong()));
        list.sort();
        return list;
    };
    const auto rows = [](const char *sql) {
        return StoreCheck::ask(StoreCheck::mappingFile(), QLatin1String(sql));
    };
    const QMailAccountId account(mAccountId);
    return StoreCheck::difference("rows of messages", rows("SELECT local_id FROM emails"),
               numbers(QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(account))))
        + StoreCheck::difference("rows of folders",
            rows("SELECT local_id FROM collections WHERE type IN (1, 2, 3, 4, 5, 6, 12)"),
            numbers(QMailStore::instance()->queryFolders(QMailFolderKey::parentAccountId(account))));
}

QString CrashBed::wrongRequests() const
{
    QString wrong;
    const auto requests = mServer->requests();
    for (const Simulator::RecordedRequest &request : requests) {
        const bool changes = request.document.toXml().contains(QLatin1String("Commands"))
            || request.command == QLatin1String("MoveItems");
        const bool asks = request.command == QLatin1String("FolderSync")
            || request.command == QLatin1String("Sync") || request.command == QLatin1String("OPTIONS");
        if (changes || !asks || request.replyDocument.toXml().contains(QLatin1String("Commands")))
            wrong += QStringLiteral("a sync that should have nothing to do sent:\n") + request.dump();
    }
    if (requests.isEmpty())
        wrong += QStringLiteral("the second sync after the fault sent no request\n");
    for (const QString &failure : mServer->failures())
        wrong += failure + QLatin1Char('\n');
    return wrong;
}
