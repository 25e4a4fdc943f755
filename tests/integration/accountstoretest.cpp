// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/exchangeserver.h"
#include "support/accountfactory.h"
#include "support/bearer.h"
#include "support/clientprocess.h"
#include "support/daemonprocess.h"
#include "support/maillisting.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

#include <memory>
#include <sys/stat.h>

/**
 * The account store keeps what is written to it while the daemon lives and other programs open and close the
 * same store. Every step here is a process of its own, as on a device.
 */
class AccountStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void eachAccountAddedWhileTheDaemonRunsGetsAllItsFolders();
    void theRightPasswordLiftsTheBlockOfAWrongOne();
    void anAccountAddedInPlaceOfARemovedOneIsWhole();
    void whatAForeignProgramWritesIsThere();
    void theDatabaseCanBeReadByItsUserAlone();

private:
    bool addAccount(const QString &address, const QByteArray &password = "s3cret");
    bool sync(const QString &address) { return run({ QStringLiteral("sync") }, address) == 0; }
    int run(QStringList arguments, const QString &address)
    {
        return mClient.run(QStringList { QStringLiteral("--account"), address } + arguments);
    }
    QStringList folders(const QString &address);
    QJsonObject described(const QString &address)
    {
        return mClient.json({ QStringLiteral("account"), QStringLiteral("show"), address }).object();
    }
    /** Of the account's password in the sign-on service. */
    quint32 identityOf(const QString &address);
    QStringList accountNames();
    /** The files which the daemon holds open although their names are gone. */
    QStringList deletedFiles() const;

    Simulator::ExchangeServer mServer;
    ClientProcess mClient;
    std::unique_ptr<DaemonProcess> mDaemon;
};

// A check that failed prints what the last command said.
#define VERIFY_DONE(step) QVERIFY2(step, mClient.output() + mClient.errors() + mDaemon->log().right(4000))

void AccountStoreTest::initTestCase()
{
    umask(S_IWGRP | S_IWOTH);
    QVERIFY(PrivateBus::ensure());
    QVERIFY(Bearer::connectNetwork());
    mServer.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    QVERIFY(mServer.start());
}

void AccountStoreTest::init()
{
    mDaemon = std::make_unique<DaemonProcess>();
    // As long as this one is enabled the daemon stays.
    VERIFY_DONE(addAccount(QStringLiteral("keeper@example.com")));
    QVERIFY(mDaemon->start());
    VERIFY_DONE(sync(QStringLiteral("keeper@example.com")));
}

void AccountStoreTest::cleanup()
{
    mClient.run({ QStringLiteral("quit") });
    mDaemon.reset();
    const QStringList names = accountNames();
    for (const QString &name : names)
        QCOMPARE(mClient.run({ QStringLiteral("account"), QStringLiteral("remove"), name }), 0);
}

bool AccountStoreTest::addAccount(const QString &address, const QByteArray &password)
{
    return mClient.run(
               { QStringLiteral("account"), QStringLiteral("add"), address, QStringLiteral("--server"),
                   QStringLiteral("http://127.0.0.1:%1").arg(mServer.port()), QStringLiteral("--user"),
                   QStringLiteral("alice"), QStringLiteral("--without"), QStringLiteral("calendar"),
                   QStringLiteral("--without"), QStringLiteral("contacts"), QStringLiteral("--password-fd"),
                   QStringLiteral("0") },
               password + '\n')
        == 0;
}

QStringList AccountStoreTest::folders(const QString &address)
{
    QStringList paths;
    const QJsonArray rows =
        mClient.json({ QStringLiteral("--account"), address, QStringLiteral("folders") }).array();
    for (const QJsonValue &row : rows)
        paths.append(row.toObject().value(QStringLiteral("path")).toString());
    paths.sort();
    return paths;
}

quint32 AccountStoreTest::identityOf(const QString &address)
{
    const int id = described(address).value(QStringLiteral("id")).toString().toInt();
    return AccountFactory()
        .value(static_cast<EasAccountId>(id), QString(), QStringLiteral("CredentialsId"))
        .toUInt();
}

QStringList AccountStoreTest::accountNames()
{
    QStringList names;
    const QJsonArray rows = mClient.json({ QStringLiteral("account"), QStringLiteral("list") }).array();
    for (const QJsonValue &row : rows)
        names.append(row.toObject().value(QStringLiteral("name")).toString());
    names.sort();
    return names;
}

QStringList AccountStoreTest::deletedFiles() const
{
    QStringList deleted;
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(mDaemon->processId()));
    const QFileInfoList links = descriptors.entryInfoList(QDir::Files | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &link : links) {
        const QString target = link.symLinkTarget();
        if (target.startsWith(QDir::homePath()) && target.endsWith(QLatin1String(" (deleted)")))
            deleted.append(target);
    }
    return deleted;
}

void AccountStoreTest::eachAccountAddedWhileTheDaemonRunsGetsAllItsFolders()
{
    const QStringList all = MailListing::serverFolders(mServer.mailbox());
    QVERIFY(all.size() > 1);
    const QStringList addresses { QStringLiteral("first@example.com"), QStringLiteral("second@example.com") };
    for (int round = 0; round < 30; ++round) {
        for (const QString &address : addresses) {
            VERIFY_DONE(addAccount(address));
            VERIFY_DONE(sync(address));
        }
        for (const QString &address : addresses)
            QCOMPARE(folders(address), all);
        QCOMPARE(deletedFiles(), QStringList());
        for (const QString &address : addresses)
            VERIFY_DONE(mClient.run({ QStringLiteral("account"), QStringLiteral("remove"), address }) == 0);
    }
    QVERIFY(!mDaemon->hasDied());
}

void AccountStoreTest::theRightPasswordLiftsTheBlockOfAWrongOne()
{
    const QString address = QStringLiteral("alice@example.com");
    for (int round = 0; round < 5; ++round) {
        VERIFY_DONE(addAccount(address, "wrong"));
        QVERIFY(!sync(address));
        QVERIFY(described(address).value(QStringLiteral("blocked")).toBool());
        VERIFY_DONE(mClient.run({ QStringLiteral("password"), address, QStringLiteral("--password-fd"),
                                    QStringLiteral("0") },
                        "s3cret\n")
            == 0);
        VERIFY_DONE(sync(address));
        QVERIFY(!described(address).value(QStringLiteral("blocked")).toBool());
        VERIFY_DONE(mClient.run({ QStringLiteral("account"), QStringLiteral("remove"), address }) == 0);
    }
    QCOMPARE(deletedFiles(), QStringList());
}

void AccountStoreTest::anAccountAddedInPlaceOfARemovedOneIsWhole()
{
    const QString address = QStringLiteral("alice@example.com");
    QList<quint32> removedIdentities;
    for (int round = 0; round < 5; ++round) {
        VERIFY_DONE(addAccount(address));
        VERIFY_DONE(sync(address));
        removedIdentities.append(identityOf(address));
        QVERIFY(AccountFactory::identityExists(removedIdentities.last()));
        VERIFY_DONE(mClient.run({ QStringLiteral("account"), QStringLiteral("remove"), address }) == 0);
    }
    VERIFY_DONE(addAccount(address));
    VERIFY_DONE(sync(address));
    VERIFY_DONE(sync(address));
    VERIFY_DONE(mClient.run({ QStringLiteral("quit") }) == 0);
    const QJsonObject account = described(address);
    QCOMPARE(account.value(QStringLiteral("address")).toString(), address);
    QCOMPARE(account.value(QStringLiteral("user")).toString(), QStringLiteral("alice"));
    QCOMPARE(account.value(QStringLiteral("services")).toArray(), QJsonArray { QStringLiteral("mail") });
    QVERIFY(!account.value(QStringLiteral("versions")).toString().isEmpty());
    QCOMPARE(accountNames(), QStringList({ address, QStringLiteral("keeper@example.com") }));
    for (const quint32 identity : qAsConst(removedIdentities))
        QVERIFY(!AccountFactory::identityExists(identity));
}

void AccountStoreTest::whatAForeignProgramWritesIsThere()
{
    const QString keeper = QStringLiteral("keeper@example.com");
    const auto id =
        static_cast<EasAccountId>(described(keeper).value(QStringLiteral("id")).toString().toInt());
    {
        AccountFactory foreign;
        for (int number = 0; number < 100; ++number) {
            const QString key = QStringLiteral("foreign/%1").arg(number);
            QVERIFY(foreign.setValue(id, QString(), key, number));
            if (number % 10 == 0)
                VERIFY_DONE(sync(keeper));
        }
    }
    QCOMPARE(deletedFiles(), QStringList());
    VERIFY_DONE(mClient.run({ QStringLiteral("quit") }) == 0);
    AccountFactory reader;
    for (int number = 0; number < 100; ++number)
        QCOMPARE(reader.value(id, QString(), QStringLiteral("foreign/%1").arg(number)).toInt(), number);
    VERIFY_DONE(!described(keeper).value(QStringLiteral("versions")).toString().isEmpty());
}

void AccountStoreTest::theDatabaseCanBeReadByItsUserAlone()
{
    const QDir folder(qEnvironmentVariable("ACCOUNTS"));
    const QFileInfoList files = folder.entryInfoList({ QStringLiteral("accounts.db*") }, QDir::Files);
    QVERIFY(!files.isEmpty());
    for (const QFileInfo &file : files)
        QVERIFY2(!(file.permissions() & 0x0077), qPrintable(file.fileName()));
}

FENNEL_REGISTER_TEST(AccountStoreTest)
#include "accountstoretest.moc"
