// SPDX-License-Identifier: LGPL-2.1-or-later
#include "wipescene.h"

#include "accounts/base/accountstore.h"
#include "accounts/waitingidentities.h"
#include "support/bearer.h"
#include "support/devicecalendar.h"
#include "support/storecheck.h"
#include "support/synctestbed.h"
#include "support/waiting.h"

#include <Accounts/Manager>

#include <QDir>
#include <QStandardPaths>
#include <QTimer>

#include <attachmentmanager.h>
#include <qmailstore.h>

namespace {

constexpr int Patience = 180000;
constexpr int LookAgain = 50;
constexpr int Attempts = 5;
const QString version = QStringLiteral("16.1");
const QString otherUser = QStringLiteral("bob");

QString waitingIdentities()
{
    QString lines;
    const QSet<quint32> waiting = WaitingIdentities().all().valueOr({});
    for (const quint32 identity : waiting)
        lines += QStringLiteral("identity %1 still waits to be removed and is %2\n")
                     .arg(identity)
                     .arg(AccountFactory::identityExists(identity) ? QStringLiteral("there")
                                                                   : QStringLiteral("gone"));
    return lines;
}

/** Waits for what other processes do to files, which no event of this one tells. */
void waitUntil(const std::function<bool()> &condition)
{
    QTimer look;
    look.start(LookAgain);
    Waiting::until(condition, Patience);
}

/** What another program has put beside a message. */
bool makeMailAttachment(EasAccountId accountId)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/mail_attachments/%1/part").arg(accountId);
    QFile file(folder + QStringLiteral("/figures.txt"));
    return QDir().mkpath(folder) && file.open(QIODevice::WriteOnly) && file.write("1 2 3") == 5;
}

} // namespace

WipeScene::WipeScene()
    : mStore(AccountStore::manager())
    , mServer(new Simulator::ExchangeServer)
{
    mServer->setVersions({ version });
    for (const QString &user : { wipedUser(), otherUser })
        mServer->addUser(user, QStringLiteral("s3cret"));
    if (!mHasBus || !Bearer::connectNetwork() || !mServer->start(Simulator::ExchangeServer::Http))
        return;
    // A mail store that is there from the start takes a removed account's mail with it.
    QMailStore::instance();
    mOther = create(otherUser);
    fillMailbox(otherUser, mOther, mOtherPim);
    fillMailbox(wipedUser(), 0, mPim);
}

WipeScene::~WipeScene() = default;

EasAccountId WipeScene::create(const QString &user)
{
    AccountOptions options;
    options.userName = user;
    options.emailAddress = user + QStringLiteral("@example.com");
    options.port = mServer->port();
    options.preferredVersion = version;
    options.calendarsEnabled = true;
    options.contactsEnabled = true;
    const EasAccountId id = mAccounts.create(options);
    const quint32 passphrase = AccountFactory::storeIdentity(user, QStringLiteral("s3cret-passphrase"));
    return mAccounts.setValue(id, QString(), QStringLiteral("SslCertCredentialsId"), passphrase) ? id : 0;
}

void WipeScene::fillMailbox(const QString &user, EasAccountId accountId, CrashPim &pim)
{
    Simulator::Mailbox &mailbox = mServer->mailbox(user);
    pim.begin(accountId, mailbox, version);
    pim.fillMailbox();
    const QString projects = mailbox.addFolder(QStringLiteral("Projects"), 12, mailbox.inboxId());
    for (const char *const subject : { "one", "two", "three" })
        mailbox.deliver(mailbox.inboxId(), SyncTestBed::message(QLatin1String(subject)));
    mailbox.deliver(projects, SyncTestBed::message(QStringLiteral("four")));
}

bool WipeScene::begin()
{
    mLog.clear();
    mServer->clearRequests();
    QFile::remove(WaitingIdentities::defaultFile());
    if (mWiped != 0 && isAccountThere())
        mAccounts.remove(mWiped);
    mWiped = create(wipedUser());
    const bool prepared = mOther != 0 && mWiped != 0 && synchronize(mWiped) == 0
        && (mOtherPlaces.traces || synchronize(mOther) == 0) && fillAttachments(mWiped)
        && fillAttachments(mOther);
    if (!prepared) {
        qWarning("the scene cannot begin:\n%s", mLog.constData());
        return false;
    }
    mWipedPlaces = traced(mWiped);
    mOtherPlaces = traced(mOther);
    const QString wrong = wrongPreparation();
    if (!wrong.isEmpty())
        qWarning("%s", qPrintable(wrong));
    return wrong.isEmpty();
}

int WipeScene::synchronize(EasAccountId accountId)
{
    DaemonProcess daemon;
    const int status = daemon.sync(accountId);
    daemon.kill();
    mLog += daemon.log();
    return status;
}

bool WipeScene::fillAttachments(EasAccountId accountId) const
{
    if (!makeMailAttachment(accountId))
        return false;
    const DeviceCalendar device;
    const KCalendarCore::Event::List series = device.series(accountId);
    int files = 0;
    for (const KCalendarCore::Event::Ptr &event : series) {
        const KCalendarCore::Attachment::List attachments = event->attachments();
        for (const KCalendarCore::Attachment &attachment : attachments) {
            QString error;
            files += mKCal::AttachmentManager(attachment).saveData("1 2 3", &error) ? 1 : 0;
        }
    }
    return files > 0;
}

WipeScene::Places WipeScene::traced(EasAccountId accountId)
{
    Places places;
    places.traces = std::make_unique<DeviceTraces>(accountId);
    places.before = places.traces->find();
    return places;
}

QString WipeScene::wrongPreparation() const
{
    QStringList empty = DeviceTraces::emptyPlaces(mWipedPlaces.before);
    // Nothing was deleted here, and folders have no fields of their own.
    empty.removeAll(QStringLiteral("mail store, removal_records"));
    empty.removeAll(QStringLiteral("mail store, folder_fields"));
    return empty.isEmpty()
        ? QString()
        : QStringLiteral("there is nothing to wipe in: ") + empty.join(QStringLiteral("; "));
}

bool WipeScene::orderInRecord()
{
    return mAccounts.setValue(mWiped, QString(), QStringLiteral("remote_wipe_requested"), true);
}

bool WipeScene::isAccountThere() const
{
    // Read anew: a daemon that died right after the removal has told nobody.
    return mStore->accountList().contains(Accounts::AccountId(mWiped));
}

bool WipeScene::isOrderRecorded() const
{
    return mAccounts.value(mWiped, QString(), QStringLiteral("remote_wipe_requested")).toBool();
}

void WipeScene::run(const QProcessEnvironment &environment)
{
    DaemonProcess daemon(environment);
    daemon.start();
    waitForEnd(daemon);
}

void WipeScene::runOrdered(const QProcessEnvironment &environment)
{
    DaemonProcess daemon(environment);
    daemon.sync(mWiped);
    waitForEnd(daemon);
}

void WipeScene::waitForEnd(DaemonProcess &daemon)
{
    // A store that could not be opened at the start stays closed, however often the daemon tries again.
    const auto hasGivenUp = [&] {
        return daemon.log().count("will be tried again") >= Attempts;
    };
    waitUntil([&] { return daemon.hasDied() || !isAccountThere() || hasGivenUp(); });
    daemon.kill();
    mLog += daemon.log();
}

QString WipeScene::finish()
{
    DaemonProcess daemon;
    daemon.start();
    const auto left = [this] {
        return DeviceTraces::listing(mWipedPlaces.traces->find()) + waitingIdentities();
    };
    waitUntil([&] { return daemon.hasDied() || (!isAccountThere() && left().isEmpty()); });
    daemon.kill();
    mLog += daemon.log();
    QString wrong;
    if (daemon.hasDied() && isAccountThere())
        wrong += QStringLiteral("the account is still there\n");
    wrong += left();
    wrong += DeviceTraces::difference(mOtherPlaces.traces->find(), mOtherPlaces.before);
    for (const QString &file :
        { StoreCheck::mappingFile(), qEnvironmentVariable("QMF_DATA") + QStringLiteral("/mailstore.db"),
            qEnvironmentVariable("CONTACTS_DATA") + QStringLiteral("/contacts.db") })
        wrong += StoreCheck::damage(file);
    return wrong;
}

QString WipeScene::lookedAt() const
{
    QString lines;
    for (auto place = mWipedPlaces.before.cbegin(); place != mWipedPlaces.before.cend(); ++place)
        lines += QStringLiteral("%1: %2 before\n").arg(place.key()).arg(place.value().size());
    return lines;
}
