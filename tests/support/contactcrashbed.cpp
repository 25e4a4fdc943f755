// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactcrashbed.h"

#include "simulator/contactitem.h"
#include "support/bearer.h"
#include "support/contactscene.h"
#include "support/testpictures.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactName>

#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

QTCONTACTS_USE_NAMESPACE
using Simulator::ContactItem;

namespace {

QString databaseFile()
{
    return QDir::homePath() + QStringLiteral("/.local/share/system/privileged/eas-fennel/fennel_eas.db");
}

/** The first two columns of each row, asked on a connection of its own. */
QList<QPair<QString, QString>> ask(const QString &sql)
{
    const QString name = QStringLiteral("contact-crash-bed");
    QList<QPair<QString, QString>> rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(databaseFile());
        database.open();
        QSqlQuery query(database);
        query.exec(sql);
        while (query.next())
            rows.append({ query.value(0).toString(), query.value(1).toString() });
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

} // namespace

ContactCrashBed::ContactCrashBed()
{
    if (!mHasBus || !Bearer::connectNetwork() || !startServer())
        return;
    AccountOptions options;
    options.port = mPort;
    options.preferredVersion = QStringLiteral("14.1");
    options.contactsEnabled = true;
    mAccountId = mAccounts.create(options);
}

ContactCrashBed::~ContactCrashBed()
{
    if (mAccountId == 0)
        return;
    clearDevice();
    mAccounts.remove(mAccountId);
}

bool ContactCrashBed::startServer()
{
    mServer.reset();
    mServer = std::make_unique<Simulator::ExchangeServer>();
    mServer->addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    mServer->setVersions({ QStringLiteral("14.1") });
    if (!mServer->start(Simulator::ExchangeServer::Http, mPort))
        return false;
    mPort = mServer->port();
    return true;
}

void ContactCrashBed::clearDevice()
{
    mStore = std::make_unique<ContactFixture>();
    for (const char *suffix : { "", "-journal", "-wal", "-shm" })
        QFile::remove(databaseFile() + QLatin1String(suffix));
    QDir(QDir::homePath() + QStringLiteral("/.avatars")).removeRecursively();
}

QString ContactCrashBed::contactsFolder()
{
    return mServer->mailbox().folderOfType(Simulator::ContactsFolder).id;
}

bool ContactCrashBed::begin(Scenario scenario)
{
    clearDevice();
    if (!startServer())
        return false;
    mServer->setWindowSize(3);
    mWanted.clear();
    for (int i = 1; i <= 5; ++i) {
        mServer->mailbox().addItem(contactsFolder(), ContactItem::make(ContactSides::full(i)));
        mWanted.append(QStringLiteral("First %1").arg(i));
    }
    return scenario == FirstSync || changeBothSides();
}

bool ContactCrashBed::changeBothSides()
{
    DaemonProcess daemon;
    if (daemon.sync(mAccountId) != 0)
        return false;
    daemon.kill();

    Simulator::Mailbox &mailbox = mServer->mailbox();
    const auto entries = mailbox.items(contactsFolder());
    mailbox.edit<ContactItem>(entries.at(0).serverId, [](Simulator::Contact &contact) {
        contact.setText(QStringLiteral("MobilePhoneNumber"), QStringLiteral("1"));
        contact.setPicture(TestPictures::png(200));
    });
    mailbox.remove(entries.at(1).serverId);
    mailbox.addItem(contactsFolder(), ContactItem::make(ContactSides::full(6)));

    QContactManager &manager = mStore->manager();
    QContactCollectionId collection;
    for (const QContact &contact : manager.contacts()) {
        collection = contact.collectionId();
        if (ContactFixture::name(contact) == QLatin1String("First 3")) {
            QContact edited = contact;
            QContactName name = edited.detail<QContactName>();
            name.setFirstName(QStringLiteral("Edited"));
            edited.saveDetail(&name);
            manager.saveContact(&edited);
        } else if (ContactFixture::name(contact) == QLatin1String("First 4")) {
            manager.removeContact(contact.id());
        }
    }
    mStore->addContact(collection, QStringLiteral("Added"));
    mWanted = QStringList { "Added", "Edited", "First 1", "First 5", "First 6" };
    return true;
}

QString ContactCrashBed::run(Scenario scenario, const QProcessEnvironment &environment, After after)
{
    if (!begin(scenario))
        return QStringLiteral("the run cannot begin");
    DaemonProcess daemon(environment);
    mSyncStatus = daemon.sync(mAccountId);
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

QString ContactCrashBed::whatIsWrong(DaemonProcess &daemon)
{
    mServer->clearRequests();
    QString wrong;
    int status = daemon.sync(mAccountId);
    if (status != 0)
        wrong += QStringLiteral("the sync after the fault ended with %1\n").arg(status);
    wrong += wrongState();
    QString story;
    for (const Simulator::RecordedRequest &request : mServer->requests())
        story += request.dump() + QLatin1Char('\n');
    mServer->clearRequests();
    status = daemon.sync(mAccountId);
    daemon.kill();
    if (status != 0)
        wrong += QStringLiteral("the second sync after the fault ended with %1\n").arg(status);
    wrong += wrongRequests() + wrongState();
    if (wrong.isEmpty())
        return wrong;
    return wrong + QStringLiteral("the requests of the first sync after the fault:\n") + story
        + QStringLiteral("what the daemon said:\n") + QString::fromUtf8(daemon.log());
}

QString ContactCrashBed::wrongState()
{
    QMap<QString, QString> mapping;
    const auto rows = ask(QStringLiteral("SELECT server_id, local_id FROM contacts"));
    for (const auto &row : rows)
        mapping.insert(row.first, row.second);
    const auto folders = ask(QStringLiteral("SELECT local_id, type FROM collections WHERE type=9"));
    const auto collection = QContactCollectionId::fromString(folders.value(0).first);
    ContactSides sides(*mStore, mServer->mailbox(), mAccountId);
    QStringList wrong = sides.differences(mapping, collection);
    if (rows.size() != mapping.size() || rows.size() != mWanted.size())
        wrong.append(QStringLiteral("%1 rows of %2 contacts").arg(rows.size()).arg(mWanted.size()));

    const QList<QContact> contacts = mStore->contacts(collection);
    if (ContactFixture::names(contacts) != mWanted)
        wrong.append(QLatin1String("names: ") + ContactFixture::names(contacts).join(QLatin1Char(',')));
    if (mStore->manager().contactIds().size() != contacts.size())
        wrong.append(QStringLiteral("contacts elsewhere"));
    QStringList files;
    for (const QContact &contact : contacts) {
        const QUrl picture = contact.detail<QContactAvatar>().imageUrl();
        if (!picture.isEmpty())
            files.append(QFileInfo(picture.toLocalFile()).fileName());
    }
    files.sort();
    if (files != sides.pictures())
        wrong.append(QStringLiteral("pictures of contacts %1, files %2")
                         .arg(files.join(QLatin1Char(',')), sides.pictures().join(QLatin1Char(','))));
    return wrong.isEmpty() ? QString() : wrong.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString ContactCrashBed::wrongRequests() const
{
    for (const Simulator::RecordedRequest &request : mServer->requests(QStringLiteral("Sync"))) {
        if (request.document.toXml().contains(QLatin1String("Commands"))
            || request.replyDocument.toXml().contains(QLatin1String("Commands")))
            return QStringLiteral("the second sync was not silent:\n") + request.dump() + QLatin1Char('\n');
    }
    return QString();
}
