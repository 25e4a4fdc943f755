// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashbed.h"

#include "support/bearer.h"
#include "support/storecheck.h"

#include <QFile>
#include <QTest>

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
    return isPim(scenario) ? CrashPim::durableFiles() : CrashMail::durableFiles();
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

QVector<CrashScene *> CrashBed::scenes()
{
    if (mHasPim)
        return { &mMail, &mPim };
    return { &mMail };
}

void CrashBed::clearDevice()
{
    for (const CrashScene *const scene : scenes())
        scene->clearDevice();
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
    for (CrashScene *const scene : scenes())
        scene->begin(mAccountId, mServer->mailbox(), version());
    scenes().last()->fillMailbox();
    if (scenario != FirstSync && scenario != FirstPimSync) {
        if (!synchronizeOnce())
            return false;
        change(scenario);
    }
    return true;
}

void CrashBed::change(Scenario scenario)
{
    switch (scenario) {
    case FirstSync:
    case FirstPimSync:
        break;
    case LaterSync:
        mMail.changeForLaterSync();
        break;
    case Move:
        mMail.changeForMove();
        break;
    case RefusedCollection:
        mMail.changeServer();
        mServer->overrideNext(QStringLiteral("Sync"), Simulator::Override::collectionStatus(3));
        break;
    case RefusedKeys:
        mMail.changeServer();
        mServer->overrideNext(QStringLiteral("Sync"), Simulator::Override::topStatus(3));
        break;
    case ForgottenDevice:
        mMail.changeServer();
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

bool CrashBed::synchronizeOnce()
{
    DaemonProcess daemon;
    const int status = daemon.sync(mAccountId);
    if (status != 0)
        qWarning("the first sync ended with %d:\n%s", status, daemon.log().constData());
    return status == 0;
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
    wrong += wrongRequests() + wrongState() + StoreCheck::damage(StoreCheck::mappingFile());
    for (const CrashScene *const scene : scenes())
        wrong += scene->wrongStores();
    if (wrong.isEmpty())
        return wrong;
    return wrong + QStringLiteral("the requests of the first sync after the fault:\n") + story
        + QStringLiteral("what the daemon said:\n") + QString::fromUtf8(daemon.log());
}

QString CrashBed::wrongState()
{
    QString wrong;
    for (const CrashScene *const scene : scenes())
        wrong += scene->wrongState();
    return wrong;
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
